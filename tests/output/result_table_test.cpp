// The result table of a stored EMC run: the limit between two points of a linear and of a log
// line, the margin and its verdict, the order worst first, the rows listed, the difference to a
// compared file, and the files it refuses. Levels in dBuV (107 dB above dBm) of the delivered units.

#include "chart/comparison_trace.h"
#include "output/result_table.h"
#include "store/catalogue_fixture.h"
#include "support/emc_result_file.h"

#include <QFile>
#include <QTest>

class ResultTableTest : public QObject {
    Q_OBJECT

private slots:
    void limitMarginAndVerdict_data();
    void limitMarginAndVerdict();
    void rowsWorstFirst_data();
    void rowsWorstFirst();
    void fileComparedWithItselfGivesZero();
    void ambientColumn_data();
    void ambientColumn();
    void refusedFiles_data();
    void refusedFiles();

private:
    QString path(const QString &name) const { return fixture.dir.path() + QLatin1Char('/') + name; }
    CatalogueFixture fixture;
};

using Line = QList<EmcLimitPoint>;
Q_DECLARE_METATYPE(Line)

void ResultTableTest::limitMarginAndVerdict_data()
{
    QTest::addColumn<bool>("averageLine");
    QTest::addColumn<bool>("logLine");
    QTest::addColumn<Line>("line");
    QTest::addColumn<double>("frequency");
    QTest::addColumn<double>("level");  // dBm
    QTest::addColumn<QString>("limit"); // dBuV, as the table shows it
    QTest::addColumn<QString>("margin");
    QTest::addColumn<QString>("verdict");
    const Line rising{{30, -80}, {130, -70}};
    const Line decade{{10, -80}, {1000, -60}};
    // 55 MHz is a quarter of the way from 30 to 130: -77.5 dBm, 29.5 dBuV.
    QTest::newRow("linear, between points") << false << false << rising << 55.0 << -75.0 << "29.50" << "2.50" << "FAIL";
    // 100 MHz is half the way from 10 to 1000 in log frequency: -70 dBm; linearly it would be -78.2.
    QTest::newRow("log, between points") << false << true << decade << 100.0 << -71.0 << "37.00" << "-1.00" << "PASS";
    QTest::newRow("log average line") << true << true << decade << 100.0 << -69.5 << "37.00" << "0.50" << "FAIL";
    QTest::newRow("exactly on the limit passes") << false << false << rising << 130.0 << -70.0 << "37.00" << "0.00"
                                                  << "PASS";
    QTest::newRow("below the line: no limit") << false << false << rising << 20.0 << -10.0 << "" << "" << "";
    QTest::newRow("above the line: no limit") << false << true << decade << 1200.0 << -10.0 << "" << "" << "";
}

void ResultTableTest::limitMarginAndVerdict()
{
    QFETCH(bool, averageLine);
    QFETCH(bool, logLine);
    QFETCH(Line, line);
    QFETCH(double, frequency);
    QFETCH(double, level);
    EmcResultFile file;
    (averageLine ? file.average : file.maxhold) = line;
    (averageLine ? file.averageLog : file.maxholdLog) = logLine;
    EmcResultRow row{frequency, level, level, -1000};
    row.average = row.hAverage = level;
    file.rows = {row};
    QVERIFY(writeEmcResultFile(path("limit.emc"), file));

    const auto table = readResultTable(fixture.ctx, path("limit.emc"), {});
    QVERIFY(table);
    QCOMPARE(table->unit, QStringLiteral("dBuV"));
    QCOMPARE(table->rows.size(), size_t(1));
    const QStringList cells = resultCells(*table, table->rows[0]);
    const int first = averageLine ? 11 : 1; // Average_dBuV or Peak_dBuV
    QCOMPARE(cells[first], QString::number(level + 107, 'f', 2));
    QTEST(cells[first + 1], "limit");
    QTEST(cells[first + 2], "margin");
    QTEST(cells[first + 3], "verdict");
    QCOMPARE(cells[first + 4], QStringLiteral("H"));
}

void ResultTableTest::rowsWorstFirst_data()
{
    QTest::addColumn<bool>("allRows");
    QTest::addColumn<QList<float>>("frequencies");
    // Margins: 100 MHz +3 dB, 300 MHz +1 dB (quasi-peak only), 50 MHz -10 dB; 2000 MHz lies
    // beyond the line, 70 MHz was not measured.
    QTest::newRow("measured rows") << false << QList<float>{100, 300, 50, 2000};
    QTest::newRow("all rows") << true << QList<float>{100, 300, 50, 70, 2000};
}

