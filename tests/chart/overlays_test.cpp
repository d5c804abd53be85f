#include "chart_fixture.h"
#include "store/database.h"

#include <QPointF>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QTest>

#include <cmath>

namespace {

constexpr qint32 kMaxholdNr = 900, kAverageNr = 901;
using Points = QList<QPointF>;           // MHz, dB
using Pieces = QList<QList<double>>;     // {index, x1, y1, x2, y2}

void exec(const QSqlDatabase &db, const QString &sql, const QVariantList &values = {})
{
    QSqlQuery query(db);
    query.prepare(sql);
    for (const QVariant &v : values)
        query.addBindValue(v);
    if (!query.exec())
        qFatal("%s", qPrintable(sql));
}

// A live chart of 0 to 1000 MHz and -250 to 0 counts over the delivered working database, without
// its known bands and with the traces off; max hold and average take the limits 900 and 901.
struct OverlayChart : ChartFixture {
    explicit OverlayChart(const QTemporaryDir &dir)
    {
        ctx.dataFolder = dir.path();
        state().databasePath = dir.filePath(kWorkingDatabaseName);
        openWorkingDatabase(ctx);
        exec(db(), QStringLiteral("delete from knownsignals"));
        exec(db(), QStringLiteral("delete from limitdef where limitnr >= ?"), {kMaxholdNr});
        state().maxholdLimitNr = kMaxholdNr;
        state().averageLimitNr = kAverageNr;
        state().viewLimitMax = 1;
        state().viewSample = state().viewAverage = state().viewMaxhold = state().viewMemoryB = 0;
        view().grafikMin = -250;
        view().grafikMax = 0;
    }
    ~OverlayChart() { closeWorkingDatabase(ctx); }

    QSqlDatabase db() const { return workingDatabase(ctx); }
    void addLimit(qint32 nr, const Points &points)
    {
        for (const QPointF &p : points)
            exec(db(), QStringLiteral("insert into limitdef (limitnr, frequency, level_dbmw) values (?, ?, ?)"),
                 {nr, p.x(), p.y()});
    }
    Pieces lines(ColourRole role) const
    {
        Pieces found;
        for (const Operation &o : picture1.lines(colour(role)))
            found.append({double(found.size()), o.x1, o.y1, o.x2, o.y2});
        return found;
    }
};

// The pieces named by index in `expected` are among `drawn`, to a hundredth of a unit.
void comparePieces(const Pieces &drawn, const Pieces &expected)
{
    for (const QList<double> &e : expected) {
        QVERIFY(e[0] < drawn.size());
        const QList<double> &d = drawn[qsizetype(e[0])];
        for (int i = 1; i < 5; ++i)
            QVERIFY2(std::abs(d[i] - e[i]) < 0.01, qPrintable(QStringLiteral("piece %1: %2 drawn, %3 expected")
                                                                  .arg(e[0]).arg(d[i]).arg(e[i])));
    }
}

// x of a frequency on a log axis of 1 to 1000 MHz.
double logX(double f) { return std::log10(double(float(f))) / 3 * 1e6; }

} // namespace

class OverlaysTest : public QObject {
    Q_OBJECT

private slots:
    void limitWalk_data();
    void limitWalk();
    void zeroSpanLevelLine_data();
    void zeroSpanLevelLine();
    void widening_data();
    void widening();
    void knownBands_data();
    void knownBands();
    void storedLimits();

private:
    QTemporaryDir dir_;
};

void OverlaysTest::limitWalk_data()
{
    QTest::addColumn<Points>("points");
    QTest::addColumn<float>("start");
    QTest::addColumn<float>("stop");
    QTest::addColumn<quint8>("logAxis");
    QTest::addColumn<qint16>("logLimit");
    QTest::addColumn<qint16>("grafikMin");
    QTest::addColumn<int>("count");
    QTest::addColumn<Pieces>("pieces");

    // Cut at 20 MHz to -90 dB, then at 70 MHz from the cut start: -62 dB, not -65.
    QTest::newRow("cut at both ends, bent") << Points{{0, -100}, {100, -50}} << 20.0f << 70.0f << quint8(0)
                                            << qint16(0) << qint16(-250) << 1
                                            << Pieces{{0, 0, -225, 1000000, -155}};
    QTest::newRow("cut at the end") << Points{{30, -80}, {130, -60}} << 0.0f << 100.0f << quint8(0) << qint16(0)
                                    << qint16(-250) << 1 << Pieces{{0, 300000, -200, 1000000, -165}};
    // A step inside the window is one straight line, even with log interpolation.
    QTest::newRow("step") << Points{{10, -80}, {50, -80}, {50, -70}, {90, -70}} << 0.0f << 100.0f << quint8(0)
                          << qint16(-1) << qint16(-250) << 3 << Pieces{{1, 500000, -200, 500000, -175}};
    // Fifty pieces of 1.8 MHz; at 28 MHz the log rule gives -71.06 dB where a straight line has -76.
    QTest::newRow("log limit, linear axis")
        << Points{{10, -80}, {100, -60}} << 0.0f << 100.0f << quint8(0) << qint16(-1) << qint16(-250) << 50
        << Pieces{{0, 100000, -200, 118000, -196}, {9, 262000, -179, 280000, -177}, {49, 981999, -150, 1000000, -150}};
    QTest::newRow("log limit, log axis") << Points{{10, -80}, {100, -60}} << 1.0f << 999.0f << quint8(1)
                                         << qint16(-1) << qint16(-250) << 1
                                         << Pieces{{0, logX(10), -200, logX(100), -150}};
    // Straight in frequency, 0.95 counts a piece, drawn bent on the log axis.
    QTest::newRow("straight limit, log axis")
        << Points{{10, -80}, {100, -61}} << 1.0f << 999.0f << quint8(1) << qint16(0) << qint16(-250) << 50
        << Pieces{{0, logX(10), -200, logX(11.8), -199}, {24, logX(53.2), -177, logX(55), -176},
                  {49, logX(98.2), -153, logX(100), -152}};
    QTest::newRow("one row") << Points{{10, -80}} << 0.0f << 100.0f << quint8(0) << qint16(0) << qint16(-250) << 0
                             << Pieces{};
    QTest::newRow("no level window yet") << Points{{10, -80}, {100, -60}} << 0.0f << 100.0f << quint8(0) << qint16(0)
                                         << qint16(1000) << 0 << Pieces{};
}

