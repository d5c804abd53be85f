#include "signal/correction_chain.h"
#include "signal/level_math.h"
#include "support/sim_bench.h"

#include <QTest>

#include <cstdio>
#include <cstdlib>
#include <random>

namespace {

const QMap<QString, QList<ComponentRow>> kTables = {
    {"A", {{100.0f, 2.0f}, {200.0f, 4.0f}, {300.0f, -1.0f}}},
    {"flat", {{0.0f, 10.0f}, {1000.0f, 10.0f}}},
    {"one", {{200.0f, 7.0f}}},
    {"wide", {{-100.0f, 5.0f}, {100.0f, 5.0f}}},
};

// The named tables in the slots, served through the database hook; an empty name leaves a slot unused.
void useChain(Context &ctx, const QStringList &chain)
{
    for (int k = 0; k < kChainSlots; ++k)
        ctx.state.componentNumber[k] = chain.value(k).isEmpty() ? 0 : k + 1;
    ctx.calls.componentRows = [chain](qint32 losnr) { return kTables.value(chain.value(losnr - 1)); };
    ctx.state.correctionOn = 1;
    openChain(ctx);
    emptySegments(ctx);
}

// Floats compared exactly (as doubles, which the fuzzy compare holds to 1e-12).
void compareExactly(float actual, float expected)
{
    QCOMPARE(double(actual), double(expected));
}

} // namespace

class CorrectionChainTest : public QObject {
    Q_OBJECT

private slots:
    void levelArithmetic_data()
    {
        QTest::addColumn<QString>("op");
        QTest::addColumn<double>("x");
        QTest::addColumn<double>("expected");
        QTest::addColumn<double>("xAfter");
        QTest::newRow("logTen(0) floors at 1e-10") << "logTen" << 0.0 << -10.0 << 1e-10;
        QTest::newRow("logTen(-3) floors too") << "logTen" << -3.0 << -10.0 << 1e-10;
        QTest::newRow("logTen(1000)") << "logTen" << 1000.0 << 3.0 << 1000.0;
        QTest::newRow("toDecibel(0)") << "toDecibel" << 0.0 << -200.0 << 0.0;
        QTest::newRow("fromDecibel(-20)") << "fromDecibel" << -20.0 << 0.1 << -20.0;
    }
    void levelArithmetic()
    {
        QFETCH(QString, op);
        QFETCH(double, x);
        QFETCH(double, expected);
        QFETCH(double, xAfter);
        const double result = op == "logTen" ? logTen(x) : op == "toDecibel" ? toDecibel(x)
                                             : op == "fromDecibel" ? fromDecibel(x) : powerOfTen(x);
        QCOMPARE(result, expected);
        QCOMPARE(x, xAfter);
    }

    void openChainAsksForUsedSlotsOnly()
    {
        SimBench bench;
        AppState &s = bench.state();
        s.componentNumber = {3, 0, -1, 7, 0};
        s.componentRows[1] = kTables["A"]; // left from an earlier configuration
        QList<qint32> asked;
        bench.ctx->calls.componentRows = [&asked](qint32 losnr) { return asked << losnr, kTables["one"]; };
        openChain(*bench.ctx);
        QCOMPARE(asked, QList<qint32>({3, 7}));
        for (int k = 0; k < kChainSlots; ++k)
            QCOMPARE(s.componentRows[k].size(), k == 0 || k == 3 ? 1 : 0);

        bench.ctx->calls.componentRows = nullptr; // no database behind the chain: no rows
        openChain(*bench.ctx);
        QVERIFY(s.componentRows[0].isEmpty() && s.componentRows[3].isEmpty());
    }

