#include "store/database.h"

#include "core/context.h"
#include "store/catalogue_views.h"
#include "store/schema.h"
#include "store/sqlite_file.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSqlQuery>
#include <QSqlRecord>

#include <cmath>
#include <map>
#include <memory>
#include <optional>

namespace {

const QString kCrCr = QStringLiteral("\r\r");
const QString kInitTitle = QStringLiteral("Init Database");
const QString kSelectTitle = QStringLiteral("Select Database");

std::map<const Context *, std::unique_ptr<SqliteFile>> &openDatabases()
{
    // Touch Qt's connection registry first, so that it outlives this map at exit.
    static const bool registryFirst = (QSqlDatabase::connectionNames(), true);
    Q_UNUSED(registryFirst);
    static std::map<const Context *, std::unique_ptr<SqliteFile>> databases;
    return databases;
}

// Opens `path` as the context's working database. A file that does not exist or does not open
// leaves the previous connection in place.
void openInto(const Context &ctx, const QString &path)
{
    auto opened = std::make_unique<SqliteFile>(path);
    if (opened->isOpen())
        openDatabases()[&ctx] = std::move(opened);
}

// The last row of the version table; none for a file without rows or one that is no database.
std::optional<float> readVersion(const Context &ctx)
{
    QSqlDatabase db = workingDatabase(ctx);
    if (!db.isOpen())
        return std::nullopt;
    QSqlQuery query(db);
    query.setForwardOnly(true);
    if (!query.exec(QStringLiteral("select * from version order by versionnr")))
        return std::nullopt;
    std::optional<float> version;
    const int column = query.record().indexOf(QStringLiteral("versionnr"));
    while (query.next())
        version = column < 0 ? 0.0f : query.value(column).toFloat();
    return version;
}

void readQuasiPeakConstants(Context &ctx)
{
    QSqlQuery query(workingDatabase(ctx));
    query.setForwardOnly(true);
    if (!query.exec(QStringLiteral("select * from qpeak")) || !query.next())
        return;
    const QSqlRecord row = query.record();
    auto load = [&](const char *name, quint16 &target) {
        const int column = row.indexOf(QLatin1String(name));
        if (column >= 0)
            target = quasiPeakConstant(query.value(column).toDouble());
    };
    load("tauf-30", ctx.state.tauf30);
    load("tauf-1000", ctx.state.tauf1000);
    load("tent-30", ctx.state.tent30);
    load("tent-1000", ctx.state.tent1000);
}

QString versionText(float version) { return QString::number(double(version), 'f', 2); }

// Applies the version rule to the version just read. Returns whether the file is accepted.
bool acceptVersion(Context &ctx)
{
    const float version = ctx.state.databaseVersion;
    const QString required = versionText(kRequiredDatabaseVersion);
    if (version < 1.0f) {
        ctx.prompts.messageBox(kInitTitle, QStringLiteral("Wrong Database-Version: ") + versionText(version)
                                               + kCrCr + QStringLiteral("Aktuel: ") + required);
        return false;
    }
    if (version < kRequiredDatabaseVersion)
        ctx.prompts.messageBox(kInitTitle, QStringLiteral("Please use the actual Database-Version: ") + required
                                               + QStringLiteral(" your Version: ") + versionText(version) + kCrCr
                                               + QStringLiteral("You can not use all functions"));
    return true;
}

} // namespace

quint16 quasiPeakConstant(double column)
{
    if (!std::isfinite(column))
        return 0;
    const double doubled = 2.0 * std::trunc(std::fabs(column));
    return doubled >= 65535.0 ? quint16(65535) : quint16(doubled);
}

QSqlDatabase workingDatabase(const Context &ctx)
{
    const auto &databases = openDatabases();
    const auto found = databases.find(&ctx);
    return found == databases.end() ? QSqlDatabase() : found->second->handle();
}

void closeWorkingDatabase(const Context &ctx) { openDatabases().erase(&ctx); }

void openWorkingDatabase(Context &ctx)
{
    QDir().mkpath(ctx.dataFolder);
    const QString pristine = ctx.dataFolder + QLatin1Char('/') + kPristineDatabaseName;
    const QString working = ctx.dataFolder + QLatin1Char('/') + kWorkingDatabaseName;
    if (!QFile::exists(working)) {
        if (!QFile::exists(pristine))
            writePristineDatabase(pristine);
        QFile::copy(pristine, working);
        QFile::setPermissions(working, QFile::permissions(working) | QFileDevice::WriteOwner);
    }
    if (ctx.state.databasePath.trimmed().isEmpty())
        ctx.state.databasePath = working;

    openInto(ctx, ctx.state.databasePath);
    const std::optional<float> version = readVersion(ctx);
    if (!version) {
        ctx.prompts.messageBox(kInitTitle, QStringLiteral("Database defekt or not found ") + kCrCr
                                               + ctx.state.databasePath.trimmed());
        selectDatabase(ctx);
        return;
    }
    ctx.state.databaseVersion = *version;
    if (!acceptVersion(ctx)) {
        selectDatabase(ctx);
        return;
    }
    readQuasiPeakConstants(ctx);
}

void selectDatabase(Context &ctx)
{
    FileDialogRequest request;
    request.title = kSelectTitle;
    request.filter = QStringLiteral("Datenbank (*.sqlite) | *.sqlite ");
    request.fileName = ctx.dataFolder + QStringLiteral("/*.sqlite");
    request.defaultExtension = QStringLiteral("sqlite");
    request.flags = 6148; // no read-only box; path and file must exist
    const std::optional<QString> chosen = ctx.prompts.openFileDialog(request);
    if (!chosen) {
        ctx.prompts.messageBox(kSelectTitle, QStringLiteral("Use default Database ( ")
                                                 + ctx.state.databasePath.trimmed() + QStringLiteral(" )"));
        clearBusy(ctx);
        return;
    }

    ctx.state.databasePath = *chosen;
    openInto(ctx, ctx.state.databasePath);
    const std::optional<float> version = readVersion(ctx);
    if (!version) {
        ctx.prompts.messageBox(kInitTitle, QStringLiteral("Database defekt or a wrong format") + kCrCr
                                               + ctx.state.databasePath.trimmed());
    } else {
        ctx.state.databaseVersion = *version;
        if (acceptVersion(ctx)) {
            readQuasiPeakConstants(ctx);
            bindDataViews(ctx);
        } else {
            selectDatabase(ctx);
        }
    }
    clearBusy(ctx);
}

void bindDataViews(Context &ctx)
{
    rebindCatalogueViews(ctx);
}
