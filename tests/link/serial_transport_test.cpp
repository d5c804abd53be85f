#include "support/sim_bench.h"

#include <QTest>

class SerialTransportTest : public QObject {
    Q_OBJECT

private slots:
    void settingGoesOutEchoedAndEndsWithReady();
    void firstCommaBecomesPoint_data();
    void firstCommaBecomesPoint();
    void queryReadsTaggedReply();
    void lostEchoResendsTextAfterTimeout();
    void wrongEchoResendsTextOnLineQuiet();
    void echoFailingTwiceIsSendError();
    void thirdAttemptEndsInThreeCarriageReturns();
    void replyOtherThanReadyCostsAnAttempt_data();
    void replyOtherThanReadyCostsAnAttempt();
    void threeWrongRepliesAreReadError();
    void silentQueryIsReadErrorAfterOneByteTimeout();
    void onlyFirstFailureOfSequenceIsShown();
    void autosearchSilencesErrorPath();
    void offlineQuerySendsNothing();
    void unopenablePortIsReported();
    void endlessNoiseEndsReply();
    void numberValueReadsLikeTheAnalyserWrites_data();
    void numberValueReadsLikeTheAnalyserWrites();
    void monitorShowsTraffic();
    void commandsCarryPointUnderCommaLocale();
};

void SerialTransportTest::settingGoesOutEchoedAndEndsWithReady()
{
    SimBench b;
    b.online();
    QVERIFY(sendCommand(*b.ctx, "#cf0500.000"));
    QCOMPARE(b.port->sentByProgram(), QByteArray("#cf0500.000\r"));
    QCOMPARE(b.port->sentByUnit(), QByteArray("#cf0500.000\rRD\r"));
    QCOMPARE(b.state().sendAttempt, quint8(0));
    QCOMPARE(b.state().lastReply, QString("RD"));
    QVERIFY(b.ctx->frame().timer4Enabled);
    QCOMPARE(b.analyser.panel.centerFrequency, 500.0);
    QVERIFY(b.prompts->shown.isEmpty());
}

void SerialTransportTest::firstCommaBecomesPoint_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QByteArray>("wire");
    QTest::newRow("one comma") << "#cf0500,000" << QByteArray("#cf0500.000\r");
    QTest::newRow("second comma stays") << "#rl-30,0,5" << QByteArray("#rl-30.0,5\r");
    QTest::newRow("no comma") << "#rl+00.0" << QByteArray("#rl+00.0\r");
}

void SerialTransportTest::firstCommaBecomesPoint()
{
    QFETCH(QString, command);
    QFETCH(QByteArray, wire);
    SimBench b;
    b.online();
    sendCommand(*b.ctx, command);
    QCOMPARE(b.port->sentByProgram().left(wire.size()), wire);
}

void SerialTransportTest::queryReadsTaggedReply()
{
    SimBench b;
    b.online();
    b.analyser.panel.refLevel = -42.5;
    QVERIFY(queryUnit(*b.ctx, "#rl"));
    QCOMPARE(b.port->sentByProgram(), QByteArray("#rl\r"));
    QCOMPARE(b.port->sentByUnit(), QByteArray("#rl\rRL-42.5\r"));
    QCOMPARE(b.state().lastReply, QString("RL-42.5"));
    QCOMPARE(numberValue(b.state().lastReply.mid(2)), -42.5);
}

void SerialTransportTest::lostEchoResendsTextAfterTimeout()
{
    SimBench b;
    b.online();
    b.analyser.lostOnTheWay.insert(b.analyser.received() + 5); // the carriage return
    const double start = b.clock->steadySeconds();
    QVERIFY(sendCommand(*b.ctx, "#kl1"));
    QCOMPARE(b.port->sentByProgram(), QByteArray("#kl1\r#kl1\r"));
    QCOMPARE(b.port->sentByUnit(), QByteArray("#kl1#kl1\rRD\r"));
    QCOMPARE(b.state().echoAttempt, quint8(2));
    const double spent = b.clock->steadySeconds() - start;
    QVERIFY2(spent > 4.0 && spent < 4.2, qPrintable(QString::number(spent)));
    QVERIFY(b.prompts->shown.isEmpty());
}