    void correctionAtFrequency_data()
    {
        QTest::addColumn<QStringList>("chain");
        QTest::addColumn<float>("frequency");
        QTest::addColumn<int>("traceTarget");
        QTest::addColumn<int>("correctionOn");
        QTest::addColumn<float>("expected");
        const QStringList a{"A"}, aFlat{"A", "", "flat"}, one{"one"}, slot2{"", "A"};
        QTest::newRow("table point hit exactly") << a << 200.0f << 0 << 1 << 4.0f;
        QTest::newRow("between points") << a << 250.0f << 0 << 1 << 1.5f;
        QTest::newRow("text rounds down onto a point") << a << 200.00002f << 0 << 1 << 4.0f;
        QTest::newRow("text rounds up onto a point") << a << 199.99998f << 0 << 1 << 4.0f;
        QTest::newRow("below the first, other slot counts") << aFlat << 50.0f << 0 << 1 << 10.0f;
        QTest::newRow("above the last, other slot counts") << aFlat << 350.0f << 0 << 1 << 10.0f;
        QTest::newRow("both slots inside") << aFlat << 150.0f << 0 << 1 << 13.0f;
        QTest::newRow("one row, its frequency") << one << 200.0f << 0 << 1 << 7.0f;
        QTest::newRow("one row, just below") << one << 199.5f << 0 << 1 << 0.0f;
        QTest::newRow("one row, just above") << one << 200.5f << 0 << 1 << 0.0f;
        QTest::newRow("slot 2 between points") << slot2 << 150.0f << 0 << 1 << 3.0f;
        QTest::newRow("slot 2 on a point") << slot2 << 300.0f << 0 << 1 << -1.0f;
        QTest::newRow("memory A - B ignores components") << aFlat << 150.0f << 2 << 1 << 0.0f;
        QTest::newRow("memory B keeps them") << aFlat << 150.0f << 1 << 1 << 13.0f;
        QTest::newRow("chain off") << aFlat << 150.0f << 0 << 0 << 0.0f;
        QTest::newRow("negative frequency") << QStringList{"wide"} << -50.0f << 0 << 1 << 0.0f;
        QTest::newRow("zero frequency") << QStringList{"wide"} << 0.0f << 0 << 1 << 5.0f;
    }
    void correctionAtFrequency()
    {
        QFETCH(QStringList, chain);
        QFETCH(float, frequency);
        QFETCH(int, traceTarget);
        QFETCH(int, correctionOn);
        QFETCH(float, expected);
        SimBench bench;
        useChain(*bench.ctx, chain);
        bench.state().traceTarget = quint8(traceTarget);
        bench.state().correctionOn = quint8(correctionOn);
        correctionAt(*bench.ctx, frequency);
        compareExactly(bench.state().correctionAtFrequency, expected);
    }

    // Table A over one pass that does not empty the cache.
    void segmentCache_data()
    {
        QTest::addColumn<QList<float>>("frequencies");
        QTest::addColumn<QList<float>>("expected");
        QTest::newRow("an exact hit leaves the segment") << QList<float>{150, 200, 160} << QList<float>{3, 4, 3.2f};
        QTest::newRow("the next point above a hit searches") << QList<float>{200, 200.5f} << QList<float>{4, 3.975f};
        QTest::newRow("below the segment it extrapolates") << QList<float>{250, 150} << QList<float>{1.5f, 6.5f};
        QTest::newRow("above the last the upper end stays") << QList<float>{250, 350, 250} << QList<float>{1.5f, 0, 0};
    }
    void segmentCache()
    {
        QFETCH(QList<float>, frequencies);
        QFETCH(QList<float>, expected);
        SimBench bench;
        useChain(*bench.ctx, {"A"});
        for (int n = 0; n < frequencies.size(); ++n) {
            correctionAt(*bench.ctx, frequencies[n]);
            compareExactly(bench.state().correctionAtFrequency, expected[n]);
        }
    }

    void distanceTerm_data()
    {
        QTest::addColumn<float>("fromDut");
        QTest::addColumn<float>("limitDistance");
        QTest::addColumn<int>("correctionOn");
        QTest::addColumn<float>("expected");
        QTest::newRow("3 m against 10 m") << 3.0f << 10.0f << 1 << 10.457575f;
        QTest::newRow("10 m against 3 m") << 10.0f << 3.0f << 1 << -10.457575f;
        QTest::newRow("no measuring distance") << 0.0f << 10.0f << 1 << 0.0f;
        QTest::newRow("no limit distance") << 3.0f << 0.0f << 1 << 0.0f;
        QTest::newRow("equal distances") << 10.0f << 10.0f << 1 << 0.0f;
        QTest::newRow("chain off") << 3.0f << 10.0f << 0 << 0.0f;
    }
    void distanceTerm()
    {
        QFETCH(float, fromDut);
        QFETCH(float, limitDistance);
        QFETCH(int, correctionOn);
        QFETCH(float, expected);
        SimBench bench;
        bench.state().distanceFromDut = fromDut;
        bench.state().maxholdLimitDistance = limitDistance;
        bench.state().correctionOn = quint8(correctionOn);
        QCOMPARE(::distanceTerm(*bench.ctx), expected);
    }

