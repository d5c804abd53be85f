#include "support/no_port.h"
#include "core/clock.h"
#include "core/context.h"
#include "core/scripted_prompts.h"
#include "store/measurement_csv.h"
#include "store/measurement_file.h"
#include "store/sqlite_file.h"

#include <QDir>
#include <QFile>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QTest>

namespace {

const QString kEmcHeader = "Frequency_MHz,Selected_for_step,Average_dBm,Maxhold_dBm,QPeak_dBm,Memory_dBm,"
                           "Ambient_H_dBm,Ambient_V_dBm,V_Memory_dBm,H_Memory_dBm,H_Average_dBm,H_Maxhold_dBm,"
                           "H_QPeak_dBm,V_Average_dBm,V_Maxhold_dBm,V_QPeak_dBm";
const QString kMesHeader = "Frequency_MHz,Sample_dBm,Average_dBm,Maxhold_dBm,Memory_dBm";

struct Fixture {
    Fixture() : ctx(Platform{std::make_unique<VirtualClock>(), std::make_unique<ScriptedPrompts>(), std::make_unique<NoPort>()})
    {
        ctx.dataFolder = dir.path();
    }
    QString file(const QString &name) const { return dir.filePath(name); }

    // An empty measurement file with a settings row of the given mode (0: .mes).
    QString emptyFile(const QString &name, int mode)
    {
        ctx.state.measurementFileName = file(name);
        if (!createMeasurementFile(ctx))
            return {};
        SqliteFile f(file(name));
        QSqlQuery q(f.handle());
        q.exec(QString("insert into Settings (Vernr, Mode) values (%1, %2)").arg(mode ? 102 : 100).arg(mode));
        return file(name);
    }

    QTemporaryDir dir;
    Context ctx;
};

QStringList csvLines(const QString &path)
{
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly))
        return {};
    return QString::fromUtf8(f.readAll()).split('\n', Qt::SkipEmptyParts);
}

} // namespace

class MeasurementCsvTest : public QObject {
    Q_OBJECT

private slots:
    void mesExportReadsBackAsStoredFloats_data();
    void mesExportReadsBackAsStoredFloats();
    void cellsFollowTheEmptyRule_data();
    void cellsFollowTheEmptyRule();
    void failedExportKeepsTheOldCsv_data();
    void failedExportKeepsTheOldCsv();
};

void MeasurementCsvTest::mesExportReadsBackAsStoredFloats_data()
{
    QTest::addColumn<float>("start");
    QTest::addColumn<float>("stop");
    QTest::newRow("0.15-30 MHz") << 0.15f << 30.0f;
    QTest::newRow("0-1000 MHz") << 0.0f << 1000.0f;
    QTest::newRow("1234.567-2999.999 MHz") << 1234.567f << 2999.999f;
}

void MeasurementCsvTest::mesExportReadsBackAsStoredFloats()
{
    QFETCH(float, start);
    QFETCH(float, stop);
    Fixture f;
    AppState &s = f.ctx.state;
    s.chart.startFrequency = start;
    s.chart.stopFrequency = stop;
    // Counts over the whole 16-bit range, both ends included.
    for (int i = 1; i <= s.pointCount; ++i) {
        s.traces.sampleTrace[i] = qint16(i == 1 ? -32768 : i == 2 ? 32767 : (i * 7919) % 65536 - 32768);
        s.traces.averageTrace[i] = qint16(-i);
        s.traces.maxholdTrace[i] = qint16((i * 31) % 400 - 250);
        s.traces.memoryTrace[i] = qint16(i % 3 - 1);
    }
    s.measurementFileName = f.file("trace.mes");
    QVERIFY(createMeasurementFile(f.ctx));
    writeTraceMeasurement(f.ctx);

    QCOMPARE(exportMeasurementCsv(f.file("trace.mes"), f.file("trace.csv")), QString());
    const QStringList lines = csvLines(f.file("trace.csv"));
    QCOMPARE(lines.value(0), kMesHeader);
    QCOMPARE(lines.size(), 1 + s.pointCount);
    SqliteFile file(f.file("trace.mes"));
    QSqlQuery q(file.handle());
    QVERIFY(q.exec("select Frequency, Sample_dBmW, Average_dBmW, Maxhold_dBmW, Memory_dBmW from Measurement "
                   "order by Frequency"));
    for (int row = 1; q.next(); ++row) {
        const QStringList cells = lines[row].split(',');
        QCOMPARE(cells.size(), 5);
        for (int c = 0; c < 5; ++c)
            QVERIFY2(float(cells[c].toDouble()) == q.value(c).toFloat(), qPrintable(lines[row]));
    }
}

