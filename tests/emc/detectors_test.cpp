#include "support/measurement_fixture.h"
#include "support/no_port.h"
#include "core/clock.h"
#include "core/scripted_prompts.h"
#include "emc/block_detector.h"
#include "emc/detectors.h"
#include "signal/correction_chain.h"
#include "store/data_view.h"
#include "store/measurement_file.h"
#include "store/sqlite_file.h"

#include <QSqlQuery>
#include <QSqlRecord>
#include <QTemporaryDir>
#include <QTest>

#include <cmath>

namespace {

// The average of a constant level in the Step mode: 2000 shares of 2001, about -0.004 dB.
const double kStepShare = 20 * std::log10(2000.0 / 2001.0);

double amplitude(double db) { return std::pow(10.0, db / 20); }
double decibel(double x) { return 20 * std::log10(x); }

// Raw sample of an even whole dB level at the fixture's panel (ref -30 dBm, attenuator 10 dB,
// 10 dB per division): raw 227 is -20 dB, one raw step 0.4 dB.
qint16 rawOf(int db) { return qint16(277 + db * 5 / 2); }

// A run's .emc file with both detectors on, in the horizontal round.
struct Run {
    Run() : ctx(Platform{std::make_unique<VirtualClock>(), std::make_unique<ScriptedPrompts>(), std::make_unique<NoPort>()})
    {
        AppState &s = ctx.state;
        s.measurementFileName = dir.filePath("run.emc");
        s.emcViewAverage = s.emcViewQPeak = 1;
        s.horizontalRound = -1;
    }
    void fill(qint16 raw)
    {
        for (int i = 1; i <= ctx.state.pointCount; ++i)
            ctx.state.traces.rawSamples[i] = raw;
    }
    QList<QVariantMap> rows() const
    {
        SqliteFile file(ctx.state.measurementFileName);
        QSqlQuery query(file.handle());
        query.exec("select * from Measurement order by Frequency");
        QList<QVariantMap> rows;
        while (query.next()) {
            QVariantMap row;
            for (int c = 0; c < query.record().count(); ++c)
                row[query.record().fieldName(c).toLower()] = query.value(c);
            rows << row;
        }
        return rows;
    }

    QTemporaryDir dir;
    Context ctx;
};

// Each expected column compared; levels to 0.001 dB, the precision of a stored float and more.
void compareRow(const QVariantMap &row, const QVariantMap &expected)
{
    for (auto it = expected.begin(); it != expected.end(); ++it) {
        const QVariant actual = row.value(it.key().toLower());
        if (it.value().isNull())
            QVERIFY2(actual.isNull(), qPrintable(it.key()));
        else
            QVERIFY2(std::abs(actual.toDouble() - it.value().toDouble()) < 1e-3,
                     qPrintable(QString("%1: %2, expected %3").arg(it.key(), actual.toString(), it.value().toString())));
    }
}

} // namespace