void OverlaysTest::limitWalk()
{
    OverlayChart f(dir_);
    f.addLimit(kMaxholdNr, fetched<Points>("points"));
    QFETCH(float, start);
    QFETCH(float, stop);
    f.view().startFrequency = start;
    f.view().stopFrequency = stop;
    f.view().logAxis = fetched<quint8>("logAxis");
    f.state().maxholdLimitLog = fetched<qint16>("logLimit");
    f.view().grafikMin = fetched<qint16>("grafikMin");
    f.paint();
    const Pieces drawn = f.lines(MaxholdColour);
    QCOMPARE(drawn.size(), fetched<int>("count"));
    for (const Operation &o : f.picture1.lines(f.colour(MaxholdColour)))
        QCOMPARE((QList<int>{o.width, o.mode}), (QList<int>{2, Canvas::CopyPen}));
    comparePieces(drawn, fetched<Pieces>("pieces"));
    for (qsizetype i = 1; i < drawn.size(); ++i)
        QCOMPARE(drawn[i][1], drawn[i - 1][3]); // the pieces join
}

void OverlaysTest::zeroSpanLevelLine_data()
{
    QTest::addColumn<float>("frequency");
    QTest::addColumn<QList<double>>("levels");
    QTest::newRow("between points") << 12.5f << QList<double>{-187.5};
    QTest::newRow("on a point") << 20.0f << QList<double>{-150};
    QTest::newRow("below the line") << 5.0f << QList<double>{};
    QTest::newRow("above the line") << 35.0f << QList<double>{};
}

// In zero span the limit is one level line at the frequency, interpolated between its points.
void OverlaysTest::zeroSpanLevelLine()
{
    OverlayChart f(dir_);
    f.addLimit(kMaxholdNr, {{10, -80}, {20, -60}, {30, -60}});
    f.state().analyser.span = 0;
    f.view().startFrequency = fetched<float>("frequency");
    f.paint();
    QList<double> levels;
    for (const QList<double> &line : f.lines(MaxholdColour)) {
        QCOMPARE(line.mid(1), (QList<double>{0, line[2], 1000000, line[2]}));
        levels << line[2];
    }
    QTEST(levels, "levels");
}

void OverlaysTest::widening_data()
{
    QTest::addColumn<Points>("maxhold");
    QTest::addColumn<Points>("average");
    QTest::addColumn<int>("passes");
    QTest::addColumn<qint16>("grafikMin");
    QTest::addColumn<qint16>("grafikMax");
    QTest::addColumn<int>("lastPassLines");
    QTest::newRow("inside") << Points{{100, -80}, {900, -80}} << Points{} << 1 << qint16(-250) << qint16(0) << 1;
    // 60 dB lifts the upper edge of 0 counts to 60 counts: bounds in dB meet the window in counts.
    QTest::newRow("above") << Points{{100, 60}, {900, 60}} << Points{} << 2 << qint16(-250) << qint16(60) << 1;
    QTest::newRow("outside the window") << Points{{2000, -300}, {3000, -400}} << Points{} << 2 << qint16(-400)
                                        << qint16(0) << 0;
    // Each limit that widens starts the paint again once.
    QTest::newRow("both") << Points{{100, 60}, {900, 60}} << Points{{100, -400}, {900, -400}} << 3 << qint16(-400)
                          << qint16(60) << 2;
}

