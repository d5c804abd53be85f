// The report's page as recorded operations: its scale for each twin and orientation, the notes,
// the cursors' texts and the pages a landscape report with notes takes.

#include "support/no_port.h"
#include "core/clock.h"
#include "core/context.h"
#include "core/scripted_prompts.h"
#include "output/recording_report_canvas.h"
#include "output/report_painter.h"

#include <QTest>
#include <algorithm>

using Op = RecordingCanvas::Op;

namespace {

struct Bench {
    Bench() : ctx(Platform{std::make_unique<VirtualClock>(), std::make_unique<ScriptedPrompts>(), std::make_unique<NoPort>()})
    {
        ctx.state.chart.grafikMin = -250;
        ctx.state.chart.grafikMax = -50;
        ctx.state.traceFrozen = 0;
        ctx.state.pointCount = 0; // no trace points: the page's own texts only
    }
    ScriptedPrompts &prompts() { return static_cast<ScriptedPrompts &>(ctx.prompts); }
    void draw(bool print)
    {
        page.forget();
        print ? printChart(ctx, page) : previewChart(ctx, page);
    }
    Context ctx;
    RecordingReportCanvas page{1000, 1400};
};

} // namespace

class ReportPainterTest : public QObject {
    Q_OBJECT

private slots:
    void pageScale_data();
    void pageScale();
    void notesCharacters();
    void cursorTexts_data();
    void cursorTexts();
    void notesPages_data();
    void notesPages();
    void blackPage();
    void comparedTrace_data();
    void comparedTrace();
};

void ReportPainterTest::pageScale_data()
{
    QTest::addColumn<bool>("print");
    QTest::addColumn<bool>("portrait");
    QTest::addColumn<double>("width");
    QTest::addColumn<double>("height");
    // The level window is 200 counts high (h = -200); the top lies h / 5 above it.
    QTest::newRow("print portrait") << true << true << 1210000.0 << -420.0;
    QTest::newRow("print landscape") << true << false << 1210000.0 << -260.0;
    QTest::newRow("preview portrait") << false << true << 1150000.0 << -460.0;
    QTest::newRow("preview landscape") << false << false << 1150000.0 << -260.0;
}

void ReportPainterTest::pageScale()
{
    QFETCH(bool, print);
    QFETCH(bool, portrait);
    QFETCH(double, width);
    QFETCH(double, height);
    Bench b;
    b.ctx.state.printVertical = portrait ? 1 : 0;
    b.draw(print);
    const auto scales = b.page.ofKind(Op::Scale);
    QCOMPARE(scales.size(), 1);
    QCOMPARE(scales[0].x1, -100000.0);
    QCOMPARE(scales[0].y1, -10.0);
    QCOMPARE(scales[0].x2, width);
    QCOMPARE(scales[0].y2, height);
    const auto orientations = b.page.ofKind(Op::Orientation);
    QCOMPARE(orientations.size(), print ? 1 : 0);
    if (print)
        QCOMPARE(orientations[0].x1, portrait ? 1.0 : 2.0);
    // The headline stands at the left edge, h / 7 above the plot.
    const auto texts = b.page.texts();
    QCOMPARE(texts[0].text, QStringLiteral("QUELT Instruments"));
    QCOMPARE(texts[0].x1, -100000.0);
    QCOMPARE(texts[0].y1, -50 + 200.0 / 7);
    QCOMPARE(b.ctx.state.printBusy, quint8(0));
}

void ReportPainterTest::notesCharacters()
{
    Bench b;
    b.ctx.state.printNotes = 1;
    b.ctx.state.notes = QStringLiteral("ab\r\nc\n\n\nd");
    b.draw(true);
    const auto &ops = b.page.operations;
    qsizetype notes = -1;
    for (qsizetype i = 0; i < ops.size(); ++i)
        if (ops[i].op == Op::Print && ops[i].text == QStringLiteral("Notes:"))
            notes = i;
    QVERIFY(notes > 0);
    // Each character on its own; a carriage return leaves no trace, a line feed starts a new line.
    QStringList seen;
    double lineOfA = 0;
    QList<double> xs;
    for (qsizetype i = notes + 1; i < ops.size(); ++i) {
        if (ops[i].op == Op::NewLine)
            seen.append(QStringLiteral("|"));
        if (ops[i].op == Op::Print) {
            seen.append(ops[i].text);
            xs.append(ops[i].x1);
            if (ops[i].text == QStringLiteral("a"))
                lineOfA = ops[i].y1;
        }
    }
    QCOMPARE(seen.join(QString()), QStringLiteral("||ab|c|||d"));
    const double line = RecordingReportCanvas::kLinePixels * b.page.scaleHeight / b.page.pixelHeight();
    const auto d = b.page.texts().constLast();
    QCOMPARE(d.x1, -100000.0);
    QVERIFY(qAbs(d.y1 - (lineOfA + 4 * line)) < 1e-9);
    QVERIFY(xs[1] > xs[0]); // "b" beside "a"
    QCOMPARE(xs[2], -100000.0);
}

