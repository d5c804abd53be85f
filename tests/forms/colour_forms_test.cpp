// The colour form and the level meter as the user drives them: the 26 colour buttons with the
// colour dialog answered from the script, the new colour on the chart and in setting.def, and
// "View Levelmeter" opening and closing the meter over a stored run.

#include "frame_bench.h"

#include "core/settings_file.h"
#include "forms/grafik.h"
#include "support/measurement_fixture.h"

#include <QAction>
#include <QDialog>
#include <QDir>
#include <QLabel>
#include <QPainter>
#include <QPushButton>

namespace {

QDialog *openColordef(FrameBench &b)
{
    b.trigger("mnucolor");
    auto *colordef = b.frame->findChild<QDialog *>("colordef");
    if (colordef && !colordef->isVisible())
        qWarning("colordef is not shown");
    return colordef;
}

bool labelShows(QDialog *colordef, int number, quint32 bgr)
{
    const auto *label = colordef->findChild<QLabel *>(QStringLiteral("Label%1").arg(number));
    return label && label->styleSheet().contains(bgrColour(bgr).name());
}

// A stored run of two rows with every result column, in a 30..230 MHz window.
void prepareRun(FrameBench &b)
{
    const QString path = b.folder.filePath("run.emc");
    QVERIFY(writeMeasurementTable(path,
                                  {"Frequency", "H_memory_dBmW", "V_memory_dBmW", "H_Average_dBmW", "V_Average_dBmW",
                                   "H_QPeak_dBmW", "V_QPeak_dBmW", "H_Maxhold_dBmW", "V_Maxhold_dBmW",
                                   "Ambient_H_dBmW", "Ambient_V_dBmW"},
                                  2, [](int i) {
                                      return QVariantList{30.0 + 100 * i, -40.0 - i, -45.0, -62.0, -66.0, -48.0,
                                                          -52.0, -35.0, -39.0, -70.0, -74.0};
                                  }));
    AppState &s = b.state();
    s.measurementFileName = path;
    s.chart.startFrequency = 30.0f;
    s.chart.stopFrequency = 230.0f;
    s.chart.grafikMin = -250;
    s.chart.grafikMax = -50;
    s.chart.cursorAX = 400000; // 110 MHz: the row at 130 MHz
}

} // namespace

class ColourFormsTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { QStandardPaths::setTestModeEnabled(true); }
    void colourButton_data();
    void colourButton();
    void viewLevelmeterOpensAndCloses();
};

void ColourFormsTest::colourButton_data()
{
    QTest::addColumn<int>("button");
    QTest::addColumn<int>("role");
    QTest::addColumn<bool>("printer");
    QTest::addColumn<bool>("cancel");
    QTest::newRow("screen sample") << 5 << int(SampleColour) << false << false;
    QTest::newRow("printer ambient H") << 17 << int(AmbientHColour) << true << false;
    QTest::newRow("printer cursor B") << 14 << int(CursorBColour) << true << false;
    QTest::newRow("printer compare") << 28 << int(CompareColour) << true << false;
    QTest::newRow("screen grid, cancelled") << 1 << int(GridColour) << false << true;
}

