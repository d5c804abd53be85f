#pragma once
// What the limit editor and the loss/gain editor do alike: a definition is a head row with a name
// and a number, and points (frequency, level) in a table of its own; the editors list the points,
// take typed points, delete them, and their dialogs add, copy and delete whole definitions.

#include "store/data_view.h"

#include <QChar>
#include <QList>
#include <QPointF>
#include <QString>
#include <optional>

// The tables of one kind of definition.
struct CurveTables {
    const char *headTable;
    const char *pointTable;
    const char *numberColumn; // key of the head, owner of the points, counter in MeasureCount
    const char *nameColumn;
    const char *existsText;   // message of "Add New" for a name that exists
};
inline constexpr CurveTables kLimitTables{"LimitHead", "limitdef", "limitnr", "limitname", "Limitdefinition exist ( "};
inline constexpr CurveTables kComponentTables{"loshead", "losdef", "losnr", "losname", "losdefinition exist ( "};

// Stored level to shown level and back: a limit adds its unit offset, a gain shows its sign turned.
struct CurveScale {
    int sign = 1;
    int offset = 0;
    float shown(float stored) const { return stored * float(sign) + float(offset); }
    float stored(float shown) const { return (shown - float(offset)) * float(sign); }
};

// Bounds of a preview in stored values.
struct PreviewBounds {
    float minFrequency = 0.0f, maxFrequency = 0.0f;
    float minLevel = 0.0f, maxLevel = 0.0f;
};

struct CurveGridRow {
    QString frequency; // as stored
    QString level;     // shown, "###0.00"
};

struct CurveGrid {
    QList<CurveGridRow> rows;
    QList<QPointF> points; // stored frequency and level, in frequency order
};

// The row at this position of the view becomes current, as a pick in a combo bound to it does.
void moveToRow(DataView &view, int position);

// "select * from limitdef where limitnr like 7 order by frequency".
QString curvePointSource(const CurveTables &tables, const QVariant &number);
// The rows of `points` for the grid, and the preview's bounds from them. A definition without
// points leaves the bounds as they were. The lowest frequency counts as 0 when the first point
// lies at or below 1 MHz.
CurveGrid readCurveGrid(DataView &points, const CurveScale &scale, PreviewBounds &bounds);

// A typed point: one at an equal frequency (compared as stored singles) is overwritten, otherwise
// a row of `owner` is added. The view is read again.
void enterCurvePoint(DataView &points, const CurveTables &tables, const QVariant &owner, float frequency,
                     float storedLevel);
// The point of the grid row with this frequency text, as the text fields show it.
std::optional<CurveGridRow> findCurvePoint(DataView &points, const QString &frequency, const CurveScale &scale);
// Deletes the point of this frequency text; false when there is none.
bool deleteCurvePoint(DataView &points, const QString &frequency);

// Writes one column of the current head, as a bound control does.
void saveCurveHead(DataView &heads, const QString &column, const QVariant &value);

enum class AddOutcome { Nothing, Exists, Added };
// "Add New": a head of this name with the next number of `counter` (MeasureCount). Nothing for a
// blank name or an empty counter table. On Exists and Added the head is the current row of `heads`
// (read again).
AddOutcome addCurveDefinition(DataView &heads, DataView &counter, const CurveTables &tables, const QString &name);
// "Copy": the head columns `headColumns` and the points of the current row of `sourceHeads` go to
// the current row of `destinationHeads`. The points merge: a destination point stays where the
// source has one at the same frequency. A source without points changes nothing.
void copyCurveDefinition(DataView &sourceHeads, DataView &destinationHeads, DataView &sourcePoints,
                         DataView &destinationPoints, const CurveTables &tables, const QStringList &headColumns);
// Delete of a definition with its points. The name is searched first, but the row deleted is the
// current one of `heads` whether or not the name was found.
void deleteCurveDefinition(DataView &heads, DataView &points, const CurveTables &tables, const QString &name);

// The key filter of the point fields: digits, the decimal character (a comma or a point becomes
// `decimalChar`) and, in a level field, "-". A control character passes; nullopt refuses the key.
std::optional<QChar> pointKey(QChar key, bool level, quint8 decimalChar);
// The number in a point field written with `decimalChar`; 0 when it is none.
float pointValue(const QString &text, quint8 decimalChar);