    void queryFrequencyReadsLikeItsText_data()
    {
        QTest::addColumn<float>("from");
        QTest::addColumn<float>("to");
        QTest::newRow("below 1e-4") << 1e-7f << 1e-4f;
        QTest::newRow("kHz to MHz") << 1e-4f << 1.0f;
        QTest::newRow("MHz") << 1.0f << 3050.0f;
        QTest::newRow("halves at the eighth digit") << 1e6f << 8e6f;
        QTest::newRow("large") << 8e6f << 1e9f;
    }
    // Against the text itself: seven significant digits, read back as a float.
    void queryFrequencyReadsLikeItsText()
    {
        QFETCH(float, from);
        QFETCH(float, to);
        std::mt19937 random(7);
        std::uniform_real_distribution<float> pick(from, to);
        for (int n = 0; n < 20000; ++n) {
            const float f = n % 2 ? pick(random) : std::round(pick(random) * 64.0f) / 64.0f; // exact ties too
            char text[32];
            std::snprintf(text, sizeof text, "%.7g", double(f));
            if (queryFrequency(f) != std::strtof(text, nullptr))
                QFAIL(qPrintable(QStringLiteral("%1 does not read as %2").arg(f, 0, 'g', 9).arg(text)));
        }
    }

    // refLevel -30, attenuator 10: the reference line is -50 counts; the limit distance is 10 m.
    void conversion_data()
    {
        QTest::addColumn<int>("dbPerDivision");
        QTest::addColumn<int>("byte");
        QTest::addColumn<float>("correction");
        QTest::addColumn<float>("fromDut");
        QTest::addColumn<int>("traceTarget");
        QTest::addColumn<int>("expected");
        QTest::newRow("reference line") << 10 << 227 << 0.0f << 0.0f << 0 << -50;
        QTest::newRow("200 steps down") << 10 << 27 << 0.0f << 0.0f << 0 << -250;
        QTest::newRow("5 dB per division") << 5 << 27 << 0.0f << 0.0f << 0 << -150;
        QTest::newRow("negative half truncates") << 5 << 128 << 0.0f << 0.0f << 0 << -99;
        QTest::newRow("truncation, then half to even") << 5 << 128 << 1.0f << 0.0f << 0 << -96;
        QTest::newRow("correction half to even") << 10 << 227 << 3.0f << 0.0f << 0 << -42;
        QTest::newRow("3 m against 10 m") << 10 << 227 << 0.0f << 3.0f << 0 << -76;
        QTest::newRow("memory B: both") << 10 << 227 << 3.0f << 3.0f << 1 << -69;
        QTest::newRow("A - B: distance only") << 10 << 227 << 3.0f << 3.0f << 2 << -76;
    }
    void conversion()
    {
        QFETCH(int, dbPerDivision);
        QFETCH(int, byte);
        QFETCH(float, correction);
        QFETCH(float, fromDut);
        QFETCH(int, traceTarget);
        QFETCH(int, expected);
        SimBench bench;
        AppState &s = bench.state();
        s.analyser.dbPerDivision = quint8(dbPerDivision);
        s.componentNumber[0] = 1;
        s.componentRows[0] = {{0.0f, correction}, {2000.0f, correction}};
        s.componentSegment[0] = {0.0f, 5000.0f, 99.0f, 99.0f}; // stale: the pass must empty it
        s.correctionOn = 1;
        s.distanceFromDut = fromDut;
        s.maxholdLimitDistance = 10.0f;
        s.traceTarget = quint8(traceTarget);
        s.traces.rawSamples.fill(qint16(byte));
        convertBlock(*bench.ctx);
        const TraceArray &trace = traceTarget == 0 ? s.traces.sampleTrace : s.traces.memoryTrace;
        for (int i : {1, 1000, 2001})
            QCOMPARE(QList<qint16>({s.traces.rawSamples[i], trace[i]}), QList<qint16>(2, qint16(expected)));
        QCOMPARE(trace[2002], qint16(0));
    }

