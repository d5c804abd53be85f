#include "cli/catalogue_commands.h"

#include "cli/unit_commands.h"
#include "core/context.h"
#include "store/catalogue_csv.h"
#include "store/database.h"
#include "store/sqlite_file.h"

#include <QFileInfo>
#include <QSqlQuery>
#include <QStandardPaths>

#include <charconv>
#include <cmath>
#include <cstdio>
#include <memory>
#include <optional>

namespace {

const char kLimitsUsage[] =
    "usage: delfor-cli limits list [--database FILE]\n"
    "       delfor-cli limits import NAME FILE.csv [--replace] [--database FILE]\n"
    "       delfor-cli limits export NAME FILE.csv [--database FILE]\n"
    "A limit's file: a header line Frequency_MHz,<unit> (a unit of the database, e.g. dBuV/m), then\n"
    "one point a line, frequency in MHz and level in that unit. Comma or semicolon separate; with\n"
    "semicolons a comma is a decimal mark. Lines starting with # are ignored. --replace replaces the\n"
    "points of an existing limit. Without --database: the working database of the user's data folder.\n";

const char kComponentsUsage[] =
    "usage: delfor-cli components list [--database FILE]\n"
    "       delfor-cli components import NAME --kind antenna|loss|gain [--distance M] FILE.csv [--replace]\n"
    "                                [--database FILE]\n"
    "       delfor-cli components export NAME FILE.csv [--database FILE]\n"
    "A component's file: a header line Frequency_MHz,dB, then one point a line, frequency in MHz and\n"
    "the value in dB as the user sees it (a gain positive). Comma or semicolon separate; with\n"
    "semicolons a comma is a decimal mark. Lines starting with # are ignored. --distance is the\n"
    "distance an antenna's factors hold for, in metres. --replace replaces the points of an existing\n"
    "component. Without --database: the working database of the user's data folder.\n";

const char kTestsUsage[] =
    "usage: delfor-cli tests [--database FILE]\n"
    "Lists the EMC tests, one a line, tab-separated: name, kind (Step or Sweep + Step), range, step\n"
    "width, detectors, peak limit, average limit. Without --database: the working database of the\n"
    "user's data folder.\n";

const QStringList kKindNames{"antenna", "loss", "gain"}; // in the order of column lostyp

struct Arguments {
    bool limits = true; // or components
    bool tests = false; // the EMC tests, with no action
    QString action;
    QString name;
    QString file;
    std::optional<QString> database;
    bool replace = false;
    std::optional<ComponentKind> kind;
    std::optional<float> distance;
    bool help = false;
};

int message(const QString &text, int exitCode)
{
    std::fprintf(stderr, "delfor-cli: %s\n", qPrintable(text));
    return exitCode;
}

// What is wrong with a command line whose options were all understood; empty when nothing.
QString argumentError(const Arguments &a, int positionalCount)
{
    if (a.tests)
        return positionalCount == 0 ? QString() : "tests takes no arguments but --database";
    if (a.action != "list" && a.action != "import" && a.action != "export")
        return a.action.isEmpty() ? "no action given (list, import or export)" : "unknown action: " + a.action;
    if (positionalCount != (a.action == "list" ? 1 : 3))
        return a.action == "list" ? "list takes no names" : a.action + " needs a NAME and a FILE.csv";
    if (a.action == "import" && a.name.trimmed().isEmpty())
        return "the name is empty";
    if (a.database && a.database->isEmpty())
        return "--database needs a file";
    if (a.replace && a.action != "import")
        return "--replace belongs to import";
    if (a.kind.has_value() != (!a.limits && a.action == "import"))
        return a.kind ? "--kind belongs to import" : "import needs --kind antenna, loss or gain";
    if (a.distance && a.kind != ComponentKind::Antenna)
        return "--distance belongs to an antenna";
    return {};
}

// The command line after the subcommand; an error text when it cannot be used.
std::optional<Arguments> parseArguments(const QStringList &args, QString &error)
{
    Arguments a;
    a.limits = args[0] == "limits";
    a.tests = args[0] == "tests";
    QStringList positional;
    for (int i = 1; i < args.size() && error.isEmpty(); ++i) {
        const QString &arg = args[i];
        const auto value = [&]() -> QString {
            if (i + 1 < args.size())
                return args[++i];
            error = arg + " needs a value";
            return {};
        };
        if (arg == "--help" || arg == "-h") {
            a.help = true;
        } else if (arg == "--database") {
            a.database = value();
        } else if (arg == "--replace" && !a.tests) {
            a.replace = true;
        } else if (arg == "--kind" && !a.limits) {
            const QString kind = value();
            if (kKindNames.contains(kind))
                a.kind = ComponentKind(kKindNames.indexOf(kind));
            else if (error.isEmpty())
                error = "unknown kind: " + kind + " (antenna, loss or gain)";
        } else if (arg == "--distance" && !a.limits) {
            bool ok = false;
            const float distance = value().toFloat(&ok);
            if (ok && std::isfinite(distance) && distance >= 0)
                a.distance = distance;
            else if (error.isEmpty())
                error = "--distance needs a number of metres";
        } else if (arg.startsWith('-')) {
            error = "unknown argument: " + arg;
        } else {
            positional << arg;
        }
    }
    a.action = positional.value(0);
    a.name = positional.value(1);
    a.file = positional.value(2);
    if (error.isEmpty() && !a.help)
        error = argumentError(a, int(positional.size()));
    if (!error.isEmpty())
        return std::nullopt;
    return a;
}

// Whether `db` is a working database the version rule accepts, with the catalogue's tables.
bool isWorkingDatabase(QSqlDatabase db)
{
    if (!db.isOpen())
        return false;
    QSqlQuery query(db);
    if (!query.exec(QStringLiteral("select * from unit, LimitHead, LimitDef, loshead, losdef, MeasureCount where 0"))
        || !query.exec(QStringLiteral("select versionnr from version order by versionnr")))
        return false;
    std::optional<float> version;
    while (query.next())
        version = query.value(0).toFloat();
    return version && *version >= 1.0f;
}

// The database a command works on, held open while it runs.
struct OpenDatabase {
    std::unique_ptr<Context> ctx; // the user's working database, opened as the program opens it
    std::unique_ptr<SqliteFile> file; // or the one --database names
    QSqlDatabase handle() const { return file ? file->handle() : workingDatabase(*ctx); }
};

// Opens --database FILE as it is (never created), or the working database of the user's data
// folder, which the program's own start-up rule creates from the pristine contents when missing.
std::optional<OpenDatabase> openDatabase(const Arguments &a)
{
    OpenDatabase open;
    QString path;
    if (a.database) {
        path = *a.database;
        open.file = std::make_unique<SqliteFile>(path);
    } else {
        open.ctx = offlineContext();
        open.ctx->dataFolder = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
        openWorkingDatabase(*open.ctx);
        path = open.ctx->state.databasePath;
    }
    if (!isWorkingDatabase(open.handle())) {
        message(path + (QFileInfo::exists(path) ? " is no working database" : " does not exist"), 1);
        return std::nullopt;
    }
    return open;
}

QString floatText(float value)
{
    char text[32];
    const auto end = std::to_chars(text, text + sizeof text, value).ptr;
    return QString::fromLatin1(text, end - text);
}

// One line a head: name, number of points, unit or kind, frequency range.
int list(QSqlDatabase db, bool limits)
{
    QSqlQuery query(db);
    const bool ok = query.exec(
        limits ? QStringLiteral("select h.limitname, count(d.frequency), h.limunit, min(d.frequency), max(d.frequency) "
                                "from LimitHead h left join LimitDef d on d.limitnr = h.limitnr "
                                "group by h.limitnr order by h.limitname")
               // losnr 0 is the fixed entry for no component.
               : QStringLiteral("select h.losname, count(d.frequency), h.lostyp, min(d.frequency), max(d.frequency) "
                                "from loshead h left join losdef d on d.losnr = h.losnr where h.losnr > 0 "
                                "group by h.losnr order by h.losname"));
    if (!ok)
        return message("the catalogue cannot be read", 1);
    QByteArray out;
    while (query.next()) {
        const QString kindOrUnit =
            limits ? query.value(2).toString() : kKindNames.value(query.value(2).toInt(), query.value(2).toString());
        const QString range = query.value(3).isNull() ? QStringLiteral("none")
                                                      : floatText(query.value(3).toFloat()) + " - "
                                                            + floatText(query.value(4).toFloat()) + " MHz";
        out += QStringList{query.value(0).toString(), query.value(1).toString(), kindOrUnit, range}.join('\t').toUtf8()
               + '\n';
    }
    std::fwrite(out.constData(), 1, size_t(out.size()), stdout);
    return std::fflush(stdout) == 0 ? 0 : 1;
}

// One line a test: name, kind, range, step width, detectors, the two limits ("Not set" for none).
int listTests(QSqlDatabase db)
{
    QSqlQuery query(db);
    const bool ok = query.exec(QStringLiteral(
        "select t.name, t.mode, t.startfreq, t.stopfreq, t.step, t.peakdet, t.AVdet, p.limitname, a.limitname "
        "from test t left join LimitHead p on p.limitnr = t.peak left join LimitHead a on a.limitnr = t.average "
        "order by t.name collate nocase, t.rowid"));
    if (!ok)
        return message("the tests cannot be read", 1);
    QByteArray out;
    while (query.next()) {
        // A run takes every mode but 1 for Sweep + Step; peakdet 1 adds the quasi-peak to the peak.
        QStringList detectors{QStringLiteral("Peak")};
        if (query.value(5).toInt() == 1)
            detectors << QStringLiteral("Quasipeak");
        if (query.value(6).toInt() != 0)
            detectors << QStringLiteral("Average");
        const auto limit = [&](int k) { return query.value(k).isNull() ? QStringLiteral("Not set") : query.value(k).toString(); };
        out += QStringList{query.value(0).toString(),
                           query.value(1).toInt() == 1 ? QStringLiteral("Step") : QStringLiteral("Sweep + Step"),
                           floatText(query.value(2).toFloat()) + " - " + floatText(query.value(3).toFloat()) + " MHz",
                           floatText(query.value(4).toFloat()) + " kHz", detectors.join(QStringLiteral(" + ")),
                           limit(7), limit(8)}
                   .join('\t')
                   .toUtf8() +
               '\n';
    }
    std::fwrite(out.constData(), 1, size_t(out.size()), stdout);
    return std::fflush(stdout) == 0 ? 0 : 1;
}

CsvOutcome transfer(QSqlDatabase db, const Arguments &a)
{
    if (a.action == "export")
        return a.limits ? exportLimitCsv(db, a.name, a.file) : exportComponentCsv(db, a.name, a.file);
    if (a.limits)
        return importLimitCsv(db, a.name, a.file, a.replace);
    return importComponentCsv(db, a.name, *a.kind, a.distance.value_or(0), a.file, a.replace);
}

} // namespace

int catalogueCommand(const QStringList &args)
{
    QString error;
    const std::optional<Arguments> a = parseArguments(args, error);
    const char *usage = args[0] == "limits" ? kLimitsUsage : args[0] == "tests" ? kTestsUsage : kComponentsUsage;
    if (!a) {
        std::fputs(usage, stderr);
        return message(error, 2);
    }
    if (a->help) {
        std::fputs(usage, stdout);
        return 0;
    }
    const std::optional<OpenDatabase> open = openDatabase(*a);
    if (!open)
        return 1;
    if (a->tests)
        return listTests(open->handle());
    if (a->action == "list")
        return list(open->handle(), a->limits);
    const CsvOutcome outcome = transfer(open->handle(), *a);
    if (!outcome.ok)
        return message(outcome.message + (outcome.nameExists ? " (use --replace)" : ""), 1);
    return 0;
}
