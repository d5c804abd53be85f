#include "frame_bench.h"

#include "forms/grafik.h"
#include "link/discovery.h"

#include <QApplication>
#include <QCheckBox>
#include <QLabel>
#include <QMdiSubWindow>
#include <QPushButton>
#include <QTimer>

namespace {
// Counts the paint events of one widget.
class PaintCounter : public QObject {
public:
    int paints = 0;
    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == QEvent::Paint)
            ++paints;
        return false;
    }
};
} // namespace

class MainFrameTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { QStandardPaths::setTestModeEnabled(true); }
    void remoteBoxConnectsAndGoesLocal_data();
    void remoteBoxConnectsAndGoesLocal();
    void failedConnectShowsOneBox_data();
    void failedConnectShowsOneBox();
    void autoBoxConnectsAndStartsReading_data();
    void autoBoxConnectsAndStartsReading();
    void hiddenSetupAtFifthClick_data();
    void hiddenSetupAtFifthClick();
    void monitorShowsEachByteAsItComes_data();
    void monitorShowsEachByteAsItComes();
    void chartGeometryTakenOnlyWhenNormal_data();
    void chartGeometryTakenOnlyWhenNormal();
    void printerSetupKeepsChosenPrinter();
};

void MainFrameTest::remoteBoxConnectsAndGoesLocal_data()
{
    QTest::addColumn<QString>("model");
    QTest::addColumn<QString>("firmware");
    QTest::newRow("K320-A") << "K320-A" << "1.40";
    QTest::newRow("K550-B") << "K550-B" << "1.37";
}

void MainFrameTest::remoteBoxConnectsAndGoesLocal()
{
    QFETCH(QString, model);
    QFETCH(QString, firmware);
    FrameBench b(model);
    b.sim.analyser.versionReplies = {firmware};
    b.start();
    b.prompts().shown.clear();
    auto *ckrm = b.find<QCheckBox>("ckrm");
    QWidget *toolbox = b.control("Command6"); // MDI.Command6, not the colour button of grafik
    QVERIFY(!toolbox->isVisible());

    b.click("ckrm");
    QCOMPARE(b.frame->caption, "DELFOR - V3.00       Unit:" + model + "       Firmware:" + firmware);
    QVERIFY(ckrm->isChecked());
    QTRY_VERIFY(toolbox->isVisible()); // the tool bar lays out its buttons at the next event
    QCOMPARE(b.state().online, qint16(1));
    QCOMPARE(b.sim.analyser.panel.keyboardLocked, 1);
    QVERIFY(b.find<QTimer>("Timer4")->isActive());
    QVERIFY(!QApplication::overrideCursor());
    QVERIFY(b.prompts().shown.isEmpty());

    b.sim.port->clearTraffic();
    b.click("ckrm");
    QCOMPARE(b.sim.port->sentByProgram(), QByteArray("#kl0\r"));
    QCOMPARE(b.frame->caption, kOffline);
    QVERIFY(!ckrm->isChecked());
    QCOMPARE(b.state().online, qint16(0));
    QCOMPARE(b.sim.analyser.panel.keyboardLocked, 0);
}

void MainFrameTest::failedConnectShowsOneBox_data()
{
    QTest::addColumn<bool>("portBusy");
    QTest::addColumn<QString>("message");
    QTest::addColumn<bool>("timer4Active");
    QTest::newRow("port busy") << true << "Serial - Error| Can not open com. port" << true;
    // The probe's echo never came: Timer4 stays off until an exchange succeeds.
    QTest::newRow("silent analyser") << false << "Serial - Error|Unit not found" << false;
}

void MainFrameTest::failedConnectShowsOneBox()
{
    QFETCH(bool, portBusy);
    QFETCH(QString, message);
    QFETCH(bool, timer4Active);
    FrameBench b;
    b.start();
    b.prompts().shown.clear();
    b.sim.port->failOpen = portBusy;
    b.sim.analyser.silent = true;
    b.click("ckrm");
    QCOMPARE(b.prompts().messages(), QStringList{message});
    QVERIFY(!b.find<QCheckBox>("ckrm")->isChecked());
    QVERIFY(!b.control("Command6")->isVisible());
    QCOMPARE(b.state().online, qint16(0));
    QCOMPARE(b.state().busy, quint8(0));
    QVERIFY(!QApplication::overrideCursor());
    QCOMPARE(b.frame->caption, kOffline);
    QCOMPARE(b.find<QTimer>("Timer4")->isActive(), timer4Active);
}

