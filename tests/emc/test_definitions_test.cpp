// The EMC test definitions: each field's clamp, the 0.5 MHz rule of the range, and the state
// that applyEmcTest makes of a row.

#include "emc/emc_test.h"
#include "store/catalogue_fixture.h"

#include <QTest>

namespace {

// A test "Bench" on the delivered radiated test, made the selected one.
struct TestBench : CatalogueFixture {
    TestBench()
    {
        sql(QStringLiteral("insert into test select * from test where name = 'EN 55032 B radiated 3m'"));
        sql(QStringLiteral("update test set name = 'Bench', unit = 'dBmW' where rowid = (select max(rowid) from test)"));
        views().testData1.refresh();
        testListPicked(ctx, TestList::Test, QStringLiteral("Bench"));
    }
    void set(const QString &assignments)
    {
        sql(QStringLiteral("update test set ") + assignments + QStringLiteral(" where name = 'Bench'"));
        views().testData1.refresh();
    }
    QVariant column(const QString &name) { return sql(QStringLiteral("select ") + name + QStringLiteral(" from test where name = 'Bench'")); }
    TestControls &page() { return ctx.testPage(); }
};

} // namespace

class TestDefinitionsTest : public QObject {
    Q_OBJECT

private slots:
    void fieldClamps_data()
    {
        QTest::addColumn<int>("field");
        QTest::addColumn<int>("bandwidth");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("shown");
        QTest::addColumn<QString>("column");
        QTest::addColumn<double>("stored");
        const int step = int(TestField::StepWidth);
        QTest::newRow("1000 kHz, 150 down to hundreds") << step << 0 << "150" << "100" << "step" << 100.0;
        QTest::newRow("1000 kHz, 2500 to the top") << step << 0 << "2500" << "2000" << "step" << 2000.0;
        QTest::newRow("1000 kHz, 40 up to 100") << step << 0 << "40" << "100" << "step" << 100.0;
        QTest::newRow("120 kHz, 125 down to tens") << step << 1 << "125" << "120" << "step" << 120.0;
        QTest::newRow("120 kHz, 5 up to 10") << step << 1 << "5" << "10" << "step" << 10.0;
        QTest::newRow("9 kHz, 30 to 18") << step << 2 << "30" << "18" << "step" << 18.0;
        QTest::newRow("9 kHz, 0 to 1") << step << 2 << "0" << "1" << "step" << 1.0;
        QTest::newRow("9 kHz, no number") << step << 2 << "-" << "1" << "step" << 1.0;
        QTest::newRow("blocks, 0 to 1") << int(TestField::StepBlocks) << 1 << "0" << "1" << "steptime" << 1.0;
        QTest::newRow("blocks, 250 to 100") << int(TestField::StepBlocks) << 1 << "250" << "100" << "steptime" << 100.0;
        QTest::newRow("blocks, trailing text") << int(TestField::StepBlocks) << 1 << "12abc" << "12" << "steptime" << 12.0;
        QTest::newRow("sweep time, huge") << int(TestField::SweepTime) << 1 << "99999999999999999999" << "10000"
                                          << "meastime" << 10000.0;
        QTest::newRow("sweep time, 7.9") << int(TestField::SweepTime) << 1 << "7.9" << "7" << "meastime" << 7.0;
        QTest::newRow("distance, -150") << int(TestField::LimitDistance) << 1 << "-150" << "-100.0" << "leveldist" << -100.0;
        QTest::newRow("distance, 3.25") << int(TestField::LimitDistance) << 1 << "3.25" << "3.3" << "leveldist" << 3.25;
    }
    void fieldClamps()
    {
        QFETCH(int, field);
        QFETCH(int, bandwidth);
        QFETCH(QString, typed);
        QFETCH(QString, shown);
        QFETCH(QString, column);
        QFETCH(double, stored);
        TestBench b;
        testOptionChosen(b.ctx, TestOption::Bandwidth, bandwidth);
        testFieldEntered(b.ctx, TestField(field), typed);
        QCOMPARE(b.page().field(TestField(field)), shown);
        QCOMPARE(b.column(column).toDouble(), stored);
        QVERIFY(b.prompts->messages().isEmpty());
    }

    // The level is typed in the test's unit with the attenuator; the column holds the analyser's own.
    void referenceLevel_data()
    {
        QTest::addColumn<int>("attenuator");
        QTest::addColumn<QString>("unit");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<double>("ref");
        QTest::addColumn<QString>("shown");
        QTest::newRow("20 dB, 0 typed: clamped at the top") << 2 << "dBmW" << "0" << -27.0 << "-7.0";
        QTest::newRow("20 dB, -200: clamped at the bottom") << 2 << "dBmW" << "-200" << -99.8 << "-79.8";
        QTest::newRow("0 dB in dBuV") << 0 << "dBuV" << "60" << -47.0 << "60.0";
    }
    void referenceLevel()
    {
        QFETCH(int, attenuator);
        QFETCH(QString, unit);
        QFETCH(QString, typed);
        QFETCH(double, ref);
        QFETCH(QString, shown);
        TestBench b;
        testListPicked(b.ctx, TestList::Unit, unit);
        testOptionChosen(b.ctx, TestOption::Attenuator, attenuator);
        QCOMPARE(b.column("atten").toInt(), attenuator * 10);
        testFieldEntered(b.ctx, TestField::RefLevel, typed);
        QCOMPARE(b.column("ref").toFloat(), float(ref));
        QCOMPARE(b.page().field(TestField::RefLevel), shown);
    }

