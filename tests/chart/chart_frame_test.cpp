#include "chart_fixture.h"
#include "chart/image_canvas.h"

#include <QTest>

class ChartFrameTest : public QObject {
    Q_OBJECT

private slots:
    void linearGrid_data();
    void linearGrid();
    void logBounds_data();
    void logBounds();
    void logGrid();
    void zeroSpanLine_data();
    void zeroSpanLine();
    void levelGrid_data();
    void levelGrid();
    void zoomSubstitution_data();
    void zoomSubstitution();
    void distanceLine_data();
    void distanceLine();
    void paintOrderGuards();
    void pictures();
    void imageCanvas();
    void labelsNeverOverlap_data();
    void labelsNeverOverlap();
    void imageCanvasAtPixelRatio2();
};

void ChartFrameTest::linearGrid_data()
{
    QTest::addColumn<float>("start");
    QTest::addColumn<float>("stop");
    QTest::addColumn<QList<double>>("gridX");
    QTest::addColumn<QStringList>("labels");
    QTest::addColumn<QList<double>>("labelX");
    QTest::addColumn<QList<double>>("zeroLineX");

    QList<double> tenths;
    for (int i = 1; i <= 9; ++i)
        tenths << i * 100000.0;
    QTest::newRow("0 to 1000") << 0.0f << 1000.0f << tenths
                               << QStringList{"0.0K", "100.00M", "200.00M", "300.00M", "400.00M", "500.00M",
                                              "600.00M", "700.00M", "800.00M", "900.00M", "1.000G"}
                               << (QList<double>{0} + tenths + QList<double>{1000000}) << QList<double>{};
    // A window reaching below 0: the black line at 0 MHz instead of the left label.
    QTest::newRow("-100 to 900") << -100.0f << 900.0f << tenths
                                 << QStringList{"0.0K", "100.00M", "200.00M", "300.00M", "400.00M", "500.00M",
                                                "600.00M", "700.00M", "800.00M", "900.00M"}
                                 << (tenths + QList<double>{1000000}) << QList<double>{100000};
    QTest::newRow("start = stop") << 50.0f << 50.0f << QList<double>{} << QStringList{} << QList<double>{}
                                  << QList<double>{};
}

void ChartFrameTest::linearGrid()
{
    QFETCH(float, start);
    QFETCH(float, stop);
    QFETCH(QList<double>, gridX);
    QFETCH(QStringList, labels);
    QFETCH(QList<double>, labelX);
    QFETCH(QList<double>, zeroLineX);
    ChartFixture f;
    f.view().startFrequency = start;
    f.view().stopFrequency = stop;
    f.paint();
    QCOMPARE(f.verticalLines(f.colour(GridColour)), gridX);
    QCOMPARE(f.picture3.printed(), labels);
    QList<double> xs, ticks;
    for (const Operation &o : f.picture3.texts()) {
        xs << o.x1;
        QCOMPARE(o.y1, 8.0);
        QCOMPARE(o.colour, 5u);
    }
    for (const Operation &o : f.picture3.lines(5))
        ticks << o.x1;
    QCOMPARE(xs, labelX);
    QCOMPARE(ticks, labelX);
    QList<double> zeroLines;
    for (const Operation &o : f.picture1.lines(0)) {
        zeroLines << o.x1;
        QCOMPARE(o.width, 2);
    }
    QCOMPARE(zeroLines, zeroLineX);
    QCOMPARE(f.view().paintBusy, quint8(0));
}

void ChartFrameTest::logBounds_data()
{
    QTest::addColumn<float>("start");
    QTest::addColumn<float>("stop");
    QTest::addColumn<float>("logStart");
    QTest::addColumn<float>("logStop");
    QTest::addColumn<float>("logDecade");
    QTest::newRow("0.0018") << 0.0018f << 10.0f << 0.001f << 20.0f << 0.001f;
    QTest::newRow("95 rounds up") << 95.0f << 500.0f << 100.0f << 600.0f << 100.0f;
    QTest::newRow("150") << 150.0f << 1000.0f << 100.0f << 2000.0f << 100.0f;
    QTest::newRow("0.5") << 0.5f << 3.0f << 0.5f << 4.0f << 0.1f;
    QTest::newRow("stop 599") << 95.0f << 599.0f << 100.0f << 600.0f << 100.0f;
}

