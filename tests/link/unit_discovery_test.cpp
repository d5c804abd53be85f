#include "link/discovery.h"
#include "support/sim_bench.h"

#include <QElapsedTimer>
#include <QTest>

namespace {
// A simulated analyser that sits on one port only; the other port numbers do not open.
class OnePortOnly : public SimulatedPort {
public:
    OnePortOnly(Analyser &a, Clock &c, int port) : SimulatedPort(a, c), unitPort(port) {}
    bool open() override { return portNumber() == unitPort && SimulatedPort::open(); }
    int unitPort;
};

const QByteArray kConnectTail = "#br19200\r#kl1\r#QM\r#VN\r";
} // namespace

class UnitDiscoveryTest : public QObject {
    Q_OBJECT

private slots:
    void unitAtConfiguredRateIsFoundAtOnce_data();
    void unitAtConfiguredRateIsFoundAtOnce();
    void speedSearchFindsUnitAtAnotherRate();
    void garbageAtWrongSpeedIsPassedOver();
    void portWithoutUnitTakesAboutAMinuteOfLineTime();
    void unknownModelIsNotAUnit();
    void versionAnsweringZeroIsAskedThreeTimes_data();
    void versionAnsweringZeroIsAskedThreeTimes();
    void failingKeyLockLeavesLinkDown();
    void goLocalUnlocksKeysAndShowsOffline();
    void autosearchStopsAtFirstPortWithUnit();
    void autosearchWithoutUnitLeavesPortFive();
};

void UnitDiscoveryTest::unitAtConfiguredRateIsFoundAtOnce_data()
{
    QTest::addColumn<QString>("model");
    QTest::addColumn<qint16>("tracking");
    QTest::addColumn<float>("maxCenter");
    QTest::newRow("K310-A") << "K310-A" << qint16(0) << 1050.0f;
    QTest::newRow("K320-A") << "K320-A" << qint16(-1) << 1050.0f;
    QTest::newRow("K550-B") << "K550-B" << qint16(0) << 3050.0f;
}

void UnitDiscoveryTest::unitAtConfiguredRateIsFoundAtOnce()
{
    QFETCH(QString, model);
    QFETCH(qint16, tracking);
    QFETCH(float, maxCenter);
    SimBench b(model, "1.40");
    connectUnit(*b.ctx);
    QCOMPARE(b.port->sentByProgram(), "#QM\r" + kConnectTail);
    QCOMPARE(b.state().online, qint16(1));
    QCOMPARE(b.state().unitModel, model);
    QCOMPARE(b.state().firmwareVersion, QString("1.40"));
    QCOMPARE(b.state().hasTrackingGenerator, tracking);
    QCOMPARE(b.state().maxCenterFrequency, maxCenter);
    QCOMPARE(b.state().busy, quint8(0));
    const FrameControls &f = b.ctx->frame();
    QCOMPARE(f.caption, "DELFOR - V3.00       Unit:" + model + "       Firmware:1.40");
    QVERIFY(f.remoteChecked);
    QVERIFY(f.toolboxVisible);
    QCOMPARE(f.trackingEnabled, tracking == -1);
    QCOMPARE(b.analyser.panel.keyboardLocked, 1);
    QVERIFY(b.prompts->shown.isEmpty());
}

void UnitDiscoveryTest::speedSearchFindsUnitAtAnotherRate()
{
    SimBench b;
    b.analyser.rate = 9600;
    b.state().baudRate = 38400;
    QElapsedTimer real;
    real.start();
    connectUnit(*b.ctx);
    // Silent at 38400 and 4800: the first character twice each, then found at 9600.
    QCOMPARE(b.port->sentByProgram(), QByteArray("####") + "#QM\r#br38400\r#kl1\r#QM\r#VN\r");
    QCOMPARE(b.analyser.rate, 38400);
    QCOMPARE(b.port->rate(), 38400);
    QCOMPARE(b.state().online, qint16(1));
    // "#br" went out at 9600, the keyboard lock at 38400.
    const auto &t = b.port->traffic;
    const auto at = [&](const char *text) {
        const QByteArray sent = b.port->sentByProgram();
        int index = sent.indexOf(text), seen = -1;
        for (std::size_t i = 0; i < t.size(); ++i)
            if (t[i].toUnit && ++seen == index)
                return i;
        return std::size_t(0);
    };
    const std::size_t br = at("#br"), kl = at("#kl1");
    QVERIFY(kl > br);
    QVERIFY(qAbs(t[br + 1].time - t[br].time - 10.0 / 9600) < 1e-6);  // the echo follows one byte time later at 9600
    QVERIFY(qAbs(t[kl + 1].time - t[kl].time - 10.0 / 38400) < 1e-6); // and at 38400
    const double spent = b.clock->steadySeconds();
    QVERIFY2(spent > 17.0 && spent < 17.5, qPrintable(QString::number(spent))); // 4 timeouts and the second
    QVERIFY(real.elapsed() < 1000);
}

