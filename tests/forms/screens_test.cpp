// The program as the user sees it: live traces from the simulated analyser, also after the front
// moved it to another span, a stored .mes file, one compared with an earlier one, and a stored .emc
// run, each drawn on screen and checked for its trace colours. The window
// images are kept in the build folder (screenshots/) to be looked at.

#include "frame_bench.h"

#include "emc/run_controller.h"
#include "forms/grafik.h"
#include "chart/image_canvas.h"
#include "store/measurement_file.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPushButton>
#include <QMdiSubWindow>
#include <QRadioButton>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTabWidget>
#include <QTableWidget>

#include <cmath>

namespace {

// An .emc run of the Sweep + Step kind: the sweep as a line, the ambient below it, and every
// 48th row measured by the detectors, the peak in one polarisation round or the other. With
// `limit` it is held against the delivered class B limit at 3 m, in dBuV/m.
void writeEmcRun(FrameBench &b, const QString &path, bool limit = false)
{
    AppState &s = b.state();
    if (limit) {
        s.maxholdLimitNr = 3; // "EN 55032 B 3m QP"
        s.unitName = QStringLiteral("dBuV/m");
    }
    s.measurementFileName = path;
    s.emcScanMode = 2;
    s.emcTestName = QStringLiteral("EN 55032 B radiated 3m");
    s.emcViewMaxhold = s.emcViewQPeak = s.emcViewAverage = 1;
    s.emcViewAmbient = 1;
    s.viewMemoryB = 1;
    s.chart.grafikMin = -300;
    s.chart.grafikMax = -50;
    QVERIFY(createMeasurementFile(b.ctx()));
    writeEmcHeader(b.ctx());
    updateEmcChartRange(b.ctx());
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("emc-run"));
    db.setDatabaseName(path);
    QVERIFY(db.open());
    db.transaction();
    QSqlQuery q(db);
    q.prepare(QStringLiteral("insert into Measurement (Frequency, Sample_dBmW, memory_dBmW, Ambient_H_dBmW, "
                             "Maxhold_dBmW, QPeak_dBmW, Average_dBmW, H_Maxhold_dBmW, V_Maxhold_dBmW) "
                             "values (?, ?, ?, ?, ?, ?, ?, ?, ?)"));
    for (int i = 0; i < 971; ++i) {
        const double f = 30.0 + i;
        const double harmonic = (i % 48 == 0) ? 35.0 : 0.0;
        const double sweep = -95.0 + 6.0 * std::sin(i / 40.0) + harmonic;
        const bool measured = i % 48 == 0;
        q.addBindValue(f);
        q.addBindValue(measured ? 1.0 : 0.0);
        q.addBindValue(sweep);
        q.addBindValue(-100.0 + 3.0 * std::sin(i / 9.0));
        q.addBindValue(measured ? sweep - 2.0 : QVariant());
        q.addBindValue(measured ? sweep - 6.0 : QVariant());
        q.addBindValue(measured ? sweep - 12.0 : QVariant());
        q.addBindValue(measured ? sweep - 2.0 - (i % 96 ? 0.0 : 3.0) : QVariant());
        q.addBindValue(measured ? sweep - 2.0 - (i % 96 ? 4.0 : 0.0) : QVariant());
        QVERIFY(q.exec());
    }
    db.commit();
    db.close();
}

// The program started maximised in EMC mode, on the EMC Test tab `test` picked and the control
// `control` clicked, then back on the chart.
GrafikForm *pickEmcTest(FrameBench &b, const QString &test, const char *control)
{
    b.frame->resize(1280, 800);
    b.start();
    b.frame->findChild<QMdiSubWindow *>()->showMaximized();
    b.frame->enterEmcMode();
    GrafikForm *grafik = b.frame->grafik();
    auto *tabs = grafik->findChild<QTabWidget *>(QStringLiteral("grtab"));
    tabs->setCurrentIndex(2);
    auto *tests = grafik->findChild<QComboBox *>(QStringLiteral("testDBCombo1"));
    tests->setCurrentIndex(tests->findText(test));
    emit tests->textActivated(tests->currentText());
    grafik->findChild<QAbstractButton *>(QLatin1String(control))->click();
    tabs->setCurrentIndex(0);
    return grafik;
}

} // namespace

class ScreensTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { QStandardPaths::setTestModeEnabled(true); }
    void screens_data();
    void screens();
    void stepRun();
    void sweepStepRun();
};

void ScreensTest::screens_data()
{
    QTest::addColumn<QString>("source");
    QTest::addColumn<quint32>("traceColour");
    QTest::newRow("live") << "live" << quint32(0x008000);
    QTest::newRow("stored-mes") << "mes" << quint32(0x008000);
    QTest::newRow("stored-emc") << "emc" << quint32(0x0000FF);
    QTest::newRow("results") << "results" << quint32(0x0000FF);
    QTest::newRow("limits") << "limits" << quint32(0x008000);
    QTest::newRow("panel") << "panel" << quint32(0x008000);
    QTest::newRow("cursors") << "cursors" << quint32(0x008000);
    QTest::newRow("compare") << "compare" << quint32(0x008000);
}

// The panel's lists picked as the user picks them: unit, configuration with "Correction On",
// the two limit lines ticked, and the known bands.
void pickOverlays(FrameBench &b)
{
    const auto pick = [&](const char *name, const QString &text) {
        auto *combo = b.find<QComboBox>(QLatin1String(name));
        combo->setCurrentText(text);
        emit combo->textActivated(text);
    };
    pick("DBmeasur1", QStringLiteral("dBuV/m"));
    pick("DBmeasur2", QStringLiteral("Radiated 3m"));
    b.find<QCheckBox>(QStringLiteral("cCorrection"))->click();
    pick("detecDBCombo1", QStringLiteral("EN 55032 B 3m QP"));
    pick("detecDBCombo2", QStringLiteral("EN 55032 A 3m QP"));
    b.find<QCheckBox>(QStringLiteral("detecCheck5"))->click();
    b.find<QCheckBox>(QStringLiteral("detecCheck6"))->click();
    b.find<QCheckBox>(QStringLiteral("Check5"))->click();
}

// The front driven as the user drives it after a first Read: a centre of 240 MHz, where the
// simulated device has a harmonic, a span of 100 MHz, and Read again.
void driveFront(FrameBench &b)
{
    auto *centre = b.find<QLineEdit>(QStringLiteral("measText1"));
    centre->selectAll();
    QTest::keyClicks(centre, QStringLiteral("240"));
    QTest::keyClick(centre, Qt::Key_Return);
    b.find<QRadioButton>(QStringLiteral("ospan_3"))->click();
    b.click("Command2");
    QCOMPARE(b.state().chart.startFrequency, 190.0f);
    QCOMPARE(b.state().chart.stopFrequency, 290.0f);
}

// The live chart zoomed to 200..300 MHz as the user does it; cursor A sent to the peak, cursor B
// dragged by the mouse from its place to 265 MHz. The readouts follow.
void zoomAndPlaceCursors(FrameBench &b)
{
    GrafikForm *grafik = b.frame->grafik();
    grafik->findChild<QCheckBox *>(QStringLiteral("Check6"))->click();
    for (const auto &[name, text] : {std::pair{"Text2", "200"}, {"Text4", "100"}}) {
        auto *field = grafik->findChild<QLineEdit *>(QLatin1String(name));
        field->setText(QLatin1String(text));
        emit field->editingFinished();
    }
    b.state().repaintRequest = 1;
    b.frame->timer1Tick();
    QTest::mouseClick(grafik->findChild<QPushButton *>(QStringLiteral("Command1")), Qt::LeftButton);
    auto *picture = grafik->findChild<CanvasView *>(QStringLiteral("Picture1"));
    const auto mouse = [picture](QEvent::Type type, double share, Qt::MouseButton button, Qt::MouseButtons held) {
        const QPointF at(picture->width() * share, picture->height() * 0.6);
        QMouseEvent event(type, at, picture->mapToGlobal(at), button, held, Qt::NoModifier);
        QCoreApplication::sendEvent(picture, &event);
    };
    mouse(QEvent::MouseButtonPress, 0.205, Qt::LeftButton, Qt::LeftButton);
    for (const double share : {0.205, 0.3, 0.5, 0.65})
        mouse(QEvent::MouseMove, share, Qt::NoButton, Qt::LeftButton);
    mouse(QEvent::MouseButtonRelease, 0.65, Qt::LeftButton, Qt::NoButton);
}