void SerialTransportTest::wrongEchoResendsTextOnLineQuiet()
{
    SimBench b;
    b.online();
    b.analyser.corruptEchoOf.insert(b.analyser.received() + 2);
    const double start = b.clock->steadySeconds();
    QVERIFY(sendCommand(*b.ctx, "#kl1"));
    QCOMPARE(b.port->sentByProgram(), QByteArray("#k#kl1\r"));
    QCOMPARE(b.port->sentByUnit(), QByteArray("#j#kl1\rRD\r"));
    // No timeout: the pass starts again once the line has been quiet for a tenth of a second.
    QVERIFY(b.clock->steadySeconds() - start < 0.15);
}

void SerialTransportTest::echoFailingTwiceIsSendError()
{
    SimBench b;
    b.online();
    b.analyser.corruptEchoOf = {b.analyser.received() + 1, b.analyser.received() + 2};
    QVERIFY(!sendCommand(*b.ctx, "#kl1"));
    QCOMPARE(b.port->sentByProgram(), QByteArray("##"));
    QCOMPARE(b.prompts->messages(), QStringList{"Serial - Error| Data send error ( #kl1 )"});
    QCOMPARE(b.state().online, qint16(0));
    QCOMPARE(b.state().serialError, quint8(1));
    QCOMPARE(b.state().sendAttempt, quint8(1)); // this way out leaves the attempt count
    QVERIFY(!b.ctx->frame().timer4Enabled);
    QVERIFY(!b.ctx->frame().remoteChecked);
}

void SerialTransportTest::thirdAttemptEndsInThreeCarriageReturns()
{
    SimBench b;
    b.online();
    b.analyser.wrongReplies = 2;
    QVERIFY(sendCommand(*b.ctx, "#at10"));
    QCOMPARE(b.port->sentByProgram(), QByteArray("#at10\r#at10\r\r#at10\r\r\r"));
    QCOMPARE(b.port->sentByUnit(),
             QByteArray("#at10\rER\r#at10\r\rER\r#at10\r\r\rRD\r"));
    QCOMPARE(b.state().sendAttempt, quint8(0));
    QVERIFY(b.prompts->shown.isEmpty());
}

void SerialTransportTest::replyOtherThanReadyCostsAnAttempt_data()
{
    QTest::addColumn<QByteArray>("reply");
    QTest::newRow("trailing blank") << QByteArray("RD ");
    QTest::newRow("lower case") << QByteArray("rd");
    QTest::newRow("empty") << QByteArray("");
}

void SerialTransportTest::replyOtherThanReadyCostsAnAttempt()
{
    QFETCH(QByteArray, reply);
    SimBench b;
    b.online();
    b.analyser.wrongReplies = 1;
    b.analyser.wrongReply = reply;
    QVERIFY(sendCommand(*b.ctx, "#vf1"));
    QCOMPARE(b.port->sentByProgram(), QByteArray("#vf1\r#vf1\r\r"));
}

void SerialTransportTest::threeWrongRepliesAreReadError()
{
    SimBench b;
    b.online();
    b.analyser.wrongReplies = 3;
    QVERIFY(!sendCommand(*b.ctx, "#vf1"));
    QCOMPARE(b.prompts->messages(), QStringList{"Serial - Error| Data read error ( #vf1\r\r\r )"});
    QCOMPARE(b.state().online, qint16(0));
    QCOMPARE(b.state().sendAttempt, quint8(0));
}

void SerialTransportTest::silentQueryIsReadErrorAfterOneByteTimeout()
{
    SimBench b;
    b.online();
    b.state().serialTimeoutSeconds = 2;
    b.analyser.withholdReplies = true;
    const double start = b.clock->steadySeconds();
    QVERIFY(!queryUnit(*b.ctx, "#cf"));
    const double spent = b.clock->steadySeconds() - start;
    QVERIFY2(spent > 2.0 && spent < 2.1, qPrintable(QString::number(spent)));
    QCOMPARE(b.port->sentByUnit(), QByteArray("#cf\r"));
    QCOMPARE(b.prompts->messages(), QStringList{"Serial - Error| Data read error ( #cf\r )"});
}

