#include "store/catalogue_views.h"

#include "store/database.h"

#include <map>
#include <memory>

namespace {

std::map<const Context *, std::unique_ptr<CatalogueViews>> &allViews()
{
    static std::map<const Context *, std::unique_ptr<CatalogueViews>> views;
    return views;
}

struct StartingSource {
    DataView CatalogueViews::*view;
    const char *source;
};
// The band editor starts sorted by name; the sort buttons change it until the next load.
const StartingSource kStartingSources[] = {
    {&CatalogueViews::known, "select * from knownsignals order by signal"},
    {&CatalogueViews::limData1, "select * from limitdef where limitnr = -1"},
    {&CatalogueViews::limData2, "select * from LimitHead order by limitname"},
    {&CatalogueViews::limData3, "select * from unit order by unitname"},
    {&CatalogueViews::LGData1, "select * from losdef where losnr = -1"},
    {&CatalogueViews::lgData2, "select * from loshead order by losname"},
    {&CatalogueViews::conData1, "select * from loshead order by losname"},
    {&CatalogueViews::conData2, "select * from config order by configname"},
    {&CatalogueViews::conData3, "select * from loshead where lostyp > 0 order by losname"},
    {&CatalogueViews::detecData1, "select * from LimitHead order by limitname"},
    {&CatalogueViews::detecData2, "select * from LimitHead order by limitname"},
    {&CatalogueViews::measData1, "select * from unit order by unitname"},
    {&CatalogueViews::measData2, "select * from config order by configname"},
    {&CatalogueViews::measData3, "select * from loshead order by losnr"},
    {&CatalogueViews::testData1, "select * from test order by name"},
    {&CatalogueViews::testData2, "select * from config order by configname"},
    {&CatalogueViews::testData3, "select * from LimitHead order by limitname"},
    {&CatalogueViews::testData4, "select * from unit order by unitname"},
    {&CatalogueViews::emcData2, "select * from unit order by unitname"},
    {&CatalogueViews::emcData3, "select * from config order by configname"},
    {&CatalogueViews::emcData4, "select * from LimitHead order by limitname"},
    {&CatalogueViews::emcData5, "select * from loshead order by losnr"},
};

} // namespace

CatalogueViews &catalogueViews(const Context &ctx)
{
    auto &slot = allViews()[&ctx];
    if (!slot)
        slot = std::make_unique<CatalogueViews>();
    if (slot->connection.isEmpty() || slot->connection != workingDatabase(ctx).connectionName())
        rebindCatalogueViews(ctx);
    return *slot;
}

void rebindCatalogueViews(const Context &ctx)
{
    auto &slot = allViews()[&ctx];
    if (!slot)
        slot = std::make_unique<CatalogueViews>();
    CatalogueViews &views = *slot;
    views.connection = workingDatabase(ctx).connectionName();
    for (const StartingSource &s : kStartingSources) {
        DataView &view = views.*s.view;
        const QString source = view.source().isEmpty() ? QString::fromLatin1(s.source) : view.source();
        view.setDatabase(workingDatabase(ctx));
        view.setSource(source);
    }
}

void releaseCatalogueViews(const Context &ctx)
{
    const auto found = allViews().find(&ctx);
    if (found == allViews().end())
        return;
    CatalogueViews &views = *found->second;
    views.connection.clear();
    for (const StartingSource &s : kStartingSources)
        (views.*s.view).setDatabase(QSqlDatabase());
}
