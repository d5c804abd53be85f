#include "sim/sim_exchange.h"
#include "support/sim_bench.h"

#include <QTest>

class AnalyserSimulatorTest : public QObject {
    Q_OBJECT

private slots:
    void settingIsReadBackByItsQuery_data();
    void settingIsReadBackByItsQuery();
    void identificationIsPlain();
    void versionRepliesAreTakenInTurn();
    void speedChangeFollowsTheEcho();
    void unknownOrBrokenCommandsAreRefused_data();
    void unknownOrBrokenCommandsAreRefused();
    void keyboardLockFollowsCommands();
    void settingsMemoryKeepsTheFront();
    void lineTimeIsTenBitsAByte_data();
    void lineTimeIsTenBitsAByte();
    void replyWaitsForQuietLine();
    void wrongSpeedIsSilentOrGarbage();
    void closedPortTakesNothing();
    void unsolicitedBytesArriveWhenDue();
};

void AnalyserSimulatorTest::settingIsReadBackByItsQuery_data()
{
    QTest::addColumn<QByteArray>("setting");
    QTest::addColumn<QByteArray>("query");
    QTest::addColumn<QByteArray>("reply");
    QTest::newRow("centre") << QByteArray("#cf0123.456") << QByteArray("#cf") << QByteArray("CF123.456");
    QTest::newRow("ref level plus") << QByteArray("#rl+00.0") << QByteArray("#rl") << QByteArray("RL0.0");
    QTest::newRow("ref level minus") << QByteArray("#rl-45.5") << QByteArray("#rl") << QByteArray("RL-45.5");
    QTest::newRow("attenuator") << QByteArray("#at30") << QByteArray("#at") << QByteArray("AT30");
    QTest::newRow("span") << QByteArray("#sp200") << QByteArray("#sp") << QByteArray("SP200");
    QTest::newRow("zero span") << QByteArray("#sp0") << QByteArray("#sp") << QByteArray("SP0");
    QTest::newRow("bandwidth") << QByteArray("#bw120") << QByteArray("#bw") << QByteArray("BW120");
    QTest::newRow("video filter") << QByteArray("#vf1") << QByteArray("#vf") << QByteArray("VF1");
    QTest::newRow("read mode") << QByteArray("#vm4") << QByteArray("#vm") << QByteArray("VM4");
    QTest::newRow("tracking on") << QByteArray("#tg1") << QByteArray("#tg") << QByteArray("TG1");
    QTest::newRow("tracking level") << QByteArray("#tl-12.5") << QByteArray("#tl") << QByteArray("TL-12.5");
    QTest::newRow("calculation") << QByteArray("#dm1") << QByteArray("#dm") << QByteArray("DM1");
    QTest::newRow("dB per division") << QByteArray("#db5") << QByteArray("#db") << QByteArray("DB5");
}

void AnalyserSimulatorTest::settingIsReadBackByItsQuery()
{
    QFETCH(QByteArray, setting);
    QFETCH(QByteArray, query);
    QFETCH(QByteArray, reply);
    Analyser a;
    QCOMPARE(exchange(a, setting + '\r'), setting + "\rRD\r");
    QCOMPARE(exchange(a, query + '\r'), query + '\r' + reply + '\r');
}

void AnalyserSimulatorTest::identificationIsPlain()
{
    for (const char *model : {"K310-A", "K320-A", "K550-B"}) {
        Analyser a(model);
        QCOMPARE(exchange(a, "#QM\r"), QByteArray("#QM\r") + model + '\r');
    }
    Analyser a;
    QCOMPARE(exchange(a, "#uc\r"), QByteArray("#uc\rUC0\r"));
    a.panel.uncal = 1;
    QCOMPARE(exchange(a, "#uc\r"), QByteArray("#uc\rUC1\r"));
}

void AnalyserSimulatorTest::versionRepliesAreTakenInTurn()
{
    Analyser a;
    a.versionReplies = {"0", "1.37"};
    QCOMPARE(exchange(a, "#VN\r"), QByteArray("#VN\r0\r"));
    QCOMPARE(exchange(a, "#VN\r"), QByteArray("#VN\r1.37\r"));
    QCOMPARE(exchange(a, "#VN\r"), QByteArray("#VN\r1.37\r"));
}

void AnalyserSimulatorTest::speedChangeFollowsTheEcho()
{
    Analyser a;
    QByteArray out;
    qint32 rate = 0;
    for (char c : QByteArray("#br115200\r")) {
        const auto answer = a.receive(c);
        out += answer.echo + answer.reply;
        rate = answer.newRate ? answer.newRate : rate;
    }
    QCOMPARE(out, QByteArray("#br115200\r")); // no "RD": the speed changes at once
    QCOMPARE(rate, 115200);
}

