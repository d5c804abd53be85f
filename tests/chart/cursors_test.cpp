// Cursors A and B: what they draw, how the mouse takes them, what the readouts say, and the three
// buttons against the simulated analyser.

#include "chart/cursors.h"
#include "chart_fixture.h"
#include "support/sim_bench.h"

#include "link/commands.h"
#include "signal/trace_store.h"

namespace {

// The lines of the cursors on Picture1: (x1, y1, x2, y2) in their pen.
struct CursorLine {
    double x1, y1, x2, y2;
    int mode, style;
    bool operator==(const CursorLine &) const = default;
};

QList<CursorLine> cursorLines(const ChartFixture &f, ColourRole role)
{
    QList<CursorLine> found;
    for (const Operation &o : f.picture1.lines(f.colour(role)))
        found.append({o.x1, o.y1, o.x2, o.y2, o.mode, o.style});
    return found;
}

// A chart on the simulated K320-A, read once over its whole window of 0 to 1000 MHz.
struct SimChart {
    SimChart() : picture1(1000, 500), picture2(50, 500), picture3(1000, 30), painter(ctx(), picture1, picture2, picture3, controls)
    {
        attachSignalProcessing(ctx());
        sim.online();
        readAllSettings(ctx());
        readTraces(ctx());
    }
    Context &ctx() { return *sim.ctx; }

    SimBench sim;
    GrafikControls controls;
    RecordingCanvas picture1, picture2, picture3;
    ChartPainter painter;
};

} // namespace

class CursorsTest : public QObject {
    Q_OBJECT

private slots:
    void paintDrawsOnlyTheNewPositions();
    void dragging_data();
    void dragging();
    void crossedWindowShowsNoLevels();
    void readouts_data();
    void readouts();
    void peakInZoomedWindow();
    void centreCommands();
};

// After a paint the cursors are drawn once; a later draw first takes each away where it was.
void CursorsTest::paintDrawsOnlyTheNewPositions()
{
    ChartFixture f;
    f.view().grafikMin = -250;
    f.view().grafikMax = 0;
    f.view().cursorAX = 300000;
    f.view().cursorAY = -100;
    f.view().cursorBX = 1200000; // clamped to the right edge
    f.view().cursorBY = -50;
    f.paint();
    const auto mode = int(Canvas::NotXorPen);
    QCOMPARE(cursorLines(f, CursorAColour), (QList<CursorLine>{{300000, 0, 300000, -250, mode, Canvas::Dashed},
                                                               {0, -100, 1000000, -100, mode, Canvas::Dashed}}));
    QCOMPARE(cursorLines(f, CursorBColour), (QList<CursorLine>{{1000000, 0, 1000000, -250, mode, Canvas::Dotted},
                                                               {0, -50, 1000000, -50, mode, Canvas::Dotted}}));
    QCOMPARE(f.picture1.mode, int(Canvas::CopyPen));
    QCOMPARE(f.picture1.style, int(Canvas::Solid));

    f.picture1.forget();
    f.view().cursorAX = 400000;
    f.painter.cursors().paintCursors();
    const QList<CursorLine> a = cursorLines(f, CursorAColour);
    QCOMPARE(a.size(), 4);
    QCOMPARE(a[0].x1, 300000.0); // taken away where it was
    QCOMPARE(a[2].x1, 400000.0);
    QCOMPARE(cursorLines(f, CursorBColour).size(), 4);
}

void CursorsTest::dragging_data()
{
    QTest::addColumn<QList<QList<double>>>("moves"); // buttons, x, y
    QTest::addColumn<qint32>("aX");
    QTest::addColumn<qint32>("bX");
    QTest::addColumn<int>("pointer");
    const int left = LeftButton;
    QTest::newRow("both near: A is taken") << QList<QList<double>>{{0, 505000, -80}, {double(left), 505000, -80}}
                                           << 505000 << 508000 << int(MousePointer::Grip);
    QTest::newRow("near B only") << QList<QList<double>>{{double(left), 515000, -80}} << 500000 << 515000
                                 << int(MousePointer::Grip);
    QTest::newRow("far from both: nothing moves") << QList<QList<double>>{{double(left), 700000, -80}} << 500000
                                                  << 508000 << int(MousePointer::Cross);
    QTest::newRow("at a hundredth of the width A is far")
        << QList<QList<double>>{{double(left), 490000, -80}} << 500000 << 508000 << int(MousePointer::Cross);
    QTest::newRow("a grabbed cursor follows a far mouse")
        << QList<QList<double>>{{double(left), 515000, -80}, {double(left), 900000.4, -90.6}} << 500000 << 900000
        << int(MousePointer::Grip);
    QTest::newRow("let go, the far mouse moves nothing")
        << QList<QList<double>>{{double(left), 515000, -80}, {0, 900000, -90}, {double(left), 900000, -90}}
        << 500000 << 515000 << int(MousePointer::Cross);
}

void CursorsTest::dragging()
{
    QFETCH(QList<QList<double>>, moves);
    ChartFixture f;
    f.view().grafikMin = -250;
    f.view().grafikMax = 0;
    f.view().cursorAX = 500000;
    f.view().cursorBX = 508000;
    f.paint();
    MousePointer pointer = MousePointer::Keep;
    for (const QList<double> &move : moves)
        pointer = f.painter.cursors().mouseMove(int(move[0]), move[1], move[2]);
    QCOMPARE(f.view().cursorAX, fetched<qint32>("aX"));
    QCOMPARE(f.view().cursorBX, fetched<qint32>("bX"));
    QCOMPARE(int(pointer), fetched<int>("pointer"));
}

