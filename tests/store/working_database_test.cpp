#include "support/no_port.h"
#include "core/clock.h"
#include "core/context.h"
#include "core/scripted_prompts.h"
#include "store/database.h"
#include "store/schema.h"

#include <algorithm>

#include <QFile>
#include <QRandomGenerator>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

namespace {


// A context on a temporary data folder. The constants start at 0 so that a load shows.
struct Fixture {
    Fixture()
        : prompts(new ScriptedPrompts),
          ctx(Platform{std::make_unique<VirtualClock>(), std::unique_ptr<Prompts>(prompts), std::make_unique<NoPort>()})
    {
        ctx.dataFolder = dir.path();
        ctx.state.tauf30 = ctx.state.tauf1000 = ctx.state.tent30 = ctx.state.tent1000 = 0;
        ctx.state.busy = 1;
    }
    ~Fixture() { closeWorkingDatabase(ctx); }

    QString file(const QString &name) const { return dir.filePath(name); }
    QList<quint16> constants() const
    {
        return {ctx.state.tauf30, ctx.state.tauf1000, ctx.state.tent30, ctx.state.tent1000};
    }

    QTemporaryDir dir;
    ScriptedPrompts *prompts;
    Context ctx;
};

// Runs statements on a database file through a connection of its own.
QList<QVariantList> sql(const QString &path, const QStringList &statements)
{
    QList<QVariantList> rows;
    const QString name = QStringLiteral("test-helper");
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        db.setDatabaseName(path);
        if (!db.open())
            qFatal("cannot open %s", qPrintable(path));
        for (const QString &statement : statements) {
            QSqlQuery query(db);
            if (!query.exec(statement))
                qFatal("%s", qPrintable(statement));
            while (query.next()) {
                QVariantList row;
                for (int i = 0; i < query.record().count(); ++i)
                    row << query.value(i);
                rows << row;
            }
        }
        db.close();
    }
    QSqlDatabase::removeDatabase(name);
    return rows;
}

// A pristine file whose version table holds `versions` and whose qpeak row is `qpeak`.
QString makeDatabase(const QString &path, const QList<double> &versions, const QString &qpeak = {})
{
    if (!writePristineDatabase(path))
        qFatal("pristine database not written");
    QStringList statements{QStringLiteral("delete from version")};
    for (double v : versions)
        statements << QStringLiteral("insert into version (versionnr) values (%1)").arg(v, 0, 'g', 10);
    if (!qpeak.isEmpty())
        statements << QStringLiteral("delete from qpeak")
                   << QStringLiteral("insert into qpeak values (%1)").arg(qpeak);
    sql(path, statements);
    return path;
}

