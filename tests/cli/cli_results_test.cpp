// delfor-cli results: its exit codes, the CSV header naming each column and its unit, the aligned
// table, the difference to a compared file.

#include "store/database.h"
#include "support/cli_run.h"
#include "support/emc_result_file.h"

#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

class CliResultsTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void exitCodes_data();
    void exitCodes();
    void csvHeaderAndDifference();

private:
    QStringList withFolder(const QStringList &args) const
    {
        QStringList out;
        for (const QString &arg : args)
            out << QString(arg).replace(QStringLiteral("DIR"), dir.path());
        return out;
    }
    QTemporaryDir dir;
};

void CliResultsTest::initTestCase()
{
    // The delivered working database, made as the program makes it on a first start.
    Context ctx(Platform{std::make_unique<VirtualClock>(), std::make_unique<ScriptedPrompts>(), std::make_unique<NoPort>()});
    ctx.dataFolder = dir.path();
    openWorkingDatabase(ctx);
    QVERIFY(workingDatabase(ctx).isOpen());
    closeWorkingDatabase(ctx);
    EmcResultFile run;
    run.unit = QStringLiteral("dBuV/m");
    run.maxhold = {{30, -77}, {230, -77}, {230.001, -70}, {1000, -70}};
    run.rows = {{40, -80, -80, -82}, {240, -65, -66, -65}, {500, -1000, -1000, -1000}};
    QVERIFY(writeEmcResultFile(dir.filePath("run.emc"), run));
    EmcResultFile trace;
    trace.mode = 0;
    QVERIFY(writeEmcResultFile(dir.filePath("trace.mes"), trace));
}

void CliResultsTest::exitCodes_data()
{
    QTest::addColumn<QStringList>("args");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QString>("firstLine"); // of stdout, or the end of stderr
    const QString db = QStringLiteral("DIR/default.sqlite");
    QTest::newRow("table") << QStringList{"results", "DIR/run.emc", "--database", db} << 0
                           << "Frequency_MHz  Peak_dBuV/m  Peak_limit_dBuV/m  Peak_margin_dB  Peak_verdict";
    QTest::newRow("help") << QStringList{"results", "--help"} << 0 << "usage: delfor-cli results FILE.emc";
    QTest::newRow("trace file") << QStringList{"results", "DIR/trace.mes", "--database", db} << 1 << "holds no EMC run";
    QTest::newRow("missing file") << QStringList{"results", "DIR/none.emc", "--database", db} << 1 << "none.emc";
    QTest::newRow("compare refused") << QStringList{"results", "DIR/run.emc", "--compare", "DIR/none.mes", "--database", db}
                                     << 1 << "none.mes";
    QTest::newRow("csv unwritable") << QStringList{"results", "DIR/run.emc", "--csv", "DIR/no/such/out.csv", "--database", db}
                                    << 1 << "cannot write";
    QTest::newRow("no database") << QStringList{"results", "DIR/run.emc", "--database", "DIR/none.sqlite"} << 1
                                 << "does not exist";
    QTest::newRow("no file") << QStringList{"results", "--all"} << 2 << "needs an .emc file";
    QTest::newRow("csv without value") << QStringList{"results", "DIR/run.emc", "--csv"} << 2 << "--csv needs a value";
    QTest::newRow("unknown option") << QStringList{"results", "DIR/run.emc", "--pdf", "x"} << 2 << "unknown argument";
}

void CliResultsTest::exitCodes()
{
    QFETCH(QStringList, args);
    QFETCH(int, exitCode);
    QFETCH(QString, firstLine);
    const CliRun run = cli(withFolder(args));
    QCOMPARE(run.exitCode, exitCode);
    if (exitCode == 0)
        QVERIFY2(run.out.section('\n', 0, 0).trimmed().startsWith(firstLine), qPrintable(run.out));
    else
        QVERIFY2(run.err.trimmed().section('\n', -1).contains(firstLine), qPrintable(run.err));
}

void CliResultsTest::csvHeaderAndDifference()
{
    const CliRun run = cli(withFolder({"results", "DIR/run.emc", "--csv", "-", "--compare", "DIR/run.emc", "--database",
                                       "DIR/default.sqlite"}));
    QCOMPARE(run.exitCode, 0);
    const QStringList lines = run.out.split('\n', Qt::SkipEmptyParts);
    QCOMPARE(lines.value(0),
             QStringLiteral("Frequency_MHz,"
                            "Peak_dBuV/m,Peak_limit_dBuV/m,Peak_margin_dB,Peak_verdict,Peak_polarisation,"
                            "QPeak_dBuV/m,QPeak_limit_dBuV/m,QPeak_margin_dB,QPeak_verdict,QPeak_polarisation,"
                            "Average_dBuV/m,Average_limit_dBuV/m,Average_margin_dB,Average_verdict,Average_polarisation,"
                            "Difference_dB"));
    // 240 MHz stands 5 dB over the step up to 37 dBuV/m; 40 MHz 3 dB under 30 dBuV/m.
    QCOMPARE(lines.value(1), QStringLiteral("240.000,42.00,37.00,5.00,FAIL,V,,,,,,,,,,,0.00"));
    QCOMPARE(lines.value(2), QStringLiteral("40.000,27.00,30.00,-3.00,PASS,H,,,,,,,,,,,0.00"));
    QCOMPARE(lines.size(), 3);
}

QTEST_MAIN(CliResultsTest)
#include "cli_results_test.moc"