void MainFrameTest::autoBoxConnectsAndStartsReading_data()
{
    QTest::addColumn<quint8>("triggerOn");
    QTest::addColumn<quint8>("autoReading");
    QTest::newRow("no trigger") << quint8(0) << quint8(1);
    QTest::newRow("trigger armed") << quint8(1) << quint8(0);
}

void MainFrameTest::autoBoxConnectsAndStartsReading()
{
    QFETCH(quint8, triggerOn);
    QFETCH(quint8, autoReading);
    FrameBench b;
    b.start();
    b.state().triggerOn = triggerOn;
    auto *ckauto = b.find<QCheckBox>("ckauto");
    b.click("ckauto");
    QCOMPARE(b.state().online, qint16(1));
    QVERIFY(b.find<QCheckBox>("ckrm")->isChecked());
    QCOMPARE(b.state().autoReading, autoReading);
    QCOMPARE(ckauto->isChecked(), autoReading == 1);
    if (ckauto->isChecked()) {
        b.click("ckauto");
        QCOMPARE(b.state().autoReading, quint8(0));
    }
    // Going local clears the box.
    ckauto->setChecked(true);
    b.click("ckrm");
    QVERIFY(!ckauto->isChecked());
}

void MainFrameTest::hiddenSetupAtFifthClick_data()
{
    QTest::addColumn<quint8>("monitorBefore");
    QTest::addColumn<QStringList>("answers");
    QTest::addColumn<quint8>("timeout");
    QTest::addColumn<quint8>("monitor");
    QTest::addColumn<qint16>("noise");
    QTest::newRow("all taken") << quint8(0) << QStringList{"7", "1", "80"} << quint8(7) << quint8(1) << qint16(80);
    QTest::newRow("zero timeout, noise 100") << quint8(0) << QStringList{"0", "0", "100"} << quint8(4) << quint8(0)
                                             << qint16(50);
    QTest::newRow("monitor stays on") << quint8(1) << QStringList{"2", "0", "99"} << quint8(2) << quint8(1)
                                      << qint16(99);
    QTest::newRow("out of range") << quint8(0) << QStringList{"300", "2", "-5"} << quint8(4) << quint8(0)
                                  << qint16(-5);
    QTest::newRow("huge") << quint8(0) << QStringList{"1e30", "1", "-1e30"} << quint8(4) << quint8(1) << qint16(50);
    QTest::newRow("cancelled") << quint8(0) << QStringList{"", "", ""} << quint8(4) << quint8(0) << qint16(0);
    QTest::newRow("text") << quint8(0) << QStringList{"abc", "1x", "12.6dB"} << quint8(4) << quint8(1)
                          << qint16(13);
}

void MainFrameTest::hiddenSetupAtFifthClick()
{
    QFETCH(quint8, monitorBefore);
    QFETCH(QStringList, answers);
    QFETCH(quint8, timeout);
    QFETCH(quint8, monitor);
    QFETCH(qint16, noise);
    FrameBench b;
    b.start();
    b.prompts().shown.clear();
    b.state().transmissionMonitorOn = monitorBefore;
    for (int i = 0; i < 4; ++i)
        b.click("Picture1");
    QCOMPARE(b.state().debugClickCount, quint8(4));
    QVERIFY(b.prompts().shown.isEmpty());

    b.prompts().answerInput("Transmission timing setup", answers[0]);
    b.prompts().answerInput("Transmission debug", answers[1]);
    b.prompts().answerInput("Transmission debug", answers[2]);
    b.click("Picture1");
    QCOMPARE(b.state().debugClickCount, quint8(0));
    QStringList asked;
    for (const auto &shown : b.prompts().shown)
        asked.append(shown.title + '|' + shown.text);
    QCOMPARE(asked, (QStringList{"Transmission timing setup|Serial timeout in s (+1s)[1]",
                                 "Transmission debug|Show transmission  Yes = 1 / No = 0 ",
                                 "Transmission debug|Noisevalue default=50"}));
    QCOMPARE(b.state().serialTimeoutSeconds, timeout);
    QCOMPARE(b.state().transmissionMonitorOn, monitor);
    QCOMPARE(b.state().noiseValue, noise);
    QVERIFY(b.prompts().unused().isEmpty());
}

