// The commands, timers and modes of the main frame, driven by control names on a simulated analyser.

#include "frame_bench.h"

#include "forms/grafik.h"

#include <QAction>
#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QTimer>

#include <csignal>
#include <sys/resource.h>

namespace {

// A menu item, or a control of the tool bar or of grafik (some names stand on both).
bool enabled(const FrameBench &b, const char *name)
{
    if (auto *action = b.frame->findChild<QAction *>(QLatin1String(name)))
        return action->isEnabled();
    return b.control(QLatin1String(name))->isEnabled();
}

bool shown(const FrameBench &b, const char *name) { return !b.find<QWidget>(QLatin1String(name))->isHidden(); }

QString caption(const FrameBench &b, const char *name) { return b.find<QLabel>(QLatin1String(name))->text(); }

} // namespace

class FrameCommandsTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { QStandardPaths::setTestModeEnabled(true); }
    void modeSetsItsControls_data();
    void modeSetsItsControls();
    void repaintRequestsMakeOnePaintPerTick();
    void timer1StopsReadingWhenAutoReadingFalls();
    void unsolicitedInput_data();
    void unsolicitedInput();
    void refreshChart_data();
    void refreshChart();
    void databaseSelectionFlipsMode();
    void savedMeasurementLoadsBack();
    void failedSaveNamesFileAndReason_data();
    void failedSaveNamesFileAndReason();
    void cancelledLoadSaysFileNotFound();
    void eraseClearsTheTraces();
    void zoomBoxOpensTheZoomWindow();
    void fileThatIsNoMeasurementIsRefused_data();
    void fileThatIsNoMeasurementIsRefused();
};

void FrameCommandsTest::modeSetsItsControls_data()
{
    QTest::addColumn<bool>("emc");
    QTest::newRow("normal") << false;
    QTest::newRow("EMC") << true;
}

void FrameCommandsTest::modeSetsItsControls()
{
    QFETCH(bool, emc);
    FrameBench b;
    b.start();
    if (emc)
        b.frame->enterEmcMode();
    else
        b.frame->enterNormalMode();

    QCOMPARE(b.state().emcMode, quint8(emc ? 1 : 0));
    QCOMPARE(b.find<QAction>("mnunormal")->isChecked(), !emc);
    QCOMPARE(b.find<QAction>("mnuemc")->isChecked(), emc);
    for (const char *name : {"Command6", "mnusave", "ckauto", "Command2", "Command3", "Command4"})
        QVERIFY2(enabled(b, name) == !emc, name);
    for (const char *name : {"Command1", "Command2", "Command3", "Label1"})
        QVERIFY2(!b.frame->grafik()->findChild<QWidget *>(QLatin1String(name))->isHidden() == !emc, name);
    QCOMPARE(caption(b, "legend1"), emc ? "Peak" : "Max. Hld");
    QCOMPARE(caption(b, "legend2"), emc ? "Sweep" : "Mem B");
    for (const char *name : {"legend3", "legend4", "legend5", "legend7", "legend8", "fTest", "lNotvalid1"})
        QVERIFY2(shown(b, name) == emc, name);
    for (const char *name : {"fSetunit", "lNotValid2"})
        QVERIFY2(shown(b, name) == !emc, name);
    for (const char *name : {"emcCommand1", "emcLabel1", "emcLabel3", "mnulevelmeter"})
        QVERIFY2(enabled(b, name) == emc, name);
    QVERIFY(!enabled(b, "emcCommand2"));
    QCOMPARE(b.find<QTabWidget>("grtab")->currentIndex(), 0);
    if (!emc) {
        const AppState &s = b.state();
        QCOMPARE(s.viewSample, quint8(1));
        QCOMPARE(s.viewMaxhold + s.viewAverage + s.viewMemoryB + s.viewMemoryAB + s.viewQPeak, 0);
    }
}

void FrameCommandsTest::repaintRequestsMakeOnePaintPerTick()
{
    FrameBench b;
    b.start();
    const int before = b.frame->grafik()->paintCount();
    for (int i = 0; i < 5; ++i)
        b.state().repaintRequest = 1;
    b.frame->timer1Tick();
    QCOMPARE(b.frame->grafik()->paintCount(), before + 1);
    QCOMPARE(b.state().repaintRequest, quint8(0));
    b.frame->timer1Tick();
    QCOMPARE(b.frame->grafik()->paintCount(), before + 1);
}

