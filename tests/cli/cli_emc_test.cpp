#include "support/cli_run.h"
#include "store/measurement_file.h"

#include <QProcess>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>

namespace {

const QString kTest = QStringLiteral("EN 55032 B conducted");

// A working database made by the command itself in a data folder of its own, its Step test cut
// to the range given, one block a frequency.
struct Bench {
    Bench(double stop)
    {
        qputenv("XDG_DATA_HOME", dir.filePath("data").toUtf8());
        cli({"emc", "--test", "no such test", "--out", out(), "--simulate", "--yes"}); // makes default.sqlite
        {
            QSqlDatabase db = QSqlDatabase::addDatabase("QSQLITE", "bench");
            db.setDatabaseName(database());
            db.open();
            QSqlQuery(db).exec(QString("update test set startfreq = 0.15, stopfreq = %1, steptime = 1").arg(stop));
        }
        QSqlDatabase::removeDatabase("bench");
    }
    QString database() const { return dir.filePath("data/delfor/default.sqlite"); }
    QString out() const { return dir.filePath("run.emc"); }
    QStringList args() const { return {"emc", "--test", kTest, "--out", out(), "--simulate", "--yes"}; }
    int rows() const
    {
        const auto summary = describeMeasurementFile(out());
        return summary ? summary->rowCount : -1;
    }
    // Started in the background; returns once the file holds `rows` rows.
    void startUntilRows(QProcess &p, int rows)
    {
        p.start(qEnvironmentVariable("DELFOR_BIN") + "/delfor-cli", args());
        QVERIFY(p.waitForStarted());
        for (int i = 0; i < 2000 && this->rows() < rows; ++i)
            QTest::qWait(10);
        QVERIFY(this->rows() >= rows);
    }
    QTemporaryDir dir;
};

} // namespace

class CliEmcTest : public QObject {
    Q_OBJECT

private slots:
    void refusedCommandLines_data()
    {
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<QString>("error");
        QTest::newRow("no test") << QStringList{"emc", "--out", "x.emc"} << 2 << "emc needs --test NAME and --out";
        QTest::newRow("no file") << QStringList{"emc", "--test", kTest} << 2 << "emc needs --test NAME and --out";
        QTest::newRow("unknown test") << QStringList{"emc", "--test", "no such test", "--out", "x.emc", "--simulate"}
                                      << 2 << "unknown test: no such test";
        QTest::newRow("no database") << QStringList{"emc", "--test", kTest, "--out", "x.emc", "--database", "/nonexistent"}
                                     << 1 << "/nonexistent does not exist";
    }
    void refusedCommandLines()
    {
        QFETCH(QStringList, args);
        QFETCH(int, exitCode);
        QFETCH(QString, error);
        Bench b(0.3);
        const CliRun run = cli(args);
        QCOMPARE(run.exitCode, exitCode);
        QVERIFY2(run.err.contains(error), qPrintable(run.err));
    }

    void wholeRunWritesItsRows()
    {
        Bench b(0.3);
        const CliRun run = cli(b.args());
        QCOMPARE(run.exitCode, 0);
        QVERIFY(run.out.startsWith("EMC - Stepped: Set to horizontal / L position\n"));
        QVERIFY(run.out.contains("EMC - Stepped: Set Antenna to vertical position\n"));
        // 0.15 MHz to one 9 kHz step above 0.3 MHz, without the start.
        QCOMPARE(b.rows(), 17);
        QVERIFY(run.out.endsWith("rows written: 17\n"));
    }

    // A Sweep + Step run: both rounds, the seconds left in each segment on standard error.
    void sweepAndStepRunShowsItsSegments()
    {
        Bench b(0.3);
        {
            QSqlDatabase db = QSqlDatabase::addDatabase("QSQLITE", "sweep");
            db.setDatabaseName(b.database());
            db.open();
            QSqlQuery(db).exec("update test set startfreq = 30, stopfreq = 70, meastime = 1 "
                               "where name = 'EN 55032 B radiated 3m'");
        }
        QSqlDatabase::removeDatabase("sweep");
        QStringList args = b.args();
        args[2] = "EN 55032 B radiated 3m";
        const CliRun run = cli(args);
        QCOMPARE(run.exitCode, 0);
        QVERIFY(run.out.contains("EMC - Sweep + Step: Set to vertical / N position\n"));
        QCOMPARE(run.err.count("segment 40.000 MHz - 1s left\n"), 2);
        QCOMPARE(run.err.count("segment 60.000 MHz - 0s left\n"), 2);
        QVERIFY(run.out.endsWith("rows written: 334\n"));
    }

    // Ctrl-C stops the run as Stop does; a kill leaves the file as it stood. Either way the file
    // opens and holds every finished row.
    void breakingOffKeepsTheFinishedRows_data()
    {
        QTest::addColumn<int>("signal");
        QTest::newRow("Ctrl-C") << SIGINT;
        QTest::newRow("kill") << SIGKILL;
    }
    void breakingOffKeepsTheFinishedRows()
    {
        QFETCH(int, signal);
        Bench b(30.0); // its data folder in force from here
        QProcess p;
        b.startUntilRows(p, 5);
        ::kill(pid_t(p.processId()), signal);
        QVERIFY(p.waitForFinished(20000));
        const int rows = b.rows();
        QVERIFY(rows >= 5 && rows < 3300);
        if (signal == SIGINT) {
            QCOMPARE(p.exitCode(), 130);
            QVERIFY(QString(p.readAllStandardOutput()).endsWith(QString("rows written: %1\n").arg(rows)));
        }
    }
};

QTEST_GUILESS_MAIN(CliEmcTest)
#include "cli_emc_test.moc"
