#include "support/cli_run.h"

#include <QProcess>
#include <QTemporaryDir>
#include <QTest>


class CliIdentifyTest : public QObject {
    Q_OBJECT

private slots:
    void identifiesSimulatedModel_data();
    void identifiesSimulatedModel();
    void refusesBadArguments_data();
    void refusesBadArguments();
    void helpListsTheSubcommands();
    void missingPortIsOpenError();
    void readPrintsTraceAsCsv();
    void readWritesCsvFileWithWantedColumns();
};

void CliIdentifyTest::identifiesSimulatedModel_data()
{
    QTest::addColumn<QStringList>("args");
    QTest::addColumn<QString>("model");
    QTest::newRow("default model") << QStringList{"identify", "--simulate"} << "K320-A";
    QTest::newRow("K550-B at 115200") << QStringList{"identify", "--simulate=K550-B", "--baud", "115200"} << "K550-B";
    QTest::newRow("K310-A") << QStringList{"--simulate=K310-A", "identify", "--timeout", "1"} << "K310-A";
}

void CliIdentifyTest::identifiesSimulatedModel()
{
    QFETCH(QStringList, args);
    QFETCH(QString, model);
    const CliRun r = cli(args);
    QCOMPARE(r.err, QString());
    QCOMPARE(r.out, "model: " + model + "\nfirmware: 1.40\n");
    QCOMPARE(r.exitCode, 0);
}

void CliIdentifyTest::refusesBadArguments_data()
{
    QTest::addColumn<QStringList>("args");
    QTest::addColumn<QString>("message");
    QTest::newRow("no command") << QStringList{} << "no command given";
    QTest::newRow("unknown command") << QStringList{"fly"} << "unknown command: fly";
    QTest::newRow("odd baud") << QStringList{"identify", "--simulate", "--baud", "1234"} << "baud rate must be";
    QTest::newRow("no baud value") << QStringList{"identify", "--baud"} << "baud rate must be";
    QTest::newRow("timeout zero") << QStringList{"identify", "--timeout", "0"} << "timeout must be";
    QTest::newRow("unknown model") << QStringList{"identify", "--simulate=K999"} << "unknown model: K999";
    QTest::newRow("both ports") << QStringList{"identify", "--simulate", "--port", "/dev/null"} << "exclude each other";
    QTest::newRow("stray option") << QStringList{"identify", "--fast"} << "unknown argument: --fast";
    QTest::newRow("unknown trace") << QStringList{"read", "--simulate", "--traces", "sample,peak"} << "unknown trace: peak";
    QTest::newRow("no csv value") << QStringList{"read", "--simulate", "--csv"} << "need a value";
    QTest::newRow("export without file") << QStringList{"export", "--csv", "-"} << "export needs a measurement file";
    QTest::newRow("export without csv") << QStringList{"export", "m.mes"} << "export needs --csv";
    QTest::newRow("export, two files") << QStringList{"export", "a.mes", "b.mes", "--csv", "-"} << "unknown argument: b.mes";
}

void CliIdentifyTest::refusesBadArguments()
{
    QFETCH(QStringList, args);
    QFETCH(QString, message);
    const CliRun r = cli(args);
    QCOMPARE(r.exitCode, 2);
    QVERIFY2(r.err.contains(message), qPrintable(r.err));
    QVERIFY(r.err.startsWith("usage: delfor-cli "));
    QCOMPARE(r.out, QString());
}

// --help prints every subcommand on stdout and succeeds.
void CliIdentifyTest::helpListsTheSubcommands()
{
    const CliRun r = cli({"--help"});
    QCOMPARE(r.exitCode, 0);
    QCOMPARE(r.err, QString());
    for (const char *command : {"identify", "read", "info", "export", "results", "limits", "components", "tests", "emc",
                                "report"})
        QVERIFY2(r.out.contains(QStringLiteral("delfor-cli ") + command), command);
}

void CliIdentifyTest::missingPortIsOpenError()
{
    const CliRun r = cli({"identify", "--port", "/dev/delfor-no-such-port"});
    QCOMPARE(r.exitCode, 1);
    QCOMPARE(r.err, QString("Serial - Error: Can not open com. port\n"));
    QCOMPARE(r.out, QString());
}

void CliIdentifyTest::readPrintsTraceAsCsv()
{
    const CliRun r = cli({"read", "--simulate", "--csv", "-"});
    QCOMPARE(r.err, QString());
    QCOMPARE(r.exitCode, 0);
    const QStringList lines = r.out.split('\n', Qt::SkipEmptyParts);
    QCOMPARE(lines.size(), 2002);
    QCOMPARE(lines.first(), QString("Frequency_MHz,Sample_dBm,Average_dBm,Maxhold_dBm,Memory_dBm"));
    QCOMPARE(lines[1].section(',', 0, 0).toDouble(), 0.0);
    QCOMPARE(lines[2001].section(',', 0, 0).toDouble(), 1000.0);
    // The simulated device under test has a 48 MHz clock: its line stands well above the floor.
    const auto levelAt = [&](double mhz) { return lines[1 + qRound(mhz * 2)].section(',', 1, 1).toDouble(); };
    QVERIFY2(levelAt(48.0) > levelAt(30.0) + 20, qPrintable(lines[97] + " / " + lines[61]));
    QVERIFY(lines[500].endsWith(",,,"));
}

void CliIdentifyTest::readWritesCsvFileWithWantedColumns()
{
    QTemporaryDir dir;
    const QString path = dir.filePath("trace.csv");
    const CliRun r = cli({"read", "--simulate=K550-B", "--baud", "115200", "--traces", "maxhold,memory,average",
                       "--csv", path});
    QCOMPARE(r.exitCode, 0);
    QCOMPARE(r.out, QString());
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QList<QByteArray> lines = file.readAll().split('\n');
    QCOMPARE(lines.size(), 2003); // the last line ends with its newline
    const QList<QByteArray> cells = lines[1000].split(',');
    QCOMPARE(cells.size(), 5);
    QVERIFY(cells[1].isEmpty());
    QVERIFY(!cells[2].isEmpty() && !cells[3].isEmpty() && !cells[4].isEmpty());
    QVERIFY(cells[2].toDouble() <= cells[3].toDouble()); // the average never rises above the max hold
}

QTEST_GUILESS_MAIN(CliIdentifyTest)
#include "cli_identify_test.moc"