void SerialTransportTest::onlyFirstFailureOfSequenceIsShown()
{
    SimBench b;
    b.online();
    b.analyser.silent = true;
    b.state().serialTimeoutSeconds = 1;
    QVERIFY(!sendCommand(*b.ctx, "#kl1"));
    QVERIFY(!queryUnit(*b.ctx, "#cf")); // offline now: nothing goes out
    QCOMPARE(b.prompts->messages().size(), 1);
    QCOMPARE(b.port->sentByProgram(), QByteArray("##"));
}

void SerialTransportTest::autosearchSilencesErrorPath()
{
    SimBench b;
    b.online();
    b.analyser.silent = true;
    b.state().serialTimeoutSeconds = 1;
    b.state().autosearchActive = 1;
    QVERIFY(!sendCommand(*b.ctx, "#kl1"));
    QVERIFY(b.prompts->shown.isEmpty());
    QCOMPARE(b.state().serialError, quint8(0));
    QCOMPARE(b.state().online, qint16(1));
}

void SerialTransportTest::offlineQuerySendsNothing()
{
    SimBench b;
    b.online();
    b.state().online = 0;
    QVERIFY(!queryUnit(*b.ctx, "#cf"));
    QVERIFY(b.port->traffic.empty());
}

void SerialTransportTest::unopenablePortIsReported()
{
    SimBench b;
    b.port->failOpen = true;
    QVERIFY(!openConfiguredPort(*b.ctx));
    QCOMPARE(b.prompts->messages(), QStringList{"Serial - Error| Can not open com. port"});
    QVERIFY(!sendCommand(*b.ctx, "#kl1")); // a closed port: silently nothing
    QCOMPARE(b.prompts->messages().size(), 1);
}

void SerialTransportTest::endlessNoiseEndsReply()
{
    SimBench b;
    b.online();
    b.port->sendUnsolicited(QByteArray(5000, 'x'));
    b.state().lastCommand = "#cf\r";
    QVERIFY(!readReply(*b.ctx));
    QCOMPARE(b.prompts->messages().size(), 1);
}

void SerialTransportTest::numberValueReadsLikeTheAnalyserWrites_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<double>("value");
    QTest::newRow("plain") << "1.40" << 1.40;
    QTest::newRow("negative") << "-30.0" << -30.0;
    QTest::newRow("leading blank") << " 12" << 12.0;
    QTest::newRow("stops at letter") << "500.000MHz" << 500.0;
    QTest::newRow("comma ends number") << "1,5" << 1.0;
    QTest::newRow("exponent") << "2.5E3" << 2500.0;
    QTest::newRow("letters") << "K320-A" << 0.0;
    QTest::newRow("empty") << "" << 0.0;
    QTest::newRow("lone sign") << "-" << 0.0;
}

void SerialTransportTest::numberValueReadsLikeTheAnalyserWrites()
{
    QFETCH(QString, text);
    QFETCH(double, value);
    QCOMPARE(numberValue(text), value);
}

void SerialTransportTest::monitorShowsTraffic()
{
    SimBench b;
    b.online();
    b.state().transmissionMonitorOn = 1;
    QVERIFY(queryUnit(*b.ctx, "#db"));
    const FrameControls &f = b.ctx->frame();
    QCOMPARE(f.monitorSent, QString("#db\r"));
    QCOMPARE(f.monitorReceived, QString("DB10\r"));
    QCOMPARE(f.monitorCodes, QString(" 68; 66; 49; 48; 13;"));
}

void SerialTransportTest::commandsCarryPointUnderCommaLocale()
{
    const QLocale before;
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    QCOMPARE(localeDecimalChar(), quint8(44));
    SimBench b;
    b.online();
    sendCommand(*b.ctx, "#cf" + QLocale().toString(500.0, 'f', 3));
    QCOMPARE(b.port->sentByProgram(), QByteArray("#cf500.000\r"));
    QLocale::setDefault(before);
    QCOMPARE(localeDecimalChar(), quint8(46));
}

QTEST_GUILESS_MAIN(SerialTransportTest)
#include "serial_transport_test.moc"