void FrameCommandsTest::timer1StopsReadingWhenAutoReadingFalls()
{
    FrameBench b;
    b.start();
    b.click("ckrm");
    b.sim.port->clearTraffic();
    b.state().autoReading = 1;
    b.frame->timer1Tick();
    QVERIFY(b.sim.port->sentByProgram().contains("#bm1"));
    b.sim.port->clearTraffic();
    b.state().autoReading = 0;
    b.frame->timer1Tick();
    QCOMPARE(b.sim.port->sentByProgram(), QByteArray());
}

void FrameCommandsTest::unsolicitedInput_data()
{
    QTest::addColumn<QByteArray>("input");
    QTest::addColumn<int>("prints");
    QTest::addColumn<bool>("offlineAtEnd");
    QTest::newRow("print key") << QByteArray("PR") << 1 << true;
    QTest::newRow("local key") << QByteArray("LO") << 0 << true;
    QTest::newRow("both in one text") << QByteArray("PRLO") << 1 << true;
    QTest::newRow("noise is dropped") << QByteArray("xy") << 0 << false;
}

void FrameCommandsTest::unsolicitedInput()
{
    QFETCH(QByteArray, input);
    QFETCH(int, prints);
    QFETCH(bool, offlineAtEnd);
    FrameBench b;
    int printed = 0;
    b.ctx().calls.printNow = [&] { ++printed; };
    b.start();
    b.click("ckauto"); // connects and reads at every tick
    const QString onlineCaption = b.frame->caption;
    b.sim.port->clearTraffic();
    b.sim.port->sendUnsolicited(input);
    b.ctx().clock.sleep(0.1); // the bytes arrive over the line

    b.frame->timer4Tick();

    QCOMPARE(printed, prints);
    QCOMPARE(b.sim.port->sentByProgram().contains("#bm1"), prints == 1); // the unit was read first
    QCOMPARE(b.state().online, qint16(offlineAtEnd ? 0 : 1));
    QCOMPARE(b.find<QCheckBox>("ckrm")->isChecked(), !offlineAtEnd);
    QCOMPARE(b.find<QCheckBox>("ckauto")->isChecked(), !offlineAtEnd);
    QCOMPARE(b.state().autoReading, quint8(offlineAtEnd ? 0 : 1));
    QCOMPARE(b.frame->caption, offlineAtEnd ? kOffline : onlineCaption);
    QVERIFY(b.find<QTimer>("Timer4")->isActive());
    QCOMPARE(b.ctx().port.bytesWaiting(), 0);

    // Ticking RM again connects, but automatic reading stays off until Auto is ticked.
    if (offlineAtEnd) {
        b.click("ckrm");
        b.sim.port->clearTraffic();
        b.frame->timer1Tick();
        QCOMPARE(b.sim.port->sentByProgram(), QByteArray());
    }
}

void FrameCommandsTest::refreshChart_data()
{
    QTest::addColumn<bool>("emc");
    QTest::newRow("normal mode reads") << false;
    QTest::newRow("EMC mode only repaints") << true;
}

void FrameCommandsTest::refreshChart()
{
    QFETCH(bool, emc);
    FrameBench b;
    b.start();
    if (emc)
        b.frame->enterEmcMode();
    b.click("ckrm");
    b.sim.port->clearTraffic();
    b.state().repaintRequest = 0;
    b.find<QAction>("mnusmeasurement")->setEnabled(false);

    b.click("Command7");

    QCOMPARE(b.sim.port->sentByProgram().contains("#bm1"), !emc);
    QCOMPARE(b.find<QAction>("mnusmeasurement")->isEnabled(), !emc);
    QCOMPARE(b.state().repaintRequest, quint8(1)); // a read asks for the repaint too
}

void FrameCommandsTest::databaseSelectionFlipsMode()
{
    FrameBench b;
    b.start();
    QCOMPARE(b.state().emcMode, quint8(0));
    for (quint8 expected : {1, 0, 1}) {
        const QPointer<GrafikForm> before = b.frame->grafik();
        b.prompts().answerFile(QStringLiteral("Select Database"), std::nullopt);
        b.trigger("mnuseldata");
        QCOMPARE(b.state().emcMode, expected);
        QVERIFY(before.isNull()); // unloaded, and loaded anew by the mode entry
        QVERIFY(b.frame->grafik()->isVisibleTo(b.frame.get()));
    }
}

