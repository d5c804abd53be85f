#include "link/commands.h"
#include "link/discovery.h"
#include "support/sim_bench.h"

#include <QTest>

namespace {
// The commands the program sent, one per entry, without their carriage returns.
QStringList commandsSent(const SimulatedPort &port)
{
    QStringList list = QString::fromLatin1(port.sentByProgram()).split('\r', Qt::SkipEmptyParts);
    return list;
}

using Operation = void (*)(Context &);
using Strays = QHash<qint64, QByteArray>;
} // namespace
Q_DECLARE_METATYPE(Operation)

class CommandSetTest : public QObject {
    Q_OBJECT

private slots:
    void settingsGoOutInTheirPictures_data();
    void settingsGoOutInTheirPictures();
    void centerFrequencyIsClampedAlsoOffline_data();
    void centerFrequencyIsClampedAlsoOffline();
    void settingsDoNothingOffline();
    void compositesSendInTheirOrder_data();
    void compositesSendInTheirOrder();
    void trackingCommandsFollowTheModelText_data();
    void trackingCommandsFollowTheModelText();
    void readAllSettingsTakesThePanel();
    void uncalFlagNeedsNewerFirmware_data();
    void uncalFlagNeedsNewerFirmware();
    void failedQueryLeavesFieldAndStopsSequence();
    void queryTakesOnlyTheReplyAskedFor_data();
    void queryTakesOnlyTheReplyAskedFor();
    void numbersCarryPointUnderCommaLocale();
    void numberPictureWritesZerosAndSign_data();
    void numberPictureWritesZerosAndSign();
};

void CommandSetTest::settingsGoOutInTheirPictures_data()
{
    QTest::addColumn<Operation>("operation");
    QTest::addColumn<QStringList>("sent");
    QTest::newRow("centre") << Operation(sendCenterFrequency) << QStringList{"#cf0500.000"};
    QTest::newRow("span") << Operation(sendSpan) << QStringList{"#sp1000"};
    QTest::newRow("zero span") << Operation(sendZeroSpan) << QStringList{"#sp0"};
    QTest::newRow("attenuator") << Operation(sendAttenuator) << QStringList{"#at10"};
    QTest::newRow("bandwidth") << Operation(sendBandwidth) << QStringList{"#bw1000"};
    QTest::newRow("bandwidth 120") << Operation(sendBandwidth120) << QStringList{"#bw120"};
    QTest::newRow("bandwidth 9") << Operation(sendBandwidth9) << QStringList{"#bw9"};
    QTest::newRow("video filter") << Operation(sendVideoFilter) << QStringList{"#vf0"};
    QTest::newRow("read mode") << Operation(sendReadMode) << QStringList{"#vm0"};
    QTest::newRow("memory read mode") << Operation(sendMemoryReadMode) << QStringList{"#vm0"};
    QTest::newRow("dB per division") << Operation(sendDbPerDivision) << QStringList{"#db10"};
    QTest::newRow("calculation start") << Operation(calculationStart) << QStringList{"#dm1", "#vm0"};
    QTest::newRow("calculation stop") << Operation(calculationStop) << QStringList{"#dm0"};
    QTest::newRow("single sweep off") << Operation(singleSweepModeOff) << QStringList{"#es0"};
    QTest::newRow("single sweep on") << Operation(singleSweepModeOn) << QStringList{"#es1"};
    QTest::newRow("store A to B") << Operation(storeAtoB) << QStringList{"#sa"};
    QTest::newRow("save memory") << Operation(saveSettingsMemory) << QStringList{"#sv1"};
    QTest::newRow("recall memory") << Operation(recallSettingsMemory) << QStringList{"#rc1"};
    QTest::newRow("trigger level") << Operation(sendTriggerLevel) << QStringList{"#tr-30.0"};
    QTest::newRow("trigger off") << Operation(triggerOff) << QStringList{"#tr0"};
    QTest::newRow("ref level") << Operation(sendRefLevel) << QStringList{"#rl-30.0", "#vm0", "#rl", "#vm0"};
    QTest::newRow("ref level zero") << Operation([](Context &c) {
        c.state.analyser.refLevel = 0.0f;
        sendRefLevel(c);
    }) << QStringList{"#rl+00.0", "#vm0", "#rl", "#vm0"};
    QTest::newRow("tracking level just below zero") << Operation([](Context &c) {
        c.state.analyser.tgLevel = -0.04f;
        sendTrackingLevel(c);
    }) << QStringList{"#tl-00.0", "#tl"};
    QTest::newRow("memory mode 3 sends nothing") << Operation([](Context &c) {
        c.state.analyser.memoryReadMode = 3;
        sendMemoryReadMode(c);
    }) << QStringList{};
}