QByteArray contents(const QString &path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

void writeBytes(const QString &path, const QByteArray &bytes)
{
    QFile f(path);
    QVERIFY(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
    f.write(bytes);
}

const QString kCr2 = QStringLiteral("\r\r");

QString useDefault(const QString &path)
{
    return QStringLiteral("Select Database|Use default Database ( ") + path + QStringLiteral(" )");
}

} // namespace

class WorkingDatabaseTest : public QObject {
    Q_OBJECT

private slots:
    void firstStartWritesBothFiles();
    void existingWorkingCopyIsKept_data();
    void existingWorkingCopyIsKept();
    void versionRule_data();
    void versionRule();
    void unusableFiles_data();
    void unusableFiles();
    void damagedPristineIsWrittenAnew_data();
    void damagedPristineIsWrittenAnew();
    void quasiPeakCells_data();
    void quasiPeakCells();
    void memoKeepsText();
    void cancelKeepsFileInUse();
    void dialogRequest();
    void quasiPeakConversion_data();
    void quasiPeakConversion();
    void declaredColumns_data();
    void declaredColumns();
    void starterRows();
};

void WorkingDatabaseTest::firstStartWritesBothFiles()
{
    Fixture f;
    f.ctx.state.databasePath = f.file(kWorkingDatabaseName);
    openWorkingDatabase(f.ctx);

    QVERIFY(QFile::exists(f.file(kPristineDatabaseName)));
    QVERIFY(QFile::exists(f.file(kWorkingDatabaseName)));
    QCOMPARE(contents(f.file(kWorkingDatabaseName)), contents(f.file(kPristineDatabaseName)));
    QVERIFY(f.prompts->shown.isEmpty());
    QCOMPARE(f.constants(), (QList<quint16>{2, 2, 320, 1100}));
    QCOMPARE(f.ctx.state.databaseVersion, 1.1f);
    QCOMPARE(workingDatabase(f.ctx).databaseName(), f.file(kWorkingDatabaseName));

    // The working copy is written to, never the delivered file.
    const QByteArray pristine = contents(f.file(kPristineDatabaseName));
    QSqlQuery(workingDatabase(f.ctx)).exec(QStringLiteral("insert into unit (unitname, unitoffset) values ('x', 1)"));
    QCOMPARE(contents(f.file(kPristineDatabaseName)), pristine);
}

void WorkingDatabaseTest::existingWorkingCopyIsKept_data()
{
    QTest::addColumn<bool>("pristinePresent");
    QTest::newRow("delivered file present") << true;
    QTest::newRow("delivered file deleted") << false;
}

void WorkingDatabaseTest::existingWorkingCopyIsKept()
{
    QFETCH(bool, pristinePresent);
    Fixture f;
    const QByteArray marker("not to be touched");
    if (pristinePresent)
        writeBytes(f.file(kPristineDatabaseName), marker);
    makeDatabase(f.file(kWorkingDatabaseName), {1.1}, QStringLiteral("5, 6.9, -7.5, 8"));
    const QByteArray working = contents(f.file(kWorkingDatabaseName));
    f.ctx.state.databasePath = f.file(kWorkingDatabaseName);

    openWorkingDatabase(f.ctx);

    QCOMPARE(contents(f.file(kWorkingDatabaseName)), working);
    QCOMPARE(QFile::exists(f.file(kPristineDatabaseName)), pristinePresent);
    if (pristinePresent)
        QCOMPARE(contents(f.file(kPristineDatabaseName)), marker);
    QVERIFY(f.prompts->shown.isEmpty());
    QCOMPARE(f.constants(), (QList<quint16>{10, 12, 14, 16}));
}

void WorkingDatabaseTest::versionRule_data()
{
    QTest::addColumn<bool>("atStartUp");
    QTest::addColumn<QList<double>>("versions");
    QTest::addColumn<QString>("box");        // the version box, empty for none
    QTest::addColumn<bool>("accepted");

    const QString wrong = QStringLiteral("Init Database|Wrong Database-Version: 0.90") + kCr2 + QStringLiteral("Aktuel: 1.10");
    const QString old = QStringLiteral("Init Database|Please use the actual Database-Version: 1.10 your Version: 1.00")
                        + kCr2 + QStringLiteral("You can not use all functions");
    for (bool startUp : {true, false}) {
        const char *where = startUp ? "start-up" : "selection";
        QTest::addRow("%s 0.9", where) << startUp << QList<double>{0.9} << wrong << false;
        QTest::addRow("%s 1.0", where) << startUp << QList<double>{1.0} << old << true;
        QTest::addRow("%s 1.1", where) << startUp << QList<double>{1.1} << QString() << true;
        QTest::addRow("%s 1.2", where) << startUp << QList<double>{1.2} << QString() << true;
        QTest::addRow("%s highest row counts", where) << startUp << QList<double>{1.1, 0.9, 1.0} << QString() << true;
        QTest::addRow("%s older row last inserted", where) << startUp << QList<double>{0.9, 1.0} << old << true;
    }
}

void WorkingDatabaseTest::versionRule()
{
    QFETCH(bool, atStartUp);
    QFETCH(QList<double>, versions);
    QFETCH(QString, box);
    QFETCH(bool, accepted);

    Fixture f;
    makeDatabase(f.file(kWorkingDatabaseName), {1.1});
    const QString candidate = makeDatabase(f.file(QStringLiteral("candidate.sqlite")), versions, QStringLiteral("3, 4, 5, 6"));
    if (atStartUp) {
        f.ctx.state.databasePath = candidate;
        openWorkingDatabase(f.ctx);
    } else {
        f.ctx.state.databasePath = f.file(kWorkingDatabaseName);
        f.prompts->answerFile(QStringLiteral("Select Database"), candidate);
        selectDatabase(f.ctx);
    }

    QStringList expected;
    if (!box.isEmpty())
        expected << box;
    if (!accepted)
        expected << useDefault(candidate); // the refused file leads into the dialog again
    QCOMPARE(f.prompts->messages(), expected);
    const int dialogs = int(!atStartUp) + int(!accepted);
    QCOMPARE(int(std::count_if(f.prompts->shown.cbegin(), f.prompts->shown.cend(),
                               [](const auto &s) { return s.kind == ScriptedPrompts::Kind::OpenFile; })),
             dialogs);
    QCOMPARE(f.ctx.state.databasePath, candidate);
    QCOMPARE(f.constants(), accepted ? (QList<quint16>{6, 8, 10, 12}) : (QList<quint16>{0, 0, 0, 0}));
    if (!atStartUp || !accepted)
        QCOMPARE(f.ctx.state.busy, quint8(0));
}

void WorkingDatabaseTest::unusableFiles_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QStringList>("statements"); // run on a pristine file; none: the kind says what it is
    QTest::addColumn<bool>("atStartUp");
    const QList<QPair<const char *, QStringList>> kinds{
        {"empty version table", {"delete from version"}},
        {"no version table", {"drop table version"}},
        {"version 1e39", {"update version set versionnr = 1e39"}},
        {"version 100", {"update version set versionnr = 100"}},
        {"version as text", {"update version set versionnr = 'x'"}},
        {"version null", {"update version set versionnr = null"}},
        {"no LimitDef", {"drop table LimitDef"}},
        {"no unit", {"drop table unit"}},
        {"no config", {"drop table config"}},
        {"no test", {"drop table test"}},
        {"no settings", {"drop table settings"}},
        {"no qpeak", {"drop table qpeak"}},
        {"qpeak a recursive view",
         {"drop table qpeak", "create view qpeak as with recursive r(x) as (select 1 union all select x + 1 from r) "
                              "select x as \"tauf-30\" from r"}},
        {"damaged page", {}},
        {"random bytes", {}},
        {"truncated", {}},
        {"empty file", {}},
        {"text file", {}},
        {"missing file", {}},
    };
    for (const auto &[kind, statements] : kinds) {
        QTest::addRow("start-up, %s", kind) << QString::fromLatin1(kind) << statements << true;
        QTest::addRow("selection, %s", kind) << QString::fromLatin1(kind) << statements << false;
    }
}