void ResultTableTest::rowsWorstFirst()
{
    QFETCH(bool, allRows);
    EmcResultFile file;
    file.maxhold = {{30, -70}, {1000, -70}};
    EmcResultRow quasiPeakOnly{300, -1000, -1000, -1000};
    quasiPeakOnly.qpeak = quasiPeakOnly.vQPeak = -69;
    file.rows = {{50, -80, -80, -85}, {70, -1000, -1000, -1000}, {100, -67, -70, -67}, quasiPeakOnly,
                 {2000, -20, -20, -1000}};
    QVERIFY(writeEmcResultFile(path("order.emc"), file));

    const auto table = readResultTable(fixture.ctx, path("order.emc"), {allRows});
    QVERIFY(table);
    QList<float> frequencies;
    for (const ResultRow &row : table->rows)
        frequencies << row.frequency;
    QTEST(frequencies, "frequencies");
    QCOMPARE(table->rows[0].detectors[PeakResult].polarisation, QStringLiteral("V")); // V gave the worst level
    QCOMPARE(table->rows[1].detectors[QPeakResult].polarisation, QStringLiteral("V"));
    QVERIFY(!table->rows[1].detectors[PeakResult].level);
}

void ResultTableTest::fileComparedWithItselfGivesZero()
{
    EmcResultFile file;
    for (int i = 0; i < 40; ++i)
        file.rows << EmcResultRow{30.0 + i * 0.123, -60.0 - i * 0.37, -60.0 - i * 0.37, -1000};
    file.rows << EmcResultRow{99, -1000, -1000, -1000}; // unmeasured: not in the compared trace either
    QVERIFY(writeEmcResultFile(path("self.emc"), file));
    const auto trace = readComparisonTrace(path("self.emc"));
    QVERIFY(trace);

    const auto table = readResultTable(fixture.ctx, path("self.emc"), {true, &*trace});
    QVERIFY(table);
    QCOMPARE(resultColumns(*table).last(), QStringLiteral("Difference_dB"));
    QCOMPARE(table->rows.size(), size_t(41));
    for (const ResultRow &row : table->rows)
        QCOMPARE(resultCells(*table, row).last(), row.peak ? QStringLiteral("0.00") : QString());
}

// A run with an ambient gives the higher of its two ambients in the table's unit (dBuV: +107 dB),
// empty where neither was recorded; a run without one has no such column.
void ResultTableTest::ambientColumn_data()
{
    QTest::addColumn<double>("ambientH");
    QTest::addColumn<double>("ambientV");
    QTest::addColumn<QStringList>("cells"); // of the rows at 100 and 200 MHz; none: no column
    QTest::newRow("horizontal higher") << -50.0 << -60.0 << QStringList{"57.00", ""};
    QTest::newRow("vertical higher") << -70.0 << -55.5 << QStringList{"51.50", ""};
    QTest::newRow("vertical only") << -1000.0 << -80.0 << QStringList{"27.00", ""};
    QTest::newRow("no ambient") << -1000.0 << -1000.0 << QStringList{};
}

void ResultTableTest::ambientColumn()
{
    QFETCH(double, ambientH);
    QFETCH(double, ambientV);
    QFETCH(QStringList, cells);
    EmcResultFile file;
    EmcResultRow onBroadcast{100, -40, -40, -1000};
    onBroadcast.ambientH = ambientH;
    onBroadcast.ambientV = ambientV;
    file.rows = {onBroadcast, {200, -45, -45, -1000}};
    QVERIFY(writeEmcResultFile(path("ambient.emc"), file));

    const auto table = readResultTable(fixture.ctx, path("ambient.emc"), {});
    QVERIFY(table);
    QCOMPARE(resultColumns(*table).last() == QStringLiteral("Ambient_dBuV"), !cells.isEmpty());
    QStringList found;
    for (const ResultRow &row : table->rows)
        if (table->ambient)
            found << resultCells(*table, row).last();
    QCOMPARE(found, cells);
}

void ResultTableTest::refusedFiles_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("reason");
    QTest::newRow("trace file") << "trace.mes" << "holds no EMC run";
    QTest::newRow("text file") << "notes.emc" << "is no measurement file";
    QTest::newRow("missing file") << "missing.emc" << "missing.emc";
}

void ResultTableTest::refusedFiles()
{
    QFETCH(QString, name);
    EmcResultFile trace;
    trace.mode = 0;
    QVERIFY(writeEmcResultFile(path("trace.mes"), trace));
    QFile text(path("notes.emc"));
    QVERIFY(text.open(QIODevice::WriteOnly));
    text.write("Frequency,Level\n30,40\n");
    text.close();

    QString fault;
    QVERIFY(!readResultTable(fixture.ctx, path(name), {}, &fault));
    QFETCH(QString, reason);
    QVERIFY2(fault.startsWith(path(name)) && fault.contains(reason), qPrintable(fault));
}

QTEST_MAIN(ResultTableTest)
#include "result_table_test.moc"