    // Start and stop stay 0.5 MHz apart: the start field moves the start down when the stop is at
    // or above the maximum, the stop field only when it stands exactly on it.
    void frequencyRange_data()
    {
        QTest::addColumn<bool>("startField");
        QTest::addColumn<double>("start");
        QTest::addColumn<double>("stop");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<double>("newStart");
        QTest::addColumn<double>("newStop");
        QTest::addColumn<bool>("box");
        QTest::newRow("start above the stop") << true << 30.0 << 100.0 << "150" << 150.0 << 150.5 << true;
        QTest::newRow("start 1049.9 under the maximum") << true << 30.0 << 1050.0 << "1049.9" << 1049.4 << 1050.0 << true;
        QTest::newRow("start below 0") << true << 30.0 << 100.0 << "-5" << 0.0 << 100.0 << false;
        QTest::newRow("stop 0.5 above passes") << false << 100.0 << 200.0 << "100.5" << 100.0 << 100.5 << false;
        QTest::newRow("stop 0.499 above does not") << false << 100.0 << 200.0 << "100.499" << 100.0 << 100.5 << true;
        QTest::newRow("stop 999.501 under 1000") << false << 999.001 << 1010.0 << "999.5" << 999.001 << 999.501 << true;
        QTest::newRow("stop beyond the maximum") << false << 1049.8 << 1050.0 << "2000" << 1049.3 << 1050.0 << true;
        QTest::newRow("stop under the maximum") << false << 1049.6 << 1050.0 << "1049.9" << 1049.6 << 1050.1 << true;
    }
    void frequencyRange()
    {
        QFETCH(bool, startField);
        QFETCH(double, start);
        QFETCH(double, stop);
        QFETCH(QString, typed);
        QFETCH(double, newStart);
        QFETCH(double, newStop);
        QFETCH(bool, box);
        TestBench b;
        b.set(QStringLiteral("startfreq = %1, stopfreq = %2").arg(start).arg(stop));
        if (box)
            b.prompts->answerMessage(QStringLiteral("Testsettings"), MsgAnswer::Ok);
        testFieldEntered(b.ctx, startField ? TestField::Start : TestField::Stop, typed);
        QCOMPARE(b.column("startfreq").toFloat(), float(newStart));
        QCOMPARE(b.column("stopfreq").toFloat(), float(newStop));
        QCOMPARE(b.prompts->messages().size(), box ? 1 : 0);
        if (box)
            QCOMPARE(b.prompts->messages().first(),
                     QStringLiteral("Testsettings|(Stopfrequency - Startfrequency) < 500kHz"));
        QCOMPARE(b.page().field(startField ? TestField::Start : TestField::Stop),
                 QString::number(startField ? newStart : newStop, 'f', 3));
    }

    void bandwidthOverwritesStep()
    {
        TestBench b;
        testOptionChosen(b.ctx, TestOption::Bandwidth, 1);
        testFieldEntered(b.ctx, TestField::StepWidth, QStringLiteral("240"));
        testOptionChosen(b.ctx, TestOption::Bandwidth, 2);
        QCOMPARE(b.column("step").toInt(), 9);
        QCOMPARE(b.page().field(TestField::StepWidth), QStringLiteral("9"));
        applyEmcTest(b.ctx);
        QCOMPARE(b.ctx.state.stepWidth, 0.009f);
        QCOMPARE(b.ctx.state.analyser.bandwidth, quint16(9));
    }

