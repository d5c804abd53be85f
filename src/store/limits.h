#pragma once
// The limit editor of the equipment area: the limit in the editor is the current row of limData2,
// its points are limData1, its unit a row of limData3. Levels are stored in dBm and shown with the
// unit's offset, truncated to whole dB (limitUnitOffset).

#include "store/curve_editor.h"

#include <optional>

class Context;
struct AppState;

// The head of the limit in the editor, as its controls show it.
struct LimitHeadShown {
    QString name;
    QString unit; // "dBmW" when the limit's unit is no row of the unit table
    bool radiated = false;
    bool logarithmic = false;
    QString distance, memo, dat, tim;
};

// reloadLimitEditor: points limData1 at the current head and takes the offset of its unit.
// Nothing (nullopt) when limData2 or limData3 has no rows.
std::optional<LimitHeadShown> reloadLimitEditor(Context &ctx);
// fillLimitGrid: the grid's rows, and the preview bounds in the state.
CurveGrid fillLimitGrid(Context &ctx);
CurveScale limitScale(const AppState &state);
PreviewBounds limitPreviewBounds(const AppState &state);
void setLimitPreviewBounds(AppState &state, const PreviewBounds &bounds);

// Return in limText2: the typed point, the level in the unit shown.
void enterLimitPoint(Context &ctx, const QString &frequency, const QString &level);
// A click on limGrid1, and its Delete key.
std::optional<CurveGridRow> findLimitPoint(Context &ctx, const QString &frequency);
bool deleteLimitPoint(Context &ctx, const QString &frequency);
// limDBCombo1: the limit of this name comes into the editor; false when there is none.
bool chooseLimit(Context &ctx, const QString &name);
// limDBCombo2: the limit is edited in this unit from now on.
void chooseLimitUnit(Context &ctx, const QString &unit);
// A bound control of the head: limText3 Distance, limCheck1 Radiated, limCheck2 loga, limText4 Memo...
void saveLimitHead(Context &ctx, const QString &column, const QVariant &value);
