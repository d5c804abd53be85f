#include "frame_bench.h"

#include <QFile>
#include <QLocale>

class StartupTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { QStandardPaths::setTestModeEnabled(true); }
    void firstStartTakesDefaultsAndLeavesUnitAlone_data();
    void firstStartTakesDefaultsAndLeavesUnitAlone();
    void decimalCharFollowsLocale_data();
    void decimalCharFollowsLocale();
    void savedSettingsAndModeComeBackAtNextStart();
    void exitAnsweredNoLeavesSettingsFile_data();
    void exitAnsweredNoLeavesSettingsFile();
    void simulatedStartKeepsConfiguredPort_data();
    void simulatedStartKeepsConfiguredPort();
};

void StartupTest::firstStartTakesDefaultsAndLeavesUnitAlone_data()
{
    QTest::addColumn<bool>("portBusy");
    QTest::newRow("port opens") << false;
    QTest::newRow("port busy") << true;
}

void StartupTest::firstStartTakesDefaultsAndLeavesUnitAlone()
{
    QFETCH(bool, portBusy);
    FrameBench b;
    b.sim.port->failOpen = portBusy;
    b.start();
    // A busy port is passed over without a word; only the missing settings file is reported.
    QCOMPARE(b.prompts().messages(), QStringList{"Load default settings|Generate new default settings"});
    QCOMPARE(b.frame->caption, kOffline);
    QCOMPARE(b.state().comPort, qint16(2));
    QCOMPARE(b.state().baudRate, 19200);
    QCOMPARE(b.state().emcMode, quint8(0));
    QCOMPARE(b.state().repaintRequest, quint8(1));
    QCOMPARE(b.state().online, qint16(0));
    QCOMPARE(b.state().databasePath, b.ctx().dataFolder + "/default.sqlite");
    QVERIFY(QFileInfo(b.ctx().dataFolder).isDir());
    QCOMPARE(b.sim.port->isOpen(), !portBusy);
    QCOMPARE(b.sim.port->rate(), 4800);
    QVERIFY(b.sim.port->sentByProgram().isEmpty()); // the unit is not contacted at start-up
}

void StartupTest::decimalCharFollowsLocale_data()
{
    QTest::addColumn<QLocale>("locale");
    QTest::addColumn<quint8>("decimalChar");
    QTest::newRow("C") << QLocale::c() << quint8(46);
    QTest::newRow("German") << QLocale(QLocale::German, QLocale::Germany) << quint8(44);
}

void StartupTest::decimalCharFollowsLocale()
{
    QFETCH(QLocale, locale);
    QFETCH(quint8, decimalChar);
    const QLocale before;
    QLocale::setDefault(locale);
    FrameBench b;
    b.start();
    QLocale::setDefault(before);
    QCOMPARE(b.state().decimalChar, decimalChar);
}

void StartupTest::savedSettingsAndModeComeBackAtNextStart()
{
    FrameBench b;
    b.start();
    b.state().emcMode = 1;
    b.state().comPort = 3;
    b.state().baudRate = 38400;
    b.prompts().answerMessage("Exit Program", MsgAnswer::Yes);
    b.trigger("mnuBeenden");
    QVERIFY(!b.frame->isVisible());
    QVERIFY(!b.sim.port->isOpen());
    QCOMPARE(QFileInfo(b.settingsPath()).size(), 343);

    b.prompts().shown.clear();
    b.state().traces.sampleTrace[5] = 123;
    b.start();
    QCOMPARE(b.prompts().messages(), QStringList());
    QCOMPARE(b.state().emcMode, quint8(1));
    QCOMPARE(b.state().comPort, qint16(3));
    QCOMPARE(b.state().baudRate, 38400);
    QCOMPARE(b.state().traces.sampleTrace[5], qint16(0));
    QVERIFY(b.prompts().unexpected.isEmpty());
}

void StartupTest::exitAnsweredNoLeavesSettingsFile_data()
{
    QTest::addColumn<bool>("online");
    QTest::addColumn<QByteArray>("sent");
    QTest::newRow("offline") << false << QByteArray();
    QTest::newRow("online") << true << QByteArray("#kl0\r");
}

void StartupTest::exitAnsweredNoLeavesSettingsFile()
{
    QFETCH(bool, online);
    QFETCH(QByteArray, sent);
    FrameBench b;
    b.start();
    if (online)
        b.click("ckrm");
    QFile file(b.settingsPath());
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray before = file.readAll();
    file.close();
    b.sim.port->clearTraffic();
    b.state().comPort = 4;
    b.prompts().answerMessage("Exit Program", MsgAnswer::No);
    b.trigger("mnuBeenden");
    QCOMPARE(b.sim.port->sentByProgram(), sent);
    QCOMPARE(b.sim.analyser.panel.keyboardLocked, 0);
    QVERIFY(b.prompts().messages().contains("Exit Program|Save default settings?"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), before);
    QVERIFY(!b.sim.port->isOpen());
}

void StartupTest::simulatedStartKeepsConfiguredPort_data()
{
    QTest::addColumn<int>("chosenPort"); // chosen in boxcom during the run; -1: none
    QTest::addColumn<QString>("unitCaption");
    QTest::addColumn<qint16>("savedPort");
    QTest::newRow("simulator all along") << -1 << "Unit:K320-A (simulated)       Firmware:" << qint16(3);
    QTest::newRow("real port chosen later") << 4 << "Unit:K320-A       Firmware:" << qint16(4);
}

void StartupTest::simulatedStartKeepsConfiguredPort()
{
    QFETCH(int, chosenPort);
    QFETCH(QString, unitCaption);
    QFETCH(qint16, savedPort);
    FrameBench b;
    b.start();
    b.state().comPort = 3;
    b.prompts().answerMessage("Exit Program", MsgAnswer::Yes);
    unloadMainFrame(b.ctx()); // setting.def now names Com3

    b.start();
    startOnSimulator(b.ctx());
    QCOMPARE(b.state().comPort, qint16(0));
    if (chosenPort >= 0)
        b.state().comPort = qint16(chosenPort);
    b.click("ckrm");
    QVERIFY2(b.frame->caption.contains(unitCaption), qPrintable(b.frame->caption));
    b.prompts().answerMessage("Exit Program", MsgAnswer::Yes);
    unloadMainFrame(b.ctx());

    b.start();
    QCOMPARE(b.state().comPort, savedPort);
}

QTEST_MAIN(StartupTest)
#include "startup_test.moc"