void FrameCommandsTest::savedMeasurementLoadsBack()
{
    FrameBench b;
    b.start();
    b.click("Command2"); // Read: connects and reads the simulated unit
    QCOMPARE(b.state().online, qint16(1));
    const float start = b.state().chart.startFrequency;
    const float stop = b.state().chart.stopFrequency;
    // Typed without an extension, the name gets the one the load dialog's "*.mes" shows.
    const QString file = b.folder.path() + QStringLiteral("/first.mes");
    b.prompts().answerFile(QStringLiteral("Select Measurement"), b.folder.path() + QStringLiteral("/first"));
    b.trigger("mnusmeasurement");
    QCOMPARE(QDir(b.folder.path()).entryList({"first*"}), QStringList("first.mes"));

    b.state().chart.startFrequency = 1.0f;
    b.state().chart.stopFrequency = 2.0f;
    b.prompts().answerFile(QStringLiteral("Select Measurement"), file);
    b.trigger("mnulmeasure");

    QCOMPARE(b.frame->caption, QStringLiteral("DELFOR - V3.00   File: ") + file);
    QCOMPARE(b.state().online, qint16(0)); // RM was ticked: the unit went local first
    QCOMPARE(b.state().traceFrozen, quint8(1));
    QCOMPARE(b.state().pointCount, 2001);
    QCOMPARE(b.state().chart.startFrequency, start);
    QVERIFY(qAbs(b.state().chart.stopFrequency - stop) < 1e-3f); // the last row lies on the stop
    QVERIFY(!b.find<QAction>("mnusmeasurement")->isEnabled());
    QCOMPARE(b.state().repaintRequest, quint8(1));
    const int before = b.frame->grafik()->paintCount();
    b.frame->timer1Tick();
    QCOMPARE(b.frame->grafik()->paintCount(), before + 1);
    QVERIFY(b.frame->grafik()->caption.startsWith(QStringLiteral("Measure date: ")));
    QVERIFY(b.prompts().unexpected.isEmpty());
}

void FrameCommandsTest::failedSaveNamesFileAndReason_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("reason");
    QTest::newRow("missing folder") << "gone/run.mes" << "the folder does not exist";
    QTest::newRow("read-only file") << "kept.mes" << "the file is read-only";
    // A file size limit stands in for the full disk; the engine's words for it are those of a failed write.
    QTest::newRow("full disk") << "run.mes" << "disk I/O error";
}

void FrameCommandsTest::failedSaveNamesFileAndReason()
{
    QFETCH(QString, name);
    QFETCH(QString, reason);
    FrameBench b;
    b.start();
    b.click("Command2");
    const QString file = b.folder.filePath(name);
    const QByteArray kept = "an earlier measurement";
    QFile old(b.folder.filePath("kept.mes"));
    QVERIFY(old.open(QIODevice::WriteOnly) && old.write(kept) == kept.size());
    old.close();
    QVERIFY(old.setPermissions(QFile::ReadOwner | QFile::ReadGroup));
    // The disk fills up: while the save runs no file may grow beyond 32 KiB, room for the empty
    // tables but not for the rows.
    rlimit before{};
    QVERIFY(::getrlimit(RLIMIT_FSIZE, &before) == 0);
    rlimit full = before;
    if (QTest::currentDataTag() == QLatin1String("full disk"))
        full.rlim_cur = 32768;
    const auto signalBefore = std::signal(SIGXFSZ, SIG_IGN);
    QVERIFY(::setrlimit(RLIMIT_FSIZE, &full) == 0);
    b.prompts().answerFile(QStringLiteral("Select Measurement"), file);
    b.trigger("mnusmeasurement");
    ::setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, signalBefore);

    QCOMPARE(b.prompts().messages(QStringLiteral("Select Measurement")),
             QStringList("Select Measurement|Cannot save " + file + ": " + reason));
    QCOMPARE(b.state().busy, quint8(0));
    QVERIFY(old.open(QIODevice::ReadOnly));
    QCOMPARE(old.readAll(), kept);
    QCOMPARE(QDir(b.folder.path()).entryList({"*.mes*"}), QStringList("kept.mes")); // no part left behind
}

