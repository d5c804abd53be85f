// Data > Compare with... and End comparison as the user meets them: the file dialog, the box
// for a refused file, the menu item's state, and the compared trace on the chart.

#include "frame_bench.h"

#include "forms/grafik.h"

#include <QAction>
#include <QFile>

class ComparisonMenuTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { QStandardPaths::setTestModeEnabled(true); }
    void steps_data();
    void steps();
};

// Steps: "compare FILE" answers the dialog with FILE ("-" cancels), "end" ends the comparison,
// "load FILE" shows another stored file. Files: a.mes and b.mes are measurements of the
// simulator, bad.mes is a text file.
void ComparisonMenuTest::steps_data()
{
    QTest::addColumn<QStringList>("steps");
    QTest::addColumn<QString>("compared");
    QTest::addColumn<QStringList>("boxes");
    QTest::addColumn<int>("refreshes");
    QTest::newRow("taken") << QStringList{"compare a.mes"} << "a.mes" << QStringList{} << 1;
    QTest::newRow("another taken in its place") << QStringList{"compare a.mes", "compare b.mes"} << "b.mes"
                                                << QStringList{} << 2;
    QTest::newRow("refused keeps the old") << QStringList{"compare a.mes", "compare bad.mes"} << "a.mes"
                                           << QStringList{"bad.mes"} << 1;
    QTest::newRow("refused with none") << QStringList{"compare bad.mes"} << "" << QStringList{"bad.mes"} << 0;
    QTest::newRow("cancel changes nothing") << QStringList{"compare a.mes", "compare -"} << "a.mes" << QStringList{}
                                            << 1;
    QTest::newRow("end comparison") << QStringList{"compare a.mes", "end"} << "" << QStringList{} << 2;
    // Each load fills the result table anew as well.
    QTest::newRow("a load keeps it, to flip before and after")
        << QStringList{"compare a.mes", "load b.mes", "load a.mes"} << "a.mes" << QStringList{} << 3;
}

void ComparisonMenuTest::steps()
{
    QFETCH(QStringList, steps);
    QFETCH(QString, compared);
    FrameBench b;
    b.start();
    const QString folder = b.folder.path() + QLatin1Char('/');
    for (const char *name : {"a.mes", "b.mes"}) {
        b.click("Command2");
        b.prompts().answerFile(QStringLiteral("Select Measurement"), folder + QLatin1String(name));
        b.trigger("mnusmeasurement");
    }
    QFile bad(folder + QStringLiteral("bad.mes"));
    QVERIFY(bad.open(QIODevice::WriteOnly) && bad.write("Frequency;Level\n") > 0);
    bad.close();
    int refreshes = 0;
    b.ctx().calls.refreshResults = [&refreshes] { ++refreshes; };
    QAction *end = b.find<QAction>(QStringLiteral("mnucompareend"));
    QVERIFY(!end->isEnabled());

    for (const QString &step : steps) {
        const QString file = step.section(QLatin1Char(' '), 1);
        if (step.startsWith(QStringLiteral("compare"))) {
            b.prompts().answerFile(QStringLiteral("Compare with"),
                                   file == QStringLiteral("-") ? std::nullopt : std::optional(folder + file));
            b.trigger("mnucompare");
        } else if (step.startsWith(QStringLiteral("load"))) {
            b.prompts().answerFile(QStringLiteral("Select Measurement"), folder + file);
            b.trigger("mnulmeasure");
        } else {
            b.trigger("mnucompareend");
        }
    }

    const ChartView &v = b.state().chart;
    QCOMPARE(v.comparePath, compared.isEmpty() ? QString() : folder + compared);
    QCOMPARE(v.compareTrace.size(), compared.isEmpty() ? size_t(0) : size_t(2001));
    QCOMPARE(end->isEnabled(), !compared.isEmpty());
    QTEST(refreshes, "refreshes");
    // A refused file is named in the box, with the reason after it.
    QStringList boxes;
    for (const QString &box : b.prompts().messages(QStringLiteral("Compare with")))
        boxes << box.section(QLatin1Char('|'), 1).section(QLatin1Char(' '), 0, 0).section(QLatin1Char('/'), -1);
    QTEST(boxes, "boxes");
    for (const QString &box : b.prompts().messages(QStringLiteral("Compare with")))
        QVERIFY2(box.contains(QStringLiteral(": ")), qPrintable(box));

    // The next tick draws the comparison on screen, or nothing of its colour.
    b.state().repaintRequest = 1;
    b.frame->timer1Tick();
    const QImage plot = b.frame->grafik()->findChild<CanvasView *>(QStringLiteral("Picture1"))->canvas().image();
    const int comparePixels = pixelsOf(plot, b.state().screenColours[CompareColour]);
    QVERIFY2(compared.isEmpty() ? comparePixels == 0 : comparePixels > 200, qPrintable(QString::number(comparePixels)));
    QVERIFY(b.prompts().unexpected.isEmpty());
}

QTEST_MAIN(ComparisonMenuTest)
#include "comparison_menu_test.moc"
