#include "store/curve_editor.h"
#include "store/criteria.h"

#include <QLocale>

namespace {

QString column(const char *name) { return QLatin1String(name); }

// A stored single as text: the shortest form that reads back as the same single.
QString singleText(float value) { return QString::number(double(value), 'g', 7); }

QString levelText(float value) { return QString::number(double(value), 'f', 2); }

QString frequencyCriterion(const QString &frequency) { return QStringLiteral("frequency = ") + frequency; }

} // namespace

void moveToRow(DataView &view, int position)
{
    view.moveFirst();
    for (int i = 0; i < position && view.hasCurrent(); ++i)
        view.moveNext();
}

QString curvePointSource(const CurveTables &tables, const QVariant &number)
{
    return QStringLiteral("select * from %1 where %2 like %3 order by frequency")
        .arg(column(tables.pointTable), column(tables.numberColumn), number.toString().trimmed());
}

CurveGrid readCurveGrid(DataView &points, const CurveScale &scale, PreviewBounds &bounds)
{
    CurveGrid grid;
    points.moveFirst();
    if (!points.hasCurrent())
        return grid;
    for (; points.hasCurrent(); points.moveNext()) {
        const float f = points.value(QStringLiteral("frequency")).toFloat();
        const float l = points.value(QStringLiteral("level_dbmw")).toFloat();
        if (grid.points.isEmpty()) {
            // A line that starts at or below 1 MHz is drawn from 0.
            bounds.minFrequency = f > 1.0f ? f : 0.0f;
            bounds.maxFrequency = f;
            bounds.minLevel = bounds.maxLevel = l;
        } else {
            bounds.maxFrequency = qMax(bounds.maxFrequency, f);
            bounds.minLevel = qMin(bounds.minLevel, l);
            bounds.maxLevel = qMax(bounds.maxLevel, l);
        }
        grid.rows.append({singleText(f), levelText(scale.shown(l))});
        grid.points.append(QPointF(f, l));
    }
    points.moveFirst();
    return grid;
}

void enterCurvePoint(DataView &points, const CurveTables &tables, const QVariant &owner, float frequency,
                     float storedLevel)
{
    if (points.findFirst(frequencyCriterion(singleText(frequency))))
        points.edit();
    else {
        points.addNew();
        points.setValue(column(tables.numberColumn), owner);
    }
    points.setValue(QStringLiteral("frequency"), frequency);
    points.setValue(QStringLiteral("level_dbmw"), storedLevel);
    points.update();
    points.refresh();
}

std::optional<CurveGridRow> findCurvePoint(DataView &points, const QString &frequency, const CurveScale &scale)
{
    if (frequency.isEmpty() || !points.findFirst(frequencyCriterion(frequency)))
        return std::nullopt;
    return CurveGridRow{frequency, levelText(scale.shown(points.value(QStringLiteral("level_dbmw")).toFloat()))};
}

bool deleteCurvePoint(DataView &points, const QString &frequency)
{
    if (frequency.isEmpty() || !points.findFirst(frequencyCriterion(frequency)))
        return false;
    points.deleteRow();
    points.refresh();
    return true;
}

void saveCurveHead(DataView &heads, const QString &columnName, const QVariant &value)
{
    if (!heads.hasCurrent() || heads.value(columnName) == value)
        return;
    heads.edit();
    heads.setValue(columnName, value);
    heads.update();
}

AddOutcome addCurveDefinition(DataView &heads, DataView &counter, const CurveTables &tables, const QString &name)
{
    const QString trimmed = name.trimmed();
    counter.refresh();
    counter.moveFirst();
    if (trimmed.isEmpty() || !counter.hasCurrent())
        return AddOutcome::Nothing;
    const QString criterion = textCriterion(column(tables.nameColumn), QStringLiteral("like"), trimmed);
    heads.refresh();
    if (heads.findFirst(criterion))
        return AddOutcome::Exists;
    // The counter is written first: a number once given out is never given again.
    const qint32 number = counter.value(column(tables.numberColumn)).toInt() + 1;
    counter.edit();
    counter.setValue(column(tables.numberColumn), number);
    counter.update();
    heads.addNew();
    heads.setValue(column(tables.nameColumn), trimmed);
    heads.setValue(column(tables.numberColumn), number);
    heads.update();
    heads.refresh();
    heads.findFirst(criterion);
    return AddOutcome::Added;
}

void copyCurveDefinition(DataView &sourceHeads, DataView &destinationHeads, DataView &sourcePoints,
                         DataView &destinationPoints, const CurveTables &tables, const QStringList &headColumns)
{
    if (!sourceHeads.hasCurrent() || !destinationHeads.hasCurrent())
        return;
    const QString number = column(tables.numberColumn);
    const QVariant destination = destinationHeads.value(number);
    destinationPoints.setSource(curvePointSource(tables, destination));
    sourcePoints.setSource(curvePointSource(tables, sourceHeads.value(number)));
    sourcePoints.moveFirst();
    if (!sourcePoints.hasCurrent())
        return;
    destinationHeads.edit();
    for (const QString &c : headColumns)
        destinationHeads.setValue(c, sourceHeads.value(c));
    destinationHeads.update();
    QList<QVariantList> added;
    for (; sourcePoints.hasCurrent(); sourcePoints.moveNext()) {
        const float f = sourcePoints.value(QStringLiteral("frequency")).toFloat();
        if (!destinationPoints.findFirst(frequencyCriterion(singleText(f))))
            added.append({destination, f, sourcePoints.value(QStringLiteral("level_dbmw"))});
    }
    destinationPoints.appendRows({number, QStringLiteral("frequency"), QStringLiteral("level_dbmw")}, added);
    destinationPoints.refresh();
}

void deleteCurveDefinition(DataView &heads, DataView &points, const CurveTables &tables, const QString &name)
{
    heads.findFirst(textCriterion(column(tables.nameColumn), QStringLiteral("like"), name.trimmed()));
    if (!heads.hasCurrent())
        return;
    points.setSource(curvePointSource(tables, heads.value(column(tables.numberColumn))));
    for (points.moveFirst(); points.hasCurrent(); points.moveFirst())
        if (!points.deleteRow())
            break;
    heads.deleteRow();
    heads.refresh();
    heads.moveFirst();
}

std::optional<QChar> pointKey(QChar key, bool level, quint8 decimalChar)
{
    if ((key >= QLatin1Char('0') && key <= QLatin1Char('9')) || key.unicode() < 32)
        return key;
    if (key == QLatin1Char(',') || key == QLatin1Char('.'))
        return QChar(decimalChar);
    if (level && key == QLatin1Char('-'))
        return key;
    return std::nullopt;
}

float pointValue(const QString &text, quint8 decimalChar)
{
    QString number = text.trimmed();
    number.replace(QChar(decimalChar), QLatin1Char('.'));
    return QLocale::c().toFloat(number);
}
