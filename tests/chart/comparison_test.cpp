#include "chart_fixture.h"
#include "support/measurement_fixture.h"

#include "chart/comparison_trace.h"

#include <QTemporaryDir>
#include <cmath>

namespace {

using Segments = QList<QList<double>>;
using Trace = std::vector<ComparisonPoint>;

Segments segmentsOf(const QList<Operation> &lines)
{
    Segments found;
    for (const Operation &o : lines)
        found.append({o.x1, o.y1, o.x2, o.y2});
    return found;
}

// Coordinates to a millionth of a unit: the log axis keeps the fraction of its logarithms.
bool sameSegments(const Segments &drawn, const Segments &expected)
{
    if (drawn.size() != expected.size())
        return false;
    for (qsizetype i = 0; i < drawn.size(); ++i)
        for (int k = 0; k < 4; ++k)
            if (std::abs(drawn[i][k] - expected[i][k]) > 1e-6)
                return false;
    return true;
}

// The compared trace's lines on Picture1 and the legend's line after them.
struct Drawn {
    Segments trace;
    Operation legend;
};

Drawn comparisonLines(const ChartFixture &f)
{
    QList<Operation> lines = f.picture1.lines(f.colour(CompareColour));
    Drawn drawn{};
    if (!lines.isEmpty())
        drawn.legend = lines.takeLast();
    drawn.trace = segmentsOf(lines);
    return drawn;
}

} // namespace

class ComparisonTest : public QObject {
    Q_OBJECT

private slots:
    void dashedOnTheShownAxes_data();
    void dashedOnTheShownAxes();
    void nothingDrawn_data();
    void nothingDrawn();
    void fileAgainstItself_data();
    void fileAgainstItself();

private:
    QTemporaryDir dir_;
};

// A live sweep from 0 to 100 MHz, levels in a -250..0 count window; the trace's dBm become
// counts (x 2.5, halves to even), and the walk ends at the first point beyond the window.
void ComparisonTest::dashedOnTheShownAxes_data()
{
    QTest::addColumn<quint8>("logAxis");
    QTest::addColumn<bool>("zoom");
    QTest::addColumn<float>("zoomStart");
    QTest::addColumn<float>("zoomSpan");
    QTest::addColumn<Trace>("trace");
    QTest::addColumn<Segments>("expected");
    const Trace linear{{10, -20}, {20, -30.2f}, {40, -10}, {100.5f, -40}, {120, -50}};
    QTest::newRow("linear") << quint8(0) << false << 0.0f << 0.0f << linear
                            << Segments{{100000, -50, 200000, -76}, {200000, -76, 400000, -25}};
    // Shown 15..35 MHz: the stretch from 10 MHz has a negative x and is dropped whole.
    QTest::newRow("linear, zoomed") << quint8(0) << true << 15.0f << 20.0f
                                    << Trace{{10, -20}, {20, -30}, {30, -10}, {40, 0}}
                                    << Segments{{250000, -75, 750000, -25}};
    // Shown 1..100 MHz on a log axis from 1 to 200 MHz: x = log10(f) / log10(200) x 1000000.
    QTest::newRow("log, zoomed") << quint8(1) << true << 1.0f << 99.0f
                                 << Trace{{0.5f, -20}, {10, -30}, {100, -40}, {150, -50}}
                                 << Segments{{434587.98967609374, -75, 869175.9793521872, -100}};
}

void ComparisonTest::dashedOnTheShownAxes()
{
    ChartFixture f;
    ChartView &v = f.view();
    v.grafikMin = -250;
    v.grafikMax = 0;
    v.logAxis = fetched<quint8>("logAxis");
    v.zoomOn = fetched<bool>("zoom");
    v.zoomStart = fetched<float>("zoomStart");
    v.zoomSpan = fetched<float>("zoomSpan");
    v.startFrequency = v.logAxis ? 0.15f : 0.0f;
    v.stopFrequency = v.logAxis ? 1000.0f : 100.0f;
    v.comparePath = QStringLiteral("/bench/run 3/before.emc");
    v.compareTrace = fetched<Trace>("trace");
    f.paint();

    const Drawn drawn = comparisonLines(f);
    QVERIFY2(sameSegments(drawn.trace, fetched<Segments>("expected")), qPrintable(QString::number(drawn.trace.size())));
    for (const Operation &o : f.picture1.lines(f.colour(CompareColour))) {
        QCOMPARE(o.style, int(Canvas::Dashed));
        QCOMPARE(o.width, 1);
    }
    // The legend: a dashed stretch, then the file's name, inside the top right corner.
    const QList<Operation> names = f.picture1.texts();
    QCOMPARE(names.size(), 1);
    QCOMPARE(names[0].text, QStringLiteral("before.emc"));
    QCOMPARE(names[0].colour, f.colour(CompareColour));
    QVERIFY(names[0].x1 + f.picture1.textWidth(names[0].text) < 1000000);
    QCOMPARE(drawn.legend.y1, drawn.legend.y2);
    QVERIFY(drawn.legend.x2 < names[0].x1 && drawn.legend.x1 > 0);
    QVERIFY(drawn.legend.y1 < 0 && drawn.legend.y1 > -250 && names[0].y1 > drawn.legend.y1);
    // The pen goes back as it was for what comes after.
    QCOMPARE(f.picture1.style, int(Canvas::Solid));
    QCOMPARE(f.picture1.width, 1);
}