// A file at `path` that is no working database, of the kind named.
void writeUnusableFile(const QString &path, const QString &kind, const QStringList &statements)
{
    if (!statements.isEmpty() || kind == QLatin1String("damaged page") || kind == QLatin1String("truncated")) {
        makeDatabase(path, {1.1});
        sql(path, statements);
    }
    if (kind == QLatin1String("damaged page")) {
        QByteArray bytes = contents(path);
        const qsizetype middle = bytes.size() / 2 / 4096 * 4096;
        for (qsizetype i = middle; i < middle + 4096; ++i)
            bytes[i] = char(0x5A ^ i);
        writeBytes(path, bytes);
    } else if (kind == QLatin1String("random bytes")) {
        QByteArray bytes(50000, '\0');
        QRandomGenerator generator(4711);
        for (char &c : bytes)
            c = char(generator.bounded(256));
        writeBytes(path, bytes);
    } else if (kind == QLatin1String("truncated")) {
        writeBytes(path, contents(path).left(2000));
    } else if (kind == QLatin1String("empty file")) {
        writeBytes(path, {});
    } else if (kind == QLatin1String("text file")) {
        writeBytes(path, "version;1.1\nqpeak;1;1;160;550\n");
    }
}

void WorkingDatabaseTest::unusableFiles()
{
    QFETCH(QString, kind);
    QFETCH(QStringList, statements);
    QFETCH(bool, atStartUp);

    Fixture f;
    const QString working = makeDatabase(f.file(kWorkingDatabaseName), {1.1}, QStringLiteral("3, 4, 5, 6"));
    const QString bad = f.file(QStringLiteral("bad.sqlite"));
    writeUnusableFile(bad, kind, statements);

    if (atStartUp) {
        f.ctx.state.databasePath = bad;
        openWorkingDatabase(f.ctx);
        QCOMPARE(f.prompts->messages(),
                 (QStringList{QStringLiteral("Init Database|Database defekt or not found ") + kCr2 + bad, useDefault(bad)}));
        QVERIFY(!workingDatabase(f.ctx).isValid());
        QCOMPARE(f.constants(), (QList<quint16>{0, 0, 0, 0}));
    } else {
        f.ctx.state.databasePath = working;
        openWorkingDatabase(f.ctx);
        f.prompts->answerFile(QStringLiteral("Select Database"), bad);
        selectDatabase(f.ctx);
        // No second dialog; the chosen path stays, but the database in force is the one before.
        QCOMPARE(f.prompts->messages(),
                 QStringList{QStringLiteral("Init Database|Database defekt or a wrong format") + kCr2 + bad});
        QCOMPARE(f.prompts->shown.size(), 2);
        QCOMPARE(f.ctx.state.databasePath, bad);
        QCOMPARE(workingDatabase(f.ctx).databaseName(), working);
        QCOMPARE(f.ctx.state.busy, quint8(0));
        QCOMPARE(f.constants(), (QList<quint16>{6, 8, 10, 12}));
    }
    if (kind == QLatin1String("missing file"))
        QVERIFY(!QFile::exists(bad));
}

