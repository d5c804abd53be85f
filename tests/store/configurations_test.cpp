#include "store/catalogue_fixture.h"
#include "store/catalogue_refresh.h"
#include "store/configurations.h"

#include <QTest>

namespace {

const QString kRadiated = QStringLiteral("Radiated 3m");   // antenna at 3 m, cable, preamplifier
const QString kConducted = QStringLiteral("Conducted mains"); // limiter (a loss) first, cable

QVariantList devices(CatalogueFixture &f, const QString &config)
{
    QVariantList row;
    for (const char *column : kDeviceColumns)
        row << f.sql(QStringLiteral("select %1 from config where configname = '%2'").arg(column, config)).toInt();
    return row;
}

} // namespace

class ConfigurationsTest : public QObject {
    Q_OBJECT

private slots:
    void addCopyAndDelete()
    {
        CatalogueFixture f;
        NewconfViews dialog;
        bindNewconfViews(f.ctx, dialog);
        QVERIFY(!addConfiguration(f.ctx, dialog, QStringLiteral("   ")));
        QVERIFY(addConfiguration(f.ctx, dialog, QStringLiteral(" Bench ")));
        QCOMPARE(f.ctx.state.configSelectionName, QStringLiteral("Bench"));
        QCOMPARE(f.views().conData2.value("configname").toString(), QStringLiteral("Bench"));
        QCOMPARE(devices(f, "Bench"), QVariantList(5, 0)); // a new row has no components

        f.prompts->answerMessage(QStringLiteral("Add new"), MsgAnswer::Ok);
        QVERIFY(!addConfiguration(f.ctx, dialog, QStringLiteral("bench")));
        QCOMPARE(f.prompts->messages(), QStringList{"Add new|Configuration exist ( bench )"});

        // Copy: the destination takes all five device columns of the source.
        QVERIFY(dialog.data3.findFirst("configname like '" + kRadiated + "'"));
        copyConfiguration(f.ctx, dialog);
        QCOMPARE(devices(f, "Bench"), devices(f, kRadiated));
        QVERIFY(devices(f, "Bench")[0].toInt() > 0);

        DataView delconf;
        bindDelconfView(f.ctx, delconf);
        QVERIFY(delconf.findFirst("configname like 'Bench'"));
        QVERIFY(deleteConfiguration(f.ctx, delconf));
        QCOMPARE(f.sql("select count(*) from config").toInt(), 2);
        QCOMPARE(delconf.value("configname").toString(), kConducted); // the first row again
    }

    void deletedConfigurationInUseTurnsNotSet()
    {
        CatalogueFixture f;
        AppState &s = f.ctx.state;
        s.configName = kRadiated;
        refreshConfiguration(f.ctx);
        QCOMPARE(s.distanceFromDut, 3.0f);
        QCOMPARE(QVariantList(s.componentNumber.begin(), s.componentNumber.end()), devices(f, kRadiated));

        f.sql("delete from config where configname = '" + kRadiated + "'");
        QCOMPARE(s.configName, kRadiated); // nothing notices until the next refresh
        refreshConfiguration(f.ctx);
        QCOMPARE(s.configName, QStringLiteral("Not set"));
        QCOMPARE(s.distanceFromDut, 0.0f);
        QVERIFY(!f.ctx.panel().distanceVisible);
        QCOMPARE(QVariantList(s.componentNumber.begin(), s.componentNumber.end()), QVariantList(5, 0));
    }

    void distanceOfTheFirstSlot_data()
    {
        QTest::addColumn<QString>("config");
        QTest::addColumn<QString>("change");
        QTest::addColumn<int>("correctionOn");
        QTest::addColumn<QString>("number"); // measLabel4, empty when the labels are hidden
        QTest::addColumn<QString>("label5"); // empty when hidden
        QTest::newRow("antenna, correction on") << kRadiated << "" << 1 << "3" << "Distance from DUT: 3m";
        QTest::newRow("antenna, correction off") << kRadiated << "" << 0 << "3" << "";
        QTest::newRow("a loss first") << kConducted << "" << 1 << "" << "";
        QTest::newRow("antenna at distance 0") << kRadiated << "update loshead set distance = 0 where lostyp = 0"
                                               << 1 << "" << "";
        QTest::newRow("2.5 m") << kRadiated << "update loshead set distance = 2.5 where lostyp = 0" << 1 << "2.5"
                               << "Distance from DUT: 2.5m";
    }
    void distanceOfTheFirstSlot()
    {
        QFETCH(QString, config);
        QFETCH(QString, change);
        QFETCH(int, correctionOn);
        QFETCH(QString, number);
        QFETCH(QString, label5);
        CatalogueFixture f;
        if (!change.isEmpty())
            f.sql(change);
        f.ctx.state.configName = config;
        f.ctx.state.correctionOn = quint8(correctionOn);
        f.ctx.state.distanceFromDut = 7.0f; // from before: must not survive
        refreshConfiguration(f.ctx);
        const PanelControls &panel = f.ctx.panel();
        QCOMPARE(panel.configurationText, config);
        QCOMPARE(panel.distanceVisible ? panel.distanceNumber : QString(), number);
        QCOMPARE(panel.distanceFromDutVisible ? panel.distanceFromDutText : QString(), label5);
        QCOMPARE(f.ctx.state.distanceFromDut, number.isEmpty() ? 0.0f : number.toFloat());
    }

    void editorShowsAndWritesTheSlots()
    {
        CatalogueFixture f;
        configurationChosen(f.ctx, kRadiated);
        std::optional<ConfigurationEditor> shown = reloadConfigurationEditor(f.ctx);
        QVERIFY(shown);
        QCOMPARE(shown->name, kRadiated);
        QCOMPARE(shown->components[0], QStringLiteral("BiLog antenna 30-1000 MHz"));
        QCOMPARE(shown->components[2], QStringLiteral("Preamplifier 22 dB"));
        QVERIFY(shown->distanceVisible);
        QCOMPARE(shown->distance, QStringLiteral("3"));

        // An antenna is no candidate after slot 1; a loss in slot 1 hides the distance.
        QVERIFY(!componentChosen(f.ctx, 2, QStringLiteral("BiLog antenna 30-1000 MHz")));
        QVERIFY(componentChosen(f.ctx, 1, QStringLiteral("Transient limiter 10 dB")));
        QVERIFY(componentChosen(f.ctx, 5, QStringLiteral("Transient limiter 10 dB")));
        shown = reloadConfigurationEditor(f.ctx);
        QCOMPARE(shown->components[0], QStringLiteral("Transient limiter 10 dB"));
        QCOMPARE(shown->components[4], QStringLiteral("Transient limiter 10 dB"));
        QVERIFY(!shown->distanceVisible);
        const int limiter = f.sql("select losnr from loshead where losname = 'Transient limiter 10 dB'").toInt();
        QCOMPARE(devices(f, kRadiated)[0].toInt(), limiter);
        QCOMPARE(devices(f, kRadiated)[4].toInt(), limiter);
    }
};

QTEST_GUILESS_MAIN(ConfigurationsTest)
#include "configurations_test.moc"
