#include "support/no_port.h"
#include "core/clock.h"
#include "core/context.h"
#include "core/scripted_prompts.h"
#include "store/database.h"
#include "store/loss_gain.h"

#include <QSqlQuery>
#include <QSqlRecord>
#include <QTemporaryDir>
#include <QTest>

#include <cmath>
#include <memory>

namespace {

// Published limits are in dBuV or dBuV/m; the file keeps dBm.
constexpr double kDbuvOffset = 107.0;

// A first start on an empty data folder: the working copy of the delivered file is open.
struct Fixture {
    Fixture()
        : ctx(Platform{std::make_unique<VirtualClock>(), std::make_unique<ScriptedPrompts>(), std::make_unique<NoPort>()})
    {
        ctx.dataFolder = dir.path();
        ctx.state.databasePath = dir.filePath(kWorkingDatabaseName);
        openWorkingDatabase(ctx);
    }
    ~Fixture() { closeWorkingDatabase(ctx); }

    QTemporaryDir dir;
    Context ctx;
};

QList<QVariantList> select(const Context &ctx, const QString &sql, const QVariantList &values = {})
{
    QList<QVariantList> rows;
    QSqlQuery query(workingDatabase(ctx));
    query.prepare(sql);
    for (const QVariant &v : values)
        query.addBindValue(v);
    if (!query.exec())
        qFatal("%s", qPrintable(sql));
    while (query.next()) {
        QVariantList row;
        for (int i = 0; i < query.record().count(); ++i)
            row << query.value(i);
        rows << row;
    }
    return rows;
}

// The one value of a query that gives one row, or an invalid value.
QVariant single(const Context &ctx, const QString &sql, const QVariantList &values = {})
{
    const auto rows = select(ctx, sql, values);
    return rows.size() == 1 ? rows.first().first() : QVariant();
}

qint32 limitNumber(const Context &ctx, const QString &name)
{
    return single(ctx, QStringLiteral("select limitnr from LimitHead where limitname = ?"), {name}).toInt();
}

qint32 componentNumber(const Context &ctx, const QString &name)
{
    return single(ctx, QStringLiteral("select losnr from loshead where losname = ?"), {name}).toInt();
}

// A limit line's points as the chart reads them: frequency and published level.
QList<QPointF> limitPoints(const Context &ctx, qint32 limitnr)
{
    QList<QPointF> points;
    const auto rows = select(ctx, QStringLiteral("select * from limitdef where limitnr = %1 order by frequency").arg(limitnr));
    for (const QVariantList &row : rows)
        points << QPointF(row.at(1).toFloat(), row.at(2).toFloat() + kDbuvOffset);
    return points;
}

// The level between the two points around a frequency: straight in frequency, or in log
// frequency. Frequencies compare as the stored 32-bit values.
double levelAt(const QList<QPointF> &points, double frequency, bool logarithmic)
{
    const double f = float(frequency);
    for (qsizetype i = 0; i + 1 < points.size(); ++i) {
        const QPointF a = points[i], b = points[i + 1];
        if (a.x() <= f && f <= b.x() && a.x() < b.x()) {
            const double share = logarithmic ? (std::log10(f) - std::log10(a.x())) / (std::log10(b.x()) - std::log10(a.x()))
                                             : (f - a.x()) / (b.x() - a.x());
            return a.y() + (b.y() - a.y()) * share;
        }
    }
    return qQNaN();
}

} // namespace

class StarterRowsTest : public QObject {
    Q_OBJECT

    std::unique_ptr<Fixture> m_f;
    const Context &ctx() const { return m_f->ctx; }

private slots:
    void initTestCase() { m_f = std::make_unique<Fixture>(); }
    void cleanupTestCase() { m_f.reset(); }

    void limitLines_data();
    void limitLines();
    void knownBands_data();
    void knownBands();
    void countersHoldHighestNumbers();
    void components_data();
    void components();
    void configurations_data();
    void configurations();
    void emcTests_data();
    void emcTests();
    void componentRowsInFrequencyOrder();
};

