#include "store/configurations.h"

#include "core/context.h"
#include "store/catalogue_refresh.h"
#include "store/catalogue_views.h"
#include "store/database.h"

namespace {

const QString kConfigSource = QStringLiteral("select * from config order by configname");

QString nameCriterion(const char *column, const char *op, const QString &name)
{
    return QLatin1String(column) + QLatin1Char(' ') + QLatin1String(op) + QStringLiteral(" '") + name +
           QLatin1Char('\'');
}

QString losname(const DataView &view) { return view.value(QStringLiteral("losname")).toString(); }

// The candidate view of a slot: any component for slot 1, no antenna for the others.
DataView &candidates(CatalogueViews &views, int slot) { return slot == 1 ? views.conData1 : views.conData3; }

} // namespace

std::optional<ConfigurationEditor> reloadConfigurationEditor(Context &ctx)
{
    CatalogueViews &views = catalogueViews(ctx);
    views.conData1.refresh();
    views.conData3.refresh();
    const DataView &configs = views.conData2;
    if (configs.rowCount() == 0)
        return std::nullopt;
    ConfigurationEditor shown;
    shown.name = configs.value(QStringLiteral("ConfigName")).toString();
    for (int slot = 1; slot <= kChainSlots; ++slot) {
        DataView &view = candidates(views, slot);
        // An unset column makes no criterion: the view stays where it was, and so does the combo.
        view.findFirst(QStringLiteral("losNr = ") +
                       configs.value(QLatin1String(kDeviceColumns[slot - 1])).toString().trimmed());
        shown.components[slot - 1] = losname(view);
        if (slot == 1 && view.hasCurrent() && view.value(QStringLiteral("lostyp")).toInt() == 0) {
            shown.distanceVisible = true;
            shown.distance = plainFieldNumber(view.value(QStringLiteral("distance")).toFloat(), ctx.state.decimalChar);
        }
    }
    return shown;
}

void configurationChosen(Context &ctx, const QString &name)
{
    DataView &configs = catalogueViews(ctx).conData2;
    if (configs.rowCount() > 0)
        configs.findFirst(nameCriterion("ConfigName", "like", name.trimmed()));
}

bool componentChosen(Context &ctx, int slot, const QString &name)
{
    CatalogueViews &views = catalogueViews(ctx);
    if (slot < 1 || slot > kChainSlots)
        return false;
    DataView &view = candidates(views, slot);
    if (view.rowCount() == 0 || !view.findFirst(nameCriterion("losname", "=", name)))
        return false;
    DataView &configs = views.conData2;
    if (configs.edit()) {
        configs.setValue(QLatin1String(kDeviceColumns[slot - 1]), view.value(QStringLiteral("losnr")));
        configs.update();
    }
    return true;
}

void bindNewconfViews(const Context &ctx, NewconfViews &views)
{
    for (DataView *view : {&views.data2, &views.data3}) {
        view->setDatabase(workingDatabase(ctx));
        view->setSource(kConfigSource);
    }
}

bool addConfiguration(Context &ctx, NewconfViews &views, const QString &name)
{
    const QString trimmed = name.trimmed();
    if (trimmed.isEmpty())
        return false;
    const QString criterion = nameCriterion("configname", "like", trimmed);
    if (views.data2.findFirst(criterion)) {
        ctx.prompts.messageBox(QStringLiteral("Add new"),
                               QStringLiteral("Configuration exist ( ") + trimmed + QStringLiteral(" )"),
                               MsgButtons::Ok);
        return false;
    }
    views.data2.addNew();
    views.data2.setValue(QStringLiteral("configname"), trimmed);
    views.data2.update();
    views.data3.refresh();
    views.data2.refresh();
    views.data2.findFirst(criterion);
    ctx.state.configSelectionName = views.data2.value(QStringLiteral("configname")).toString();
    DataView &configs = catalogueViews(ctx).conData2;
    configs.refresh();
    configs.findFirst(criterion);
    return true;
}

void copyConfiguration(Context &ctx, NewconfViews &views)
{
    DataView &destination = views.data2;
    const DataView &source = views.data3;
    if (destination.rowCount() == 0 || source.rowCount() == 0 || !destination.edit())
        return;
    for (const char *column : kDeviceColumns)
        destination.setValue(QLatin1String(column), source.value(QLatin1String(column)));
    destination.update();
    catalogueViews(ctx).conData2.refresh();
}

void bindDelconfView(const Context &ctx, DataView &data2)
{
    data2.setDatabase(workingDatabase(ctx));
    data2.setSource(kConfigSource);
}

bool deleteConfiguration(Context &ctx, DataView &data2)
{
    if (data2.rowCount() > 0)
        data2.deleteRow();
    data2.refresh();
    if (data2.rowCount() == 0)
        return false;
    data2.moveFirst();
    DataView &configs = catalogueViews(ctx).conData2;
    configs.refresh();
    if (!configs.hasCurrent())
        configs.moveFirst();
    return true;
}