void ScreensTest::screens()
{
    QFETCH(QString, source);
    QFETCH(quint32, traceColour);
    FrameBench b;
    b.frame->resize(1280, 800);
    b.start();
    b.frame->findChild<QMdiSubWindow *>()->showMaximized();
    QCoreApplication::processEvents();
    if (source == "limits")
        pickOverlays(b);
    b.click("Command2");
    if (source == "panel")
        driveFront(b);
    if (source == "cursors")
        zoomAndPlaceCursors(b);
    const bool emc = source == "emc" || source == "results";
    const QString file = b.folder.path() + "/screen." + (emc ? "emc" : "mes");
    const QString before = b.folder.path() + "/before.mes";
    if (source == "compare") {
        // Before: the device's emissions; after: the device switched off, only the broadcasts stay.
        b.prompts().answerFile("Select Measurement", before);
        b.trigger("mnusmeasurement");
        b.sim.analyser.scene.setDeviceOn(false);
        b.click("Command2");
    }
    if (source == "mes" || source == "compare") {
        b.prompts().answerFile("Select Measurement", file);
        b.trigger("mnusmeasurement");
    } else if (emc) {
        writeEmcRun(b, file, source == "results");
    }
    if (source == "mes" || emc || source == "compare") {
        b.prompts().answerFile("Select Measurement", file);
        b.trigger("mnulmeasure");
        QCOMPARE(b.state().traceFrozen, quint8(1));
        QCOMPARE(int(b.state().emcMode), emc ? 2 : 0);
    }
    if (source == "compare") {
        b.prompts().answerFile("Compare with", before);
        b.trigger("mnucompare");
    }
    QCoreApplication::processEvents();
    if (source != "cursors") { // a repaint would take the cursors' readouts back to their places
        b.state().repaintRequest = 1;
        b.frame->timer1Tick();
    }

    const QImage plot = b.frame->grafik()->findChild<CanvasView *>("Picture1")->canvas().image();
    QVERIFY2(pixelsOf(plot, traceColour) > 200, "the traces are drawn");
    QVERIFY(pixelsOf(plot, b.state().screenColours[GridColour]) > 200);
    if (emc)
        QVERIFY(pixelsOf(plot, b.state().screenColours[MemoryColour]) > 200); // the sweep line
    if (source == "results") {
        b.find<QTabWidget>(QStringLiteral("grtab"))->setCurrentIndex(3);
        auto *table = b.find<QTableWidget>(QStringLiteral("resultTable"));
        QCOMPARE(table->rowCount(), 21); // every 48th row of 971
        QCOMPARE(table->item(0, 4)->text(), QStringLiteral("FAIL"));
    }
    if (source == "compare")
        QVERIFY(pixelsOf(plot, b.state().screenColours[CompareColour]) > 200); // the dashed trace before
    if (source == "limits") {
        QCOMPARE(b.state().unitName, QStringLiteral("dBuV/m"));
        QVERIFY(pixelsOf(plot, b.state().screenColours[MaxholdColour]) > 200); // the max hold limit
        QVERIFY(pixelsOf(plot, b.state().screenColours[AverageColour]) > 200); // the average limit
    }
    if (source == "cursors") {
        const auto readout = [&b](const char *name) { return b.find<QLabel>(QLatin1String(name))->text(); };
        QVERIFY(qAbs(readout("freqa").chopped(1).toDouble() - 240) < 1); // the clock's fifth harmonic
        QCOMPARE(readout("freqb"), QStringLiteral("265.000M"));
        QVERIFY(readout("freqab").startsWith(QStringLiteral("25.")));
        QVERIFY(readout("leva") != QStringLiteral("---"));
    }
    QDir().mkpath(QCoreApplication::applicationDirPath() + "/screenshots");
    b.frame->grab().save(QCoreApplication::applicationDirPath() + "/screenshots/" + source + ".png");
    QVERIFY(b.prompts().unexpected.isEmpty());
}

