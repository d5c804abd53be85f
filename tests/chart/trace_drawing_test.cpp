#include "chart_fixture.h"
#include "support/measurement_fixture.h"

#include "store/sqlite_file.h"

#include <QSqlQuery>
#include <QTemporaryDir>

#include <sys/stat.h>

namespace {

// Lines of Picture1 in a colour as (x1, y1, x2, y2).
QList<QList<double>> segments(const RecordingCanvas &picture, quint32 colour)
{
    QList<QList<double>> found;
    for (const Operation &o : picture.lines(colour))
        found.append({o.x1, o.y1, o.x2, o.y2});
    return found;
}

} // namespace

class TraceDrawingTest : public QObject {
    Q_OBJECT

private slots:
    void liveSweep();
    void liveZeroSpan();
    void thinning_data();
    void thinning();
    void storedLines();
    void emcBars_data();
    void emcBars();
    void storedZeroSpan();
    void storedOutOfOrder();
    void frameOnly_data();
    void frameOnly();

private:
    // A stored chart over a measurement file of the given rows.
    void storeRows(ChartFixture &f, const QStringList &columns, int count, const std::function<QVariantList(int)> &row,
                   const QStringList &tableColumns = kMeasurementColumns)
    {
        const QString path = dir_.filePath(QStringLiteral("m%1.emc").arg(++files_));
        QVERIFY(writeMeasurementTable(path, columns, count, row, tableColumns));
        f.state().traceFrozen = 1;
        f.state().measurementFileName = path;
        f.view().grafikMin = -250;
        f.view().grafikMax = 0;
    }

    QTemporaryDir dir_;
    int files_ = 0;
};

// All visible traces advance point by point; the peak is the highest point of index 2 and up.
void TraceDrawingTest::liveSweep()
{
    ChartFixture f;
    AppState &s = f.state();
    s.pointCount = 4;
    s.viewMaxhold = 0;
    s.viewQPeak = 1; // no live array: never drawn live
    f.view().startFrequency = -100;
    f.view().stopFrequency = 300;
    s.traces.sampleTrace = {0, 500, -10, -20, -30};
    s.traces.averageTrace = {0, -1, -2, -3, -4};
    s.traces.maxholdTrace = {0, 0, 900, 900, 900};
    s.traces.memoryTrace = {0, -5, 40, -6, -7};
    s.traces.sampleTime = QDateTime(QDate(2024, 5, 1), QTime(12, 34, 56));
    f.paint();
    // Step 400 / 4 = 100 MHz: the stretch from -100 to 0 is dropped, the last point is 200 MHz.
    QCOMPARE(segments(f.picture1, f.colour(SampleColour)),
             (QList<QList<double>>{{250000, -10, 500000, -20}, {500000, -20, 750000, -30}}));
    QCOMPARE(segments(f.picture1, f.colour(MemoryColour)),
             (QList<QList<double>>{{250000, 40, 500000, -6}, {500000, -6, 750000, -7}}));
    QList<quint32> order;
    for (const Operation &o : f.picture1.lines())
        if (o.x1 == 250000 && o.x2 == 500000)
            order << o.colour;
    QCOMPARE(order, (QList<quint32>{f.colour(SampleColour), f.colour(AverageColour), f.colour(MemoryColour)}));
    QCOMPARE(f.view().peakLevel, qint16(40));
    QCOMPARE(f.view().peakFrequency, 0.0f);
    QVERIFY(f.controls.liveButtonsEnabled);
    QCOMPARE(f.controls.caption, QStringLiteral("   Sam:12:34:56   Ave:   Mem:"));
}

void TraceDrawingTest::liveZeroSpan()
{
    ChartFixture f;
    AppState &s = f.state();
    s.analyser.span = 0;
    s.pointCount = 3;
    s.viewAverage = s.viewMemoryB = 0;
    s.traces.sampleTrace = {0, 7, 8, 9};
    f.paint();
    QCOMPARE(segments(f.picture1, f.colour(SampleColour)),
             (QList<QList<double>>{{0, 7, 1000000.0 / 3, 8}, {1000000.0 / 3, 8, 2000000.0 / 3, 9}}));
    QCOMPARE(f.view().peakLevel, qint16(9));
    QCOMPARE(f.view().peakFrequency, float(2000000.0 / 3));
}

void TraceDrawingTest::thinning_data()
{
    QTest::addColumn<int>("rows");
    QTest::addColumn<quint8>("allPoints");
    QTest::addColumn<int>("factor");
    QTest::addColumn<int>("segmentCount");
    QTest::newRow("2749 rows point by point") << 2749 << quint8(0) << 5 << 2748;
    // 2749 rows after the first, 7 to a point: 392 groups and one of 5 rows.
    QTest::newRow("2750 rows thinned") << 2750 << quint8(0) << 6 << 393;
    QTest::newRow("2750 rows, all points") << 2750 << quint8(1) << 6 << 2749;
}