void UnitDiscoveryTest::garbageAtWrongSpeedIsPassedOver()
{
    SimBench b;
    b.analyser.rate = 115200;
    b.port->wrongSpeed = SimulatedPort::WrongSpeed::Garbage;
    connectUnit(*b.ctx);
    QCOMPARE(b.state().online, qint16(1));
    QCOMPARE(b.analyser.rate, 19200);
    QVERIFY(b.clock->steadySeconds() < 2.0); // garbage costs no timeouts
}

void UnitDiscoveryTest::portWithoutUnitTakesAboutAMinuteOfLineTime()
{
    SimBench b;
    b.analyser.silent = true;
    QElapsedTimer real;
    real.start();
    connectUnit(*b.ctx);
    QCOMPARE(b.prompts->messages(), QStringList{"Serial - Error|Unit not found"});
    QCOMPARE(b.state().online, qint16(0));
    QCOMPARE(b.state().busy, quint8(0));
    QCOMPARE(b.port->sentByProgram(), QByteArray(12, '#'));
    const double spent = b.clock->steadySeconds();
    QVERIFY2(spent > 48.0 && spent < 49.0, qPrintable(QString::number(spent)));
    QVERIFY(real.elapsed() < 1000);
}

void UnitDiscoveryTest::unknownModelIsNotAUnit()
{
    SimBench b("K320-A ");
    b.state().serialTimeoutSeconds = 1;
    connectUnit(*b.ctx);
    QCOMPARE(b.state().online, qint16(0));
    QCOMPARE(b.prompts->messages(), QStringList{"Serial - Error|Unit not found"});
    QVERIFY(findUnitModel("K550-B"));
    QVERIFY(!findUnitModel("k550-b"));
}

void UnitDiscoveryTest::versionAnsweringZeroIsAskedThreeTimes_data()
{
    QTest::addColumn<QStringList>("replies");
    QTest::addColumn<int>("asked");
    QTest::addColumn<QString>("firmware");
    QTest::newRow("always zero") << QStringList{"0", "0", "0", "0"} << 3 << "0";
    QTest::newRow("second answer") << QStringList{"0", " 1.38 "} << 2 << "1.38";
    QTest::newRow("first answer") << QStringList{"1.40"} << 1 << "1.40";
}

void UnitDiscoveryTest::versionAnsweringZeroIsAskedThreeTimes()
{
    QFETCH(QStringList, replies);
    QFETCH(int, asked);
    QFETCH(QString, firmware);
    SimBench b;
    b.analyser.versionReplies = replies;
    connectUnit(*b.ctx);
    QCOMPARE(b.port->sentByProgram().count("#VN\r"), asked);
    QCOMPARE(b.state().firmwareVersion, firmware);
    QCOMPARE(b.state().online, qint16(1));
}

void UnitDiscoveryTest::failingKeyLockLeavesLinkDown()
{
    SimBench b;
    b.analyser.wrongReplies = 3;
    connectUnit(*b.ctx);
    QCOMPARE(b.state().online, qint16(0));
    QCOMPARE(b.prompts->messages(), QStringList{"Serial - Error| Data read error ( #kl1\r\r\r )"});
    QCOMPARE(b.ctx->frame().caption, QString());
    QVERIFY(!b.ctx->frame().remoteChecked);
}

void UnitDiscoveryTest::goLocalUnlocksKeysAndShowsOffline()
{
    SimBench b;
    connectUnit(*b.ctx);
    b.state().autoReading = 1;
    b.port->clearTraffic();
    goLocal(*b.ctx);
    QCOMPARE(b.port->sentByProgram(), QByteArray("#kl0\r"));
    QCOMPARE(b.analyser.panel.keyboardLocked, 0);
    QCOMPARE(b.state().online, qint16(0));
    QCOMPARE(b.state().autoReading, quint8(0));
    QCOMPARE(b.ctx->frame().caption, QString("DELFOR - V3.00       Offline"));
    QVERIFY(b.port->isOpen());
}

void UnitDiscoveryTest::autosearchStopsAtFirstPortWithUnit()
{
    Analyser analyser;
    auto clock = std::make_unique<VirtualClock>();
    auto prompts = std::make_unique<ScriptedPrompts>();
    auto port = std::make_unique<OnePortOnly>(analyser, *clock, 3);
    ScriptedPrompts *shown = prompts.get();
    Context ctx(Platform{std::move(clock), std::move(prompts), std::move(port)});
    autosearchUnit(ctx);
    QCOMPARE(ctx.state.online, qint16(1));
    QCOMPARE(ctx.state.comPort, qint16(3));
    QCOMPARE(shown->messages(), QStringList{"Autosearch|Unit found at port:  3   Baud:  19200"});
    QCOMPARE(ctx.state.autosearchActive, quint8(0));
}

void UnitDiscoveryTest::autosearchWithoutUnitLeavesPortFive()
{
    SimBench b;
    b.analyser.silent = true;
    b.state().serialTimeoutSeconds = 1;
    autosearchUnit(*b.ctx);
    QCOMPARE(b.state().comPort, qint16(5));
    QCOMPARE(b.prompts->messages(), QStringList{"Serial - Error|Unit not found"});
    QCOMPARE(b.state().busy, quint8(0));
}

QTEST_GUILESS_MAIN(UnitDiscoveryTest)
#include "unit_discovery_test.moc"