void ChartFrameTest::logBounds()
{
    QFETCH(float, start);
    QFETCH(float, stop);
    ChartFixture f;
    f.view().startFrequency = start;
    f.view().stopFrequency = stop;
    f.painter.computeLogBounds();
    QCOMPARE(f.view().logStart, fetched<float>("logStart"));
    QCOMPARE(f.view().logStop, fetched<float>("logStop"));
    QCOMPARE(f.view().logDecade, fetched<float>("logDecade"));
}

void ChartFrameTest::logGrid()
{
    ChartFixture f;
    f.view().startFrequency = 1;
    f.view().stopFrequency = 1000;
    f.view().logAxis = 1;
    f.paint();
    QCOMPARE(f.view().logStop, 2000.0f);
    // Only the ends and the decades are labelled.
    QCOMPARE(f.picture3.printed(), (QStringList{"1.00M", "10.00M", "100.00M", "1.000G", "2.000G"}));
    QCOMPARE(f.verticalLines(f.colour(GridColour)).size(), 25);
    const QList<double> decades = f.verticalLines(f.colour(DecadeColour));
    QCOMPARE(decades.size(), 3);
    const double perDecade = 1e6 / std::log10(2000.0);
    for (int i = 0; i < 3; ++i)
        QVERIFY(qAbs(decades[i] - perDecade * (i + 1)) < 1e-3);
    QCOMPARE(f.painter.frequencyToX(0), 0.0);
    QVERIFY(qAbs(f.painter.frequencyToX(2000) - 1e6) < 1e-6);
}

void ChartFrameTest::zeroSpanLine_data()
{
    QTest::addColumn<float>("frequency");
    QTest::addColumn<QString>("text");
    QTest::newRow("MHz") << 433.92f << "Zerospan / Freq: 433.92M";
    QTest::newRow("kHz") << 0.5f << "Zerospan / Freq: 500.0K";
    QTest::newRow("GHz with two decimals") << 1500.0f << "Zerospan / Freq: 1.50G";
}

void ChartFrameTest::zeroSpanLine()
{
    QFETCH(float, frequency);
    QFETCH(QString, text);
    ChartFixture f;
    f.state().analyser.span = 0;
    f.view().startFrequency = frequency;
    f.view().stopFrequency = frequency;
    f.paint();
    QCOMPARE(f.picture3.printed(), QStringList{text});
    const Operation printed = f.picture3.texts().first();
    QCOMPARE(printed.colour, 0x800080u);
    QCOMPARE(printed.x1, 1000.0);
    QCOMPARE(printed.y1, 10.0);
    QVERIFY(f.verticalLines(f.colour(GridColour)).isEmpty());
}

void ChartFrameTest::levelGrid_data()
{
    QTest::addColumn<float>("refLevel");
    QTest::addColumn<float>("unitOffset");
    QTest::addColumn<int>("grafikMin");
    QTest::addColumn<int>("grafikMax");
    QTest::addColumn<QList<double>>("ys");
    QTest::addColumn<QStringList>("labels");
    // Attenuator 10 dB, 10 dB per division: a step of 25 counts.
    QTest::newRow("crossed window") << -30.0f << 0.0f << 1000 << -1000 << QList<double>{} << QStringList{};
    QTest::newRow("anchor in the window")
        << -30.0f << 0.0f << -250 << 0 << QList<double>{-50, -25, 0, -75, -100, -125, -150, -175, -200, -225, -250}
        << QStringList{"-20.0", "-10.0", "0.0", "-30.0", "-40.0", "-50.0", "-60.0", "-70.0", "-80.0", "-90.0", "-100.0"};
    QTest::newRow("anchor above the window") << 0.0f << 0.0f << -100 << 10 << QList<double>{10, -15, -40, -65, -90}
                                             << QStringList{"4.0", "-6.0", "-16.0", "-26.0", "-36.0"};
    QTest::newRow("unit offset") << -30.0f << 107.0f << -60 << -40 << QList<double>{-50} << QStringList{"87.0"};
}