// A limit past the level window widens it and the paint starts again from a clean frame.
void OverlaysTest::widening()
{
    OverlayChart f(dir_);
    f.addLimit(kMaxholdNr, fetched<Points>("maxhold"));
    f.addLimit(kAverageNr, fetched<Points>("average"));
    f.state().viewLimitAverage = 1;
    f.paint();
    QTEST(f.picture1.count(Op::Clear), "passes");
    QTEST(f.view().grafikMin, "grafikMin");
    QTEST(f.view().grafikMax, "grafikMax");
    const QList<Operation> &ops = f.picture1.operations;
    const auto lastClear = std::find_if(ops.rbegin(), ops.rend(), [](const Operation &o) { return o.op == Op::Clear; });
    const auto limitLines = std::count_if(ops.rbegin(), lastClear, [](const Operation &o) { return o.op == Op::Line && o.width == 2; });
    QTEST(int(limitLines), "lastPassLines");
}

void OverlaysTest::knownBands_data()
{
    QTest::addColumn<quint8>("selection");
    QTest::addColumn<Pieces>("boxes"); // {colour, x1, y1, x2, y2}
    const QList<double> edge{0xAA, 0, -225, 0, -175}, hor{0xBB00, 200000, -200, 300000, -150},
                        ver{0xCC0000, 400000, -200, 600000, -150}, cut{0x123456, 900000, -250, 1000000, 0};
    QTest::newRow("both polarisations") << quint8(0) << Pieces{edge, hor, ver, cut};
    QTest::newRow("horizontal") << quint8(1) << Pieces{edge, hor, cut};
    QTest::newRow("vertical") << quint8(2) << Pieces{edge, ver, cut};
}

// Bands in the window, cut to it and to the level window, under the grid; a band ending right
// at the start is a box of no width, an entry without frequencies is passed over.
void OverlaysTest::knownBands()
{
    OverlayChart f(dir_);
    const QString insert = QStringLiteral("insert into knownsignals (signal, startfreq, stopfreq, \"min-level\", "
                                          "\"max-level\", hor, ver, screenColor) values (?, ?, ?, ?, ?, ?, ?, ?)");
    const QList<QVariantList> bands{{"cut", 190, 300, -200, 100, -1, -1, 0x123456}, {"before", 10, 99.5, -90, -70, -1, -1, 1},
                                    {"edge", 80, 100, -90, -70, -1, -1, 0xAA},      {"hor", 120, 130, -80, -60, -1, 0, 0xBB00},
                                    {"ver", 140, 160, -80, -60, 0, -1, 0xCC0000},  {"after", 250, 260, -90, -70, -1, -1, 2}};
    for (const QVariantList &band : bands)
        exec(f.db(), insert, band);
    exec(f.db(), QStringLiteral("insert into knownsignals (signal) values ('new')"));
    f.view().showKnownBands = -1;
    f.view().startFrequency = 100;
    f.view().stopFrequency = 200;
    f.view().paintSelection = fetched<quint8>("selection");
    f.paint();
    Pieces boxes;
    for (const Operation &o : f.picture1.boxes())
        boxes.append({double(o.colour), o.x1, o.y1, o.x2, o.y2});
    QTEST(boxes, "boxes");
    const auto &ops = f.picture1.operations;
    const auto firstBox = std::find_if(ops.begin(), ops.end(), [](const Operation &o) { return o.op == Op::Box; });
    const auto firstGrid = std::find_if(ops.begin(), ops.end(), [&f](const Operation &o) {
        return o.op == Op::Line && o.colour == f.colour(GridColour);
    });
    QVERIFY(firstBox < firstGrid);
}

// A stored chart draws the limit lines of the file, not those of the working database; the
// shorter line's empty rows are passed over.
void OverlaysTest::storedLimits()
{
    OverlayChart f(dir_);
    f.addLimit(kMaxholdNr, {{0, -10}, {1000, -10}});
    const QString path = dir_.filePath(QStringLiteral("limits.mes"));
    {
        QSqlDatabase file = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("stored-limits"));
        file.setDatabaseName(path);
        QVERIFY(file.open());
        exec(file, QStringLiteral("create table Limitlines (avefreq REAL, Average_dBmW REAL, maxfreq REAL, "
                                  "Maxhold_dBmW REAL)"));
        for (const QVariantList &row : QList<QVariantList>{
                 {100, -80, 100, -70}, {500, -80, 900, -70}, {900, -60, QVariant(), QVariant()}})
            exec(file, QStringLiteral("insert into Limitlines values (?, ?, ?, ?)"), row);
        file.close();
    }
    QSqlDatabase::removeDatabase(QStringLiteral("stored-limits"));
    f.state().traceFrozen = 1;
    f.state().measurementFileName = path + QStringLiteral("  ");
    f.state().viewLimitAverage = 1;
    f.paint();
    QCOMPARE(f.lines(MaxholdColour), (Pieces{{0, 100000, -175, 900000, -175}}));
    QCOMPARE(f.lines(AverageColour), (Pieces{{0, 100000, -200, 500000, -200}, {1, 500000, -200, 900000, -150}}));
}

QTEST_MAIN(OverlaysTest)
#include "overlays_test.moc"