void StarterRowsTest::limitLines_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<float>("distance"); // 0: conducted
    QTest::addColumn<bool>("logarithmic");
    QTest::addColumn<QList<QPointF>>("levels"); // frequency and published level between the points
    QTest::addColumn<double>("stepFrequency");
    QTest::addColumn<QList<double>>("stepDbm"); // the points there, in the order read
    QTest::newRow("B 10m") << "EN 55032 B 10m QP" << 10.0f << false
                           << QList<QPointF>{{30, 30}, {100, 30}, {1000, 37}} << 230.0 << QList<double>{-77, -70};
    QTest::newRow("A 10m") << "EN 55032 A 10m QP" << 10.0f << false
                           << QList<QPointF>{{100, 40}, {300, 47}} << 230.0 << QList<double>{-67, -60};
    QTest::newRow("B 3m") << "EN 55032 B 3m QP" << 3.0f << false
                          << QList<QPointF>{{100, 40}, {500, 47}} << 230.0 << QList<double>{-67, -60};
    QTest::newRow("A 3m") << "EN 55032 A 3m QP" << 3.0f << false
                          << QList<QPointF>{{100, 50}, {300, 57}} << 230.0 << QList<double>{-57, -50};
    QTest::newRow("B mains QP, log slope") << "EN 55032 B mains QP" << 0.0f << true
                                           << QList<QPointF>{{0.15, 66}, {0.2, 63.611}, {0.3, 60.243}, {0.5, 56}, {10, 60}}
                                           << 5.0 << QList<double>{-51, -47};
    QTest::newRow("B mains AV, log slope") << "EN 55032 B mains AV" << 0.0f << true
                                           << QList<QPointF>{{0.15, 56}, {0.3, 50.243}, {1, 46}, {20, 50}}
                                           << 5.0 << QList<double>{-61, -57};
    QTest::newRow("A mains QP") << "EN 55032 A mains QP" << 0.0f << false
                                << QList<QPointF>{{0.3, 79}, {1, 73}} << 0.5 << QList<double>{-28, -34};
    QTest::newRow("A mains AV") << "EN 55032 A mains AV" << 0.0f << false
                                << QList<QPointF>{{0.3, 66}, {10, 60}} << 0.5 << QList<double>{-41, -47};
    QTest::newRow("FCC B 3m") << "FCC 15 B 3m QP" << 3.0f << false
                              << QList<QPointF>{{50, 40}, {100, 43.5}, {500, 46}, {980, 54}} << 88.0
                              << QList<double>{-67, -63.5};
}

void StarterRowsTest::limitLines()
{
    QFETCH(QString, name);
    QFETCH(float, distance);
    QFETCH(bool, logarithmic);
    QFETCH(QList<QPointF>, levels);
    QFETCH(double, stepFrequency);
    QFETCH(QList<double>, stepDbm);

    const auto heads = select(ctx(), QStringLiteral("select limunit, Radiated, loga, Distance, limitnr from LimitHead "
                                                    "where limitname = ?"), {name});
    QCOMPARE(heads.size(), 1);
    const QVariantList &head = heads.first();
    QCOMPARE(head.at(0).toString(), QStringLiteral("dBuV"));
    QCOMPARE(head.at(1).toInt(), distance > 0 ? -1 : 0);
    QCOMPARE(head.at(2).toInt(), logarithmic ? -1 : 0);
    QCOMPARE(head.at(3).toFloat(), distance);

    const QList<QPointF> points = limitPoints(ctx(), head.at(4).toInt());
    for (const QPointF &expected : levels) {
        const double level = levelAt(points, expected.x(), logarithmic);
        QVERIFY2(std::fabs(level - expected.y()) < 0.01, qPrintable(QStringLiteral("%1 MHz: %2").arg(expected.x()).arg(level)));
    }
    // A step is two points at one frequency, in the order the line is traced.
    QList<double> step;
    for (const QPointF &p : points) {
        if (float(p.x()) == float(stepFrequency))
            step << p.y() - kDbuvOffset;
    }
    QCOMPARE(step, stepDbm);
}

void StarterRowsTest::knownBands_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<double>("start");
    QTest::addColumn<double>("stop");
    QTest::newRow("FM") << "FM broadcast" << 87.5 << 108.0;
    QTest::newRow("DAB") << "DAB (Band III)" << 174.0 << 240.0;
    QTest::newRow("DVB-T") << "DVB-T" << 470.0 << 694.0;
    QTest::newRow("TETRA") << "TETRA" << 380.0 << 400.0;
    QTest::newRow("GSM 900") << "GSM 900 downlink" << 925.0 << 960.0;
    QTest::newRow("GSM 1800") << "GSM 1800 downlink" << 1805.0 << 1880.0;
    QTest::newRow("LTE 800") << "LTE 800 downlink" << 791.0 << 821.0;
    QTest::newRow("ISM 433") << "ISM 433 MHz" << 433.05 << 434.79;
    QTest::newRow("SRD 868") << "SRD 868 MHz" << 863.0 << 870.0;
}