void WorkingDatabaseTest::damagedPristineIsWrittenAnew_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QStringList>("statements");
    QTest::newRow("random bytes") << "random bytes" << QStringList();
    QTest::newRow("damaged page") << "damaged page" << QStringList();
    QTest::newRow("no LimitDef") << "no LimitDef" << QStringList("drop table LimitDef");
}

void WorkingDatabaseTest::damagedPristineIsWrittenAnew()
{
    QFETCH(QString, kind);
    QFETCH(QStringList, statements);
    Fixture f;
    writeUnusableFile(f.file(kPristineDatabaseName), kind, statements);
    openWorkingDatabase(f.ctx);
    QVERIFY(f.prompts->shown.isEmpty());
    QCOMPARE(f.constants(), (QList<quint16>{2, 2, 320, 1100}));
    QCOMPARE(contents(f.file(kWorkingDatabaseName)), contents(f.file(kPristineDatabaseName)));
}

void WorkingDatabaseTest::quasiPeakCells_data()
{
    QTest::addColumn<QString>("row");
    QTest::addColumn<QList<int>>("constants"); // they stand at 2, 2, 320, 1100 before
    QTest::newRow("numbers") << "5, 6.9, -7.5, 8" << QList<int>{10, 12, 14, 16};
    QTest::newRow("empty cells") << "null, 6.9, '', 8" << QList<int>{2, 12, 320, 16};
    QTest::newRow("text") << "'x', 4, 9, 'y'" << QList<int>{2, 8, 18, 1100};
}

void WorkingDatabaseTest::quasiPeakCells()
{
    QFETCH(QString, row);
    QFETCH(QList<int>, constants);
    Fixture f;
    makeDatabase(f.file(kWorkingDatabaseName), {1.1}, row);
    f.ctx.state.tauf30 = f.ctx.state.tauf1000 = 2;
    f.ctx.state.tent30 = 320;
    f.ctx.state.tent1000 = 1100;
    openWorkingDatabase(f.ctx);
    const QList<quint16> loaded = f.constants();
    QCOMPARE(QList<int>(loaded.cbegin(), loaded.cend()), constants);
}

void WorkingDatabaseTest::memoKeepsText()
{
    Fixture f;
    openWorkingDatabase(f.ctx);
    QSqlQuery query(workingDatabase(f.ctx));
    QVERIFY(query.exec(QStringLiteral("update LimitHead set Memo = '0815'")));
    QVERIFY(query.exec(QStringLiteral("select distinct Memo from LimitHead")) && query.next());
    QCOMPARE(query.value(0), QVariant(QStringLiteral("0815")));
}

void WorkingDatabaseTest::cancelKeepsFileInUse()
{
    Fixture f;
    f.ctx.state.databasePath = f.file(kWorkingDatabaseName);
    openWorkingDatabase(f.ctx);
    f.ctx.state.databasePath += QStringLiteral("   ");
    f.ctx.state.busy = 1;

    selectDatabase(f.ctx); // the script has no file: the dialog is cancelled

    QCOMPARE(f.prompts->messages(), QStringList{useDefault(f.file(kWorkingDatabaseName))});
    QCOMPARE(f.ctx.state.databasePath, f.file(kWorkingDatabaseName) + QStringLiteral("   "));
    QCOMPARE(workingDatabase(f.ctx).databaseName(), f.file(kWorkingDatabaseName));
    QCOMPARE(f.ctx.state.busy, quint8(0));
}

// The dialog as the user sees it; a test prompt only records title and filter.
class RecordingPrompts : public ScriptedPrompts {
public:
    std::optional<QString> openFileDialog(const FileDialogRequest &request) override
    {
        requests << request;
        return ScriptedPrompts::openFileDialog(request);
    }
    QList<FileDialogRequest> requests;
};

void WorkingDatabaseTest::dialogRequest()
{
    QTemporaryDir dir;
    auto *prompts = new RecordingPrompts;
    Context ctx(Platform{std::make_unique<VirtualClock>(), std::unique_ptr<Prompts>(prompts), std::make_unique<NoPort>()});
    ctx.dataFolder = dir.path();
    selectDatabase(ctx);
    QCOMPARE(prompts->requests.size(), 1);
    const FileDialogRequest &r = prompts->requests.first();
    QCOMPARE(r.title, QStringLiteral("Select Database"));
    QCOMPARE(r.filter, QStringLiteral("Datenbank (*.sqlite) | *.sqlite "));
    QCOMPARE(r.fileName, dir.path() + QStringLiteral("/*.sqlite"));
    QCOMPARE(r.defaultExtension, QStringLiteral("sqlite"));
    QCOMPARE(r.flags, 6148);
    closeWorkingDatabase(ctx);
}

