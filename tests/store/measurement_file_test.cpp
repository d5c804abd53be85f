#include "support/no_port.h"
#include "core/clock.h"
#include "core/context.h"
#include "core/scripted_prompts.h"
#include "store/database.h"
#include "store/measurement_file.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>

#include <sys/stat.h>

namespace {

// Average limit 9007, maxhold limit 9008 (numbers that no starter row uses); points go in out of order.
struct Fixture {
    Fixture()
        : ctx(Platform{std::make_unique<VirtualClock>(), std::make_unique<ScriptedPrompts>(), std::make_unique<NoPort>()})
    {
        ctx.dataFolder = dir.path();
        openWorkingDatabase(ctx);
        ctx.calls.enterEmcMode = [this] { entered << "emc"; };
        ctx.calls.enterNormalMode = [this] { entered << "normal"; };
        ctx.state.measurementFileName = file("m.mes") + "   ";
        ctx.state.averageLimitNr = 9007;
        ctx.state.maxholdLimitNr = 9008;
        for (int i = 1; i <= ctx.state.pointCount; ++i) {
            ctx.state.traces.sampleTrace[i] = qint16(-i % 300);
            ctx.state.traces.memoryTrace[i] = qint16(i % 7);
        }
    }
    ~Fixture() { closeWorkingDatabase(ctx); }

    QString file(const QString &name) const { return dir.filePath(name); }
    void limitPoints(int limitnr, int count)
    {
        QSqlQuery q(workingDatabase(ctx));
        for (int k = count; k >= 1; --k)
            QVERIFY(q.exec(QString("insert into limitdef values (%1, %2, %3)").arg(limitnr).arg(k * 10).arg(limitnr % 100 * 10 + k)));
    }
    void writeTraceFile()
    {
        QVERIFY(createMeasurementFile(ctx));
        writeTraceMeasurement(ctx);
    }

    QTemporaryDir dir;
    Context ctx;
    QStringList entered;
};

// The lines that the sqlite3 tool prints for `sql`, columns joined by '|'.
QStringList sqlite3(const QString &path, const QString &sql)
{
    QProcess p;
    p.start("sqlite3", {path, sql});
    p.waitForFinished(10000);
    return QString::fromUtf8(p.readAllStandardOutput()).split('\n', Qt::SkipEmptyParts);
}

// A file that a read must refuse, of the kind named.
void writeRefusedFile(Fixture &f, const QString &path, const QString &kind)
{
    if (kind == "text" || kind == "random bytes") {
        QByteArray bytes("no measurement\n");
        if (kind == "random bytes") {
            bytes = QByteArray(8192, 0);
            for (int i = 0; i < bytes.size(); ++i)
                bytes[i] = char((i * 7919 + 13) % 251);
        }
        QFile out(path);
        QVERIFY(out.open(QIODevice::WriteOnly));
        out.write(bytes);
    } else if (kind == "named pipe") {
        QVERIFY(::mkfifo(QFile::encodeName(path).constData(), 0600) == 0);
    } else if (kind == "link to /dev/zero") {
        QVERIFY(QFile::link("/dev/zero", path));
    } else if (kind != "missing") {
        f.writeTraceFile();
        if (kind == "settings dropped")
            sqlite3(path, "drop table settings");
        else if (kind == "truncated")
            QVERIFY(QFile::resize(path, 1024 * 8));
        else if (kind == "recursive view")
            sqlite3(path, "drop table measurement; create view measurement as with recursive r(frequency) as "
                          "(select 1 union all select frequency + 1 from r) select frequency from r");
        else if (kind == "damaged page") {
            // Garbage over a page in the middle of the rows.
            const int pageSize = sqlite3(path, "pragma page_size").value(0).toInt();
            const int pages = sqlite3(path, "pragma page_count").value(0).toInt();
            QFile file(path);
            QVERIFY(file.open(QIODevice::ReadWrite));
            QVERIFY(file.seek(qint64(pages / 2) * pageSize));
            QByteArray garbage(pageSize, 0);
            for (int i = 0; i < garbage.size(); ++i)
                garbage[i] = char(0xA5 ^ (i * 31));
            file.write(garbage);
        }
    }
}

} // namespace