void ColourFormsTest::colourButton()
{
    QFETCH(int, button);
    QFETCH(int, role);
    QFETCH(bool, printer);
    QFETCH(bool, cancel);
    const quint32 picked = 0x2050A0;
    FrameBench b;
    b.start();
    b.click("Command2"); // a live trace from the simulator
    ColourList &list = printer ? b.state().printColours : b.state().screenColours;
    const quint32 expected = cancel ? list[role] : picked;
    QDialog *colordef = openColordef(b);
    for (int number = 1; number <= 28; ++number)
        QVERIFY(colordef->findChild<QPushButton *>(QStringLiteral("Command%1").arg(number)));
    QVERIFY(labelShows(colordef, button, list[role]));
    b.state().repaintRequest = 0;
    b.prompts().answerColour(cancel ? std::nullopt : std::optional<quint32>(picked));
    QTest::mouseClick(colordef->findChild<QPushButton *>(QStringLiteral("Command%1").arg(button)), Qt::LeftButton);
    QCOMPARE(list[role], expected);
    QVERIFY(labelShows(colordef, button, expected));
    QCOMPARE(b.state().repaintRequest, quint8(printer ? 0 : 1));

    // The next tick paints the chart in the new colour.
    b.state().repaintRequest = 1;
    b.frame->timer1Tick();
    const QImage plot = b.frame->grafik()->findChild<CanvasView *>("Picture1")->canvas().image();
    if (!printer)
        QVERIFY(pixelsOf(plot, expected) > 100);

    // Kept in setting.def and read back at the next start.
    b.prompts().answerMessage("Exit Program", MsgAnswer::Yes);
    writeSettingsFile(b.ctx());
    list = defaultColours();
    list[role] = 0;
    readSettingsFile(b.ctx());
    QCOMPARE(list[role], expected);
    QVERIFY(b.prompts().unexpected.isEmpty());
}

void ColourFormsTest::viewLevelmeterOpensAndCloses()
{
    FrameBench b;
    b.frame->resize(1000, 700);
    b.start();
    QAction *item = b.find<QAction>("mnulevelmeter");
    QVERIFY(!item->isEnabled()); // normal mode
    b.frame->enterEmcMode();
    prepareRun(b);
    b.state().geometry.levelmeterLeft = 3000; // twips: 200 pixels
    b.state().geometry.levelmeterTop = 1500;

    b.trigger("mnulevelmeter");
    auto *meter = b.find<QWidget>("levelmeter");
    QVERIFY(meter->isVisible());
    QVERIFY(item->isChecked());
    QCOMPARE(meter->pos(), QPoint(200, 100));
    QCOMPARE(meter->findChild<QLabel *>("Label1")->text(), "Measure-Freq.: 130.000MHz");
    QCoreApplication::processEvents();
    b.state().repaintRequest = 1;
    b.frame->timer1Tick(); // a chart paint draws the meter again, at the graph's size of now
    const QImage graph = meter->findChild<CanvasView *>("graph")->canvas().image();
    QVERIFY(pixelsOf(graph, b.state().screenColours[MemoryColour]) > 100);
    QVERIFY(pixelsOf(graph, b.state().screenColours[MaxholdColour]) > 100);

    // The colour form and the meter, side by side, to be looked at.
    QDialog *colordef = openColordef(b);
    QCoreApplication::processEvents();
    const QPixmap left = colordef->grab(), right = meter->grab();
    QPixmap both(left.width() + right.width() + 10, qMax(left.height(), right.height()));
    both.fill(Qt::white);
    QPainter(&both).drawPixmap(0, 0, left);
    QPainter(&both).drawPixmap(left.width() + 10, 0, right);
    QDir().mkpath(QCoreApplication::applicationDirPath() + "/screenshots");
    QVERIFY(both.save(QCoreApplication::applicationDirPath() + "/screenshots/colours.png"));

    meter->move(300, 50);
    b.trigger("mnulevelmeter");
    QVERIFY(!meter->isVisible());
    QVERIFY(!item->isChecked());
    QCOMPARE(b.state().geometry.levelmeterLeft, qint16(4500)); // kept when it closes
    QCOMPARE(b.state().geometry.levelmeterTop, qint16(750));

    // Closed by its own frame, the check goes too; normal mode closes an open meter.
    b.trigger("mnulevelmeter");
    meter->close();
    QVERIFY(!item->isChecked());
    b.trigger("mnulevelmeter");
    b.frame->enterNormalMode();
    QVERIFY(!meter->isVisible());
    QVERIFY(!item->isChecked());
    QVERIFY(b.prompts().unexpected.isEmpty());
}

QTEST_MAIN(ColourFormsTest)
#include "colour_forms_test.moc"
