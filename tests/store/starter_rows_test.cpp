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
        attachStore(ctx);
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

// The level of a limit line at a frequency, in dBuV: straight between its points, or in log
// frequency. Frequencies compare as the stored 32-bit values.
double levelAt(const Context &ctx, qint32 limitnr, bool logarithmic, double frequency)
{
    const auto rows = select(ctx, QStringLiteral("select frequency, level_dbmw from limitdef where limitnr = ? "
                                                 "order by frequency"), {limitnr});
    const double f = float(frequency);
    for (qsizetype i = 0; i + 1 < rows.size(); ++i) {
        const double fa = rows[i][0].toFloat(), fb = rows[i + 1][0].toFloat();
        const double la = rows[i][1].toFloat() + kDbuvOffset, lb = rows[i + 1][1].toFloat() + kDbuvOffset;
        if (fa <= f && f <= fb) {
            const double share = logarithmic ? std::log10(f / fa) / std::log10(fb / fa) : (f - fa) / (fb - fa);
            return la + (lb - la) * share;
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
    void limitFrequenciesUnique();
    void referencesResolve_data();
    void referencesResolve();
    void componentCorrections();
};

void StarterRowsTest::limitLines_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("unit");
    QTest::addColumn<bool>("logarithmic");
    QTest::addColumn<QList<QPointF>>("levels"); // frequency, published level; a step 1 kHz wide
    QTest::newRow("B 10m") << "EN 55032 B 10m QP" << "dBuV/m" << false
                           << QList<QPointF>{{30, 30}, {229.999, 30}, {230, 37}, {1000, 37}};
    QTest::newRow("A 10m") << "EN 55032 A 10m QP" << "dBuV/m" << false << QList<QPointF>{{100, 40}, {300, 47}};
    QTest::newRow("B 3m") << "EN 55032 B 3m QP" << "dBuV/m" << false << QList<QPointF>{{229.999, 40}, {230, 47}};
    QTest::newRow("A 3m") << "EN 55032 A 3m QP" << "dBuV/m" << false << QList<QPointF>{{100, 50}, {300, 57}};
    QTest::newRow("B mains QP, log slope") << "EN 55032 B mains QP" << "dBuV" << true
                                           << QList<QPointF>{{0.15, 66}, {0.3, 60.243}, {4.999, 56}, {5, 60}, {30, 60}};
    QTest::newRow("B mains AV, log slope") << "EN 55032 B mains AV" << "dBuV" << true
                                           << QList<QPointF>{{0.3, 50.243}, {1, 46}, {20, 50}};
    QTest::newRow("A mains QP") << "EN 55032 A mains QP" << "dBuV" << false
                                << QList<QPointF>{{0.499, 79}, {0.5, 73}};
    QTest::newRow("A mains AV") << "EN 55032 A mains AV" << "dBuV" << false << QList<QPointF>{{0.3, 66}, {10, 60}};
    QTest::newRow("FCC B 3m") << "FCC 15 B 3m QP" << "dBuV/m" << false
                              << QList<QPointF>{{87.999, 40}, {88, 43.5}, {500, 46}, {980, 54}};
}

void StarterRowsTest::limitLines()
{
    QFETCH(QString, name);
    QFETCH(QString, unit);
    QFETCH(bool, logarithmic);
    QFETCH(QList<QPointF>, levels);

    const auto heads = select(ctx(), QStringLiteral("select limitnr, limunit, Radiated, loga from LimitHead "
                                                    "where limitname = ?"), {name});
    QCOMPARE(heads.size(), 1);
    QCOMPARE(heads[0][1].toString(), unit);
    QCOMPARE(heads[0][2].toInt(), unit == "dBuV/m" ? -1 : 0);
    QCOMPARE(heads[0][3].toInt(), logarithmic ? -1 : 0);
    for (const QPointF &expected : levels) {
        const double level = levelAt(ctx(), heads[0][0].toInt(), logarithmic, expected.x());
        QVERIFY2(std::fabs(level - expected.y()) < 0.01, qPrintable(QStringLiteral("%1 MHz: %2").arg(expected.x()).arg(level)));
    }
}

void StarterRowsTest::limitFrequenciesUnique()
{
    for (const char *table : {"limitdef", "losdef"}) {
        const QString owner = QLatin1String(table) == QLatin1String("limitdef") ? "limitnr" : "losnr";
        QCOMPARE(select(ctx(), QStringLiteral("select count(*) from (select 1 from %1 group by %2, frequency "
                                              "having count(*) > 1)").arg(table, owner)),
                 (QList<QVariantList>{{0}}));
    }
}

void StarterRowsTest::referencesResolve_data()
{
    QTest::addColumn<QString>("dangling"); // rows whose reference leads nowhere
    QTest::newRow("limit points") << "select count(*) from limitdef where limitnr not in (select limitnr from LimitHead)";
    QTest::newRow("component points") << "select count(*) from losdef where losnr not in (select losnr from loshead)";
    QTest::newRow("limit units") << "select count(*) from LimitHead where limunit not in (select unitname from unit)";
    QTest::newRow("configuration slots")
        << "select count(*) from config, (select 1 as k union select 2 union select 3 union select 4 union select 5) "
           "where (case k when 1 then devicea when 2 then deviceb when 3 then devicec when 4 then deviced "
           "else devicee end) not in (select losnr from loshead where k = 1 or lostyp > 0 or losnr = 0)";
    QTest::newRow("test chains") << "select count(*) from test where config not in (select ConfigName from config)";
    QTest::newRow("test limits") << "select count(*) from test where peak not in (select limitnr from LimitHead) "
                                    "or (average <> 0 and average not in (select limitnr from LimitHead))";
    QTest::newRow("test units") << "select count(*) from test where unit not in (select unitname from unit)";
    QTest::newRow("counters below numbers given")
        << "select count(*) from MeasureCount where limitnr < (select max(limitnr) from LimitHead) "
           "or losnr < (select max(losnr) from loshead)";
    QTest::newRow("names given twice")
        << "select (select count(*) - count(distinct limitname) from LimitHead) "
           "+ (select count(*) - count(distinct losname) from loshead)";
}

void StarterRowsTest::referencesResolve()
{
    QFETCH(QString, dangling);
    QCOMPARE(select(ctx(), dangling), (QList<QVariantList>{{0}}));
}

// What the chain adds to a reading: a gain with its sign turned, in frequency order.
void StarterRowsTest::componentCorrections()
{
    const auto number = [&](const char *name) {
        return select(ctx(), QStringLiteral("select losnr from loshead where losname = ?"), {name}).value(0).value(0).toInt();
    };
    const QList<ComponentRow> preamplifier = componentRows(ctx(), number("Preamplifier 22 dB"));
    QCOMPARE(preamplifier.first().frequency, 0.009f);
    QCOMPARE(preamplifier.first().levelDbmw, -22.0f);
    const QList<ComponentRow> antenna = componentRows(ctx(), number("BiLog antenna 30-1000 MHz"));
    QCOMPARE(antenna.last().frequency, 1000.0f);
    QCOMPARE(antenna.last().levelDbmw, 23.5f);
    for (qsizetype i = 1; i < antenna.size(); ++i)
        QVERIFY(antenna[i - 1].frequency < antenna[i].frequency);
}

QTEST_GUILESS_MAIN(StarterRowsTest)
#include "starter_rows_test.moc"
