#include <QFile>
#include "support/cli_run.h"

#include <QProcess>
#include <QTemporaryDir>
#include <QTest>


class CliMeasurementTest : public QObject {
    Q_OBJECT

private slots:
    void readWritesMesFileThatInfoDescribes();
    void infoRefusesOtherFiles_data();
    void infoRefusesOtherFiles();
};

void CliMeasurementTest::readWritesMesFileThatInfoDescribes()
{
    QTemporaryDir dir;
    const QString mes = dir.filePath("trace.mes");
    const QString csv = dir.filePath("trace.csv");
    // Trailing blanks of the file name are cut off, as for every measurement file.
    const CliRun read = cli({"read", "--simulate", "--traces", "sample,maxhold", "--csv", csv, "--mes", mes + "  "});
    QCOMPARE(read.err, QString());
    QCOMPARE(read.exitCode, 0);
    QVERIFY(QFile::exists(csv));

    const CliRun info = cli({"info", mes});
    QCOMPARE(info.exitCode, 0);
    const QStringList lines = info.out.split('\n', Qt::SkipEmptyParts);
    QCOMPARE(lines.size(), 42);
    QCOMPARE(lines[0], QString("Vernr: 100"));
    QVERIFY(lines[1].startsWith("dat: 20"));
    QCOMPARE(lines[12], QString("viewsample: 1"));
    QCOMPARE(lines[14], QString("viewmaxhold: 1"));
    QCOMPARE(lines[23], QString("Mode: 0"));
    QCOMPARE(lines[39], QString("ambidist: "));
    QCOMPARE(lines[40], QString("rows: 2001"));
    QCOMPARE(lines[41], QString("frequency range: 0 - 1000 MHz"));
}

void CliMeasurementTest::infoRefusesOtherFiles_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("missing") << "none.mes" << QByteArray();
    QTest::newRow("text") << "notes.mes" << QByteArray("nothing stored here\n");
}

void CliMeasurementTest::infoRefusesOtherFiles()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, bytes);
    QTemporaryDir dir;
    const QString path = dir.filePath(name);
    if (!bytes.isEmpty()) {
        QFile f(path);
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write(bytes);
    }
    const CliRun r = cli({"info", path});
    QCOMPARE(r.exitCode, 1);
    QCOMPARE(r.out, QString());
    QCOMPARE(r.err, "delfor-cli: " + path + " is no measurement file\n");
}

QTEST_GUILESS_MAIN(CliMeasurementTest)
#include "cli_measurement_test.moc"