void TraceDrawingTest::thinning()
{
    QFETCH(int, rows);
    ChartFixture f;
    f.state().viewAverage = f.state().viewMemoryB = f.state().viewQPeak = 0;
    f.view().paintAllPoints = fetched<quint8>("allPoints");
    const int spike = 1000;
    storeRows(f, {"Frequency", "Sample_dBmW"}, rows,
              [](int i) { return QVariantList{i * 0.25, i == spike ? -10.0 : -80.0}; });
    f.paint();
    QTEST(int(f.view().thinFactor), "factor");
    const auto lines = segments(f.picture1, f.colour(SampleColour));
    QTEST(int(lines.size()), "segmentCount");
    // A thinned chart keeps the peak.
    QVERIFY(std::any_of(lines.begin(), lines.end(), [](const QList<double> &l) { return l[3] == -25; }));
}

// Upper-case names, a column of the selection, NULL and a missing column, halves to even of
// the single, and the end at the first row beyond the stop frequency.
void TraceDrawingTest::storedLines()
{
    ChartFixture f;
    f.state().viewMemoryB = f.state().viewQPeak = 0;
    f.state().viewMaxhold = 1;
    f.view().paintSelection = 1;
    f.view().stopFrequency = 400;
    f.state().measurementDate = QDateTime(QDate(2024, 5, 1), QTime(8, 0, 0));
    storeRows(f, {"FREQUENCY", "SAMPLE_DBMW", "h_average_DBMW", "Average_dBmW"}, 5,
              [](int i) {
                  const QVariantList values[] = {{100, 1.0, -1.0, -50}, {200, QVariant(), 3.0, -50},
                                                 {300, -3.0, -3.0, -50}, {400, -5.0, 52.2, -50}, {401, -9, -9, -9}};
                  return values[i];
              },
              {"FREQUENCY", "SAMPLE_DBMW", "Average_dBmW", "h_average_DBMW"});
    f.paint();
    QCOMPARE(segments(f.picture1, f.colour(SampleColour)),
             (QList<QList<double>>{{250000, 2, 500000, 2}, {500000, 2, 750000, -8}, {750000, -8, 1000000, -12}}));
    QCOMPARE(segments(f.picture1, f.colour(AverageColour)),
             (QList<QList<double>>{{250000, -2, 500000, 8}, {500000, 8, 750000, -8}, {750000, -8, 1000000, 131}}));
    QCOMPARE(segments(f.picture1, f.colour(MaxholdColour)),
             (QList<QList<double>>{{250000, 0, 500000, 0}, {500000, 0, 750000, 0}, {750000, 0, 1000000, 0}}));
    QVERIFY(f.controls.caption.startsWith(QStringLiteral("Measure date: ")));
    QVERIFY(f.controls.caption.endsWith(QStringLiteral(" 08:00:00")));
    QVERIFY(!f.controls.liveButtonsEnabled);
    QCOMPARE(f.controls.memoryTraceCaption, QStringLiteral("Mem B"));
    QCOMPARE(f.view().peakLevel, qint16(-1000));
}

void TraceDrawingTest::emcBars_data()
{
    QTest::addColumn<quint8>("ambientH");
    QTest::addColumn<quint8>("ambientV");
    QTest::addColumn<quint8>("calc");
    QTest::addColumn<quint8>("viewAmbient");
    QTest::addColumn<int>("distance");
    QTest::addColumn<QList<double>>("barXs");
    QTest::addColumn<int>("ambientLines");
    // Max hold 50, 20, 60, 0, 0 dB at 10..50 MHz, 40 MHz not measured, ambient H 30 dB, ambient V
    // 45 dB; distance 6 dB: threshold 36 dB on H, 51 dB on V.
    const quint8 on = 1, off = 0;
    QTest::newRow("above the ambient") << on << off << on << on << 6 << QList<double>{10000, 30000} << 4;
    QTest::newRow("calc without ambient flags") << off << off << on << on << 6 << QList<double>{10000, 20000, 30000}
                                                << 0;
    QTest::newRow("no calc") << on << off << off << off << 6 << QList<double>{10000, 20000, 30000} << 0;
    QTest::newRow("the greater ambient counts") << on << on << on << off << 6 << QList<double>{30000} << 0;
    QTest::newRow("vertical alone") << off << on << on << on << 6 << QList<double>{30000} << 0;
    QTest::newRow("below the ambient by a negative distance") << on << off << on << off << -12
                                                              << QList<double>{10000, 20000, 30000} << 0;
}