void AnalyserSimulatorTest::unknownOrBrokenCommandsAreRefused_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QByteArray>("reply");
    QTest::newRow("unknown") << QByteArray("#zz1\r") << QByteArray("ER\r");
    QTest::newRow("bad number") << QByteArray("#cfabc\r") << QByteArray("ER\r");
    QTest::newRow("bad rate") << QByteArray("#br1234\r") << QByteArray("ER\r");
    QTest::newRow("span off the list") << QByteArray("#sp3\r") << QByteArray("ER\r");
    QTest::newRow("attenuator between steps") << QByteArray("#at15\r") << QByteArray("ER\r");
    QTest::newRow("read mode 5") << QByteArray("#vm5\r") << QByteArray("ER\r");
    QTest::newRow("memory 10") << QByteArray("#sv10\r") << QByteArray("ER\r");
    QTest::newRow("store A to B") << QByteArray("#sa\r") << QByteArray("RD\r");
    QTest::newRow("noise before command") << QByteArray("x\x01#vf1\r") << QByteArray("RD\r");
    QTest::newRow("bare carriage return") << QByteArray("\r") << QByteArray();
    QTest::newRow("no command mark") << QByteArray("vf1\r") << QByteArray();
}

void AnalyserSimulatorTest::unknownOrBrokenCommandsAreRefused()
{
    QFETCH(QByteArray, text);
    QFETCH(QByteArray, reply);
    Analyser a;
    QCOMPARE(exchange(a, text), text + reply);
}

void AnalyserSimulatorTest::keyboardLockFollowsCommands()
{
    Analyser a;
    exchange(a, "#kl1\r");
    QCOMPARE(a.panel.keyboardLocked, 1);
    exchange(a, "#kl0\r");
    QCOMPARE(a.panel.keyboardLocked, 0);
}

void AnalyserSimulatorTest::settingsMemoryKeepsTheFront()
{
    Analyser a;
    exchange(a, "#cf0100.000\r#sp10\r#at30\r#sv3\r#cf0200.000\r#sp100\r#at0\r#rc3\r");
    QCOMPARE(reply(a, "#cf"), QByteArray("CF100.000\r"));
    QCOMPARE(reply(a, "#sp"), QByteArray("SP10\r"));
    QCOMPARE(reply(a, "#at"), QByteArray("AT30\r"));
    exchange(a, "#rc0\r"); // a memory never saved holds the front of power-on
    QCOMPARE(reply(a, "#cf"), QByteArray("CF500.000\r"));
}

void AnalyserSimulatorTest::lineTimeIsTenBitsAByte_data()
{
    QTest::addColumn<qint32>("rate");
    for (qint32 rate : {4800, 9600, 19200, 38400, 115200})
        QTest::newRow(qPrintable(QString::number(rate))) << rate;
}

void AnalyserSimulatorTest::lineTimeIsTenBitsAByte()
{
    QFETCH(qint32, rate);
    SimBench b;
    b.analyser.rate = rate;
    b.online();
    const double start = b.clock->steadySeconds();
    QVERIFY(queryUnit(*b.ctx, "#sp"));
    // Four characters echoed; the quiet time runs from the arrival of the carriage return, while
    // its echo goes back; then "SP1000" and its carriage return.
    const double bytes = 2 * 4 - 1 + 2.25 + 7;
    QVERIFY(qAbs(b.clock->steadySeconds() - start - bytes * 10.0 / rate) < 1e-9);
}

void AnalyserSimulatorTest::replyWaitsForQuietLine()
{
    SimBench b;
    b.online();
    // Three carriage returns after the command: each is echoed before the reply comes.
    QVERIFY(sendWithEcho(*b.ctx, "#vf1\r\r\r"));
    QVERIFY(readReply(*b.ctx));
    QCOMPARE(b.state().lastReply, QString("RD"));
    QCOMPARE(b.port->sentByUnit(), QByteArray("#vf1\r\r\rRD\r"));
}

void AnalyserSimulatorTest::wrongSpeedIsSilentOrGarbage()
{
    SimBench b;
    b.analyser.rate = 9600;
    b.state().baudRate = 4800;
    openConfiguredPort(*b.ctx);
    b.port->writeByte('#');
    b.port->waitForInput(1, 1.0);
    QCOMPARE(b.port->bytesWaiting(), 0);
    QCOMPARE(b.analyser.received(), qint64(0));
    b.port->wrongSpeed = SimulatedPort::WrongSpeed::Garbage;
    b.port->writeByte('#');
    b.port->waitForInput(1, 1.0);
    const QByteArray got = b.port->readByte();
    QCOMPARE(got.size(), 1);
    QVERIFY(got[0] != '#');
    QCOMPARE(b.analyser.received(), qint64(0));
}

void AnalyserSimulatorTest::closedPortTakesNothing()
{
    SimBench b;
    QVERIFY(!b.port->writeByte('#'));
    QCOMPARE(b.port->bytesWaiting(), 0);
    QVERIFY(b.port->readByte().isEmpty());
    QVERIFY(!b.port->setSettings("fast"));
    QVERIFY(!b.port->setSettings("19200,N,8"));
}

void AnalyserSimulatorTest::unsolicitedBytesArriveWhenDue()
{
    SimBench b;
    b.online();
    b.port->sendUnsolicited("PR", b.clock->steadySeconds() + 1.0);
    QCOMPARE(b.port->bytesWaiting(), 0);
    b.clock->sleep(0.5);
    QCOMPARE(b.port->bytesWaiting(), 0);
    b.port->waitForInput(2, 5.0);
    QCOMPARE(b.port->bytesWaiting(), 2);
    QVERIFY(b.clock->steadySeconds() < 1.01);
}

QTEST_GUILESS_MAIN(AnalyserSimulatorTest)
#include "analyser_test.moc"
