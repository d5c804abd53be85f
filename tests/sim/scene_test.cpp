// The trace the analyser shows: levels on the right bytes, the noise floor, and the time signal
// of zero span.

#include "core/scripted_prompts.h"
#include "sim/device_switch.h"
#include "sim/sim_exchange.h"

#include <QTest>

#include <algorithm>
#include <cmath>

namespace {

// The median level of a block's samples, in dBm.
double medianLevel(const SimPanel &p, const QByteArray &block)
{
    QByteArray samples = block.left(kTracePoints);
    std::nth_element(samples.begin(), samples.begin() + kTracePoints / 2, samples.end(),
                     [](char x, char y) { return uchar(x) < uchar(y); });
    return levelOf(p, uchar(samples[kTracePoints / 2]));
}

} // namespace

class AnalyserSceneTest : public QObject {
    Q_OBJECT

private slots:
    void carrierLandsOnItsByte_data();
    void carrierLandsOnItsByte();
    void noiseFloorFollowsBandwidthAndAttenuator_data();
    void noiseFloorFollowsBandwidthAndAttenuator();
    void zeroSpanShowsTheTimeSignal_data();
    void zeroSpanShowsTheTimeSignal();
    void trackingGeneratorShowsOnItsModel_data();
    void trackingGeneratorShowsOnItsModel();
    void operatorSwitchesTheDevice_data();
    void operatorSwitchesTheDevice();
};

void AnalyserSceneTest::carrierLandsOnItsByte_data()
{
    QTest::addColumn<QString>("model");
    QTest::addColumn<QList<QByteArray>>("panel");
    QTest::addColumn<double>("frequency");
    QTest::addColumn<double>("level");
    QTest::addColumn<int>("point");
    QTest::addColumn<int>("byte");
    // Point i lies at centre - span/2 + i * span/2001: 101 MHz is point 1200.6 of 95..105 MHz.
    const QList<QByteArray> narrow{"#cf0100.000", "#sp10", "#bw120"};
    QTest::newRow("10 dB per division") << "K320-A" << narrow + QList<QByteArray>{"#db10", "#rl-30.0", "#at10"}
                                        << 101.0 << -40.0 << 1201 << 177;
    QTest::newRow("5 dB per division") << "K320-A" << narrow + QList<QByteArray>{"#db5", "#rl-30.0", "#at10"} << 101.0
                                       << -40.0 << 1201 << 127;
    QTest::newRow("other reference") << "K320-A" << narrow + QList<QByteArray>{"#db10", "#rl-44.0", "#at0"} << 101.0
                                     << -40.0 << 1201 << 237;
    QTest::newRow("above the screen") << "K320-A" << narrow << 101.0 << -5.0 << 1201 << 255;
    // 9 kHz is far narrower than the 500 kHz between points: the carrier's own point still shows it.
    QTest::newRow("narrow filter, wide span") << "K320-A" << QList<QByteArray>{"#sp1000", "#bw9"} << 101.0 << -40.0
                                              << 202 << 177;
    // At 9 kHz and 5 dB per division the noise lies below the screen.
    const QList<QByteArray> high{"#cf1500.000", "#sp10", "#bw9", "#db5"};
    QTest::newRow("K550-B at 1500 MHz") << "K550-B" << high << 1500.0 << -40.0 << 1001 << 127;
    QTest::newRow("K320-A ends at 1050 MHz") << "K320-A" << high << 1500.0 << -40.0 << 1001 << 0;
}

void AnalyserSceneTest::carrierLandsOnItsByte()
{
    QFETCH(QString, model);
    QFETCH(QList<QByteArray>, panel);
    QFETCH(double, frequency);
    QFETCH(double, level);
    QFETCH(int, point);
    QFETCH(int, byte);
    Analyser a(model);
    a.scene = Scene({{frequency, level}});
    const QByteArray block = blockAfter(a, panel);
    QCOMPARE(sampleAt(block, point), byte);
    for (int i = 1; i <= kTracePoints; ++i)
        QVERIFY(sampleAt(block, i) <= byte);
}

void AnalyserSceneTest::noiseFloorFollowsBandwidthAndAttenuator_data()
{
    QTest::addColumn<int>("bandwidth");
    QTest::addColumn<int>("attenuator");
    QTest::newRow("1000 kHz, 10 dB") << 1000 << 10;
    QTest::newRow("120 kHz") << 120 << 10;
    QTest::newRow("9 kHz") << 9 << 10;
    QTest::newRow("0 dB attenuation") << 1000 << 0;
    QTest::newRow("30 dB attenuation") << 1000 << 30;
    QTest::newRow("9 kHz, 40 dB attenuation") << 9 << 40;
}

void AnalyserSceneTest::noiseFloorFollowsBandwidthAndAttenuator()
{
    QFETCH(int, bandwidth);
    QFETCH(int, attenuator);
    // 295..305 MHz holds no emission of the standard scene.
    const QList<QByteArray> quiet{"#cf0300.000", "#sp10", "#rl-50.0"};
    Analyser a;
    const double reference = medianLevel(a.panel, blockAfter(a, quiet + QList<QByteArray>{"#bw1000", "#at10"}));
    const double floor = medianLevel(a.panel, blockAfter(a, quiet + QList<QByteArray>{"#bw" + QByteArray::number(bandwidth),
                                                                                      "#at" + QByteArray::number(attenuator)}));
    // Noise power grows with the bandwidth, and every dB of attenuation lifts the floor by a dB.
    const double expected = 10.0 * std::log10(bandwidth / 1000.0) + (attenuator - 10);
    QVERIFY2(std::abs(floor - reference - expected) < 1.0,
             qPrintable(QString("floor moved %1 dB, expected %2 dB").arg(floor - reference).arg(expected)));
}

