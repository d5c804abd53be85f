#pragma once
// The points of a loss/gain component as the correction chain reads them from the working database,
// and the loss/gain editor of the equipment area.

#include "core/app_state.h"
#include "store/curve_editor.h"

#include <QList>
#include <optional>

class Context;

// Rows of table losdef for component `losnr`, in frequency order: the correction to add to a
// reading (a gain negative). Empty when the working database is not open or has no such rows.
// A row without a numeric frequency is left out.
QList<ComponentRow> componentRows(const Context &ctx, qint32 losnr);

// Lets the correction chain read its components from this context's working database.
void attachStore(Context &ctx);

// The loss/gain editor of the equipment area: the component in the editor is the current row of
// lgData2, its points LGData1. A gain is stored negated and shown as typed (lossGainSign -1).

// The head of the component in the editor, as its controls show it.
struct ComponentHeadShown {
    QString name;
    std::optional<int> kind; // lostyp 0 antenna, 1 loss, 2 gain; nullopt when outside 0 to 2
    QString distance, memo, dat, tim;
};

// reloadLossGainEditor: points LGData1 at the current head; a known kind sets lossGainSign.
// Nothing (nullopt) when lgData2 has no rows.
std::optional<ComponentHeadShown> reloadLossGainEditor(Context &ctx);
// fillLossGainGrid: the grid's rows, and the preview bounds in the state.
CurveGrid fillLossGainGrid(Context &ctx);
CurveScale lossGainScale(const AppState &state);
PreviewBounds lossGainPreviewBounds(const AppState &state);
void setLossGainPreviewBounds(AppState &state, const PreviewBounds &bounds);

// Return in LGText2: the typed point, the value as the user sees it.
void enterLossGainPoint(Context &ctx, const QString &frequency, const QString &level);
// A click on LGGrid1, and its Delete key.
std::optional<CurveGridRow> findLossGainPoint(Context &ctx, const QString &frequency);
bool deleteLossGainPoint(Context &ctx, const QString &frequency);
// LGDBCombo1: the component of this name comes into the editor; false when there is none.
bool chooseLossGain(Context &ctx, const QString &name);
// lgOption1: the kind of the component. Stored points keep their sign.
void chooseLossGainKind(Context &ctx, int kind);
// A bound control of the head: LGText3 Distance, LGText4 Memo, LGText5 dat, LGText6 tim.
void saveLossGainHead(Context &ctx, const QString &column, const QVariant &value);
