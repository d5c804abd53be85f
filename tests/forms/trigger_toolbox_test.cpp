// The trigger toolbox: setsingle from the tool bar, the watch against the simulator, the level
// rules and the centre frequency steps.

#include "frame_bench.h"

#include <QCheckBox>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QTimer>

namespace {

struct Toolbox {
    explicit Toolbox(FrameBench &bench) : b(bench)
    {
        b.start();
        b.prompts().shown.clear();
        b.click("ckrm");
        b.sim.port->clearTraffic();
        b.click("Command6");
        form = b.frame->findChild<QDialog *>("setsingle");
    }
    template <typename T = QWidget> T *in(const char *name) const { return form->findChild<T *>(name); }
    void click(const char *name) const { QTest::mouseClick(in(name), Qt::LeftButton); }
    void type(const char *box, const QString &text) const
    {
        in<QLineEdit>(box)->clear();
        QTest::keyClicks(in(box), text);
    }
    int sent(const QByteArray &command) const { return int(b.sim.port->sentByProgram().count(command + "\r")); }

    FrameBench &b;
    QDialog *form = nullptr;
};

} // namespace

class TriggerToolboxTest : public QObject {
    Q_OBJECT
private slots:
    void endingTheWaitSendsTriggerOff_data();
    void endingTheWaitSendsTriggerOff();
    void printAfterTriggerReadsPrintsAndArmsAgain();
    void levelFromCursorA_data();
    void levelFromCursorA();
    void typedLevelIsClamped();
    void centreFrequencySteps_data();
    void centreFrequencySteps();
};

void TriggerToolboxTest::endingTheWaitSendsTriggerOff_data()
{
    QTest::addColumn<bool>("closeForm");
    QTest::newRow("Stop") << false;
    QTest::newRow("closing the form") << true;
}

void TriggerToolboxTest::endingTheWaitSendsTriggerOff()
{
    QFETCH(bool, closeForm);
    FrameBench bench;
    Toolbox t(bench);
    QCOMPARE(t.in<QLabel>("Label3")->text(), QStringLiteral("Not activ"));
    t.type("Text1", "0"); // -27 dBm at the analyser: the scene never gets there
    // Stop comes from the event queue once the watch waits.
    bool stopped = false;
    QTimer user;
    QObject::connect(&user, &QTimer::timeout, t.form, [&] {
        if (stopped || t.in<QLabel>("Label3")->text() != QLatin1String("Wait for trigger"))
            return;
        stopped = true;
        if (closeForm)
            t.form->close();
        else
            t.click("Command3");
    });
    user.start(0);
    t.click("Command2");

    QVERIFY(stopped);
    QCOMPARE(t.sent("#tr-27.0"), 1);
    QVERIFY(bench.sim.port->sentByProgram().endsWith("#tr0\r"));
    QCOMPARE(t.sent("#bm1"), 0);
    QCOMPARE(t.in<QLabel>("Label3")->text(), QStringLiteral("Not activ"));
    QCOMPARE(bench.state().triggerOn, quint8(0));
    QCOMPARE(bench.state().busy, quint8(0));
    QVERIFY(bench.find<QTimer>("Timer4")->isActive());
}

void TriggerToolboxTest::printAfterTriggerReadsPrintsAndArmsAgain()
{
    FrameBench bench;
    Toolbox t(bench);
    int prints = 0;
    bench.ctx().calls.printNow = [&] {
        // Each print follows a read of the trace that triggered.
        QCOMPARE(t.sent("#bm1"), prints + 1);
        if (++prints == 3)
            t.click("Command3");
    };
    t.click("Check1");
    t.type("Text1", "-40"); // -50 dBm: the clock at -35 dBm passes it on every sweep
    t.click("Command2");

    QCOMPARE(prints, 3); // Stop is noticed while the next trigger is on its way
    QCOMPARE(t.sent("#tr-50.0"), prints + 1); // armed again after each print
    QVERIFY(bench.sim.port->sentByProgram().endsWith("#tr0\r"));
    QCOMPARE(t.in<QLabel>("Label3")->text(), QStringLiteral("Not activ"));
    QCOMPARE(bench.state().viewMemoryB, quint8(1));
    QCOMPARE(bench.state().viewSample, quint8(0));
}

