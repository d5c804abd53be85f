#include "link/commands.h"
#include "output/logic_wiring.h"
#include "signal/trace_store.h"
#include "store/catalogue_fixture.h"
#include "store/catalogue_refresh.h"
#include "support/sim_bench.h"

#include <QTest>
#include <cmath>

namespace {

const QString kMax10m = QStringLiteral("EN 55032 B 10m QP"); // holds for 10 m
const QString kAv3m = QStringLiteral("EN 55032 B 3m QP");    // holds for 3 m

qint32 limitNumber(CatalogueFixture &f, const QString &name)
{
    return f.sql("select limitnr from limithead where limitname = '" + name + "'").toInt();
}

// The correction of one component at f as its rows give it: linear between neighbours, an exact
// point its own level, nothing outside the table.
double componentShare(const QList<QPair<double, double>> &rows, double f)
{
    for (int i = 0; i < rows.size(); ++i) {
        if (rows[i].first == f)
            return rows[i].second;
        if (i > 0 && rows[i - 1].first < f && f < rows[i].first)
            return rows[i - 1].second + (rows[i].second - rows[i - 1].second) * (f - rows[i - 1].first) /
                                            (rows[i].first - rows[i - 1].first);
    }
    return 0.0;
}

} // namespace

class CatalogueRefreshTest : public QObject {
    Q_OBJECT

private slots:
    // The average side writes the max hold distance when its box is ticked: kept as it always was.
    void limitDistances_data()
    {
        QTest::addColumn<bool>("check5");
        QTest::addColumn<bool>("check6");
        QTest::addColumn<bool>("averageFound");
        QTest::addColumn<float>("maxholdDistance");
        QTest::addColumn<float>("averageDistance");
        QTest::newRow("max hold box") << true << false << true << 10.0f << 99.0f;
        QTest::newRow("average box: crosswise") << false << true << true << 3.0f << 99.0f;
        QTest::newRow("both boxes: average wins") << true << true << true << 3.0f << 99.0f;
        QTest::newRow("no box") << false << false << true << 0.0f << 99.0f;
        QTest::newRow("no average limit, max hold box") << true << false << false << 10.0f << 99.0f;
        QTest::newRow("no average limit, no box") << false << false << false << 0.0f << 0.0f;
    }
    void limitDistances()
    {
        QFETCH(bool, check5);
        QFETCH(bool, check6);
        QFETCH(bool, averageFound);
        QFETCH(float, maxholdDistance);
        QFETCH(float, averageDistance);
        CatalogueFixture f;
        AppState &s = f.ctx.state;
        s.maxholdLimitNr = limitNumber(f, kMax10m);
        s.averageLimitNr = averageFound ? limitNumber(f, kAv3m) : 9999;
        s.maxholdLimitDistance = s.averageLimitDistance = 99.0f;
        f.ctx.panel().setMaxholdLimitTicked(check5);
        f.ctx.panel().setAverageLimitTicked(check6);
        refreshLimits(f.ctx);
        QCOMPARE(s.maxholdLimitDistance, maxholdDistance);
        QCOMPARE(s.averageLimitDistance, averageDistance);
        QCOMPARE(f.ctx.panel().maxholdLimitText, kMax10m);
        QCOMPARE(s.averageLimitName, averageFound ? kAv3m : QStringLiteral("Not set"));
        // Not found: the list shows whatever row its view stands on.
        QCOMPARE(f.ctx.panel().averageLimitText.isEmpty(), false);
    }

    void fileStateKeepsItsNamesUntilAPick()
    {
        CatalogueFixture f;
        AppState &s = f.ctx.state;
        s.traceFrozen = 1;
        s.maxholdLimitNr = 9999;
        s.maxholdLimitName = QStringLiteral("Limit of the file ");
        s.maxholdLimitDistance = 10.0f;
        s.configName = QStringLiteral("EN 55032 B radiated 3m"); // an .emc file holds the test name
        s.distanceFromDut = 3.0f;
        s.componentNumber = {9, 8, 7, 6, 5};
        refreshLimits(f.ctx);
        refreshConfiguration(f.ctx);
        const PanelControls &panel = f.ctx.panel();
        QCOMPARE(panel.maxholdLimitText, QStringLiteral("Limit of the file"));
        QCOMPARE(s.maxholdLimitDistance, 10.0f);
        QCOMPARE(panel.configurationText, QStringLiteral("EN 55032 B radiated 3m"));
        QCOMPARE(s.configName, QStringLiteral("EN 55032 B radiated 3m"));
        QVERIFY(panel.distanceVisible);
        QCOMPARE(s.componentNumber[0], 9);

        configurationPicked(f.ctx, QStringLiteral("Conducted mains"));
        QCOMPARE(s.traceFrozen, quint8(0));
        QCOMPARE(s.configName, QStringLiteral("Conducted mains"));
        QCOMPARE(s.distanceFromDut, 0.0f);
        QVERIFY(!panel.distanceVisible);
        QCOMPARE(s.componentNumber[0], f.sql("select devicea from config where configname = 'Conducted mains'").toInt());

        s.traceFrozen = 1;
        limitPicked(f.ctx, PanelLimit::Maxhold, kMax10m);
        QCOMPARE(s.traceFrozen, quint8(0));
        QCOMPARE(s.maxholdLimitNr, limitNumber(f, kMax10m));
        QCOMPARE(panel.maxholdLimitText, kMax10m);
        QCOMPARE(s.repaintRequest, quint8(1));
    }