void ChartFrameTest::levelGrid()
{
    QFETCH(float, refLevel);
    QFETCH(int, grafikMin);
    QFETCH(int, grafikMax);
    QFETCH(QList<double>, ys);
    ChartFixture f;
    f.state().analyser.refLevel = refLevel;
    f.state().analyser.unitOffset = fetched<float>("unitOffset");
    f.view().grafikMin = qint16(grafikMin);
    f.view().grafikMax = qint16(grafikMax);
    f.paint();
    QList<double> lineYs;
    for (const Operation &o : f.picture1.lines(f.colour(GridColour)))
        if (o.y1 == o.y2) {
            QCOMPARE(o.x1, 0.0);
            QCOMPARE(o.x2, 1000000.0);
            lineYs << o.y1;
        }
    QCOMPARE(lineYs, ys);
    QCOMPARE(f.picture2.printed(), fetched<QStringList>("labels"));
    QList<double> tickYs;
    for (const Operation &o : f.picture2.lines(5)) {
        QCOMPARE(o.x1, 8.0);
        QCOMPARE(o.x2, 10.0);
        tickYs << o.y1;
    }
    QCOMPARE(tickYs, ys);
}

void ChartFrameTest::zoomSubstitution_data()
{
    QTest::addColumn<float>("start");
    QTest::addColumn<float>("zoomStart");
    QTest::addColumn<float>("paintedStart");
    QTest::addColumn<float>("paintedStop");
    QTest::addColumn<bool>("logAvailable");
    QTest::addColumn<QString>("text2");
    // Stop 1000, zoom span 50 unless zoom is off.
    QTest::newRow("inside") << 0.0f << 100.0f << 100.0f << 150.0f << false << "100.000";
    QTest::newRow("left of the window") << 200.0f << 100.0f << 200.0f << 250.0f << false << "200.000";
    QTest::newRow("past the stop") << 0.0f << 980.0f << 950.0f << 1000.0f << false << "950.000";
    QTest::newRow("zoom off") << 1.0f << -1.0f << 1.0f << 1000.0f << true << "10.000";
}

void ChartFrameTest::zoomSubstitution()
{
    QFETCH(float, start);
    QFETCH(float, zoomStart);
    ChartFixture f;
    f.view().startFrequency = start;
    f.view().zoomOn = zoomStart >= 0;
    if (f.view().zoomOn) {
        f.view().zoomStart = zoomStart;
        f.view().zoomSpan = 50;
    }
    f.view().logAxis = 1;
    f.view().showKnownBands = -1;
    float paintedStart = 0, paintedStop = 0;
    f.painter.hooks.paintKnownBands = [&] {
        paintedStart = f.view().startFrequency;
        paintedStop = f.view().stopFrequency;
    };
    f.paint();
    QCOMPARE(paintedStart, fetched<float>("paintedStart"));
    QCOMPARE(paintedStop, fetched<float>("paintedStop"));
    QCOMPARE(f.view().startFrequency, start);
    QCOMPARE(f.view().stopFrequency, 1000.0f);
    QFETCH(bool, logAvailable);
    QCOMPARE(f.controls.logAxisEnabled, logAvailable);
    QCOMPARE(f.view().logAxis, quint8(logAvailable ? 1 : 0));
    QCOMPARE(f.controls.zoomTicked, f.view().zoomOn);
    QTEST(f.controls.zoomStartText, "text2");
    QVERIFY(f.controls.knownBandsTicked);
}

