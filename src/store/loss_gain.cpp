#include "store/loss_gain.h"

#include "core/context.h"
#include "store/catalogue_views.h"
#include "store/database.h"
#include "store/criteria.h"

#include <QSqlQuery>
#include <QSqlRecord>

namespace {

// A number stored in the column. SQLite sorts null before and text after all numbers, so
// leaving those out keeps the rows in the frequency order the chain searches by halves.
bool isNumber(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::Double:
    case QMetaType::Int:
    case QMetaType::LongLong:
        return true;
    default:
        return false;
    }
}

} // namespace

QList<ComponentRow> componentRows(const Context &ctx, qint32 losnr)
{
    QList<ComponentRow> rows;
    const QSqlDatabase db = workingDatabase(ctx);
    if (!db.isOpen())
        return rows;
    QSqlQuery query(db);
    query.setForwardOnly(true);
    if (!query.prepare(QStringLiteral("select * from losdef where losnr = ? order by frequency")))
        return rows;
    query.addBindValue(losnr);
    if (!query.exec())
        return rows;
    const QSqlRecord layout = query.record();
    const int frequency = layout.indexOf(QStringLiteral("frequency"));
    const int level = layout.indexOf(QStringLiteral("level_dbmw"));
    if (frequency < 0 || level < 0)
        return rows;
    while (query.next()) {
        const QVariant f = query.value(frequency);
        if (isNumber(f))
            rows.append({f.toFloat(), query.value(level).toFloat()});
    }
    return rows;
}

void attachStore(Context &ctx)
{
    ctx.calls.componentRows = [&ctx](qint32 losnr) { return componentRows(ctx, losnr); };
}

namespace {

QString headText(const DataView &view, const char *column) { return view.value(QLatin1String(column)).toString(); }

} // namespace

std::optional<ComponentHeadShown> reloadLossGainEditor(Context &ctx)
{
    DataView &heads = catalogueViews(ctx).lgData2;
    if (heads.rowCount() == 0)
        return std::nullopt;
    if (!heads.hasCurrent())
        heads.moveFirst();
    ComponentHeadShown shown{headText(heads, "LosName"), std::nullopt, headText(heads, "Distance"),
                             headText(heads, "Memo"), headText(heads, "dat"), headText(heads, "tim")};
    catalogueViews(ctx).LGData1.setSource(curvePointSource(kComponentTables, heads.value(QStringLiteral("Losnr"))));
    bool known = false;
    const int kind = heads.value(QStringLiteral("lostyp")).toInt(&known);
    if (known && kind >= 0 && kind <= 2) {
        shown.kind = kind;
        ctx.state.lossGainSign = kind == 2 ? -1 : 1;
    }
    return shown;
}

CurveScale lossGainScale(const AppState &state) { return {state.lossGainSign, 0}; }

PreviewBounds lossGainPreviewBounds(const AppState &s)
{
    return {s.lossGainPreviewMinFrequency, s.lossGainPreviewMaxFrequency, s.lossGainPreviewMinLevel,
            s.lossGainPreviewMaxLevel};
}

void setLossGainPreviewBounds(AppState &s, const PreviewBounds &b)
{
    s.lossGainPreviewMinFrequency = b.minFrequency;
    s.lossGainPreviewMaxFrequency = b.maxFrequency;
    s.lossGainPreviewMinLevel = b.minLevel;
    s.lossGainPreviewMaxLevel = b.maxLevel;
}

CurveGrid fillLossGainGrid(Context &ctx)
{
    PreviewBounds bounds = lossGainPreviewBounds(ctx.state);
    const CurveGrid grid = readCurveGrid(catalogueViews(ctx).LGData1, lossGainScale(ctx.state), bounds);
    setLossGainPreviewBounds(ctx.state, bounds);
    return grid;
}

void enterLossGainPoint(Context &ctx, const QString &frequency, const QString &level)
{
    CatalogueViews &views = catalogueViews(ctx);
    if (!views.lgData2.hasCurrent())
        return;
    const quint8 decimal = ctx.state.decimalChar;
    enterCurvePoint(views.LGData1, kComponentTables, views.lgData2.value(QStringLiteral("losnr")),
                    pointValue(frequency, decimal), lossGainScale(ctx.state).stored(pointValue(level, decimal)));
}

std::optional<CurveGridRow> findLossGainPoint(Context &ctx, const QString &frequency)
{
    return findCurvePoint(catalogueViews(ctx).LGData1, frequency, lossGainScale(ctx.state));
}

bool deleteLossGainPoint(Context &ctx, const QString &frequency)
{
    return deleteCurvePoint(catalogueViews(ctx).LGData1, frequency);
}

bool chooseLossGain(Context &ctx, const QString &name)
{
    CatalogueViews &views = catalogueViews(ctx);
    if (!views.lgData2.findFirst(textCriterion(QStringLiteral("losname"), QStringLiteral("like"), name)))
        return false;
    views.LGData1.setSource(curvePointSource(kComponentTables, views.lgData2.value(QStringLiteral("losnr"))));
    return true;
}

void chooseLossGainKind(Context &ctx, int kind)
{
    saveCurveHead(catalogueViews(ctx).lgData2, QStringLiteral("lostyp"), kind);
}

void saveLossGainHead(Context &ctx, const QString &column, const QVariant &value)
{
    saveCurveHead(catalogueViews(ctx).lgData2, column, value);
}