    void unitPick_data()
    {
        QTest::addColumn<QString>("picked");
        QTest::addColumn<QString>("unitName");
        QTest::addColumn<QString>("trackingLevel");
        QTest::newRow("dBuV") << "dBuV" << "dBuV" << "57.0";
        QTest::newRow("no such unit") << "dBpW" << "dBmW" << "-50.0";
    }
    void unitPick()
    {
        QFETCH(QString, picked);
        QFETCH(QString, unitName);
        QFETCH(QString, trackingLevel);
        CatalogueFixture f;
        f.ctx.state.decimalChar = '.';
        unitPicked(f.ctx, picked);
        QCOMPARE(f.ctx.state.unitName, unitName);
        QCOMPARE(f.ctx.panel().unitLabel, unitName);
        QCOMPARE(f.ctx.panel().trackingLevelText, trackingLevel);
        QCOMPARE(f.ctx.state.repaintRequest, quint8(1));
    }

    // A Read through the hooks: the panel's refresh puts the configuration in force, and each
    // point of the sample trace carries the sum of the three components' corrections and the
    // distance term of a 3 m measurement against the 10 m limit.
    void readThroughAConfiguration()
    {
        SimBench bench;
        QTemporaryDir dir;
        Context &ctx = *bench.ctx;
        ctx.dataFolder = dir.path();
        attachLogic(ctx);
        openWorkingDatabase(ctx);
        AppState &s = ctx.state;
        QSqlQuery query(workingDatabase(ctx));
        query.exec("select limitnr from limithead where limitname = '" + kMax10m + "'");
        QVERIFY(query.next());
        s.maxholdLimitNr = query.value(0).toInt();
        ctx.panel().setMaxholdLimitTicked(true);
        s.configName = QStringLiteral("Radiated 3m");
        s.correctionOn = 1;
        s.analyser.span = 1000;
        TraceArray raw{};
        const auto convert = ctx.calls.convertBlock;
        ctx.calls.convertBlock = [&] {
            if (s.traceTarget == 0)
                raw = s.traces.rawSamples;
            convert();
        };
        bench.online();
        readAllSettings(ctx);
        readTraces(ctx);
        QCOMPARE(s.serialError, quint8(0));
        QCOMPARE(s.distanceFromDut, 3.0f);
        QCOMPARE(s.maxholdLimitDistance, 10.0f);

        QList<QList<QPair<double, double>>> chain;
        for (qint32 losnr : s.componentNumber) {
            QList<QPair<double, double>> rows;
            query.exec(QStringLiteral("select frequency, level_dbmw from losdef where losnr = %1 order by frequency")
                           .arg(losnr));
            while (losnr > 0 && query.next())
                rows.append({query.value(0).toDouble(), query.value(1).toDouble()});
            chain.append(rows);
        }
        QCOMPARE(chain[0].size(), 17); // the antenna
        const double term = 20.0 * std::log10(10.0 / 3.0);
        const double step = (double(s.chart.stopFrequency) - s.chart.startFrequency) / s.pointCount;
        int exact = 0;
        double largest = 0.0;
        for (int i = 1; i <= s.pointCount; ++i) {
            const double f = s.chart.startFrequency + step * i;
            double correction = -term;
            for (const auto &rows : chain)
                correction += componentShare(rows, f);
            const double level = std::trunc((s.analyser.refLevel + s.analyser.attenuator) * 2.5 +
                                            s.analyser.dbPerDivision / 10.0 * (raw[i] - 227));
            const double expected = level + correction * 2.5;
            const double difference = std::fabs(s.traces.sampleTrace[i] - expected);
            QVERIFY2(difference <= 0.5 + 1e-3, qPrintable(QStringLiteral("point %1 at %2 MHz").arg(i).arg(f)));
            exact += difference <= 0.5 ? 1 : 0;
            largest = std::max(largest, std::fabs(correction));
        }
        QVERIFY(largest > 20.0); // the chain did act: antenna factors and the preamplifier's gain
        QVERIFY(exact > s.pointCount - 10);
    }
};

QTEST_GUILESS_MAIN(CatalogueRefreshTest)
#include "catalogue_refresh_test.moc"