void MeasurementCsvTest::cellsFollowTheEmptyRule_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<QString>("column");
    QTest::addColumn<QVariant>("stored");
    QTest::addColumn<QString>("header");
    QTest::addColumn<QString>("cell");
    QTest::newRow("emc level") << 1 << "Average_dBmW" << QVariant(-63.2f) << "Average_dBm" << "-63.2";
    QTest::newRow("emc nothing measured") << 2 << "H_QPeak_dBmW" << QVariant(-1000.0) << "H_QPeak_dBm" << "";
    QTest::newRow("emc just above nothing") << 2 << "memory_dBmW" << QVariant(-999.6f) << "Memory_dBm" << "-999.6";
    QTest::newRow("emc null") << 2 << "V_Maxhold_dBmW" << QVariant() << "V_Maxhold_dBm" << "";
    QTest::newRow("emc text in a level") << 2 << "Ambient_V_dBmW" << QVariant("x") << "Ambient_V_dBm" << "";
    QTest::newRow("emc selected") << 2 << "Sample_dBmW" << QVariant(1.0) << "Selected_for_step" << "1";
    QTest::newRow("emc not selected") << 2 << "Sample_dBmW" << QVariant(0.0) << "Selected_for_step" << "0";
    QTest::newRow("emc not yet marked") << 1 << "Sample_dBmW" << QVariant(-1000.0) << "Selected_for_step" << "";
    QTest::newRow("emc last column") << 2 << "V_QPeak_dBmW" << QVariant(0.1f) << "V_QPeak_dBm" << "0.1";
    QTest::newRow("mes -1000 is a level") << 0 << "Sample_dBmW" << QVariant(-1000.0) << "Sample_dBm" << "-1000";
    QTest::newRow("mes lowest count") << 0 << "Maxhold_dBmW" << QVariant(-13107.2f) << "Maxhold_dBm" << "-13107.2";
    QTest::newRow("mes beyond a float") << 0 << "memory_dBmW" << QVariant(1e300) << "Memory_dBm" << "";
}

// Two rows stored out of frequency order: the tested value in the second, everything else empty.
void MeasurementCsvTest::cellsFollowTheEmptyRule()
{
    QFETCH(int, mode);
    QFETCH(QString, column);
    QFETCH(QVariant, stored);
    QFETCH(QString, header);
    QFETCH(QString, cell);
    Fixture f;
    const QString path = f.emptyFile("m.emc", mode);
    {
        SqliteFile file(path);
        QSqlQuery q(file.handle());
        QVERIFY(q.prepare("insert into Measurement (Frequency, " + column + ") values (?, ?)"));
        for (const auto &[frequency, value] : {std::pair{30.5, stored}, std::pair{12.25, QVariant()}}) {
            q.addBindValue(frequency);
            q.addBindValue(value);
            QVERIFY(q.exec());
        }
    }
    QString fault;
    const auto csv = measurementCsv(path, &fault);
    QVERIFY2(csv, qPrintable(fault));
    const QStringList lines = QString::fromUtf8(*csv).split('\n');
    QCOMPARE(lines.size(), 4); // ends with a line break
    QCOMPARE(lines[0], mode ? kEmcHeader : kMesHeader);
    QStringList expected(lines[0].count(',') + 1, QString());
    expected[0] = "12.25";
    QCOMPARE(lines[1], expected.join(','));
    const qsizetype at = lines[0].split(',').indexOf(header);
    QVERIFY(at > 0);
    expected[0] = "30.5";
    expected[at] = cell;
    QCOMPARE(lines[2], expected.join(','));
}

void MeasurementCsvTest::failedExportKeepsTheOldCsv_data()
{
    QTest::addColumn<QString>("source");
    QTest::addColumn<QString>("csv");
    QTest::addColumn<QString>("reason");
    QTest::newRow("missing folder") << "m.mes" << "gone/m.csv" << "Cannot save <csv>: the folder does not exist";
    QTest::newRow("read-only csv") << "m.mes" << "kept.csv" << "Cannot save <csv>: the file is read-only";
    QTest::newRow("csv is the measurement") << "m.mes" << "m.mes" << "Cannot save <csv>: it is the measurement file exported";
    QTest::newRow("no measurement file") << "kept.csv" << "m.csv" << "<source> is no measurement file: file is not a database";
}

void MeasurementCsvTest::failedExportKeepsTheOldCsv()
{
    QFETCH(QString, source);
    QFETCH(QString, csv);
    QFETCH(QString, reason);
    Fixture f;
    f.emptyFile("m.mes", 0);
    QFile kept(f.file("kept.csv"));
    QVERIFY(kept.open(QIODevice::WriteOnly) && kept.write("an earlier export\n") > 0);
    kept.close();
    QVERIFY(kept.setPermissions(QFile::ReadOwner));
    const QByteArray measurement = [&] { QFile m(f.file("m.mes")); m.open(QIODevice::ReadOnly); return m.readAll(); }();

    QCOMPARE(exportMeasurementCsv(f.file(source), f.file(csv)), reason.replace("<source>", f.file(source)).replace("<csv>", f.file(csv)));
    QCOMPARE(csvLines(f.file("kept.csv")), QStringList("an earlier export"));
    QFile m(f.file("m.mes"));
    QVERIFY(m.open(QIODevice::ReadOnly));
    QCOMPARE(m.readAll(), measurement);
    QCOMPARE(QDir(f.dir.path()).entryList(QDir::Files), QStringList({"kept.csv", "m.mes"})); // nothing left beside
}

QTEST_GUILESS_MAIN(MeasurementCsvTest)
#include "measurement_csv_test.moc"