class MeasurementFileTest : public QObject {
    Q_OBJECT

private slots:
    void traceFileLayout();
    void limitLinesPairing_data();
    void limitLinesPairing();
    void traceFileRoundTrip();
    void emcFileRoundTrip_data();
    void emcFileRoundTrip();
    void versions_data();
    void versions();
    void notesKeepTheirText_data();
    void notesKeepTheirText();
    void refusedFiles_data();
    void refusedFiles();
    void killedSaveKeepsPreviousFile();
};

void MeasurementFileTest::traceFileLayout()
{
    Fixture f;
    AppState &s = f.ctx.state;
    s.chart.startFrequency = 30.0f;
    s.chart.stopFrequency = 1030.0f;
    s.maxholdLimitDistance = 2.5f; // whole metres, half to even
    s.averageLimitDistance = 3.5f;
    s.distanceFromDut = 300.0f;    // beyond a byte: not stored
    s.headline = QString(90, 'h');
    f.writeTraceFile();
    const QString path = f.file("m.mes");

    QCOMPARE(sqlite3(path, "select name from sqlite_master order by rowid"),
             QStringList({"Measurement", "Limitlines", "Settings"}));
    const auto layout = [&](const QString &table) {
        return sqlite3(path, "select group_concat(name || ' ' || type, ',') from pragma_table_info('" + table + "')");
    };
    QCOMPARE(layout("Measurement").join("").count(" SINGLE"), 16);
    QVERIFY(layout("Measurement").join("").startsWith("Frequency SINGLE,Sample_dBmW SINGLE,Average_dBmW SINGLE,"
                                                      "Maxhold_dBmW SINGLE,QPeak_dBmW SINGLE,memory_dBmW SINGLE,"
                                                      "Ambient_H_dBmW SINGLE"));
    QCOMPARE(layout("Limitlines"), QStringList("avefreq SINGLE,Average_dBmW SINGLE,maxfreq SINGLE,Maxhold_dBmW SINGLE"));
    QCOMPARE(layout("Settings"),
             QStringList("Vernr INTEGER,dat DATE,centerfreq SINGLE,reflevel SINGLE,attenuator SINGLE,bandwith INTEGER,"
                         "videofilter BYTE,span INTEGER,unit TEXT(20),correctionon BYTE,configname TEXT(80),"
                         "readmode BYTE,viewsample BYTE,viewaverage BYTE,viewmaxhold BYTE,viewb BYTE,viewqpeak BYTE,"
                         "viewlimitmax BYTE,viewlimitave BYTE,averagename TEXT(80),maxholdname TEXT(80),tgon BYTE,"
                         "tglevel SINGLE,Mode BYTE,viewab BYTE,lmaxdist BYTE,lavedist BYTE,lmaxlog BOOLEAN,"
                         "lavelog BOOLEAN,configdist BYTE,grafikmin INTEGER,grafikmax INTEGER,note TEXT,"
                         "headline TEXT(80),Ambient BYTE,viewambi BYTE,viewambih BYTE,viewambiv BYTE,calcambi BYTE,"
                         "ambidist INTEGER"));

    QCOMPARE(sqlite3(path, "select count(*), min(frequency), max(frequency) from measurement"),
             QStringList("2001|30|1030"));
    // Row 3: 30 + 2 * 0.5 MHz; sample -3 counts = -1.2 dB as a 32-bit float; the untouched columns are null.
    QCOMPARE(sqlite3(path, "select frequency, sample_dBmW, average_dBmW, memory_dBmW, qpeak_dBmW, "
                           "ambient_h_dBmW is null, v_qpeak_dBmW is null from measurement where rowid = 3"),
             QStringList("31|-1.20000004768372|0|1.20000004768372|0|1|1"));
    QCOMPARE(sqlite3(path, "select vernr, dat, mode, viewqpeak, lmaxdist, lavedist, configdist is null, length(headline), "
                           "ambient is null, centerfreq from settings"),
             QStringList("100|2026-01-05T10:00:00|0|0|2|4|1|80|1|500"));
}