class DetectorsTest : public QObject {
    Q_OBJECT

private slots:
    // A background level with at most one sample of -20 dB, through both passes.
    void blockLevels_data()
    {
        QTest::addColumn<QString>("pass");
        QTest::addColumn<float>("centre");
        QTest::addColumn<int>("background"); // dB
        QTest::addColumn<int>("spikeAt");    // 0: none
        QTest::addColumn<bool>("oddTable");  // table qpeak: charge 8, discharge 50 in both bands
        QTest::addColumn<double>("charge");
        QTest::addColumn<double>("discharge");
        QTest::addColumn<int>("peak");
        QTest::newRow("step, constant: 2000 shares of 2001")
            << "step" << 100.0f << -30 << 0 << false << 2.0 << 1100.0 << -30;
        QTest::newRow("selected, constant: exactly the level")
            << "selected" << 100.0f << -30 << 0 << false << 2.0 << 1100.0 << -30;
        QTest::newRow("one high sample: charge by half, discharge by 1/320")
            << "step" << 10.0f << -60 << 1000 << false << 2.0 << 320.0 << -20;
        QTest::newRow("29.999 MHz: lower band") << "step" << 29.999f << -60 << 1500 << false << 2.0 << 320.0 << -20;
        QTest::newRow("exactly 30 MHz: upper band") << "step" << 30.0f << -60 << 1500 << false << 2.0 << 1100.0 << -20;
        QTest::newRow("step takes table qpeak") << "step" << 300.0f << -60 << 1900 << true << 8.0 << 50.0 << -20;
        QTest::newRow("selected keeps its own divisors")
            << "selected" << 10.0f << -60 << 1000 << true << 2.0 << 320.0 << -20;
        QTest::newRow("first sample: peak and average, not the filter")
            << "step" << 100.0f << -60 << 1 << false << 2.0 << 1100.0 << -20;
        QTest::newRow("last sample not used") << "step" << 100.0f << -60 << 2001 << false << 2.0 << 1100.0 << -60;
    }
    void blockLevels()
    {
        QFETCH(QString, pass);
        QFETCH(float, centre);
        QFETCH(int, background);
        QFETCH(int, spikeAt);
        QFETCH(bool, oddTable);
        QFETCH(double, charge);
        QFETCH(double, discharge);
        QFETCH(int, peak);
        Run run;
        AppState &s = run.ctx.state;
        if (oddTable) {
            s.tauf30 = s.tauf1000 = 8;
            s.tent30 = s.tent1000 = 50;
        }
        s.analyser.centerFrequency = centre;
        run.fill(rawOf(background));
        s.traces.rawSamples[spikeAt] = rawOf(-20);
        const BlockLevels levels = detectBlock(run.ctx, pass == "step" ? stepDivisors(s) : selectedDivisors(s));

        // Samples 1 to 2000 are averaged, over 2001 in the Step mode and over 2000 in the selected pass.
        const double low = amplitude(background), high = amplitude(-20);
        const bool counted = spikeAt >= 1 && spikeAt <= 2000;
        const double average = (1999 * low + (counted ? high : low)) / (pass == "step" ? 2001 : 2000);
        // Settled on the background, then one charge and a discharge for each later sample.
        const double filtered = spikeAt >= 2 && counted
                                    ? low + (high - low) / charge * std::pow(1 - 1 / discharge, 2000 - spikeAt)
                                    : low;
        QCOMPARE(levels.peak, qint16(peak));
        QVERIFY2(std::abs(levels.average - decibel(average)) < 1e-9, qPrintable(QString::number(levels.average, 'g', 12)));
        QVERIFY2(std::abs(levels.qpeak - decibel(filtered)) < 1e-6, qPrintable(QString::number(levels.qpeak, 'g', 12)));
    }

    // One sample's way to counts and whole dB, seen in the level window and in rawSamples.
    void sampleLevels_data()
    {
        QTest::addColumn<qint16>("raw");
        QTest::addColumn<int>("dbPerDivision");
        QTest::addColumn<float>("component"); // dB
        QTest::addColumn<bool>("distanced");  // 3 m against a 10 m limit: -10.46 dB
        QTest::addColumn<int>("count");
        QTest::addColumn<int>("db");
        QTest::newRow("under the gate: raw zero") << qint16(49) << 10 << 0.0f << false << -277 << -111;
        QTest::newRow("at the gate: kept") << qint16(50) << 10 << 0.0f << false << -227 << -91;
        QTest::newRow("truncated towards zero") << qint16(224) << 5 << 0.0f << false << -51 << -20;
        QTest::newRow("-47.5 to even -48") << qint16(227) << 10 << 1.0f << false << -48 << -19;
        QTest::newRow("-48.5 to even -48") << qint16(226) << 10 << 1.0f << false << -48 << -19;
        QTest::newRow("distance term subtracted") << qint16(227) << 10 << 5.0f << true << -64 << -26;
    }
    void sampleLevels()
    {
        QFETCH(qint16, raw);
        QFETCH(int, dbPerDivision);
        QFETCH(float, component);
        QFETCH(bool, distanced);
        QFETCH(int, count);
        QFETCH(int, db);
        Run run;
        AppState &s = run.ctx.state;
        s.analyser.dbPerDivision = quint8(dbPerDivision);
        // One component of `component` dB over the whole range; measured at 3 m or 10 m for a 10 m limit.
        s.correctionOn = 1;
        s.componentNumber[0] = 1;
        s.distanceFromDut = distanced ? 3.0f : 10.0f;
        s.maxholdLimitDistance = 10.0f;
        run.ctx.calls.componentRows = [component](qint32) {
            return QList<ComponentRow>{{0.0f, component}, {2000.0f, component}};
        };
        openChain(run.ctx);
        run.fill(raw);
        detectStepBlock(run.ctx);
        QCOMPARE(int(s.traces.rawSamples[1]), db);
        QCOMPARE(int(s.traces.rawSamples[2000]), db);
        QCOMPARE(s.traces.rawSamples[2001], raw);
        QCOMPARE(int(s.chart.grafikMin), count - 10); // the window's lower end leaves 4 dB below the block
    }