void AnalyserSceneTest::zeroSpanShowsTheTimeSignal_data()
{
    QTest::addColumn<QByteArray>("centre");
    QTest::addColumn<double>("least");
    QTest::addColumn<double>("most");
    // Peak minus the mean of the samples in dB.
    QTest::newRow("pulsed, a tenth of the time") << QByteArray("#cf0433.920") << 25.0 << 60.0;
    QTest::newRow("amplitude modulated") << QByteArray("#cf0124.500") << 4.0 << 10.0;
    QTest::newRow("continuous clock harmonic") << QByteArray("#cf0048.000") << 0.0 << 0.5;
}

void AnalyserSceneTest::zeroSpanShowsTheTimeSignal()
{
    QFETCH(QByteArray, centre);
    QFETCH(double, least);
    QFETCH(double, most);
    Analyser a;
    a.scene.zeroSpanSampleTime = 1e-5; // a fast sweep, to resolve the 1 kHz tone
    const QByteArray block = blockAfter(a, {centre, "#sp0", "#bw120"});
    double sum = 0.0;
    int peak = 0;
    for (int i = 1; i <= kTracePoints; ++i) {
        sum += sampleAt(block, i);
        peak = std::max(peak, sampleAt(block, i));
    }
    const double peakOverMean = (peak - sum / kTracePoints) * a.panel.dbPerDivision / 25.0;
    QVERIFY2(peakOverMean >= least && peakOverMean <= most, qPrintable(QString::number(peakOverMean)));
}


void AnalyserSceneTest::trackingGeneratorShowsOnItsModel_data()
{
    QTest::addColumn<QString>("model");
    QTest::addColumn<bool>("shown");
    QTest::newRow("K320-A") << "K320-A" << true;
    QTest::newRow("K550-B has none") << "K550-B" << false;
}

// The generator led to the input gives a flat line at its level over the whole span.
void AnalyserSceneTest::trackingGeneratorShowsOnItsModel()
{
    QFETCH(QString, model);
    QFETCH(bool, shown);
    Analyser a(model);
    const QByteArray block = blockAfter(a, {"#cf0600.000", "#sp1000", "#tg1", "#tl-25.0"});
    const double median = medianLevel(a.panel, block);
    if (shown)
        QVERIFY2(std::abs(median + 25.0) < 1.0, qPrintable(QString::number(median)));
    else
        QVERIFY2(median < -60.0, qPrintable(QString::number(median)));
}

void AnalyserSceneTest::operatorSwitchesTheDevice_data()
{
    QTest::addColumn<QStringList>("boxes");
    QTest::addColumn<bool>("deviceOn");
    QTest::newRow("no box") << QStringList{} << true;
    QTest::newRow("switched off") << QStringList{"Switch DUT Off"} << false;
    QTest::newRow("off and on again") << QStringList{"Switch DUT Off", "Switch DUT ON"} << true;
    QTest::newRow("other boxes leave it") << QStringList{"Switch DUT Off", "Set to vertical / N position"} << false;
    QTest::newRow("the text must match") << QStringList{"Switch DUT off"} << true;
}

// The boxes reach the user and switch the device: its clock harmonics come and go, the broadcasts
// around it stay to the hundredth of a dB.
void AnalyserSceneTest::operatorSwitchesTheDevice()
{
    QFETCH(QStringList, boxes);
    QFETCH(bool, deviceOn);
    // 0 to 1000 MHz at 120 kHz, swept once before the boxes; the same sweep number gives the same noise.
    SimPanel panel;
    panel.bandwidth = 120;
    TraceLevels seen, full;
    Scene scene, reference;
    scene.sweep(panel, 1050.0, 6, seen);
    auto user = std::make_unique<ScriptedPrompts>();
    ScriptedPrompts &script = *user;
    DeviceSwitchPrompts prompts(std::move(user), scene, "Switch DUT Off", "Switch DUT ON");
    for (const QString &box : boxes) {
        script.answerMessage("EMC - Sweep + Step", MsgAnswer::Ok);
        QCOMPARE(prompts.messageBox("EMC - Sweep + Step", box, MsgButtons::Ok), MsgAnswer::Ok);
    }
    QCOMPARE(script.shown.size(), boxes.size());
    QCOMPARE(scene.deviceOn(), deviceOn);
    scene.sweep(panel, 1050.0, 7, seen);
    reference.sweep(panel, 1050.0, 7, full);
    auto point = [](double f) { return int(std::lround(f * kTracePoints / 1000.0)) - 1; };
    for (double comb : {144.0, 240.0, 336.0}) {
        const double drop = full[point(comb)] - seen[point(comb)];
        QVERIFY2(deviceOn ? drop == 0.0 : drop > 20.0, qPrintable(QString("%1 MHz: %2 dB").arg(comb).arg(drop)));
    }
    for (double broadcast : {98.5, 194.064, 538.0})
        QVERIFY2(std::abs(full[point(broadcast)] - seen[point(broadcast)]) < 0.01, qPrintable(QString::number(broadcast)));
}

QTEST_GUILESS_MAIN(AnalyserSceneTest)
#include "scene_test.moc"
