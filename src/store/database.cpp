#include "store/database.h"

#include "core/context.h"
#include "store/catalogue_views.h"
#include "store/schema.h"
#include "store/sqlite_file.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSqlQuery>
#include <QSet>
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

// A version number out of all reason (1e39, or one that is no number) marks a file of another
// format, not a later schema revision.
constexpr float kUnreasonableVersion = 100.0f;

// The last row of the version table of a file that is a working database; none for a file that
// is no database, is damaged, lacks a table of the schema (or has a view in its place), has no
// version row or a version out of all reason.
std::optional<float> workingDatabaseVersion(QSqlDatabase db)
{
    if (!db.isOpen())
        return std::nullopt;
    QSqlQuery query(db);
    query.setForwardOnly(true);
    if (!query.exec(QStringLiteral("pragma quick_check")) || !query.next() || query.value(0).toString() != u"ok")
        return std::nullopt;
    QSet<QString> tables;
    if (!query.exec(QStringLiteral("select name from sqlite_master where type = 'table'")))
        return std::nullopt;
    while (query.next())
        tables.insert(query.value(0).toString().toLower());
    for (const TableSchema &table : workingTables()) {
        if (!tables.contains(table.name.toLower()))
            return std::nullopt;
    }
    if (!query.exec(QStringLiteral("select * from version order by versionnr")))
        return std::nullopt;
    const int column = query.record().indexOf(QStringLiteral("versionnr"));
    QVariant last;
    while (query.next())
        last = query.value(column);
    const QMetaType::Type type = QMetaType::Type(last.typeId());
    if (last.isNull() || (type != QMetaType::Double && type != QMetaType::LongLong && type != QMetaType::Int))
        return std::nullopt;
    const float version = last.toFloat();
    if (!std::isfinite(version) || version >= kUnreasonableVersion)
        return std::nullopt;
    return version;
}

// `path` opened as a candidate for the working database, with its version; the version is none
// when the file is no working database.
struct Candidate {
    std::unique_ptr<SqliteFile> file;
    std::optional<float> version;
};

Candidate openCandidate(const QString &path)
{
    Candidate candidate{std::make_unique<SqliteFile>(path), std::nullopt};
    candidate.version = workingDatabaseVersion(candidate.file->handle());
    return candidate;
}

bool isWorkingDatabase(const QString &path) { return openCandidate(path).version.has_value(); }

void readQuasiPeakConstants(Context &ctx)
{
    QSqlQuery query(workingDatabase(ctx));
    query.setForwardOnly(true);
    if (!query.exec(QStringLiteral("select * from qpeak")) || !query.next())
        return;
    const QSqlRecord row = query.record();
    // An empty cell, or one that holds no number, keeps the constant in force.
    auto load = [&](const char *name, quint16 &target) {
        bool isNumber = false;
        const double value = query.value(row.indexOf(QLatin1String(name))).toDouble(&isNumber);
        if (isNumber)
            target = quasiPeakConstant(value);
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
        // A delivered file that is damaged is written anew rather than copied.
        if (!isWorkingDatabase(pristine))
            writePristineDatabase(pristine);
        QFile::copy(pristine, working);
        QFile::setPermissions(working, QFile::permissions(working) | QFileDevice::WriteOwner);
    }
    if (ctx.state.databasePath.trimmed().isEmpty())
        ctx.state.databasePath = working;

    Candidate candidate = openCandidate(ctx.state.databasePath);
    if (!candidate.version) {
        ctx.prompts.messageBox(kInitTitle, QStringLiteral("Database defekt or not found ") + kCrCr
                                               + ctx.state.databasePath.trimmed());
        selectDatabase(ctx);
        return;
    }
    ctx.state.databaseVersion = *candidate.version;
    if (!acceptVersion(ctx)) {
        selectDatabase(ctx);
        return;
    }
    openDatabases()[&ctx] = std::move(candidate.file);
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

    // The path changes at once; the database in force changes only for a file that is accepted.
    ctx.state.databasePath = *chosen;
    Candidate candidate = openCandidate(ctx.state.databasePath);
    if (!candidate.version) {
        ctx.prompts.messageBox(kInitTitle, QStringLiteral("Database defekt or a wrong format") + kCrCr
                                               + ctx.state.databasePath.trimmed());
    } else {
        ctx.state.databaseVersion = *candidate.version;
        if (acceptVersion(ctx)) {
            openDatabases()[&ctx] = std::move(candidate.file);
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