void TraceDrawingTest::emcBars()
{
    ChartFixture f;
    AppState &s = f.state();
    s.emcMode = 2;
    s.viewSample = s.viewAverage = s.viewQPeak = 0;
    s.viewMaxhold = 1;
    s.emcViewAmbientH = fetched<quint8>("ambientH");
    s.emcViewAmbientV = fetched<quint8>("ambientV");
    s.emcCalcAmbient = fetched<quint8>("calc");
    s.emcViewAmbient = fetched<quint8>("viewAmbient");
    s.emcAmbientDistance = qint16(fetched<int>("distance"));
    storeRows(f, {"Frequency", "Sample_dBmW", "Maxhold_dBmW", "memory_dBmW", "Ambient_H_dBmW", "Ambient_V_dBmW"}, 5,
              [](int i) {
                  const double maxhold[] = {50, 20, 60, 0, 0};
                  return QVariantList{10 * (i + 1), i == 3 ? 0 : 1, maxhold[i], -20, 30, 45};
              });
    f.paint();
    QList<double> xs;
    for (const Operation &o : f.picture1.lines(f.colour(MaxholdColour))) {
        QCOMPARE(o.x1, o.x2);
        QCOMPARE(o.y1, -250.0);
        xs << o.x1;
    }
    QTEST(xs, "barXs");
    QTEST(int(f.picture1.lines(f.colour(AmbientHColour)).size()), "ambientLines");
    QCOMPARE(f.picture1.lines(f.colour(MemoryColour)).size(), 4);
    QCOMPARE(f.controls.memoryTraceCaption, QStringLiteral("Sweep"));
}

void TraceDrawingTest::storedZeroSpan()
{
    ChartFixture f;
    f.state().analyser.span = 0;
    f.state().viewSample = f.state().viewMemoryB = f.state().viewQPeak = 0;
    f.view().paintSelection = 2; // no effect in zero span
    storeRows(f, {"Frequency", "Average_dBmW", "V_Average_dBmW"}, 4,
              [](int i) { return QVariantList{433.92, -4.0 * i, 99}; });
    f.paint();
    QCOMPARE(segments(f.picture1, f.colour(AverageColour)),
             (QList<QList<double>>{{0, 0, 250000, -10}, {250000, -10, 500000, -20}, {500000, -20, 750000, -30}}));
}

// Rows written out of frequency order are still drawn in frequency order; a row without a
// frequency comes first and keeps the frequency variable at 0.
void TraceDrawingTest::storedOutOfOrder()
{
    ChartFixture f;
    f.state().viewAverage = f.state().viewMemoryB = f.state().viewQPeak = 0;
    storeRows(f, {"Frequency", "Sample_dBmW"}, 4, [](int i) {
        const double frequency[] = {300, 100, 200, 0};
        return i == 3 ? QVariantList{QVariant(), -5} : QVariantList{frequency[i], -frequency[i] / 10};
    });
    f.paint();
    QCOMPARE(segments(f.picture1, f.colour(SampleColour)),
             (QList<QList<double>>{{0, -12, 100000, -25}, {100000, -25, 200000, -50}, {200000, -50, 300000, -75}}));
}

void TraceDrawingTest::frameOnly_data()
{
    // What the file on display has become since it was loaded: the paint neither blocks nor spins.
    QTest::addColumn<QString>("file");
    QTest::newRow("empty table") << "empty";
    QTest::newRow("no file") << "missing";
    QTest::newRow("named pipe") << "pipe";
    QTest::newRow("recursive view") << "view";
}

void TraceDrawingTest::frameOnly()
{
    ChartFixture f;
    f.state().viewMaxhold = 1;
    storeRows(f, {"Frequency"}, 0, [](int) { return QVariantList{}; });
    const QString file = fetched<QString>("file");
    const QString path = f.state().measurementFileName;
    if (file == "missing")
        f.state().measurementFileName = dir_.filePath(QStringLiteral("missing.mes"));
    if (file == "pipe")
        QVERIFY(QFile::remove(path) && mkfifo(QFile::encodeName(path).constData(), 0600) == 0);
    if (file == "view") {
        SqliteFile db(path);
        QSqlQuery q(db.handle());
        QVERIFY(q.exec("drop table Measurement") && q.exec("create view loop as select * from Measurement")
                && q.exec("create view Measurement as select * from loop"));
    }
    f.paint();
    for (ColourRole role : {SampleColour, AverageColour, MaxholdColour, QPeakColour, MemoryColour})
        QVERIFY(f.picture1.lines(f.colour(role)).isEmpty());
    QVERIFY(!f.picture1.lines(f.colour(GridColour)).isEmpty());
    QCOMPARE(f.view().paintBusy, quint8(0));
}

QTEST_MAIN(TraceDrawingTest)
#include "trace_drawing_test.moc"