    // Blocks "<MHz>:<even dB>:<H|V>" through a pass, and the file's rows in frequency order after them.
    // The step pass starts from an empty file. The selected pass starts from rows as a sweep leaves
    // them, with the cursor on the block's row, or past the end when the file has none.
    void rowsWritten_data()
    {
        QTest::addColumn<QString>("pass");
        QTest::addColumn<QString>("blocks");
        QTest::addColumn<bool>("detectorsOn"); // average and quasi-peak
        QTest::addColumn<QList<QVariantMap>>("expected");
        QTest::newRow("step: new row in the horizontal round") << "step" << "100:-30:H" << true << QList<QVariantMap>{
            {{"Frequency", 100.0}, {"Maxhold_dBmW", -30}, {"H_Maxhold_dBmW", -30}, {"V_Maxhold_dBmW", -1000},
             {"Average_dBmW", -30 + kStepShare}, {"H_Average_dBmW", -30 + kStepShare}, {"V_Average_dBmW", -1000},
             {"QPeak_dBmW", -30}, {"H_QPeak_dBmW", -30}, {"V_QPeak_dBmW", -1000}, {"Ambient_H_dBmW", -1000},
             {"Ambient_V_dBmW", -1000}, {"H_memory_dBmW", -1000}, {"V_memory_dBmW", -1000},
             {"Sample_dBmW", QVariant()}, {"memory_dBmW", QVariant()}}};
        QTest::newRow("step: repeated blocks keep each maximum") << "step" << "100:-40:H 100:-30:H 100:-50:H" << true
            << QList<QVariantMap>{{{"Maxhold_dBmW", -30}, {"H_Maxhold_dBmW", -30}, {"Average_dBmW", -30 + kStepShare},
                                   {"H_QPeak_dBmW", -30}, {"V_QPeak_dBmW", -1000}}};
        QTest::newRow("step: vertical round raises the overall columns and fills its own")
            << "step" << "100:-30:H 100:-20:V 100:-40:V 200:-40:V" << true << QList<QVariantMap>{
            {{"Maxhold_dBmW", -20}, {"H_Maxhold_dBmW", -30}, {"V_Maxhold_dBmW", -20}, {"QPeak_dBmW", -20},
             {"H_QPeak_dBmW", -30}, {"V_Average_dBmW", -20 + kStepShare}},
            {{"Frequency", 200.0}, {"Maxhold_dBmW", -40}, {"H_Maxhold_dBmW", -1000}, {"V_Maxhold_dBmW", -40}}};
        QTest::newRow("step: one row a kHz") << "step" << "100.0004:-30:H 99.9996:-20:H 100.0006:-40:H" << true
            << QList<QVariantMap>{{{"Frequency", 100.0}, {"Maxhold_dBmW", -20}},
                                  {{"Frequency", 100.001}, {"Maxhold_dBmW", -40}}};
        QTest::newRow("step: detectors off write -1000, never raise") << "step" << "100:-30:H 100:-20:H" << false
            << QList<QVariantMap>{{{"Maxhold_dBmW", -20}, {"Average_dBmW", -1000}, {"H_Average_dBmW", -1000},
                                   {"QPeak_dBmW", -1000}, {"H_QPeak_dBmW", -1000}, {"V_QPeak_dBmW", -1000}}};
        // The sweep left -10 dB in Maxhold_dBmW and -1000 elsewhere.
        const QVariantMap swept{{"Maxhold_dBmW", -10}, {"H_Maxhold_dBmW", -1000}, {"Average_dBmW", -1000}};
        QTest::newRow("selected: horizontal round overwrites the sweep's peak") << "selected" << "200:-30:H" << true
            << QList<QVariantMap>{swept, {{"Maxhold_dBmW", -30}, {"H_Maxhold_dBmW", -30}, {"V_Maxhold_dBmW", -1000},
                                          {"Average_dBmW", -30}, {"H_Average_dBmW", -30}, {"V_Average_dBmW", -1000},
                                          {"QPeak_dBmW", -30}, {"H_QPeak_dBmW", -30}}, swept};
        QTest::newRow("selected: vertical round only raises it") << "selected" << "200:-30:V" << true
            << QList<QVariantMap>{swept, {{"Maxhold_dBmW", -10}, {"H_Maxhold_dBmW", -1000}, {"V_Maxhold_dBmW", -30},
                                          {"V_Average_dBmW", -30}, {"V_QPeak_dBmW", -30}, {"H_QPeak_dBmW", -1000}}, swept};
        QTest::newRow("selected: maxima kept, the overall peak the latest block's") << "selected" << "200:-30:H 200:-40:H"
            << true << QList<QVariantMap>{swept, {{"Maxhold_dBmW", -40}, {"H_Maxhold_dBmW", -30}, {"Average_dBmW", -30},
                                                  {"H_QPeak_dBmW", -30}}, swept};
        QTest::newRow("selected: detectors off leave their columns") << "selected" << "200:-30:H" << false
            << QList<QVariantMap>{swept, {{"Maxhold_dBmW", -30}, {"Average_dBmW", -1000}, {"QPeak_dBmW", -1000},
                                          {"H_QPeak_dBmW", -1000}, {"V_QPeak_dBmW", -1000}}, swept};
        QTest::newRow("selected: no cursor row, nothing written or added") << "selected" << "250:-30:H" << true
            << QList<QVariantMap>{swept, swept, swept};
    }
    void rowsWritten()
    {
        QFETCH(QString, pass);
        QFETCH(QString, blocks);
        QFETCH(bool, detectorsOn);
        QFETCH(QList<QVariantMap>, expected);
        Run run;
        AppState &s = run.ctx.state;
        s.emcViewAverage = s.emcViewQPeak = detectorsOn;
        const bool step = pass == "step";
        if (step)
            createMeasurementFile(run.ctx);
        else // 100, 200, 300 MHz; Sample_dBmW 1 (selected), Maxhold_dBmW -10, all else -1000
            QVERIFY(writeMeasurementTable(s.measurementFileName, kMeasurementColumns, 3, [](int i) {
                QVariantList row(16, -1000);
                row[0] = 100.0 * (i + 1), row[1] = 1, row[3] = -10;
                return row;
            }));
        {
            SqliteFile file(s.measurementFileName);
            DataView measurementRecordset(file.handle());
            if (!step)
                measurementRecordset.setSource("select * from measurement where sample_dBmW = 1 order by frequency");
            for (const QString &block : blocks.split(' ')) {
                const QStringList part = block.split(':');
                s.analyser.centerFrequency = part[0].toFloat();
                run.fill(rawOf(part[1].toInt()));
                s.horizontalRound = part[2] == "H" ? -1 : 0;
                if (step) {
                    detectStepBlock(run.ctx);
                    continue;
                }
                if (!measurementRecordset.findFirst("frequency = " + part[0]))
                    measurementRecordset.moveLast(), measurementRecordset.moveNext();
                detectSelectedBlock(run.ctx, measurementRecordset);
            }
        }
        const QList<QVariantMap> rows = run.rows();
        QCOMPARE(rows.size(), expected.size());
        for (int k = 0; k < rows.size(); ++k)
            compareRow(rows[k], expected[k]);
    }
};

QTEST_GUILESS_MAIN(DetectorsTest)
#include "detectors_test.moc"