void ReportPainterTest::cursorTexts_data()
{
    QTest::addColumn<bool>("print");
    QTest::addColumn<QStringList>("expected");
    QTest::newRow("print") << true
                           << QStringList{"C1", "C2", "C1: Freq.: 250.000M   Lev.:-40.0dBmW",
                                          "C2: Freq.: 500.000M   Lev.:-60.0dBmW", "C1-C2: Freq.: 250.000M   Lev.:20.0dB"};
    QTest::newRow("preview") << false
                             << QStringList{"CA", "CB", "Cursor 1: Freq.: 250.000M   Lev.:-40.0dBmW",
                                            "Cursor 2: Freq.: 500.000M   Lev.:-60.0dBmW",
                                            "Cursor 1-2: Freq.: 250.000M   Lev.:20.0dB"};
}

void ReportPainterTest::cursorTexts()
{
    QFETCH(bool, print);
    QFETCH(QStringList, expected);
    Bench b;
    ChartView &v = b.ctx.state.chart;
    v.cursorAX = 250000;
    v.cursorAY = -100;
    v.cursorBX = 500000;
    v.cursorBY = -150;
    b.draw(print);
    const QStringList printed = b.page.printed();
    const qsizetype first = printed.indexOf(expected[0]);
    QVERIFY(first > 0);
    QCOMPARE(printed.mid(first, 5), expected);
    // A's mark stands at the end of its horizontal line, B's further in.
    const auto texts = b.page.texts();
    QCOMPARE(texts[first].x1, 1030000.0);
    QCOMPARE(texts[first].y1, -100.0);
    QCOMPARE(texts[first + 1].x1, 1010000.0);
    QCOMPARE(texts[first + 2].x1, 1000.0);
    QCOMPARE(texts[first + 2].y1, -50.0);
    QCOMPARE(texts[first + 3].x1, 1000.0);
    QVERIFY(texts[first + 3].y1 < -50.0);
}

void ReportPainterTest::notesPages_data()
{
    QTest::addColumn<bool>("portrait");
    QTest::newRow("portrait: one page") << true;
    QTest::newRow("landscape: notes on a second page") << false;
}

void ReportPainterTest::notesPages()
{
    QFETCH(bool, portrait);
    Bench b;
    b.ctx.state.printVertical = portrait ? 1 : 0;
    b.ctx.state.printNotes = 1;
    if (!portrait)
        b.prompts().answerMessage(QStringLiteral("Print"), MsgAnswer::Ok);
    b.draw(true);
    QVERIFY(b.prompts().unexpected.isEmpty());
    QCOMPARE(b.page.count(Op::NewPage), portrait ? 0 : 1);
    QCOMPARE(b.page.count(Op::EndDocument), 1);
    // The second page stands upright and carries the header again before the settings.
    QCOMPARE(b.page.printed().count(QStringLiteral("QUELT Instruments")), portrait ? 1 : 2);
    QCOMPARE(b.page.ofKind(Op::Orientation).constLast().x1, 1.0);
    QVERIFY(b.page.printed().contains(QStringLiteral("TG: OFF")));
}

void ReportPainterTest::blackPage()
{
    Bench b;
    b.ctx.state.printInColour = 0;
    b.ctx.state.viewLimitMax = 0;
    b.draw(true);
    for (const auto &o : b.page.texts())
        QCOMPARE(o.colour, quint32(0));
    for (const auto &o : b.page.lines())
        QCOMPARE(o.colour, quint32(0));
    QVERIFY(b.page.printed().contains(QStringLiteral("      RBW: 1000kHz")));
    QVERIFY(b.page.printed().contains(QStringLiteral("Unit: dBmW")));
}

void ReportPainterTest::comparedTrace_data()
{
    QTest::addColumn<quint8>("inColour");
    QTest::addColumn<bool>("print");
    QTest::addColumn<quint32>("expected");
    QTest::newRow("printed in its printer colour") << quint8(1) << true << quint32(0x123456);
    QTest::newRow("printed black") << quint8(0) << true << quint32(0);
    QTest::newRow("preview in its printer colour") << quint8(1) << false << quint32(0x123456);
}

// The page draws the compared trace dashed, as the chart does, with its legend.
void ReportPainterTest::comparedTrace()
{
    QFETCH(quint8, inColour);
    QFETCH(bool, print);
    QFETCH(quint32, expected);
    Bench b;
    AppState &s = b.ctx.state;
    s.printInColour = inColour;
    s.printColours[CompareColour] = 0x123456;
    s.viewLimitMax = s.viewLimitAverage = 0;
    s.chart.comparePath = QStringLiteral("/bench/before.mes");
    s.chart.compareTrace = {{100, -20}, {200, -30}, {300, -26}};
    b.draw(print);
    QList<QList<double>> dashed;
    for (const auto &o : b.page.lines())
        // Not the cursors (dashed too) nor the legend's stretch at the right.
        if (o.style == Canvas::Dashed && o.colour == expected && o.x1 != o.x2 && o.x1 >= 100000 && o.x2 <= 300000)
            dashed.append({o.x1, o.y1, o.x2, o.y2});
    QCOMPARE(dashed, (QList<QList<double>>{{100000, -50, 200000, -75}, {200000, -75, 300000, -65}}));
    const auto texts = b.page.texts();
    QVERIFY(std::any_of(texts.begin(), texts.end(), [&](const auto &o) {
        return o.text == QStringLiteral("before.mes") && o.colour == expected;
    }));
}

QTEST_MAIN(ReportPainterTest)
#include "report_painter_test.moc"