    // What the state takes from the chain, the peak limit and the detectors.
    void applyTest_data()
    {
        QTest::addColumn<QString>("assignments");
        QTest::addColumn<quint8>("correctionOn");
        QTest::addColumn<float>("distanceFromDut");
        QTest::addColumn<bool>("peakLimit");
        QTest::addColumn<quint8>("maxhold");
        QTest::addColumn<quint8>("qpeak");
        QTest::newRow("radiated chain, quasi-peak") << "peakdet = 1" << quint8(1) << 3.0f << true << quint8(1) << quint8(1);
        QTest::newRow("blank configuration") << "config = ' '" << quint8(0) << 0.0f << true << quint8(1) << quint8(1);
        QTest::newRow("chain without antenna") << "config = 'Conducted mains'" << quint8(1) << 0.0f << true << quint8(1)
                                               << quint8(1);
        QTest::newRow("deleted peak limit, peak only") << "peak = 999, peakdet = 0" << quint8(1) << 3.0f << false
                                                       << quint8(1) << quint8(0);
        QTest::newRow("peakdet 2 keeps the flags") << "peakdet = 2" << quint8(1) << 3.0f << true << quint8(7) << quint8(7);
    }
    void applyTest()
    {
        QFETCH(QString, assignments);
        QFETCH(quint8, correctionOn);
        QFETCH(float, distanceFromDut);
        QFETCH(bool, peakLimit);
        QFETCH(quint8, maxhold);
        QFETCH(quint8, qpeak);
        TestBench b;
        AppState &s = b.ctx.state;
        b.set(assignments);
        s.emcViewMaxhold = s.emcViewQPeak = 7;
        s.maxholdLimitDistance = 99;
        applyEmcTest(b.ctx);
        QCOMPARE(s.emcTestName, QStringLiteral("Bench"));
        QCOMPARE(s.correctionOn, correctionOn);
        QCOMPARE(s.distanceFromDut, distanceFromDut);
        QCOMPARE(s.viewSample, quint8(0));
        QCOMPARE(s.maxholdLimitNr != 0, peakLimit);
        QCOMPARE(s.maxholdLimitName, peakLimit ? QStringLiteral("EN 55032 B 3m QP") : QStringLiteral("Not set"));
        QCOMPARE(s.maxholdLimitDistance, peakLimit ? 3.0f : 0.0f);
        QCOMPARE(s.viewLimitMax, quint8(peakLimit ? 1 : 0));
        QCOMPARE(s.emcViewMaxhold, maxhold);
        QCOMPARE(s.emcViewQPeak, qpeak);
    }

    // A pick in the test list also resets the view; the first test stands in for an unknown name.
    void pickResetsView()
    {
        TestBench b;
        AppState &s = b.ctx.state;
        b.set(QStringLiteral("mode = 1, startfreq = 0.15, stopfreq = 30, AVdet = -1, peakdet = 0"));
        s.viewMemoryB = 0;
        testListPicked(b.ctx, TestList::Test, QStringLiteral("bench"));
        QCOMPARE(s.testApplyView, quint8(0));
        QCOMPARE(s.chart.startFrequency, 0.15f);
        QCOMPARE(s.chart.stopFrequency, 30.0f);
        QCOMPARE(s.analyser.centerFrequency, 0.15f);
        QCOMPARE(s.emcMode, quint8(1));
        QCOMPARE(QList<int>({s.viewMaxhold, s.viewQPeak, s.viewAverage}), QList<int>({1, 0, 1}));
        QCOMPARE(b.page().emcChecks, (std::array<bool, 8>{true, false, true, false, true, false, true, false}));
        QVERIFY(!b.page().sweepControlsEnabled);

        s.emcTestName = QStringLiteral("No such test");
        s.chart.startFrequency = 5;
        applyEmcTest(b.ctx);
        QCOMPARE(s.emcTestName, QStringLiteral("Bench"));
        QCOMPARE(s.chart.startFrequency, 5.0f);
    }

    // newtest and deltest on names with a quote.
    void addCopyDelete()
    {
        TestBench b;
        NewtestViews views;
        bindTestViews(b.ctx, views);
        const QString name = QStringLiteral("O'Brien's test");
        QVERIFY(addTest(b.ctx, views, QStringLiteral("  ") + name));
        QCOMPARE(views.data2.value(QStringLiteral("name")).toString(), name);
        b.prompts->answerMessage(QStringLiteral("Add new"), MsgAnswer::Ok);
        QVERIFY(!addTest(b.ctx, views, name));
        QCOMPARE(b.prompts->messages(), QStringList{"Add new|Configuration exist ( " + name + " )"});

        QVERIFY(views.data3.findFirst(textCriterion(QStringLiteral("name"), QStringLiteral("like"), QStringLiteral("EN 55032 B conducted"))));
        copyTest(b.ctx, views);
        const QString columns = QStringLiteral("config, peak, average, startfreq, stopfreq, peakdet, AVdet, rbw, ref, "
                                               "unit, atten, horizontal, vertical, mode, leveldist, meastime, "
                                               "limitbezug, Ambient, step, steptime, tgon");
        QCOMPARE(b.sql("select count(*) from (select " + columns + " from test where name = 'O''Brien''s test' "
                       "intersect select " + columns + " from test where name = 'EN 55032 B conducted')").toInt(), 1);
        QVERIFY(b.sql("select memo from test where name = 'O''Brien''s test'").isNull());

        DataView data2;
        data2.setDatabase(workingDatabase(b.ctx));
        data2.setSource(QStringLiteral("select * from test order by name"));
        QVERIFY(data2.findFirst(textCriterion(QStringLiteral("name"), QStringLiteral("="), name)));
        deleteTest(data2);
        QCOMPARE(b.sql("select count(*) from test where name like 'O%'").toInt(), 0);
        QCOMPARE(data2.rowCount(), 3);
    }
};

QTEST_GUILESS_MAIN(TestDefinitionsTest)
#include "test_definitions_test.moc"
#include "store/criteria.h"
