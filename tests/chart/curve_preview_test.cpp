// The preview graph of the limit and loss/gain editors, asserted as drawn in user coordinates.

#include "chart/curve_preview.h"
#include "chart/recording_canvas.h"
#include "signal/level_math.h"

#include <QTest>

namespace {

constexpr quint32 kGrid = 0x00C0C0;
constexpr quint32 kCurve = 0x0000FF;

struct Preview {
    RecordingCanvas plot{600, 300}, levels{48, 312}, frequencies{600, 24};
    PreviewBounds bounds;

    // The points in frequency order, with the bounds that the grid's fill computes.
    void draw(const QList<QPointF> &stored, CurveScale scale, bool logarithmic)
    {
        bounds = {};
        for (int i = 0; i < stored.size(); ++i) {
            const float f = float(stored[i].x()), l = float(stored[i].y());
            if (i == 0) {
                bounds = {f > 1.0f ? f : 0.0f, f, l, l};
                continue;
            }
            bounds.maxFrequency = qMax(bounds.maxFrequency, f);
            bounds.minLevel = qMin(bounds.minLevel, l);
            bounds.maxLevel = qMax(bounds.maxLevel, l);
        }
        drawCurvePreview({plot, levels, frequencies}, stored, bounds, {scale, logarithmic, kGrid, kCurve});
    }
};

} // namespace

class CurvePreviewTest : public QObject {
    Q_OBJECT

private slots:
    void logSegment_data();
    void logSegment();
    void invertedGain();
    void onePoint();
    void equalFrequencies();
};

void CurvePreviewTest::logSegment_data()
{
    QTest::addColumn<bool>("logarithmic");
    QTest::addColumn<double>("level2");
    QTest::addColumn<int>("pieces");
    QTest::newRow("log") << true << -40.0 << 50;
    QTest::newRow("linear") << false << -40.0 << 1;
    QTest::newRow("log, level flat") << true << -50.0 << 1;
}

// A logarithmic definition draws each sloped segment in 50 pieces whose levels follow log frequency.
void CurvePreviewTest::logSegment()
{
    QFETCH(bool, logarithmic);
    QFETCH(double, level2);
    QFETCH(int, pieces);
    Preview p;
    p.draw({{30, -50}, {230, level2}}, {1, 107}, logarithmic);
    const auto curve = p.plot.lines(kCurve);
    QCOMPARE(curve.size(), pieces);
    QCOMPARE(curve.first().x1, 0.0);
    QCOMPARE(curve.first().y1, -50.0);
    QCOMPARE(curve.last().x2, 1000000.0);
    QCOMPARE(curve.last().y2, level2);
    QCOMPARE(curve.first().width, 3);
    if (pieces == 50) {
        // Labels in the limit's unit.
        QVERIFY(p.levels.printed().contains("57.0"));
        QVERIFY(p.levels.printed().contains("67.0"));
        // The end of the first piece, at 34 MHz, lies on the log line.
        double f = 34.0, f1 = 30.0, f2 = 230.0;
        const double expected = -50.0 + (logTen(f) - logTen(f1)) * 10.0 / (logTen(f2) - logTen(f1));
        QCOMPARE(curve.first().x2, 20000.0);
        QVERIFY(qAbs(curve.first().y2 - expected) < 1e-9);
        QVERIFY(curve.first().y2 > -50.0 + 10.0 / 50.0); // above the straight line
    }
    QCOMPARE(p.frequencies.printed().first(), QString("30.00M"));
}

// A gain is stored negative; its picture is turned so that the shown value grows upward.
void CurvePreviewTest::invertedGain()
{
    Preview p;
    p.draw({{10, -20}, {100, -30}}, {-1, 0}, false);
    const auto scale = p.plot.ofKind(RecordingCanvas::Op::Scale).first();
    QCOMPARE(scale.y1, -30.0 - 0.5); // top: minimum - R/20
    QCOMPARE(scale.y2, 10.0 + 1.0);  // height: R + R/10, positive
    QCOMPARE(p.levels.printed().first(), QString("30.0"));
    QCOMPARE(p.levels.printed().last(), QString("20.0"));

    Preview loss;
    loss.draw({{10, 20}, {100, 30}}, {1, 0}, false);
    const auto lossScale = loss.plot.ofKind(RecordingCanvas::Op::Scale).first();
    QCOMPARE(lossScale.y1, 30.0 + 0.5);
    QCOMPARE(lossScale.y2, -10.0 - 1.0);
}

// One point: the grid stands, with the level bounds widened by 1 dB each way, and no curve.
void CurvePreviewTest::onePoint()
{
    Preview p;
    p.draw({{0.5, -60}}, {1, 0}, true);
    QCOMPARE(p.bounds.maxLevel, -59.0f);
    QCOMPARE(p.bounds.minLevel, -61.0f);
    QCOMPARE(p.plot.lines(kCurve).size(), 0);
    QCOMPARE(p.plot.lines(kGrid).size(), 9 + 6);
    QCOMPARE(p.frequencies.printed().first(), QString("0.0K"));
    QCOMPARE(p.frequencies.printed().last(), QString("450.0K"));
}

// All points at one frequency leave the x axis without width: the drawing ends after the scales.
void CurvePreviewTest::equalFrequencies()
{
    Preview p;
    p.draw({{30, -60}, {30, -50}}, {1, 0}, true);
    QCOMPARE(p.plot.lines().size(), 0);
    QCOMPARE(p.frequencies.texts().size(), 0);
    QCOMPARE(p.plot.count(RecordingCanvas::Op::Scale), 1);

    Preview none;
    none.draw({}, {1, 0}, false);
    QCOMPARE(none.plot.count(RecordingCanvas::Op::Clear), 1);
    QCOMPARE(none.plot.count(RecordingCanvas::Op::Scale), 0);
}

QTEST_MAIN(CurvePreviewTest)
#include "curve_preview_test.moc"