void WorkingDatabaseTest::quasiPeakConversion_data()
{
    QTest::addColumn<double>("column");
    QTest::addColumn<int>("constant");
    QTest::newRow("whole") << 160.0 << 320;
    QTest::newRow("fraction dropped") << 1.99 << 2;
    QTest::newRow("negative") << -550.7 << 1100;
    QTest::newRow("below one") << 0.5 << 0;
    QTest::newRow("largest") << 32767.9 << 65534;
    QTest::newRow("too large") << 1e12 << 65535;
    QTest::newRow("not a number") << qQNaN() << 0;
    QTest::newRow("infinite") << qInf() << 0;
}

void WorkingDatabaseTest::quasiPeakConversion()
{
    QFETCH(double, column);
    QFETCH(int, constant);
    QCOMPARE(int(quasiPeakConstant(column)), constant);
}

void WorkingDatabaseTest::declaredColumns_data()
{
    QTest::addColumn<QString>("table");
    QTest::addColumn<int>("columnCount");
    QTest::addColumn<QString>("column");
    QTest::addColumn<QString>("type");
    QTest::newRow("version") << "version" << 1 << "versionnr" << "SINGLE";
    QTest::newRow("qpeak") << "qpeak" << 4 << "tent-1000" << "SINGLE";
    QTest::newRow("LimitHead") << "LimitHead" << 9 << "Radiated" << "BOOLEAN";
    QTest::newRow("losdef") << "losdef" << 3 << "level_dbmw" << "SINGLE";
    QTest::newRow("config") << "config" << 6 << "ConfigName" << "TEXT(80)";
    QTest::newRow("test") << "test" << 23 << "mode" << "BYTE";
    QTest::newRow("test memo") << "test" << 23 << "memo" << "TEXT";
    QTest::newRow("settings") << "settings" << 23 << "bandwith" << "INTEGER";
    QTest::newRow("settings limit number") << "settings" << 23 << "averagename" << "LONG";
    QTest::newRow("knownsignals") << "knownsignals" << 9 << "max-level" << "DOUBLE";
}

void WorkingDatabaseTest::declaredColumns()
{
    QFETCH(QString, table);
    QFETCH(int, columnCount);
    QFETCH(QString, column);
    QFETCH(QString, type);

    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("p.sqlite"));
    QVERIFY(writePristineDatabase(path));
    const auto info = sql(path, {QStringLiteral("pragma table_info(\"%1\")").arg(table)});
    QCOMPARE(info.size(), columnCount);
    bool found = false;
    for (const QVariantList &row : info) {
        if (row.at(1).toString() == column) {
            found = true;
            QCOMPARE(row.at(2).toString(), type);
            QCOMPARE(row.at(5).toInt(), 0); // no key: the rowid addresses rows
        }
    }
    QVERIFY2(found, qPrintable(column));
}

void WorkingDatabaseTest::starterRows()
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("p.sqlite"));
    QVERIFY(writePristineDatabase(path));
    QCOMPARE(sql(path, {QStringLiteral("select unitname, unitoffset from unit order by unitoffset, unitname")}),
             (QList<QVariantList>{{"dBmW", 0}, {"dBuW", 30}, {"dBmV", 47}, {"dBuV", 107}, {"dBuV/m", 107}}));
    QCOMPARE(sql(path, {QStringLiteral("select count(*) from MeasureCount")}), (QList<QVariantList>{{1}}));
    QCOMPARE(sql(path, {QStringLiteral("select count(*) from loshead where losnr = 0")}), (QList<QVariantList>{{1}}));
    const auto version = sql(path, {QStringLiteral("select versionnr from version")});
    QCOMPARE(version.size(), 1);
    QCOMPARE(version.first().first().toFloat(), 1.1f);
    // Writing again over an existing file gives a fresh one.
    sql(path, {QStringLiteral("insert into version values (0.5)")});
    QVERIFY(writePristineDatabase(path));
    QCOMPARE(sql(path, {QStringLiteral("select count(*) from version")}), (QList<QVariantList>{{1}}));
}

QTEST_GUILESS_MAIN(WorkingDatabaseTest)
#include "working_database_test.moc"