void CommandSetTest::settingsGoOutInTheirPictures()
{
    QFETCH(Operation, operation);
    QFETCH(QStringList, sent);
    SimBench b;
    b.online();
    operation(*b.ctx);
    QCOMPARE(commandsSent(*b.port), sent);
    QVERIFY(b.prompts->shown.isEmpty());
}

void CommandSetTest::centerFrequencyIsClampedAlsoOffline_data()
{
    QTest::addColumn<QString>("model");
    QTest::addColumn<float>("wanted");
    QTest::addColumn<float>("kept");
    QTest::newRow("K310-A") << "K310-A" << 2000.0f << 1050.0f;
    QTest::newRow("K320-A") << "K320-A" << 2000.0f << 1050.0f;
    QTest::newRow("K550-B") << "K550-B" << 2000.0f << 2000.0f;
    QTest::newRow("below zero") << "K320-A" << -5.0f << 0.0f;
}

void CommandSetTest::centerFrequencyIsClampedAlsoOffline()
{
    QFETCH(QString, model);
    QFETCH(float, wanted);
    QFETCH(float, kept);
    SimBench b(model);
    connectUnit(*b.ctx);
    b.state().online = 0;
    b.state().analyser.centerFrequency = wanted;
    sendCenterFrequency(*b.ctx);
    QCOMPARE(b.state().analyser.centerFrequency, kept);
    b.state().online = 1;
    b.port->clearTraffic();
    sendCenterFrequency(*b.ctx);
    QCOMPARE(commandsSent(*b.port), QStringList{"#cf" + numberPicture(kept, 4, 3)});
}

void CommandSetTest::settingsDoNothingOffline()
{
    SimBench b;
    b.online();
    b.state().online = 0;
    b.state().triggerOn = 1;
    for (Operation op : {sendSpan, sendRefLevel, sendAllSettings, readAllSettings, sendPresetSettings,
                         sendZeroSpanSettings, sendTrackingOn, startSingleSweep, triggerOff})
        op(*b.ctx);
    QVERIFY(b.port->traffic.empty());
    QCOMPARE(b.state().triggerOn, quint8(0)); // cleared also offline
}

void CommandSetTest::compositesSendInTheirOrder_data()
{
    QTest::addColumn<Operation>("operation");
    QTest::addColumn<QStringList>("sent");
    const QStringList refLevel{"#rl-30.0", "#vm0", "#rl", "#vm0"};
    const QStringList tracking{"#tl-50.0", "#tl", "#tg0"};
    QTest::newRow("send all") << Operation(sendAllSettings)
                              << QStringList{"#bw1000", "#es0", "#cf0500.000"} + refLevel
                                     + QStringList{"#vf0", "#at10", "#vm0"} + tracking
                                     + QStringList{"#db10", "#vm0", "#sp1000", "#bw1000", "#dm0"};
    QTest::newRow("preset") << Operation(sendPresetSettings)
                            << QStringList{"#es0", "#vm0", "#cf0500.000"} + refLevel
                                   + QStringList{"#vf0", "#sp1000", "#bw1000", "#at10", "#vm0"} + tracking
                                   + QStringList{"#db10", "#bw1000"};
    QTest::newRow("zero span") << Operation(sendZeroSpanSettings)
                               << QStringList{"#es0", "#cf0500.000"} + refLevel
                                      + QStringList{"#vf0", "#sp0", "#bw1000", "#at10", "#vm0", "#db10", "#dm1",
                                                    "#vm0", "#vm0", "#es0", "#cf", "#vm", "#vm0", "#rl", "#vm0",
                                                    "#vf", "#sp", "#bw", "#at", "#tg", "#tl", "#dm", "#db", "#uc",
                                                    "#es1"};
    QTest::newRow("read all") << Operation(readAllSettings)
                              << QStringList{"#es0", "#cf", "#vm", "#vm0", "#rl", "#vm0", "#vf", "#sp",
                                             "#bw", "#at", "#tg", "#tl", "#dm", "#db", "#uc"};
}

