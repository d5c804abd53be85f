// The real serial port code against delfor-sim on a pseudo-terminal, in real time.

#include "core/clock.h"
#include "core/scripted_prompts.h"
#include "link/discovery.h"
#include "link/port_selector.h"
#include "link/qt_serial_port.h"
#include "link/serial_link.h"
#include "sim/simulated_port.h"

#include <QProcess>
#include <QTest>

#include <csignal>
#include <sys/prctl.h>

class PtyLinkTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void lineSettingsAndDevices_data();
    void lineSettingsAndDevices();
    void connectFindsUnitAndMovesItToTheConfiguredSpeed();
    void selectorSwitchesBetweenSimulatorAndRealPort();

private:
    QProcess sim_;
    QString device_;
};

void PtyLinkTest::initTestCase()
{
    const QString bin = qEnvironmentVariable("DELFOR_BIN");
    QVERIFY2(!bin.isEmpty(), "DELFOR_BIN is not set");
    sim_.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    sim_.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGTERM); }); // no server outlives a killed test
    sim_.start(bin + "/delfor-sim", {"--model", "K550-B", "--firmware", "1.38", "--baud", "9600"});
    QVERIFY(sim_.waitForStarted());
    while (!sim_.canReadLine() && sim_.waitForReadyRead(5000)) {
    }
    device_ = QString::fromLocal8Bit(sim_.readLine()).trimmed();
    QVERIFY2(device_.startsWith("/dev/"), qPrintable("no device path: " + device_));
}

void PtyLinkTest::cleanupTestCase()
{
    sim_.terminate();
    QVERIFY(sim_.waitForFinished(5000));
    QCOMPARE(sim_.exitStatus(), QProcess::NormalExit);
    QCOMPARE(sim_.exitCode(), 0);
}

void PtyLinkTest::lineSettingsAndDevices_data()
{
    QTest::addColumn<QString>("settings");
    QTest::addColumn<int>("portNumber");
    QTest::addColumn<bool>("settingsTaken");
    QTest::addColumn<bool>("opens");
    QTest::newRow("usual") << "19200,N,8,1" << 1 << true << true;
    QTest::newRow("other parity, bits, stop") << "4800,e,7,2" << 1 << true << true;
    QTest::newRow("no device for port 0") << "9600,N,8,1" << 0 << true << false;
    QTest::newRow("port 5 after a failed search") << "9600,N,8,1" << 5 << true << false;
    QTest::newRow("missing device") << "9600,N,8,1" << 2 << true << false;
    QTest::newRow("empty") << "" << 1 << false << true;
    QTest::newRow("rate not a number") << "fast,N,8,1" << 1 << false << true;
    QTest::newRow("rate zero") << "0,N,8,1" << 1 << false << true;
    QTest::newRow("unknown parity") << "9600,X,8,1" << 1 << false << true;
    QTest::newRow("nine bits") << "9600,N,9,1" << 1 << false << true;
    QTest::newRow("three stop bits") << "9600,N,8,3" << 1 << false << true;
    QTest::newRow("a part too many") << "9600,N,8,1,1" << 1 << false << true;
}

void PtyLinkTest::lineSettingsAndDevices()
{
    QFETCH(QString, settings);
    QFETCH(int, portNumber);
    QFETCH(bool, settingsTaken);
    QFETCH(bool, opens);
    QtSerialPort port;
    port.setDevicePaths({device_, "/dev/no-such-port"});
    port.setPortNumber(portNumber);
    QCOMPARE(port.setSettings(settings), settingsTaken);
    QCOMPARE(port.open(), opens);
    QCOMPARE(port.isOpen(), opens);
    QCOMPARE(port.bytesWaiting(), 0);
    QCOMPARE(port.readByte(), QByteArray());
    port.close();
    QVERIFY(!port.isOpen());
}

void PtyLinkTest::connectFindsUnitAndMovesItToTheConfiguredSpeed()
{
    auto port = std::make_unique<QtSerialPort>();
    port->setDevicePaths({device_});
    auto prompts = std::make_unique<ScriptedPrompts>();
    ScriptedPrompts &shown = *prompts;
    Context ctx(Platform{std::make_unique<SystemClock>(), std::move(prompts), std::move(port)});
    AppState &s = ctx.state;
    s.comPort = 1;
    s.baudRate = 38400;
    s.serialTimeoutSeconds = 1; // the search over 38400 and 4800 costs about 4 s

    connectUnit(ctx);
    QCOMPARE(shown.messages(), QStringList{});
    QCOMPARE(s.online, qint16(1));
    QCOMPARE(s.unitModel, QString("K550-B"));
    QCOMPARE(s.firmwareVersion, QString("1.38"));
    QCOMPARE(s.maxCenterFrequency, 3050.0f);

    // The unit now answers at 38400 only.
    QVERIFY(queryUnit(ctx, "#cf"));
    QCOMPARE(s.lastReply, QString("CF500.000"));

    goLocal(ctx);
    QCOMPARE(s.online, qint16(0));
    QCOMPARE(ctx.frame().caption, offlineCaption());
    QCOMPARE(shown.messages(), QStringList{});
}

// Runs after the connect: the unit is at 38400.
void PtyLinkTest::selectorSwitchesBetweenSimulatorAndRealPort()
{
    Analyser analyser;
    VirtualClock clock;
    auto simulatedOwned = std::make_unique<SimulatedPort>(analyser, clock);
    SimulatedPort &simulated = *simulatedOwned;
    auto real = std::make_unique<QtSerialPort>();
    real->setDevicePaths({device_});
    PortSelector selector(std::move(simulatedOwned), std::move(real));

    selector.setPortNumber(0);
    QVERIFY(selector.setSettings("38400,N,8,1"));
    QVERIFY(selector.open());
    QVERIFY(simulated.isOpen());

    selector.setPortNumber(1);
    QVERIFY(!simulated.isOpen());
    QVERIFY(selector.open()); // with the settings given while the simulator was chosen
    QVERIFY(selector.real().isOpen());
    QVERIFY(selector.writeByte('#'));
    selector.waitForInput(1, 2.0);
    QCOMPARE(selector.readByte(), QByteArray("#"));

    selector.setPortNumber(0);
    QVERIFY(!selector.real().isOpen());
    QCOMPARE(selector.portNumber(), 0);
}

QTEST_GUILESS_MAIN(PtyLinkTest)
#include "pty_link_test.moc"