void FrameCommandsTest::cancelledLoadSaysFileNotFound()
{
    FrameBench b;
    b.start();
    b.state().measurementFileName = QStringLiteral("/tmp/old.mes   ");
    b.prompts().answerFile(QStringLiteral("Select Measurement"), std::nullopt);
    b.trigger("mnulmeasure");
    QCOMPARE(b.prompts().messages(QStringLiteral("Select Measurement")),
             QStringList{QStringLiteral("Select Measurement|File not found ( /tmp/old.mes )")});
    QCOMPARE(b.state().busy, quint8(0));
    QCOMPARE(b.state().traceFrozen, quint8(0));
}

void FrameCommandsTest::eraseClearsTheTraces()
{
    FrameBench b;
    b.start();
    b.click("Command2");
    QVERIFY(b.state().chart.grafikMin < b.state().chart.grafikMax);
    b.click("Command4");
    QCOMPARE(b.state().chart.grafikMin, qint16(1000));
    QCOMPARE(b.state().chart.grafikMax, qint16(-1000));
}

void FrameCommandsTest::zoomBoxOpensTheZoomWindow()
{
    FrameBench b;
    b.start();
    QWidget *grafik = b.frame->grafik();
    const auto control = [grafik](const char *name) { return grafik->findChild<QWidget *>(QLatin1String(name)); };
    for (const char *name : {"Text2", "Text4", "Label4", "Label7", "Command7_0", "Command7_1"})
        QVERIFY2(!control(name)->isEnabled(), name);
    b.state().repaintRequest = 0;
    QTest::mouseClick(control("Check6"), Qt::LeftButton, {}, QPoint(6, 10)); // on the box itself
    QVERIFY(b.state().chart.zoomOn);
    QCOMPARE(b.state().repaintRequest, quint8(1));
    for (const char *name : {"Text2", "Text4", "Label4", "Label7", "Command7_0", "Command7_1"})
        QVERIFY2(control(name)->isEnabled(), name);
    auto *text2 = static_cast<QLineEdit *>(control("Text2"));
    text2->setFocus();
    text2->selectAll();
    QTest::keyClicks(text2, "400");
    QTest::keyClick(text2, Qt::Key_Return);
    QCOMPARE(b.state().chart.zoomStart, 400.f);
    QCOMPARE(text2->text(), "400.000");
    b.frame->timer1Tick();
    QCOMPARE(b.state().chart.startFrequency, 0.f); // the real window comes back after the paint
    QVERIFY(static_cast<QCheckBox *>(control("Check6"))->isChecked());
}

void FrameCommandsTest::fileThatIsNoMeasurementIsRefused_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QByteArray noise(40000, '\0');
    for (int i = 0; i < noise.size(); ++i)
        noise[i] = char((i * 7919 + i / 13) & 0xFF);
    QTest::newRow("random bytes") << noise;
    QTest::newRow("text") << QByteArray("Frequency;Sample\n1;2\n");
    QTest::newRow("empty") << QByteArray();
}

void FrameCommandsTest::fileThatIsNoMeasurementIsRefused()
{
    QFETCH(QByteArray, bytes);
    FrameBench b;
    b.start();
    const QString file = b.folder.path() + QStringLiteral("/odd.mes");
    QFile out(file);
    QVERIFY(out.open(QIODevice::WriteOnly));
    out.write(bytes);
    out.close();
    b.prompts().answerFile(QStringLiteral("Select Measurement"), file);
    b.trigger("mnulmeasure");
    b.frame->timer1Tick();
    // A box names the file and the reason; what was on display stays.
    QVERIFY(b.prompts().messages().last().startsWith("Select Measurement|" + file + " is no measurement file: "));
    QCOMPARE(b.state().traceFrozen, quint8(0));
    QCOMPARE(b.state().measurementFileName, QString());
    QCOMPARE(b.state().pointCount, 2001);
    QCOMPARE(b.state().chart.paintBusy, quint8(0));
    QCOMPARE(b.state().busy, quint8(0));
}

QTEST_MAIN(FrameCommandsTest)
#include "frame_commands_test.moc"
