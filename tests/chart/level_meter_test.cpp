// The level meter under cursor A: which stored row it shows, and the bars, lines and texts it
// draws for that row.

#include "chart_fixture.h"

#include "chart/level_meter.h"
#include "support/measurement_fixture.h"

#include <QTemporaryDir>

namespace {

// The columns of the bars in the meter's order (x 1, 5, 10, ... 41).
const QStringList kBarColumns = {"H_memory_dBmW",  "V_memory_dBmW",  "H_Average_dBmW", "V_Average_dBmW",
                                 "H_QPeak_dBmW",   "V_QPeak_dBmW",   "H_Maxhold_dBmW", "V_Maxhold_dBmW",
                                 "Ambient_H_dBmW", "Ambient_V_dBmW"};

// Three rows at 100, 200 and 300 MHz. With the level window -120..-20 dB: at 200 MHz the
// vertical sweep is NULL, the horizontal average lies below the window and the vertical one on
// its floor, so those three columns get no bar; at 300 MHz only the ambient columns hold a level.
QVariantList row(int i)
{
    const QVariant none;
    switch (i) {
    case 0: return {100.0, -30.0, -31.0, -32.0, -33.0, -34.0, -35.0, -36.0, -37.0, -38.0, -39.0};
    case 1: return {200.0, -50.0, none, -130.0, -120.0, -60.0, -61.3, -40.0, -45.0, -100.0, -110.0};
    default: return {300.0, none, none, none, none, none, none, none, none, -90.0, -95.0};
    }
}

QList<int> barXs(const RecordingCanvas &graph)
{
    QList<int> xs;
    for (const Operation &o : graph.boxes())
        xs.append(int(o.x1));
    return xs;
}

} // namespace

class LevelMeterTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QVERIFY(dir_.isValid());
        path_ = dir_.filePath(QStringLiteral("run.emc"));
        QVERIFY(writeMeasurementTable(path_, QStringList{"Frequency"} + kBarColumns, 3, row));
    }
    void rowUnderCursorA_data();
    void rowUnderCursorA();
    void barsOfARow();

private:
    void prepare(ChartFixture &f)
    {
        AppState &s = f.state();
        s.measurementFileName = path_;
        s.emcMode = 2;
        s.chart.startFrequency = 100.0f;
        s.chart.stopFrequency = 300.0f;
        s.chart.grafikMin = -300;
        s.chart.grafikMax = -50;
    }

    QTemporaryDir dir_;
    QString path_;
};

void LevelMeterTest::rowUnderCursorA_data()
{
    QTest::addColumn<qint32>("cursorAX");
    QTest::addColumn<bool>("zoomOn");
    QTest::addColumn<quint8>("emcMode");
    QTest::addColumn<QString>("label");
    QTest::addColumn<QList<int>>("bars");
    const QList<int> all = {1, 5, 10, 14, 19, 23, 28, 32, 37, 41};
    const QList<int> at200 = {1, 19, 23, 28, 32, 37, 41};
    QTest::newRow("on a row") << 500000 << false << quint8(2) << "Measure-Freq.: 200.000MHz" << at200;
    QTest::newRow("between rows: the next one up") << 250000 << false << quint8(2) << "Measure-Freq.: 200.000MHz"
                                                   << at200;
    QTest::newRow("zoomed: 250 MHz + half of 100 MHz") << 500000 << true << quint8(2) << "Measure-Freq.: 300.000MHz"
                                                       << QList<int>{37, 41};
    // In normal mode with zero span every x stands for the start frequency.
    QTest::newRow("zero span") << 900000 << false << quint8(0) << "Measure-Freq.: 100.000MHz" << all;
    QTest::newRow("above the last row") << 1000000 << true << quint8(2) << "" << QList<int>{};
}

void LevelMeterTest::rowUnderCursorA()
{
    QFETCH(qint32, cursorAX);
    QFETCH(bool, zoomOn);
    QFETCH(quint8, emcMode);
    QFETCH(QString, label);
    QFETCH(QList<int>, bars);
    ChartFixture f;
    prepare(f);
    AppState &s = f.state();
    s.emcMode = emcMode;
    s.analyser.span = 0;
    s.chart.cursorAX = cursorAX;
    s.chart.zoomOn = zoomOn;
    s.chart.zoomStart = 250.0f;
    s.chart.zoomSpan = 100.0f;
    RecordingCanvas graph;
    QCOMPARE(refreshLevelmeter(f.ctx, graph).value_or("no file"), label);
    QCOMPARE(barXs(graph), bars);
    // The captions stand under the bars whether a row was found or not.
    QCOMPARE(graph.printed().mid(0, 10),
             QStringList({"S_H", "S_V", "A_H", "A_V", "Q_H", "Q_V", "P_H", "P_V", "a_H", "a_V"}));
}

void LevelMeterTest::barsOfARow()
{
    ChartFixture f;
    prepare(f);
    f.state().analyser.unitOffset = 107.0f; // dBuV
    f.state().chart.cursorAX = 500000;
    RecordingCanvas graph;
    QVERIFY(refreshLevelmeter(f.ctx, graph));

    // Top 1.2 x grafikMax, height 1.1 x (grafikMin - top): y grows upward over 46 units.
    const Operation scale = graph.ofKind(Op::Scale).first();
    QCOMPARE(QList<double>({scale.x1, scale.y1, scale.x2}), QList<double>({0, -60, 46}));
    QCOMPARE(scale.y2, -264.0);
    const Operation sweep = graph.boxes().first();
    QCOMPARE(QList<double>({sweep.x1, sweep.y1, sweep.x2, sweep.y2}), QList<double>({1, -125, 5, -300}));
    QCOMPARE(sweep.colour, f.colour(MemoryColour));
    QCOMPARE(graph.boxes()[1].colour, f.colour(QPeakColour));
    QCOMPARE(graph.boxes()[5].colour, f.colour(AmbientHColour));
    const Operation top = graph.lines().first();
    QCOMPARE(QList<double>({top.x1, top.y1, top.x2, top.y2}), QList<double>({1, -125, 5, -125}));
    QCOMPARE(top.colour, 0u);
    // The level in the shown unit, 24 units (a tenth of the window) above the bar.
    const QList<Operation> texts = graph.texts().mid(10);
    QCOMPARE(texts.size(), 7);
    QCOMPARE(texts[0].text, "57.0");
    QCOMPARE(QList<double>({texts[0].x1, texts[0].y1}), QList<double>({1, -101}));
    QCOMPARE(texts[2].text, "45.7"); // -61.3 dBmW, its bar at -153
    QCOMPARE(graph.boxes()[2].y1, -153.0);
    QCOMPARE(texts[2].colour, 0u);

    f.state().measurementFileName.clear();
    graph.forget();
    QVERIFY(!refreshLevelmeter(f.ctx, graph));
    QVERIFY(graph.operations.isEmpty());
}

QTEST_MAIN(LevelMeterTest)
#include "level_meter_test.moc"