// Nothing read yet: the level window is crossed, the cursors sit on its upper edge.
void CursorsTest::crossedWindowShowsNoLevels()
{
    ChartFixture f;
    f.view().cursorAY = 500;
    f.view().cursorBY = -1500;
    f.paint();
    QCOMPARE(f.view().cursorAY, qint32(-1000));
    QCOMPARE(f.view().cursorBY, qint32(-1000));
    QCOMPARE((QStringList{f.controls.readouts.leva, f.controls.readouts.levb, f.controls.readouts.levab}),
             (QStringList{"---", "---", "---"}));
    QCOMPARE(f.controls.readouts.freqa, QStringLiteral("100.000M"));
}

void CursorsTest::readouts_data()
{
    QTest::addColumn<float>("stop");
    QTest::addColumn<bool>("zoom");
    QTest::addColumn<bool>("log");
    QTest::addColumn<qint32>("aX");
    QTest::addColumn<qint32>("bX");
    QTest::addColumn<QStringList>("texts"); // freqa, freqb, freqab
    // B's unit follows A: M with A below 1000 MHz, G with A above.
    QTest::newRow("A 999, B 1500") << 2000.f << false << false << 499500 << 750000
                                   << QStringList{"999.000M", "1500.000M", "501.000M"};
    QTest::newRow("A 1001, B 500") << 2000.f << false << false << 500500 << 250000
                                   << QStringList{"1.001G", "0.500G", "501.000M"};
    QTest::newRow("kHz") << 2.f << false << false << 100000 << 450000 << QStringList{"200.0K", "900.0K", "700.0K"};
    QTest::newRow("zoomed 100 to 200") << 1000.f << true << false << 440000 << 0
                                       << QStringList{"144.000M", "100.000M", "44.000M"};
    QTest::newRow("log axis 1 to 1000") << 1000.f << false << true << 0 << 1000000
                                        << QStringList{"1.000M", "2000.000M", "1.999G"};
}

void CursorsTest::readouts()
{
    QFETCH(float, stop);
    QFETCH(qint32, aX);
    QFETCH(qint32, bX);
    QFETCH(QStringList, texts);
    ChartFixture f;
    f.view().startFrequency = fetched<bool>("log") ? 1 : 0;
    f.view().stopFrequency = stop;
    f.view().zoomOn = fetched<bool>("zoom");
    f.view().zoomStart = 100;
    f.view().zoomSpan = 100;
    f.view().logAxis = fetched<bool>("log") ? 1 : 0;
    f.view().grafikMin = -250;
    f.view().grafikMax = 0;
    f.state().analyser.unitOffset = 107;
    f.view().cursorAX = aX;
    f.view().cursorBX = bX;
    f.view().cursorAY = -100;
    f.view().cursorBY = -150;
    f.paint();
    const CursorReadouts &r = f.controls.readouts;
    QCOMPARE((QStringList{r.freqa, r.freqb, r.freqab}), texts);
    QCOMPARE((QStringList{r.leva, r.levb, r.levab}), (QStringList{"67.0", "47.0", "20.0"}));
    QCOMPARE(f.view().cursorALevel, 67.0f);
}

// The live sweep keeps its true frequencies in the zoom window, so the peak there is the fifth
// harmonic of the device under test at 240 MHz (the 48 MHz clock, the peak of the whole sweep, lies
// outside it), and cursor A goes to it.
void CursorsTest::peakInZoomedWindow()
{
    SimChart c;
    ChartView &v = c.ctx().state.chart;
    QCOMPARE(v.stopFrequency, 1000.0f);
    c.ctx().state.viewMemoryB = c.ctx().state.viewAverage = 0; // the sample alone has been read
    v.zoomOn = true;
    v.zoomStart = 200;
    v.zoomSpan = 100;
    c.painter.paintChart();
    QVERIFY(qAbs(v.peakFrequency - 240.0f) < 1.0f);
    // The sample line peaks where 240 MHz lies in the zoom window, and nothing lies left of it.
    const quint32 sample = c.ctx().state.screenColours[SampleColour];
    double topX = -1, topY = -1e9;
    for (const Operation &o : c.picture1.lines(sample)) {
        QVERIFY(o.x1 >= 0 && o.x1 <= 1000000);
        if (o.x2 - o.x1 < 10000 && o.y2 > topY) { // a step of the trace, not a level line
            topX = o.x2;
            topY = o.y2;
        }
    }
    QVERIFY(qAbs(topX - 400000) < 10000);
    c.painter.cursors().peakClicked();
    QVERIFY(qAbs(v.cursorAX - 400000) < 10000);
    QCOMPARE(v.cursorAY, qint32(v.peakLevel));
    QVERIFY(qAbs(v.cursorAFrequency - 240.0f) < 1.0f);
    QVERIFY(c.controls.readouts.freqa.startsWith(QStringLiteral("2")));
}

// "CA = CF" takes cursor A's frequency in the analyser's window and reads again; "2 * CF" doubles it.
void CursorsTest::centreCommands()
{
    SimChart c;
    AppState &s = c.ctx().state;
    s.chart.cursorAX = 144000;
    s.analyser.calculationOn = 1;
    c.sim.port->clearTraffic();
    c.painter.cursors().centreClicked();
    QVERIFY(c.sim.port->sentByProgram().startsWith("#cf0144.000\r#dm1\r"));
    QCOMPARE(s.analyser.centerFrequency, 144.0f);
    QCOMPARE(s.chart.startFrequency, -356.0f); // read again: the window of the new centre
    c.sim.port->clearTraffic();
    c.painter.cursors().doubleCentreClicked();
    QVERIFY(c.sim.port->sentByProgram().startsWith("#cf0288.000\r"));
    QCOMPARE(s.analyser.centerFrequency, 288.0f);
}

QTEST_MAIN(CursorsTest)
#include "cursors_test.moc"