void StarterRowsTest::knownBands()
{
    QFETCH(QString, name);
    QFETCH(double, start);
    QFETCH(double, stop);

    const auto rows = select(ctx(), QStringLiteral("select startfreq, stopfreq, \"max-level\" > \"min-level\", "
                                                   "screenColor between 1 and 16777215, hor or ver "
                                                   "from knownsignals where signal = ?"), {name});
    QCOMPARE(rows.size(), 1);
    QCOMPARE(rows.first(), (QVariantList{start, stop, 1, 1, 1}));
}

void StarterRowsTest::countersHoldHighestNumbers()
{
    const QString counters = QStringLiteral("select count(*) from MeasureCount where limitnr = (select max(limitnr) from "
                                            "LimitHead) and losnr = (select max(losnr) from loshead)");
    QCOMPARE(single(ctx(), counters).toInt(), 1);
    QCOMPARE(select(ctx(), QStringLiteral("select min(limitnr), count(distinct limitnr) = count(*), "
                                          "count(distinct limitname) = count(*) from LimitHead")),
             (QList<QVariantList>{{1, 1, 1}}));
    QCOMPARE(select(ctx(), QStringLiteral("select count(distinct losnr) = count(*) from loshead")),
             (QList<QVariantList>{{1}}));
    QCOMPARE(single(ctx(), QStringLiteral("select losname from loshead where losnr = 0")).toString(), QStringLiteral(" "));
}

void StarterRowsTest::components_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("lostyp");
    QTest::addColumn<float>("distance");
    QTest::addColumn<double>("lowest"); // stored correction, dB
    QTest::addColumn<double>("highest");
    QTest::addColumn<bool>("rising");
    QTest::newRow("antenna") << "BiLog antenna 30-1000 MHz" << 0 << 3.0f << 5.0 << 30.0 << false;
    QTest::newRow("cable") << "Cable RG214 10 m" << 1 << 0.0f << 0.0 << 5.0 << true;
    QTest::newRow("preamplifier stored negated") << "Preamplifier 22 dB" << 2 << 0.0f << -25.0 << -20.0 << false;
    QTest::newRow("limiter") << "Transient limiter 10 dB" << 1 << 0.0f << 10.0 << 10.0 << false;
}

void StarterRowsTest::components()
{
    QFETCH(QString, name);
    QFETCH(int, lostyp);
    QFETCH(float, distance);
    QFETCH(double, lowest);
    QFETCH(double, highest);
    QFETCH(bool, rising);

    const auto heads = select(ctx(), QStringLiteral("select losnr, lostyp, Distance from loshead where losname = ?"), {name});
    QCOMPARE(heads.size(), 1);
    QCOMPARE(heads.first().at(1).toInt(), lostyp);
    QCOMPARE(heads.first().at(2).toFloat(), distance);
    const QList<ComponentRow> rows = componentRows(ctx(), heads.first().at(0).toInt());
    QVERIFY(rows.size() >= 2);
    for (qsizetype i = 0; i < rows.size(); ++i) {
        QVERIFY2(rows[i].levelDbmw >= lowest && rows[i].levelDbmw <= highest, qPrintable(QString::number(rows[i].levelDbmw)));
        QVERIFY(!rising || i == 0 || rows[i].levelDbmw > rows[i - 1].levelDbmw);
    }
}

void StarterRowsTest::configurations_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QStringList>("components"); // slot 1 to 5
    QTest::newRow("radiated") << "Radiated 3m"
                              << QStringList{"BiLog antenna 30-1000 MHz", "Cable RG214 10 m", "Preamplifier 22 dB"};
    QTest::newRow("conducted") << "Conducted mains" << QStringList{"Transient limiter 10 dB", "Cable RG214 10 m"};
}

void StarterRowsTest::configurations()
{
    QFETCH(QString, name);
    QFETCH(QStringList, components);

    const auto rows = select(ctx(), QStringLiteral("select devicea, deviceb, devicec, deviced, devicee from config "
                                                   "where ConfigName = ?"), {name});
    QCOMPARE(rows.size(), 1);
    for (int slot = 0; slot < 5; ++slot) {
        const qint32 losnr = rows.first().at(slot).toInt();
        QCOMPARE(losnr, slot < components.size() ? componentNumber(ctx(), components[slot]) : 0);
        if (losnr > 0 && slot > 0) // slots 2 to 5 take no antenna
            QVERIFY(single(ctx(), QStringLiteral("select lostyp from loshead where losnr = ?"), {losnr}).toInt() > 0);
    }
}