void MainFrameTest::monitorShowsEachByteAsItComes_data()
{
    QTest::addColumn<bool>("monitorOn");
    QTest::newRow("monitor on") << true;
    QTest::newRow("monitor off") << false;
}

void MainFrameTest::monitorShowsEachByteAsItComes()
{
    QFETCH(bool, monitorOn);
    FrameBench b;
    b.start();
    b.state().transmissionMonitorOn = monitorOn ? 1 : 0;
    b.click("ckrm");
    QCOMPARE(b.state().online, qint16(1));
    QWidget *tr = b.frame->findChild<QWidget *>("Tr");
    QCOMPARE(tr != nullptr, monitorOn);
    if (!monitorOn)
        return;
    QVERIFY(tr->isVisible());
    const auto label = [&](const char *name) { return tr->findChild<QLabel *>(name)->text(); };
    // The last exchange of the connect: "#VN" and its reply.
    QCOMPARE(label("Label3"), QString("#VN\r"));
    QCOMPARE(label("Label4"), QString("1.40\r"));
    QCOMPARE(label("Label5"), QString(" 49; 46; 52; 48; 13;"));

    // No event is processed during an exchange: every byte must be drawn as it comes.
    PaintCounter counter;
    tr->findChild<QLabel *>("Label5")->installEventFilter(&counter);
    queryUnit(b.ctx(), "#VN");
    QVERIFY2(counter.paints >= 5 + 4, qPrintable(QString::number(counter.paints)));
}

void MainFrameTest::chartGeometryTakenOnlyWhenNormal_data()
{
    QTest::addColumn<bool>("maximised");
    QTest::addColumn<QPoint>("place");
    QTest::newRow("normal window") << false << QPoint(20, 10);
    QTest::newRow("left of and above the screen") << false << QPoint(-40, -20);
    QTest::newRow("maximised keeps the last place") << true << QPoint(20, 10);
}

void MainFrameTest::chartGeometryTakenOnlyWhenNormal()
{
    QFETCH(bool, maximised);
    QFETCH(QPoint, place);
    FrameBench b;
    b.start();
    auto *window = qobject_cast<QMdiSubWindow *>(b.frame->grafik()->parentWidget());
    QVERIFY(window);
    window->showNormal();
    window->setGeometry(QRect(place, QSize(700, 560)));
    if (maximised)
        window->showMaximized();
    FormGeometry g;
    g.grafikLeft = 1;
    g.grafikTop = 2;
    g.grafikWidth = 3;
    g.grafikHeight = 4;
    b.frame->takeFormGeometry(g);
    QCOMPARE(g.grafikWindowState, qint16(maximised ? 2 : 0));
    const QList<qint16> taken{g.grafikLeft, g.grafikTop, g.grafikWidth, g.grafikHeight};
    const QList<qint16> expected = maximised ? QList<qint16>{1, 2, 3, 4}
                                             : QList<qint16>{qint16(place.x() * 15), qint16(place.y() * 15), 10500, 8400};
    QCOMPARE(taken, expected);
}

// The printer chosen is kept for printing and offered again; a cancel keeps the one before.
void MainFrameTest::printerSetupKeepsChosenPrinter()
{
    FrameBench b;
    b.start();
    b.prompts().shown.clear();
    b.prompts().answerPrinter(QStringLiteral("Lab-Laser"));
    b.trigger("mnuprsetup");
    b.prompts().answerPrinter(std::nullopt);
    b.trigger("mnuprsetup");
    QCOMPARE(b.state().printerName, QStringLiteral("Lab-Laser"));
    QCOMPARE(b.prompts().shown.size(), 2);
    QCOMPARE(b.prompts().shown[0].kind, ScriptedPrompts::Kind::PrinterSetup);
    QCOMPARE(b.prompts().shown[0].text, QString()); // the system's default printer at first
    QCOMPARE(b.prompts().shown[1].text, QStringLiteral("Lab-Laser"));
}

QTEST_MAIN(MainFrameTest)
#include "main_frame_test.moc"