void ChartFrameTest::distanceLine_data()
{
    QTest::addColumn<float>("distance");
    QTest::addColumn<float>("limitDistance");
    QTest::addColumn<bool>("visible");
    QTest::addColumn<QString>("text");
    QTest::newRow("no distance") << 0.0f << 3.0f << false << "";
    QTest::newRow("same distance") << 3.0f << 3.0f << true << "Distance from DUT: 3m";
    QTest::newRow("offset") << 3.0f << 10.0f << true << "Distance from DUT: 3m offset -10.5dB";
    QTest::newRow("no limit distance") << 2.5f << 0.0f << true << "Distance from DUT: 2.5m";
}

void ChartFrameTest::distanceLine()
{
    ChartFixture f;
    f.state().distanceFromDut = fetched<float>("distance");
    f.state().maxholdLimitDistance = fetched<float>("limitDistance");
    f.state().unitName = QStringLiteral("dBuV   ");
    f.paint();
    QTEST(f.controls.distanceVisible, "visible");
    QTEST(f.controls.distanceText, "text");
    QCOMPARE(f.controls.unitText, QStringLiteral("dBuV"));
}

// Re-entry returns at once, a limit line that keeps widening cannot loop, and busy is cleared.
void ChartFrameTest::paintOrderGuards()
{
    ChartFixture f;
    QStringList steps;
    f.view().showKnownBands = -1;
    f.painter.hooks.paintKnownBands = [&] {
        steps << "bands";
        QCOMPARE(f.state().busy, quint8(1));
        f.painter.paintChart();
    };
    f.painter.hooks.paintLimitLines = [&] {
        steps << QStringLiteral("limits, pen %1").arg(f.picture1.width);
        return true;
    };
    f.painter.hooks.paintCursors = [&] { steps << "cursors"; };
    f.painter.hooks.refreshLevelmeter = [&] { steps << "meter"; };
    f.painter.hooks.refreshPreview = [&] { steps << "preview"; };
    f.paint();
    QCOMPARE(steps, (QStringList{"bands", "limits, pen 2", "bands", "limits, pen 2", "bands", "limits, pen 2",
                                 "cursors", "meter", "preview"}));
    QCOMPARE(f.picture1.count(Op::Clear), 3);
    QCOMPARE(f.view().paintBusy, quint8(0));
    QCOMPARE(f.state().busy, quint8(0));
    f.view().paintBusy = 1;
    f.paint();
    QVERIFY(f.picture1.operations.isEmpty());
}

// The scales of the three pictures keep one count and one x unit the same size on all.
void ChartFrameTest::pictures()
{
    ChartFixture f;
    f.view().grafikMin = -250;
    f.view().grafikMax = 0;
    f.picture2.setPixelSize(50, 250);
    f.picture3.setPixelSize(1100, 30);
    f.paint();
    const Operation s1 = f.picture1.ofKind(Op::Scale).first();
    const Operation s2 = f.picture2.ofKind(Op::Scale).first();
    const Operation s3 = f.picture3.ofKind(Op::Scale).first();
    QCOMPARE((QList<double>{s1.x1, s1.y1, s1.x2, s1.y2}), (QList<double>{0, 0, 1000000, -250}));
    QCOMPARE((QList<double>{s2.x1, s2.y1, s2.x2, s2.y2}), (QList<double>{0, 0, 10, -125}));
    QCOMPARE((QList<double>{s3.x1, s3.y1, s3.x2, s3.y2}), (QList<double>{0, 10, 1100000, -11}));
}

void ChartFrameTest::imageCanvas()
{
    ImageCanvas canvas(100, 50);
    canvas.setScale(0, 10, 100, -10); // y up from 0 at the bottom to 10 at the top
    canvas.line(0, 1, 99, 1, 0x0000FF);
    QCOMPARE(canvas.image().pixel(50, 45), QColor(Qt::red).rgb());
    canvas.box(10, 5, 20, 9, 0xFF0000);
    QCOMPARE(canvas.image().pixel(15, 15), QColor(Qt::blue).rgb());
    // Not-xor twice leaves the picture as it was.
    canvas.setDrawMode(Canvas::NotXorPen);
    canvas.line(0, 5, 99, 5, 0x00FF00);
    QVERIFY(canvas.image().pixel(5, 25) != QColor(Qt::white).rgb());
    canvas.line(0, 5, 99, 5, 0x00FF00);
    QCOMPARE(canvas.image().pixel(5, 25), QColor(Qt::white).rgb());
    canvas.setDrawMode(Canvas::CopyPen);
    canvas.line(-1e12, 1e12, 1e12, -1e12, 0); // far-off ends are cut, not passed on
    canvas.setForeColour(0);
    canvas.setTextPosition(0, 10);
    canvas.print(QStringLiteral("W"));
    canvas.clear();
    QCOMPARE(canvas.image().pixel(50, 45), QColor(Qt::white).rgb());
    canvas.resize(200, 20);
    QCOMPARE(canvas.image().size(), QSize(200, 20));
}