void CommandSetTest::compositesSendInTheirOrder()
{
    QFETCH(Operation, operation);
    QFETCH(QStringList, sent);
    SimBench b;
    connectUnit(*b.ctx);
    b.port->clearTraffic();
    int refreshed = 0;
    b.ctx->calls.refreshUnits = [&] { ++refreshed; };
    operation(*b.ctx);
    QCOMPARE(commandsSent(*b.port), sent);
    QCOMPARE(b.state().busy, quint8(0));
    QVERIFY(b.prompts->shown.isEmpty());
    QVERIFY(refreshed == 0 || refreshed == 2); // units are shown before and after the limits
}

void CommandSetTest::trackingCommandsFollowTheModelText_data()
{
    QTest::addColumn<QString>("model");
    QTest::addColumn<QStringList>("sent");
    QTest::newRow("K310-A holds back") << "K310-A" << QStringList{};
    QTest::newRow("K320-A") << "K320-A" << QStringList{"#tl-20.0", "#tl", "#tg1", "#tl-20.0", "#tl"};
    QTest::newRow("K550-B sends all the same") << "K550-B" << QStringList{"#tl-20.0", "#tl", "#tg1", "#tl-20.0", "#tl"};
}

void CommandSetTest::trackingCommandsFollowTheModelText()
{
    QFETCH(QString, model);
    QFETCH(QStringList, sent);
    SimBench b(model);
    connectUnit(*b.ctx);
    b.port->clearTraffic();
    b.state().analyser.tgOn = 1;
    b.state().analyser.tgLevel = -20.0f;
    sendTrackingOn(*b.ctx);
    QCOMPARE(commandsSent(*b.port), sent);
}

void CommandSetTest::readAllSettingsTakesThePanel()
{
    SimBench b;
    connectUnit(*b.ctx);
    SimPanel &p = b.analyser.panel;
    p.centerFrequency = 433.92;
    p.refLevel = -47.5;
    p.attenuator = 20;
    p.span = 50;
    p.bandwidth = 120;
    p.videoFilter = 1;
    p.readMode = 4;
    p.tgOn = 1;
    p.tgLevel = -12.5;
    p.calculation = 1;
    p.dbPerDivision = 5;
    b.state().traceFrozen = 1;
    readAllSettings(*b.ctx);
    const AnalyserSettings &a = b.state().analyser;
    QCOMPARE(a.centerFrequency, 433.92f);
    QCOMPARE(a.refLevel, -47.5f);
    QCOMPARE(a.attenuator, 20.0f);
    QCOMPARE(a.span, qint16(50));
    QCOMPARE(a.bandwidth, quint16(120));
    QCOMPARE(a.videoFilter, quint8(1));
    QCOMPARE(a.readMode, quint8(4));
    QCOMPARE(a.tgOn, quint8(1));
    QCOMPARE(a.tgLevel, -12.5f);
    QCOMPARE(a.calculationOn, quint8(1));
    QCOMPARE(a.dbPerDivision, quint8(5));
    QCOMPARE(b.state().traceFrozen, quint8(0));
    QCOMPARE(b.state().repaintRequest, quint8(1));
    QCOMPARE(p.readMode, 4); // the screen is back in the mode the user chose
}

void CommandSetTest::uncalFlagNeedsNewerFirmware_data()
{
    QTest::addColumn<QString>("firmware");
    QTest::addColumn<bool>("asked");
    QTest::newRow("1.40") << "1.40" << true;
    QTest::newRow("1.38") << "1.38" << false;
    QTest::newRow("1.2") << "1.2" << false;
}

void CommandSetTest::uncalFlagNeedsNewerFirmware()
{
    QFETCH(QString, firmware);
    QFETCH(bool, asked);
    SimBench b("K320-A", firmware);
    connectUnit(*b.ctx);
    b.analyser.panel.uncal = 1;
    b.port->clearTraffic();
    readUncalFlag(*b.ctx);
    QCOMPARE(commandsSent(*b.port), asked ? QStringList{"#uc"} : QStringList{});
    QCOMPARE(b.state().uncalibratedFlag, quint8(asked));
    QCOMPARE(b.ctx->frame().uncalVisible, asked);
    b.analyser.panel.uncal = 0;
    readUncalFlag(*b.ctx);
    QCOMPARE(b.state().uncalibratedFlag, quint8(0));
}