void MeasurementFileTest::limitLinesPairing_data()
{
    QTest::addColumn<int>("averagePoints");
    QTest::addColumn<int>("maxholdPoints");
    QTest::addColumn<QStringList>("rows");
    QTest::newRow("none") << 0 << 0 << QStringList();
    QTest::newRow("average only") << 2 << 0 << QStringList{"10|71||", "20|72||"};
    QTest::newRow("maxhold only") << 0 << 2 << QStringList{"||10|81", "||20|82"};
    QTest::newRow("longer average") << 3 << 1 << QStringList{"10|71|10|81", "20|72||", "30|73||"};
    QTest::newRow("longer maxhold") << 1 << 3 << QStringList{"10|71|10|81", "||20|82", "||30|83"};
}

void MeasurementFileTest::limitLinesPairing()
{
    QFETCH(int, averagePoints);
    QFETCH(int, maxholdPoints);
    QFETCH(QStringList, rows);
    for (bool emc : {false, true}) {
        Fixture f;
        f.limitPoints(9007, averagePoints);
        f.limitPoints(9008, maxholdPoints);
        QVERIFY(createMeasurementFile(f.ctx));
        emc ? writeEmcHeader(f.ctx) : writeTraceMeasurement(f.ctx);
        QCOMPARE(sqlite3(f.file("m.mes"), "select * from limitlines order by rowid"), rows);
    }
}

void MeasurementFileTest::traceFileRoundTrip()
{
    Fixture f;
    AppState &s = f.ctx.state;
    s.analyser.centerFrequency = 123.25f;
    s.analyser.tgOn = 1;
    s.viewMemoryAB = 1;
    s.viewQPeak = 1;
    s.maxholdLimitDistance = 10.4f;
    s.averageLimitLog = -1;
    s.chart.grafikMin = -250;
    s.notes = "  bench 3  ";
    s.unitName = "dBuV";
    f.writeTraceFile();

    AppState before = s;
    s.emcMode = 1;
    s.analyser.centerFrequency = 1.0f;
    s.analyser.tgOn = 0;
    s.viewMemoryAB = 0;
    s.maxholdLimitDistance = 0.0f;
    s.averageLimitLog = 0;
    s.chart.grafikMin = 0;
    s.averageLimitNr = s.maxholdLimitNr = 99;
    s.analyser.unitOffset = 5.0f;
    s.pointCount = 7;
    s.chart.startFrequency = s.chart.stopFrequency = 3.0f;
    readMeasurementFile(f.ctx);

    QCOMPARE(f.entered, QStringList("normal"));
    QCOMPARE(s.emcMode, quint8(0));
    QCOMPARE(s.traceFrozen, quint8(1));
    QCOMPARE(s.analyser.centerFrequency, 123.25f);
    QCOMPARE(s.analyser.tgOn, quint8(1));
    QCOMPARE(s.viewMemoryAB, quint8(1));
    QCOMPARE(s.viewQPeak, quint8(0));            // written 0 and read
    QCOMPARE(s.maxholdLimitDistance, 10.0f);     // whole metres
    QCOMPARE(s.averageLimitLog, qint16(-1));
    QCOMPARE(s.chart.grafikMin, qint16(-250));
    QCOMPARE(s.notes, QString("bench 3"));
    QCOMPARE(s.measurementDate, QDateTime(QDate(2026, 1, 5), QTime(10, 0)));
    QCOMPARE(s.averageLimitNr, 99);              // limit numbers are not stored
    QCOMPARE(s.unitName, QString("dBuV"));
    QCOMPARE(s.analyser.unitOffset, 5.0f);       // no unit lookup for a trace file
    QCOMPARE(s.pointCount, 2001);
    QCOMPARE(s.chart.startFrequency, before.chart.startFrequency);
    QCOMPARE(s.chart.stopFrequency, before.chart.stopFrequency);
}

void MeasurementFileTest::emcFileRoundTrip_data()
{
    QTest::addColumn<QString>("unit");
    QTest::addColumn<QString>("unitName");
    QTest::addColumn<float>("unitOffset");
    QTest::newRow("known unit") << "dBuV" << "dBuV" << 107.0f;
    QTest::newRow("case ignored") << "DBUV " << "dBuV" << 107.0f;
    QTest::newRow("unknown unit") << "dBpW" << "dBmW" << 0.0f;
    QTest::newRow("apostrophe") << "dB'uV" << "dBmW" << 0.0f;
}

