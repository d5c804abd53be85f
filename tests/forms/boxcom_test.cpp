#include "frame_bench.h"

#include "link/discovery.h"
#include "link/qt_serial_port.h"

#include <QDialog>
#include <QLineEdit>
#include <QRadioButton>

class BoxcomTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { QStandardPaths::setTestModeEnabled(true); }
    void optionsShowPortAndRate_data();
    void optionsShowPortAndRate();
    void okWithAnotherRateReconnects();
    void exitTakesNothing();
    void autosearchClosesTheForm();
    void notOpenedWhileBusy();

private:
    static QDialog *openBoxcom(FrameBench &b)
    {
        b.trigger("mnuconf");
        return b.frame->findChild<QDialog *>("boxcom");
    }
    static bool boxcomGone(FrameBench &b)
    {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return !b.frame->findChild<QDialog *>("boxcom");
    }
};

void BoxcomTest::optionsShowPortAndRate_data()
{
    QTest::addColumn<qint16>("comPort");
    QTest::addColumn<qint32>("baudRate");
    QTest::addColumn<QStringList>("checked");
    QTest::newRow("Com2 19200") << qint16(2) << 19200 << QStringList{"baud3", "port2"};
    QTest::newRow("simulator 115200") << qint16(0) << 115200 << QStringList{"baud5", "port0"};
    QTest::newRow("after a failed search") << qint16(5) << 4800 << QStringList{"baud1"};
    QTest::newRow("rate not offered") << qint16(4) << 1200 << QStringList{"port4"};
}

void BoxcomTest::optionsShowPortAndRate()
{
    QFETCH(qint16, comPort);
    QFETCH(qint32, baudRate);
    QFETCH(QStringList, checked);
    FrameBench b;
    b.start();
    b.state().comPort = comPort;
    b.state().baudRate = baudRate;
    QDialog *boxcom = openBoxcom(b);
    QVERIFY(boxcom && boxcom->isVisible());
    QCOMPARE(boxcom->windowTitle(), QString("Serial port setup"));
    QStringList on;
    for (const QRadioButton *option : boxcom->findChildren<QRadioButton *>())
        if (option->isChecked())
            on.append(option->objectName());
    on.sort();
    QCOMPARE(on, checked);
    QCOMPARE(boxcom->findChild<QLineEdit *>("portPath1")->text(), loadDevicePaths().value(0));
}

void BoxcomTest::okWithAnotherRateReconnects()
{
    FrameBench b;
    b.start();
    b.click("ckrm");
    QCOMPARE(b.sim.analyser.rate, 19200);
    b.sim.port->clearTraffic();
    QDialog *boxcom = openBoxcom(b);
    boxcom->findChild<QRadioButton *>("baud5")->click();
    boxcom->findChild<QRadioButton *>("port0")->click();
    auto *path = boxcom->findChild<QLineEdit *>("portPath3");
    path->setText("/dev/ttyACM0");
    QTest::mouseClick(boxcom->findChild<QWidget *>("cbok"), Qt::LeftButton);

    const QByteArray sent = b.sim.port->sentByProgram();
    QVERIFY(sent.startsWith("#kl0\r"));
    QVERIFY(sent.contains("#br115200\r#kl1\r"));
    QCOMPARE(b.sim.analyser.rate, 115200);
    QCOMPARE(b.sim.port->rate(), 115200);
    QCOMPARE(b.state().baudRate, 115200);
    QCOMPARE(b.state().comPort, qint16(0));
    QCOMPARE(b.state().online, qint16(1));
    QCOMPARE(b.frame->caption, unitCaption(b.state()));
    QCOMPARE(loadDevicePaths().value(2), QString("/dev/ttyACM0"));
    QVERIFY(boxcomGone(b));
}

void BoxcomTest::exitTakesNothing()
{
    FrameBench b;
    b.start();
    QDialog *boxcom = openBoxcom(b);
    boxcom->findChild<QRadioButton *>("baud1")->click();
    boxcom->findChild<QRadioButton *>("port4")->click();
    QTest::mouseClick(boxcom->findChild<QWidget *>("cbabbruch"), Qt::LeftButton);
    QCOMPARE(b.state().baudRate, 19200);
    QCOMPARE(b.state().comPort, qint16(2));
    QVERIFY(b.sim.port->sentByProgram().isEmpty());
    QVERIFY(boxcomGone(b));
}

void BoxcomTest::autosearchClosesTheForm()
{
    FrameBench b;
    b.start();
    b.prompts().shown.clear();
    QDialog *boxcom = openBoxcom(b);
    QTest::mouseClick(boxcom->findChild<QWidget *>("Command1"), Qt::LeftButton);
    QCOMPARE(b.prompts().messages(), QStringList{"Autosearch|Unit found at port:  1   Baud:  19200"});
    QCOMPARE(b.state().comPort, qint16(1));
    QCOMPARE(b.state().online, qint16(1));
    QVERIFY(boxcomGone(b));
}

void BoxcomTest::notOpenedWhileBusy()
{
    FrameBench b;
    b.start();
    b.state().busy = 1;
    QVERIFY(!openBoxcom(b));
}

QTEST_MAIN(BoxcomTest)
#include "boxcom_test.moc"
