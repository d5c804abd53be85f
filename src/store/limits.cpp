#include "store/limits.h"

#include "core/context.h"
#include "store/catalogue_views.h"
#include "store/criteria.h"

namespace {

QString text(const DataView &view, const char *column) { return view.value(QLatin1String(column)).toString(); }

bool flag(const DataView &view, const char *column) { return view.value(QLatin1String(column)).toInt() != 0; }

} // namespace

std::optional<LimitHeadShown> reloadLimitEditor(Context &ctx)
{
    CatalogueViews &views = catalogueViews(ctx);
    DataView &heads = views.limData2;
    DataView &units = views.limData3;
    if (heads.rowCount() == 0 || units.rowCount() == 0)
        return std::nullopt;
    if (!heads.hasCurrent())
        heads.moveFirst();
    LimitHeadShown shown{text(heads, "LimitName"), {}, flag(heads, "Radiated"), flag(heads, "loga"),
                         text(heads, "Distance"), text(heads, "Memo"), text(heads, "dat"), text(heads, "tim")};
    views.limData1.setSource(curvePointSource(kLimitTables, heads.value(QStringLiteral("Limitnr"))));
    const QString unit = text(heads, "Limunit");
    if (units.findFirst(textCriterion(QStringLiteral("unitname"), QStringLiteral("like"), unit))) {
        shown.unit = unit;
        // Kept whole: a level typed in a unit of fractional offset reads back exactly in that unit.
        ctx.state.limitUnitOffset = qint16(units.value(QStringLiteral("unitoffset")).toFloat());
    } else {
        shown.unit = QStringLiteral("dBmW");
        ctx.state.limitUnitOffset = 0;
    }
    return shown;
}

CurveScale limitScale(const AppState &state) { return {1, state.limitUnitOffset}; }

PreviewBounds limitPreviewBounds(const AppState &s)
{
    return {s.limitPreviewMinFrequency, s.limitPreviewMaxFrequency, s.limitPreviewMinLevel, s.limitPreviewMaxLevel};
}

void setLimitPreviewBounds(AppState &s, const PreviewBounds &b)
{
    s.limitPreviewMinFrequency = b.minFrequency;
    s.limitPreviewMaxFrequency = b.maxFrequency;
    s.limitPreviewMinLevel = b.minLevel;
    s.limitPreviewMaxLevel = b.maxLevel;
}

CurveGrid fillLimitGrid(Context &ctx)
{
    PreviewBounds bounds = limitPreviewBounds(ctx.state);
    const CurveGrid grid = readCurveGrid(catalogueViews(ctx).limData1, limitScale(ctx.state), bounds);
    setLimitPreviewBounds(ctx.state, bounds);
    return grid;
}

void enterLimitPoint(Context &ctx, const QString &frequency, const QString &level)
{
    CatalogueViews &views = catalogueViews(ctx);
    if (!views.limData2.hasCurrent())
        return;
    const quint8 decimal = ctx.state.decimalChar;
    enterCurvePoint(views.limData1, kLimitTables, views.limData2.value(QStringLiteral("limitnr")),
                    pointValue(frequency, decimal), limitScale(ctx.state).stored(pointValue(level, decimal)));
}

std::optional<CurveGridRow> findLimitPoint(Context &ctx, const QString &frequency)
{
    return findCurvePoint(catalogueViews(ctx).limData1, frequency, limitScale(ctx.state));
}

bool deleteLimitPoint(Context &ctx, const QString &frequency)
{
    return deleteCurvePoint(catalogueViews(ctx).limData1, frequency);
}

bool chooseLimit(Context &ctx, const QString &name)
{
    CatalogueViews &views = catalogueViews(ctx);
    if (!views.limData2.findFirst(textCriterion(QStringLiteral("limitname"), QStringLiteral("like"), name)))
        return false;
    views.limData1.setSource(curvePointSource(kLimitTables, views.limData2.value(QStringLiteral("limitnr"))));
    return true;
}

void chooseLimitUnit(Context &ctx, const QString &unit)
{
    CatalogueViews &views = catalogueViews(ctx);
    if (!views.limData3.findFirst(textCriterion(QStringLiteral("unitname"), QStringLiteral("="), unit)))
        return;
    saveCurveHead(views.limData2, QStringLiteral("limunit"), unit);
    ctx.state.limitUnitOffset = qint16(views.limData3.value(QStringLiteral("unitoffset")).toFloat());
}

void saveLimitHead(Context &ctx, const QString &column, const QVariant &value)
{
    saveCurveHead(catalogueViews(ctx).limData2, column, value);
}