void MeasurementFileTest::emcFileRoundTrip()
{
    QFETCH(QString, unit);
    QFETCH(QString, unitName);
    QFETCH(float, unitOffset);
    Fixture f;
    AppState &s = f.ctx.state;
    s.measurementFileName = f.file("run.emc");
    s.unitName = unit;
    s.emcScanMode = 2;
    s.emcTestName = " EN 55022 B ";
    s.chart.startFrequency = 30.0f;
    s.emcViewQPeak = 1;
    s.viewMemoryAB = 1;
    s.ambientOn = 1;
    s.emcAmbientDistance = 6;
    QVERIFY(createMeasurementFile(f.ctx));
    writeEmcHeader(f.ctx);
    sqlite3(s.measurementFileName, "insert into measurement (frequency) values (30), (1000), (55.5)");
    s.chart.grafikMin = -100;
    s.chart.grafikMax = 50;
    updateEmcChartRange(f.ctx);

    s.emcMode = 0;
    s.viewMemoryAB = 1;
    s.ambientOn = 0;
    s.emcAmbientDistance = 0;
    s.headline = "mine";
    s.chart.grafikMin = s.chart.grafikMax = 0;
    readMeasurementFile(f.ctx);

    QCOMPARE(f.entered, QStringList("emc"));
    QCOMPARE(s.emcMode, quint8(2));              // the file's mode survives the mode entry
    QCOMPARE(s.configName, QString(" EN 55022 B "));
    QCOMPARE(s.headline, QString("EN 55022 B"));
    QCOMPARE(s.analyser.centerFrequency, 30.0f);
    QCOMPARE(s.analyser.span, qint16(0));
    QCOMPARE(s.viewMemoryAB, quint8(1));         // written 0, not read back
    QCOMPARE(s.viewQPeak, quint8(1));
    QCOMPARE(s.ambientOn, quint8(1));
    QCOMPARE(s.emcAmbientDistance, qint16(6));
    QCOMPARE(s.chart.grafikMin, qint16(-100));
    QCOMPARE(s.chart.grafikMax, qint16(50));
    QCOMPARE(s.unitName, unitName);
    QCOMPARE(s.analyser.unitOffset, unitOffset);
    QCOMPARE(s.pointCount, 3);
    QCOMPARE(s.chart.startFrequency, 30.0f);
    QCOMPARE(s.chart.stopFrequency, 1000.0f);
}

void MeasurementFileTest::versions_data()
{
    QTest::addColumn<double>("vernr");
    QTest::addColumn<QList<int>>("read"); // headline, viewMemoryAB, ambientOn, emcViewAmbient taken
    QTest::newRow("100") << 100.0 << QList<int>{1, 1, 0, 0};
    QTest::newRow("101") << 101.0 << QList<int>{1, 0, 1, 0};
    QTest::newRow("102") << 102.0 << QList<int>{1, 0, 1, 1};
    QTest::newRow("103") << 103.0 << QList<int>{0, 0, 0, 0};
    QTest::newRow("100.4") << 100.4 << QList<int>{0, 0, 0, 0};
}

void MeasurementFileTest::versions()
{
    QFETCH(double, vernr);
    QFETCH(QList<int>, read);
    Fixture f;
    AppState &s = f.ctx.state;
    f.writeTraceFile();
    sqlite3(f.file("m.mes"), QString("update settings set vernr = %1, headline = 'file', viewab = 1, ambient = 1, "
                                     "viewambi = 1, mode = 2").arg(vernr));
    s.headline = "state";
    s.viewMemoryAB = s.ambientOn = s.emcViewAmbient = 0;
    s.pointCount = 5;
    readMeasurementFile(f.ctx);
    const QList<int> taken{s.headline == "file", s.viewMemoryAB, s.ambientOn, s.emcViewAmbient};
    QCOMPARE(taken, read);
    QCOMPARE(f.entered, read[0] ? QStringList("emc") : QStringList());
    QCOMPARE(s.emcMode, quint8(2));
    QCOMPARE(s.pointCount, 2001);
}

void MeasurementFileTest::notesKeepTheirText_data()
{
    QTest::addColumn<QString>("note");
    QTest::addColumn<bool>("oldDeclaration"); // the note column declared MEMO, as earlier files have it
    QTest::addColumn<QString>("read");
    QTest::newRow("leading zero") << "0815" << false << "0815";
    QTest::newRow("trailing zero") << "12.50" << false << "12.50";
    QTest::newRow("exponent") << "1e3" << false << "1e3";
    QTest::newRow("old file, text") << "bench 3" << true << "bench 3";
    QTest::newRow("old file, number") << "12.50" << true << "12.5"; // stored as a number long ago
}