void TriggerToolboxTest::levelFromCursorA_data()
{
    QTest::addColumn<float>("cursorLevel");
    QTest::addColumn<float>("unitOffset");
    QTest::addColumn<float>("componentDb"); // a flat component in the chain, 0: none
    QTest::addColumn<float>("distanceFromDut");
    QTest::addColumn<float>("triggerLevel");
    QTest::addColumn<QString>("shown");
    QTest::newRow("no chain") << -40.f << 0.f << 0.f << 0.f << -50.f << "-40.0";
    QTest::newRow("unit offset") << 67.f << 107.f << 0.f << 0.f << -50.f << "67.0";
    QTest::newRow("component comes off") << -40.f << 0.f << 5.f << 0.f << -55.f << "-40.0";
    // 3 m instead of the limit's 10 m: the term is 20 lg(10/3) = 10.46 dB, subtracted from the chain's sum.
    QTest::newRow("distance term") << -40.f << 0.f << 5.f << 3.f << -44.54f << "-40.0";
    QTest::newRow("clamped high") << 0.f << 0.f << 0.f << 0.f << -27.f << "-17.0";
    QTest::newRow("clamped low") << -120.f << 0.f << 0.f << 0.f << -99.8f << "-89.8";
}

void TriggerToolboxTest::levelFromCursorA()
{
    QFETCH(float, cursorLevel);
    QFETCH(float, unitOffset);
    QFETCH(float, componentDb);
    QFETCH(float, distanceFromDut);
    QFETCH(float, triggerLevel);
    QFETCH(QString, shown);
    FrameBench bench;
    Toolbox t(bench);
    AppState &s = bench.state();
    s.analyser.unitOffset = unitOffset;
    s.correctionOn = 1;
    if (componentDb != 0) {
        s.componentNumber[0] = 1;
        s.componentRows[0] = {{100.f, componentDb}, {300.f, componentDb}};
    }
    s.distanceFromDut = distanceFromDut;
    s.maxholdLimitDistance = 10.f;
    s.chart.cursorAFrequency = 200.f;
    s.chart.cursorALevel = cursorLevel;

    t.click("Command1");

    QVERIFY2(qAbs(s.triggerLevel - triggerLevel) < 0.01f, qPrintable(QString::number(s.triggerLevel)));
    QCOMPARE(t.in<QLineEdit>("Text1")->text(), shown);
}

void TriggerToolboxTest::typedLevelIsClamped()
{
    FrameBench bench;
    Toolbox t(bench);
    bench.state().analyser.attenuator = 0.f;
    t.type("Text1", "-20,0");
    QTest::keyClick(t.in("Text1"), Qt::Key_Return);
    QCOMPARE(bench.state().triggerLevel, -27.f);
    QCOMPARE(t.in<QLineEdit>("Text1")->text(), QStringLiteral("-27.0"));
}

void TriggerToolboxTest::centreFrequencySteps_data()
{
    QTest::addColumn<QString>("step");
    QTest::addColumn<QString>("button");
    QTest::addColumn<float>("centre");
    QTest::addColumn<QByteArray>("command");
    QTest::newRow("step up") << "12.5" << "Command5" << 512.5f << QByteArray("#cf0512.500");
    QTest::newRow("step down below 0") << "600" << "Command4" << 0.f << QByteArray("#cf0000.000");
    QTest::newRow("step up beyond the model") << "900" << "Command5" << 1050.f << QByteArray("#cf1050.000");
}

void TriggerToolboxTest::centreFrequencySteps()
{
    QFETCH(QString, step);
    QFETCH(QString, button);
    QFETCH(float, centre);
    QFETCH(QByteArray, command);
    FrameBench bench;
    Toolbox t(bench);
    bench.state().analyser.centerFrequency = 500.f;
    t.type("Text2", step);
    t.click(button.toLatin1());
    QCOMPARE(bench.state().analyser.centerFrequency, centre);
    QCOMPARE(t.sent(command), 1);
    QCOMPARE(t.sent("#bm1"), 1); // and the analyser read again
    QCOMPARE(bench.state().online, qint16(1));
}

QTEST_MAIN(TriggerToolboxTest)
#include "trigger_toolbox_test.moc"
