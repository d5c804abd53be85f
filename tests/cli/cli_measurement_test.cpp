#include <QFile>
#include "support/cli_run.h"

#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>


class CliMeasurementTest : public QObject {
    Q_OBJECT

private slots:
    void readWritesMesFileThatInfoDescribes();
    void refusedFilesGiveTheReason_data();
    void refusedFilesGiveTheReason();
};

void CliMeasurementTest::readWritesMesFileThatInfoDescribes()
{
    QTemporaryDir dir;
    const QString mes = dir.filePath("trace.mes");
    const QString csv = dir.filePath("trace.csv");
    // Trailing blanks of the file name are cut off, as for every measurement file.
    const CliRun read = cli({"read", "--simulate", "--traces", "sample,average,maxhold,memory", "--csv", csv, "--mes",
                             mes + "  "});
    QCOMPARE(read.err, QString());
    QCOMPARE(read.exitCode, 0);
    // The file's export is what the read wrote: one format, the same numbers.
    QFile readCsv(csv);
    QVERIFY(readCsv.open(QIODevice::ReadOnly));
    const QString written = QString::fromUtf8(readCsv.readAll());
    for (const QString out : {"-", "/dev/stdout"}) {
        const CliRun exported = cli({"export", mes, "--csv", out});
        QCOMPARE(exported.exitCode, 0);
        QCOMPARE(exported.out, written);
    }

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

namespace {

QString sqlite3(const QString &path, const QString &sql)
{
    QProcess p;
    p.start("sqlite3", {path, sql});
    p.waitForFinished(20000);
    return QString::fromUtf8(p.readAllStandardOutput()).trimmed();
}

// A file that info must refuse, of the kind named.
void writeRefusedFile(const QString &path, const QString &kind)
{
    if (kind == "text") {
        QFile f(path);
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write("nothing stored here\n");
    } else if (kind == "named pipe") {
        QVERIFY(::mkfifo(QFile::encodeName(path).constData(), 0600) == 0);
    } else if (kind == "link to /dev/zero") {
        QVERIFY(QFile::link("/dev/zero", path));
    } else if (kind != "missing") {
        sqlite3(path, "create table Measurement (Frequency SINGLE, Sample_dBmW SINGLE); "
                      "create table Limitlines (avefreq SINGLE); create table Settings (Vernr INTEGER); "
                      "insert into Settings values (100); "
                      "insert into Measurement with recursive r(f) as (select 1 union all select f + 1 from r "
                      "limit 20000) select f, -f from r");
        if (kind == "recursive view") {
            sqlite3(path, "drop table measurement; create view measurement as with recursive r(frequency) as "
                          "(select 1 union all select frequency + 1 from r) select frequency from r");
        } else { // garbage over a page in the middle of the rows
            const int pageSize = sqlite3(path, "pragma page_size").toInt();
            const int pages = sqlite3(path, "pragma page_count").toInt();
            QFile f(path);
            QVERIFY(f.open(QIODevice::ReadWrite) && f.seek(qint64(pages / 2) * pageSize));
            f.write(QByteArray(pageSize, char(0xA5)));
        }
    }
}

} // namespace

void CliMeasurementTest::refusedFilesGiveTheReason_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("reason");
    QTest::newRow("missing") << "missing" << "is no measurement file: it does not exist";
    QTest::newRow("text") << "text" << "is no measurement file: file is not a database";
    QTest::newRow("named pipe") << "named pipe" << "is no measurement file: it is no regular file";
    QTest::newRow("link to /dev/zero") << "link to /dev/zero" << "is no measurement file: it is no regular file";
    QTest::newRow("recursive view") << "recursive view" << "is no measurement file: it has no table Measurement";
    QTest::newRow("damaged page") << "damaged page" << "is damaged: database disk image is malformed";
}

// info, and export to a file or to standard output, refuse alike and write nothing.
void CliMeasurementTest::refusedFilesGiveTheReason()
{
    QFETCH(QString, kind);
    QFETCH(QString, reason);
    QTemporaryDir dir;
    const QString path = dir.filePath("m.mes");
    writeRefusedFile(path, kind);
    const QString out = dir.filePath("m.csv");
    for (const QStringList &args : {QStringList{"info", path}, QStringList{"export", path, "--csv", out},
                                    QStringList{"export", path, "--csv", "-"}}) {
        const CliRun r = cli(args);
        QCOMPARE(r.exitCode, 1);
        QCOMPARE(r.out, QString());
        QCOMPARE(r.err, "delfor-cli: " + path + " " + reason + "\n");
    }
    QVERIFY(!QFile::exists(out));
}

QTEST_GUILESS_MAIN(CliMeasurementTest)
#include "cli_measurement_test.moc"
