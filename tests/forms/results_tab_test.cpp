// The tab "Results" of grafik as the user meets it: the note while no EMC run is shown, the table
// of a loaded .emc file, the difference column only while a file is compared, and a double click
// on a row that puts cursor A on the row's frequency.

#include "frame_bench.h"

#include "chart/comparison_trace.h"
#include "forms/grafik.h"
#include "support/emc_result_file.h"

#include <QCheckBox>
#include <QHeaderView>
#include <QLabel>
#include <QTabWidget>
#include <QTableWidget>

class ResultsTabTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { QStandardPaths::setTestModeEnabled(true); }
    void tableOfTheRunShown();
};

void ResultsTabTest::tableOfTheRunShown()
{
    FrameBench b;
    b.start();
    auto *tabs = b.find<QTabWidget>("grtab");
    auto *table = b.find<QTableWidget>("resultTable");
    tabs->setCurrentIndex(3);
    QCOMPARE(tabs->tabText(3), QStringLiteral("Results"));
    QVERIFY(b.find<QLabel>("resultNote")->text().contains(QStringLiteral("lists a stored EMC run")));
    QCOMPARE(table->rowCount(), 0);

    EmcResultFile run;
    run.maxhold = {{30, -70}, {1000, -70}};
    run.rows = {{50, -80, -80, -1000}, {420, -64, -1000, -64}, {700, -1000, -1000, -1000}};
    const QString file = b.folder.filePath("run.emc");
    QVERIFY(writeEmcResultFile(file, run));
    b.prompts().answerFile(QStringLiteral("Select Measurement"), file);
    b.trigger("mnulmeasure");
    b.state().repaintRequest = 1;
    b.frame->timer1Tick();
    // A load brings the chart to the front; the table is filled when its tab comes back.
    tabs->setCurrentIndex(3);

    // The table of the file shown: worst first, no difference column.
    QCOMPARE(table->rowCount(), 2);
    QCOMPARE(table->item(0, 0)->text(), QStringLiteral("420.000"));
    QCOMPARE(table->item(0, 4)->text(), QStringLiteral("FAIL"));
    QCOMPARE(table->horizontalHeaderItem(table->columnCount() - 1)->text(), QStringLiteral("Average_polarisation"));
    b.find<QCheckBox>("resultAll")->click();
    QCOMPARE(table->rowCount(), 3);

    compareWith(b.state().chart, file);
    call(b.ctx().calls.refreshResults);
    QCOMPARE(table->horizontalHeaderItem(table->columnCount() - 1)->text(), QStringLiteral("Difference_dB"));
    QCOMPARE(table->item(0, table->columnCount() - 1)->text(), QStringLiteral("0.00"));

    tabs->setCurrentIndex(3);
    QCoreApplication::processEvents();
    const QRect cell = table->visualItemRect(table->item(0, 2));
    QTest::mouseClick(table->viewport(), Qt::LeftButton, {}, cell.center());
    QTest::mouseDClick(table->viewport(), Qt::LeftButton, {}, cell.center());
    const ChartView &v = b.state().chart;
    QVERIFY2(qAbs(v.cursorAFrequency - 420.0f) < 1.0f, qPrintable(QString::number(v.cursorAFrequency)));
    QCOMPARE(v.cursorAY, qint32(-160)); // at the peak, -64 dBm in counts
    QVERIFY(b.prompts().unexpected.isEmpty());
}

QTEST_MAIN(ResultsTabTest)
#include "results_tab_test.moc"