void ComparisonTest::nothingDrawn_data()
{
    QTest::addColumn<bool>("compared");
    QTest::addColumn<qint16>("span");
    QTest::newRow("no comparison") << false << qint16(1000);
    QTest::newRow("live zero span: no frequency axis") << true << qint16(0);
}

void ComparisonTest::nothingDrawn()
{
    ChartFixture f;
    f.view().grafikMin = -250;
    f.view().grafikMax = 0;
    f.state().analyser.span = fetched<qint16>("span");
    if (fetched<bool>("compared")) {
        f.view().comparePath = QStringLiteral("before.mes");
        f.view().compareTrace = {{100, -20}, {200, -30}};
    }
    f.paint();
    QVERIFY(f.picture1.lines(f.colour(CompareColour)).isEmpty());
    QVERIFY(f.picture1.texts().isEmpty());
}

// A stored file compared with itself: the dashed line lies on the file's own line, point for
// point, also where both are thinned.
void ComparisonTest::fileAgainstItself_data()
{
    QTest::addColumn<int>("rows");
    QTest::addColumn<int>("mode");
    QTest::addColumn<int>("role");
    QTest::newRow(".mes sample, 40 rows") << 40 << 0 << int(SampleColour);
    QTest::newRow(".mes sample, 3000 rows thinned") << 3000 << 0 << int(SampleColour);
    QTest::newRow(".emc Step run peak") << 300 << 1 << int(MaxholdColour);
}

void ComparisonTest::fileAgainstItself()
{
    QFETCH(int, rows);
    QFETCH(int, mode);
    const QString path = dir_.filePath(QStringLiteral("self%1-%2").arg(rows).arg(mode));
    QVERIFY(writeMeasurementTable(path, {"Frequency", "Sample_dBmW", "Maxhold_dBmW"}, rows, [](int i) {
        const double level = -40 + 17.3 * std::sin(i * 0.37);
        return QVariantList{30 + i * 0.25, level, level + 3.1};
    }));
    {
        // The two other tables of a measurement file, with the mode of a trace or a Step run.
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("settings"));
        db.setDatabaseName(path);
        QVERIFY(db.open());
        QVERIFY(QSqlQuery(db).exec(QStringLiteral("create table Limitlines (Frequency REAL)")));
        QVERIFY(QSqlQuery(db).exec(QStringLiteral("create table Settings (mode INTEGER)")));
        QVERIFY(QSqlQuery(db).exec(QStringLiteral("insert into Settings values (%1)").arg(mode)));
        db.close();
    }
    QSqlDatabase::removeDatabase(QStringLiteral("settings"));

    ChartFixture f;
    AppState &s = f.state();
    s.traceFrozen = 1;
    s.emcMode = quint8(mode);
    s.measurementFileName = path;
    s.viewSample = mode == 0;
    s.viewMaxhold = mode != 0;
    s.viewAverage = s.viewMemoryB = 0;
    f.view().grafikMin = -250;
    f.view().grafikMax = 0;
    f.view().startFrequency = 30;
    f.view().stopFrequency = 30 + rows * 0.25f;
    QCOMPARE(compareWith(f.view(), path), QString());
    f.paint();

    const Segments own = segmentsOf(f.picture1.lines(f.colour(ColourRole(fetched<int>("role")))));
    QVERIFY(own.size() > 30);
    QCOMPARE(comparisonLines(f).trace, own);
}

QTEST_MAIN(ComparisonTest)
#include "comparison_test.moc"