// A Step run of the delivered conducted test at 120 kHz steps over 0.15..30 MHz, through the EMC frame's Start
// button: the chart during the run (after a progress repaint) and the finished file.
void ScreensTest::stepRun()
{
    FrameBench b;
    GrafikForm *grafik = pickEmcTest(b, QStringLiteral("EN 55032 B conducted"), "rbw_1"); // 120 kHz and its step

    const QString file = b.folder.path() + "/step.emc";
    b.prompts().answerFile(QStringLiteral("Select Measurement"), file);
    b.prompts().answerMessage(QStringLiteral("EMC - Stepped"), MsgAnswer::Ok);
    b.prompts().answerMessage(QStringLiteral("EMC - Stepped"), MsgAnswer::Ok);
    QTest::mouseClick(grafik->findChild<QPushButton *>(QStringLiteral("emcCommand1")), Qt::LeftButton);
    const auto save = [&b](const QString &name) {
        QCoreApplication::processEvents();
        QDir().mkpath(QCoreApplication::applicationDirPath() + "/screenshots");
        b.frame->grab().save(QCoreApplication::applicationDirPath() + "/screenshots/" + name + ".png");
    };
    int ticks = 0;
    for (; b.ctx().run().timer2Enabled && ticks < 2000; ++ticks) {
        b.frame->timer2Tick();
        if (ticks == 400) // in the vertical round, after its progress repaint
            save(QStringLiteral("step-run"));
    }
    QVERIFY(ticks > 400 && ticks < 2000);
    QVERIFY(grafik->windowTitle().startsWith(QStringLiteral("Time per Step : ")));
    b.frame->timer1Tick();
    const QImage plot = grafik->findChild<CanvasView *>("Picture1")->canvas().image();
    QVERIFY(pixelsOf(plot, b.state().screenColours[MaxholdColour]) > 200); // the peak bars
    save(QStringLiteral("step-run-done"));
    QVERIFY(b.prompts().unexpected.isEmpty());
}

// The delivered radiated test as a Sweep + Step run with ambient through the EMC frame's Start
// button, the operator switching the simulated device off and on: the finished file with its
// sweep, the ambient, the limit and the detectors' bars.
void ScreensTest::sweepStepRun()
{
    FrameBench b(QStringLiteral("K320-A"), SimBench::DeviceBoxes{kDutOffText, kDutOnText});
    GrafikForm *grafik = pickEmcTest(b, QStringLiteral("EN 55032 B radiated 3m"), "testCheck4"); // Ambient
    auto *tabs = grafik->findChild<QTabWidget *>(QStringLiteral("grtab"));

    const QString file = b.folder.path() + "/sweep.emc";
    b.prompts().answerFile(QStringLiteral("Select Measurement"), file);
    for (int box = 0; box < 6; ++box)
        b.prompts().answerMessage(kSweepStepTitle, MsgAnswer::Ok);
    QTest::mouseClick(grafik->findChild<QPushButton *>(QStringLiteral("emcCommand1")), Qt::LeftButton);
    QCOMPARE(b.prompts().messages().filter(kSweepStepTitle + "|").size(), 6);
    QVERIFY(!b.ctx().run().timer2Enabled);
    grafik->findChild<QCheckBox *>(QStringLiteral("emcCheck4"))->click(); // Sweep
    grafik->findChild<QCheckBox *>(QStringLiteral("emcCheck8"))->click(); // View Ambient
    b.frame->timer1Tick(); // the repaint the boxes asked for
    QCoreApplication::processEvents();
    const QImage plot = grafik->findChild<CanvasView *>("Picture1")->canvas().image();
    QVERIFY(pixelsOf(plot, b.state().screenColours[MaxholdColour]) > 100); // the peak bars
    QVERIFY(pixelsOf(plot, b.state().screenColours[MemoryColour]) > 1000); // the sweep line
    QDir().mkpath(QCoreApplication::applicationDirPath() + "/screenshots");
    b.frame->grab().save(QCoreApplication::applicationDirPath() + "/screenshots/sweep-step-run-done.png");
    // Its result table: the run's stepped rows, worst margin first.
    tabs->setCurrentWidget(grafik->findChild<QWidget *>(QStringLiteral("resultTable"))->parentWidget());
    auto *table = grafik->findChild<QTableWidget *>(QStringLiteral("resultTable"));
    QVERIFY(table->rowCount() > 5);
    b.frame->grab().save(QCoreApplication::applicationDirPath() + "/screenshots/sweep-step-results.png");
    QVERIFY(b.prompts().unexpected.isEmpty());
}

QTEST_MAIN(ScreensTest)
#include "screens_test.moc"
