// The zoom window and the view switches: the window the chart will show after each command.

#include "chart/zoom_view.h"
#include "chart_fixture.h"

class ZoomViewTest : public QObject {
    Q_OBJECT

private slots:
    void zoomCommands_data();
    void zoomCommands();
    void zoomedPaintShowsTheWindowAndGivesItBack();
};

void ZoomViewTest::zoomCommands_data()
{
    QTest::addColumn<float>("start");
    QTest::addColumn<float>("stop");
    QTest::addColumn<float>("zoomStart");
    QTest::addColumn<float>("zoomSpan");
    QTest::addColumn<QString>("command"); // tick, start, start-left-field, span, left, right
    QTest::addColumn<QString>("text");
    QTest::addColumn<float>("wantStart");
    QTest::addColumn<float>("wantSpan");

    QTest::newRow("tick: wider than the window opens at a fifth") << 0.f << 100.f << 10.f << 500.f << "tick" << ""
                                                                   << 10.f << 20.f;
    QTest::newRow("tick: start outside comes to the window start") << 50.f << 100.f << 10.f << 10.f << "tick" << ""
                                                                    << 50.f << 10.f;
    QTest::newRow("tick: a 0.2 MHz window gets 0.5") << 100.f << 100.2f << 100.f << 10.f << "tick" << "" << 100.f
                                                     << 0.5f;
    QTest::newRow("span 0 becomes 0.5") << 0.f << 1000.f << 10.f << 10.f << "span" << "0" << 10.f << 0.5f;
    QTest::newRow("span 5000 in 3000 MHz is cut to 1000") << 0.f << 3000.f << 10.f << 10.f << "span" << "5000"
                                                           << 10.f << 1000.f;
    QTest::newRow("span past the stop pulls the start") << 0.f << 1000.f << 990.f << 10.f << "span" << "100"
                                                        << 900.f << 100.f;
    QTest::newRow("start 9999 falls back to stop - span") << 0.f << 1000.f << 10.f << 10.f << "start" << "9999"
                                                          << 990.f << 10.f;
    QTest::newRow("start below the window") << 100.f << 1000.f << 150.f << 10.f << "start" << "-5" << 100.f << 10.f;
    QTest::newRow("start with a comma, three decimals") << 0.f << 1000.f << 10.f << 10.f << "start" << "12,34567"
                                                        << 12.346f << 10.f;
    QTest::newRow("left: half the width") << 0.f << 1000.f << 100.f << 40.f << "left" << "" << 80.f << 40.f;
    QTest::newRow("left: stops at the start") << 0.f << 1000.f << 10.f << 40.f << "left" << "" << 0.f << 40.f;
    QTest::newRow("right: half the width") << 0.f << 1000.f << 100.f << 40.f << "right" << "" << 120.f << 40.f;
    QTest::newRow("right: near the stop, half a width short") << 0.f << 1000.f << 985.f << 40.f << "right" << ""
                                                              << 980.f << 40.f;
}

void ZoomViewTest::zoomCommands()
{
    QFETCH(float, start);
    QFETCH(float, stop);
    QFETCH(float, zoomStart);
    QFETCH(float, zoomSpan);
    QFETCH(QString, command);
    QFETCH(QString, text);
    ChartFixture f;
    ChartView &v = f.view();
    v.startFrequency = start;
    v.stopFrequency = stop;
    v.zoomStart = zoomStart;
    v.zoomSpan = zoomSpan;
    f.state().decimalChar = 46;
    if (command == "tick")
        zoomChecked(f.ctx, true);
    else if (command == "start")
        zoomStartEntered(f.ctx, text, true);
    else if (command == "span")
        zoomSpanEntered(f.ctx, text);
    else
        zoomMoved(f.ctx, command == "left" ? 0 : 1);
    QCOMPARE(v.zoomStart, fetched<float>("wantStart"));
    QCOMPARE(v.zoomSpan, fetched<float>("wantSpan"));
    QCOMPARE(f.state().repaintRequest, quint8(1));
    QCOMPARE(v.startFrequency, start); // the real window is never touched
    QCOMPARE(v.stopFrequency, stop);
}

void ZoomViewTest::zoomedPaintShowsTheWindowAndGivesItBack()
{
    ChartFixture f;
    ChartView &v = f.view();
    v.startFrequency = 0;
    v.stopFrequency = 1000;
    v.zoomStart = 200;
    v.zoomSpan = 100;
    f.state().analyser.span = 1000;
    zoomChecked(f.ctx, true);
    f.paint();
    const QStringList labels = f.picture3.printed();
    QVERIFY2(labels.contains("200.00M") && labels.contains("300.00M"), qPrintable(labels.join(' ')));
    QCOMPARE(v.startFrequency, 0.f);
    QCOMPARE(v.stopFrequency, 1000.f);
    QVERIFY(f.controls.zoomTicked);
    QCOMPARE(f.controls.zoomStartText, "200.000");
    QCOMPARE(f.controls.zoomSpanText, "100.000");
}

QTEST_MAIN(ZoomViewTest)
#include "zoom_view_test.moc"