void ChartFrameTest::labelsNeverOverlap_data()
{
    QTest::addColumn<float>("start");
    QTest::addColumn<float>("stop");
    QTest::addColumn<bool>("log");
    QTest::addColumn<int>("width"); // pixels of Picture1 and Picture3
    QTest::addColumn<int>("printed");
    QTest::newRow("lin 0 to 1000, wide") << 0.f << 1000.f << false << 1000 << 11;
    QTest::newRow("lin 0 to 1000, narrow") << 0.f << 1000.f << false << 400 << 6;
    QTest::newRow("lin 0.1 to 0.7") << 0.1f << 0.7f << false << 500 << 11;
    QTest::newRow("log 0 to 1000") << 0.f << 1000.f << true << 600 << 7;
    QTest::newRow("log 1 to 1000") << 1.f << 1000.f << true << 300 << 4;
    QTest::newRow("log 30 to 3000") << 30.f << 3000.f << true << 600 << 4;
}

// Each label keeps clear of the next one; one that would run into it is left out, its tick stays.
void ChartFrameTest::labelsNeverOverlap()
{
    QFETCH(int, width);
    ChartFixture f;
    f.picture1.setPixelSize(width, 500);
    f.picture3.setPixelSize(width, 30);
    f.view().startFrequency = fetched<float>("start");
    f.view().stopFrequency = fetched<float>("stop");
    f.view().logAxis = fetched<bool>("log") ? 1 : 0;
    f.paint();
    const QList<Operation> texts = f.picture3.texts();
    for (int i = 1; i < texts.size(); ++i)
        QVERIFY2(texts[i - 1].x1 + f.picture3.textWidth(texts[i - 1].text) < texts[i].x1,
                 qPrintable(texts[i - 1].text + QLatin1Char(' ') + texts[i].text));
    QCOMPARE(texts.size(), fetched<int>("printed"));
    QVERIFY(f.picture3.lines(5).size() >= texts.size());
}

// At a pixel ratio of 2 the image has twice the pixels each way; the user sees lines and text at
// their size at 1, drawn with the finer pixels.
void ChartFrameTest::imageCanvasAtPixelRatio2()
{
    ImageCanvas one(100, 50), two(100, 50, 2.0);
    QCOMPARE(two.image().size(), QSize(200, 100));
    QCOMPARE((QList<int>{two.pixelWidth(), two.pixelHeight()}), (QList<int>{100, 50}));
    for (ImageCanvas *canvas : {&one, &two}) {
        canvas->setScale(0, 10, 100, -10);
        canvas->line(0, 5, 100, 5, 0x0000FF); // a 1-pixel line at y = 25
    }
    QList<int> rows;
    for (int y = 0; y < 100; ++y)
        if (two.image().pixel(100, y) == QColor(Qt::red).rgb())
            rows << y;
    QCOMPARE(rows, (QList<int>{49, 50})); // two rows of the screen
    QCOMPARE(two.textWidth(QStringLiteral("100.00M")), one.textWidth(QStringLiteral("100.00M")));
    two.clear();
    QCOMPARE(two.image().pixel(199, 99), QColor(Qt::white).rgb());
    two.resize(30, 20, 1.5);
    QCOMPARE(two.image().size(), QSize(45, 30));
}

QTEST_MAIN(ChartFrameTest)
#include "chart_frame_test.moc"
