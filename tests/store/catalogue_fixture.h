#pragma once
// A context on a fresh working database with the delivered rows, no port, scripted prompts.

#include "core/clock.h"
#include "core/context.h"
#include "core/scripted_prompts.h"
#include "store/catalogue_views.h"
#include "store/database.h"
#include "support/no_port.h"

#include <QSqlQuery>
#include <QTemporaryDir>

struct CatalogueFixture {
    CatalogueFixture()
        : prompts(new ScriptedPrompts),
          ctx(Platform{std::make_unique<VirtualClock>(), std::unique_ptr<Prompts>(prompts), std::make_unique<NoPort>()})
    {
        ctx.dataFolder = dir.path();
        openWorkingDatabase(ctx);
    }
    ~CatalogueFixture()
    {
        catalogueViews(ctx) = CatalogueViews(); // the views let go of the file first
        closeWorkingDatabase(ctx);
    }

    // One statement on the working database, outside the views.
    QVariant sql(const QString &statement)
    {
        QSqlQuery query(workingDatabase(ctx));
        if (!query.exec(statement))
            qFatal("%s", qPrintable(statement));
        return query.next() ? query.value(0) : QVariant();
    }
    CatalogueViews &views() { return catalogueViews(ctx); }

    QTemporaryDir dir;
    ScriptedPrompts *prompts;
    Context ctx;
};