void CommandSetTest::failedQueryLeavesFieldAndStopsSequence()
{
    SimBench b;
    connectUnit(*b.ctx);
    b.port->clearTraffic();
    b.analyser.withholdReplies = true;
    b.state().analyser.span = 123;
    readAllSettings(*b.ctx);
    QCOMPARE(b.state().analyser.span, qint16(123));
    QCOMPARE(b.prompts->messages().size(), 1);
    QCOMPARE(b.port->sentByProgram(), QByteArray("#es0\r#es0\r\r#es0\r\r\r"));
    QCOMPARE(b.state().busy, quint8(0));
}

void CommandSetTest::queryTakesOnlyTheReplyAskedFor_data()
{
    // "#sp\r" is echoed as the analyser's bytes 1-4, "SP200\r" follows as 5-10; the next attempt
    // takes ten bytes more.
    QTest::addColumn<Strays>("stray");
    QTest::addColumn<int>("attempts");
    QTest::addColumn<qint16>("span");
    QTest::newRow("clean") << Strays{} << 1 << qint16(200);
    QTest::newRow("a stray LO before the reply") << Strays{{4, "LO\r"}} << 2 << qint16(200);
    QTest::newRow("noise in the tag") << Strays{{5, "\xff"}} << 2 << qint16(200);
    QTest::newRow("noise in the value") << Strays{{7, "\xff"}} << 2 << qint16(200);
    QTest::newRow("another tag twice") << Strays{{4, "VM0\r"}, {14, "LO\r"}} << 3 << qint16(200);
    QTest::newRow("three wrong replies") << Strays{{4, "LO\r"}, {14, "LO\r"}, {24, "LO\r"}} << 3
                                          << qint16(123);
}

void CommandSetTest::queryTakesOnlyTheReplyAskedFor()
{
    QFETCH(Strays, stray);
    QFETCH(int, attempts);
    QFETCH(qint16, span);
    SimBench b;
    b.online();
    b.port->strayAfter = stray;
    b.analyser.panel.span = 200;
    b.state().analyser.span = 123;
    readSpan(*b.ctx);
    QCOMPARE(b.state().analyser.span, span);
    QCOMPARE(b.port->sentByProgram(), QByteArray("#sp\r").repeated(attempts));
    QCOMPARE(b.prompts->messages(), span == 123 ? QStringList{"Serial - Error| Data read error ( #sp\r )"} : QStringList{});
}

void CommandSetTest::numbersCarryPointUnderCommaLocale()
{
    const QLocale before;
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    SimBench b;
    connectUnit(*b.ctx);
    b.port->clearTraffic();
    b.state().analyser.centerFrequency = 433.92f;
    b.state().analyser.refLevel = -42.5f;
    b.state().analyser.tgLevel = -7.5f;
    b.state().triggerLevel = -60.5f;
    sendAllSettings(*b.ctx);
    sendTriggerLevel(*b.ctx);
    readAllSettings(*b.ctx);
    QLocale::setDefault(before);
    const QStringList sent = commandsSent(*b.port);
    for (const char *command : {"#cf0433.920", "#rl-42.5", "#tl-07.5", "#tr-60.5"})
        QVERIFY2(sent.contains(command), command);
    QVERIFY(!b.port->sentByProgram().contains(','));
    QCOMPARE(b.state().analyser.refLevel, -42.5f); // read back through the same point
    QCOMPARE(b.state().analyser.centerFrequency, 433.92f);
}

void CommandSetTest::numberPictureWritesZerosAndSign_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<int>("digits");
    QTest::addColumn<int>("decimals");
    QTest::addColumn<QString>("text");
    QTest::newRow("centre") << 500.0 << 4 << 3 << "0500.000";
    QTest::newRow("small centre") << 0.15 << 4 << 3 << "0000.150";
    QTest::newRow("big centre") << 3050.0 << 4 << 3 << "3050.000";
    QTest::newRow("level") << -30.0 << 2 << 1 << "-30.0";
    QTest::newRow("small level") << -5.5 << 2 << 1 << "-05.5";
    QTest::newRow("rounds") << -99.84 << 2 << 1 << "-99.8";
    QTest::newRow("minus zero") << -0.01 << 2 << 1 << "00.0";
    QTest::newRow("three digits") << -100.0 << 2 << 1 << "-100.0";
}

void CommandSetTest::numberPictureWritesZerosAndSign()
{
    QFETCH(double, value);
    QFETCH(int, digits);
    QFETCH(int, decimals);
    QFETCH(QString, text);
    QCOMPARE(numberPicture(value, digits, decimals), text);
}

QTEST_GUILESS_MAIN(CommandSetTest)
#include "command_set_test.moc"