void MeasurementFileTest::notesKeepTheirText()
{
    QFETCH(QString, note);
    QFETCH(bool, oldDeclaration);
    QFETCH(QString, read);
    Fixture f;
    const QString path = f.file("m.mes");
    f.ctx.state.notes = note;
    f.ctx.state.headline = "0042";
    f.writeTraceFile();
    if (oldDeclaration) {
        sqlite3(path, "pragma writable_schema = on; update sqlite_master set sql = "
                      "replace(sql, '\"note\" TEXT', '\"note\" MEMO') where name = 'Settings'");
        sqlite3(path, "update settings set note = '" + note + "'");
        QCOMPARE(sqlite3(path, "select type from pragma_table_info('Settings') where name = 'note'"), QStringList("MEMO"));
    }
    f.ctx.state.notes.clear();
    QCOMPARE(readMeasurementFile(f.ctx), QString());
    QCOMPARE(f.ctx.state.notes, read);
    QCOMPARE(f.ctx.state.headline, QString("0042"));
}

void MeasurementFileTest::refusedFiles_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("reason"); // what the text says after the file's name
    QTest::newRow("missing") << "missing" << " is no measurement file: it does not exist";
    QTest::newRow("text") << "text" << " is no measurement file: file is not a database";
    QTest::newRow("random bytes") << "random bytes" << " is no measurement file: file is not a database";
    QTest::newRow("settings dropped") << "settings dropped" << " is no measurement file: it has no table Settings";
    QTest::newRow("truncated") << "truncated" << " is damaged: database disk image is malformed";
    QTest::newRow("named pipe") << "named pipe" << " is no measurement file: it is no regular file";
    QTest::newRow("link to /dev/zero") << "link to /dev/zero" << " is no measurement file: it is no regular file";
    QTest::newRow("recursive view") << "recursive view" << " is no measurement file: it has no table Measurement";
    QTest::newRow("damaged page") << "damaged page" << " is damaged: database disk image is malformed";
}

void MeasurementFileTest::refusedFiles()
{
    QFETCH(QString, kind);
    QFETCH(QString, reason);
    Fixture f;
    AppState &s = f.ctx.state;
    const QString path = f.file("m.mes");
    writeRefusedFile(f, path, kind);
    s.pointCount = 5;
    s.headline = "kept";
    s.chart.stopFrequency = 77.0f;
    QCOMPARE(readMeasurementFile(f.ctx), path + reason);
    QCOMPARE(s.headline, QString("kept"));
    QCOMPARE(s.traceFrozen, quint8(0));
    QCOMPARE(f.entered, QStringList());
    QCOMPARE(s.pointCount, 5);
    QCOMPARE(s.chart.stopFrequency, 77.0f);
    QString fault;
    QVERIFY(!describeMeasurementFile(path, &fault));
    QCOMPARE(fault, path + reason);
}

// A save killed at any moment leaves the previous file whole, or the new one.
void MeasurementFileTest::killedSaveKeepsPreviousFile()
{
    Fixture f;
    const QString path = f.file("killed.mes");
    f.ctx.state.measurementFileName = path;
    f.ctx.state.pointCount = 3;
    QCOMPARE(saveTraceMeasurement(f.ctx), QString());
    for (int k = 0; k < 8; ++k) {
        QProcess writer;
        writer.start(QCoreApplication::applicationDirPath() + "/measurement_writer", {path});
        QVERIFY(writer.waitForReadyRead(10000));
        QThread::usleep(k * 1700); // spreads the kills over one save
        writer.kill();
        QVERIFY(writer.waitForFinished(10000));
        QCOMPARE(sqlite3(path, "pragma integrity_check"), QStringList("ok"));
        const QStringList counts = sqlite3(path, "select (select count(*) from settings), count(*) from measurement");
        QVERIFY2(counts == QStringList("1|3") || counts == QStringList("1|2001"), qPrintable(counts.join(',')));
    }
}

QTEST_GUILESS_MAIN(MeasurementFileTest)
#include "measurement_file_test.moc"