void StarterRowsTest::emcTests_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("mode");
    QTest::addColumn<QString>("config");
    QTest::addColumn<QString>("peakLimit");
    QTest::addColumn<QString>("averageLimit");
    QTest::addColumn<int>("rbw");
    QTest::newRow("sweep + step") << "EN 55032 B radiated 3m" << 0 << "Radiated 3m" << "EN 55032 B 3m QP" << QString() << 1;
    QTest::newRow("step") << "EN 55032 B conducted" << 1 << "Conducted mains" << "EN 55032 B mains QP"
                          << "EN 55032 B mains AV" << 2;
}

void StarterRowsTest::emcTests()
{
    QFETCH(QString, name);
    QFETCH(int, mode);
    QFETCH(QString, config);
    QFETCH(QString, peakLimit);
    QFETCH(QString, averageLimit);
    QFETCH(int, rbw);

    const auto rows = select(ctx(), QStringLiteral("select config, peak, average, startfreq, stopfreq, rbw, ref, unit, "
                                                   "mode, step from test where name = ?"), {name});
    QCOMPARE(rows.size(), 1);
    const QVariantList &t = rows.first();
    QCOMPARE(t.at(0).toString(), config);
    QCOMPARE(single(ctx(), QStringLiteral("select count(*) from config where ConfigName = ?"), {config}).toInt(), 1);
    QCOMPARE(t.at(1).toInt(), limitNumber(ctx(), peakLimit));
    QCOMPARE(t.at(2).toInt(), averageLimit.isEmpty() ? 0 : limitNumber(ctx(), averageLimit));
    const QList<QPointF> limit = limitPoints(ctx(), t.at(1).toInt());
    QVERIFY(t.at(3).toFloat() >= float(limit.first().x()) && t.at(4).toFloat() <= float(limit.last().x()));
    QCOMPARE(t.at(5).toInt(), rbw);
    QVERIFY(t.at(6).toDouble() >= -99.8 && t.at(6).toDouble() <= -27.0);
    QCOMPARE(single(ctx(), QStringLiteral("select count(*) from unit where unitname = ?"), {t.at(7)}).toInt(), 1);
    QCOMPARE(t.at(8).toInt(), mode);
    // The step width within what the page allows for the bandwidth: 1000, 120, 9 kHz.
    const int step = t.at(9).toInt(), low[] = {100, 10, 1}, high[] = {2000, 240, 18};
    QVERIFY(step >= low[rbw] && step <= high[rbw] && step % low[rbw] == 0);
}

void StarterRowsTest::componentRowsInFrequencyOrder()
{
    Fixture f;
    attachStore(f.ctx);
    const QList<ComponentRow> rows = f.ctx.calls.componentRows(componentNumber(f.ctx, "BiLog antenna 30-1000 MHz"));
    QCOMPARE(rows.size(), 17);
    QCOMPARE(rows.first().frequency, 30.0f);
    QCOMPARE(rows.first().levelDbmw, 18.0f);
    QCOMPARE(rows.last().frequency, 1000.0f);
    for (qsizetype i = 1; i < rows.size(); ++i)
        QVERIFY(rows[i - 1].frequency < rows[i].frequency);
    QVERIFY(componentRows(f.ctx, 999).isEmpty());

    // Rows entered out of order, and rows whose frequency is no number, as an edit may leave them.
    select(f.ctx, QStringLiteral("insert into losdef (losnr, frequency, level_dbmw) values "
                                 "(50, 100, 1), (50, 10, 2), (50, null, 9), (50, 'x', 9), (50, 50, 3)"));
    const QList<ComponentRow> entered = componentRows(f.ctx, 50);
    QCOMPARE(entered.size(), 3);
    QCOMPARE(entered[0].frequency, 10.0f);
    QCOMPARE(entered[1].levelDbmw, 3.0f);
    QCOMPARE(entered[2].frequency, 100.0f);

    closeWorkingDatabase(f.ctx);
    QVERIFY(componentRows(f.ctx, 50).isEmpty());
}

QTEST_GUILESS_MAIN(StarterRowsTest)
#include "starter_rows_test.moc"