    // Point i lies at start + i x span / pointCount: with 2001 points over 2001 MHz, point 200 is at
    // 200 MHz, the one frequency that a one-row table corrects.
    void pointFrequencies()
    {
        SimBench bench;
        useChain(*bench.ctx, {"one"});
        bench.state().chart.stopFrequency = 2001.0f;
        bench.state().traces.rawSamples.fill(227);
        convertBlock(*bench.ctx);
        const TraceArray &trace = bench.state().traces.sampleTrace;
        QCOMPARE(QList<qint16>({trace[199], trace[200], trace[201]}), QList<qint16>({-50, -32, -50}));
    }

    void targetArrayAndTimeStamp_data()
    {
        QTest::addColumn<int>("traceTarget");
        QTest::addColumn<int>("filled"); // 0 sample, 1 average, 2 max hold, 3 memory, -1 none
        QTest::newRow("sample") << 0 << 0;
        QTest::newRow("memory B") << 1 << 3;
        QTest::newRow("memory A - B") << 2 << 3;
        QTest::newRow("average") << 3 << 1;
        QTest::newRow("max hold") << 4 << 2;
        QTest::newRow("other") << 5 << -1;
    }
    void targetArrayAndTimeStamp()
    {
        QFETCH(int, traceTarget);
        QFETCH(int, filled);
        SimBench bench;
        TraceStore &t = bench.state().traces;
        bench.state().traceTarget = quint8(traceTarget);
        t.rawSamples.fill(27);
        bench.clock->sleep(90.0);
        convertBlock(*bench.ctx);
        const TraceArray *arrays[] = {&t.sampleTrace, &t.averageTrace, &t.maxholdTrace, &t.memoryTrace};
        const QDateTime *stamps[] = {&t.sampleTime, &t.averageTime, &t.maxholdTime, &t.memoryTime};
        for (int a = 0; a < 4; ++a) {
            QCOMPARE((*arrays[a])[1], qint16(a == filled ? -250 : 0));
            QCOMPARE(*stamps[a], a == filled ? bench.clock->now() : QDateTime());
        }
    }

    void levelWindow_data()
    {
        QTest::addColumn<QList<int>>("window");
        QTest::addColumn<QList<int>>("block"); // lowest and highest count
        QTest::addColumn<QList<int>>("expected");
        QTest::newRow("first block replaces both ends") << QList{1000, -1000} << QList{-120, -60} << QList{-130, -30};
        QTest::newRow("constant block: exactly 100") << QList{1000, -1000} << QList{-80, -80} << QList{-90, 10};
        QTest::newRow("well inside: no change") << QList{-130, -30} << QList{-100, -60} << QList{-130, -30};
        QTest::newRow("one count below: widens by 11") << QList{-130, -30} << QList{-131, -60} << QList{-141, -30};
        QTest::newRow("one count above: widens by 11") << QList{-130, -30} << QList{-120, -29} << QList{-130, -19};
    }
    void levelWindow()
    {
        QFETCH(QList<int>, window);
        QFETCH(QList<int>, block);
        QFETCH(QList<int>, expected);
        SimBench bench;
        ChartView &c = bench.state().chart;
        c.grafikMin = qint16(window[0]);
        c.grafikMax = qint16(window[1]);
        TraceArray &raw = bench.state().traces.rawSamples;
        raw.fill(qint16(block[0] + 277)); // 10 dB per division, -30 dBm + 10 dB: count = byte - 277
        raw[700] = qint16(block[1] + 277);
        convertBlock(*bench.ctx);
        QCOMPARE(QList<int>({c.grafikMin, c.grafikMax}), expected);
    }
};

QTEST_GUILESS_MAIN(CorrectionChainTest)
#include "correction_chain_test.moc"
