#include "support/sim_bench.h"
#include "emc/run_controller.h"
#include "emc/stepped_scan.h"
#include "signal/trace_store.h"
#include "store/sqlite_file.h"

#include <QFile>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QTest>

#include <functional>

namespace {

struct Row {
    QString frequency; // as the file keys it, "0.000"
    double maxhold, hMaxhold, vMaxhold, average, hAverage, vAverage;
};

// A run of a test against the simulated K320-A, online, on the virtual clock. Timer2 is ticked
// by hand: `beforeTick(n)` runs before tick n (from 1), and before the run as tick 0.
struct EmcRun : SimBench {
    EmcRun(double start, double stop, double step, int blocks, bool horizontal, bool vertical, quint8 scanMode = 1)
    {
        attachSignalProcessing(*ctx);
        online();
        AppState &s = state();
        s.emcScanMode = scanMode;
        s.chart.startFrequency = float(start);
        s.chart.stopFrequency = float(stop);
        s.stepWidth = float(step);
        s.stepBlocks = quint8(blocks);
        s.testHorizontal = horizontal ? -1 : 0;
        s.testVertical = vertical ? -1 : 0;
        s.analyser.bandwidth = 120;
        s.emcViewAverage = 1;
    }
    QString file() const { return dir.filePath("run.emc"); }

    // The file dialog answered with the run's file, or cancelled.
    void run(const std::function<void(int)> &beforeTick = {}, bool cancelFile = false)
    {
        prompts->answerFile(QStringLiteral("Select Measurement"), cancelFile ? std::nullopt : std::optional(file()));
        if (beforeTick)
            beforeTick(0);
        startEmcRun(*ctx);
        for (int tick = 1; ctx->run().timer2Enabled && tick < 1000; ++tick) {
            if (beforeTick)
                beforeTick(tick);
            ctx->run().setTimer2Enabled(false);
            stepTick(*ctx);
        }
    }

    QList<Row> rows() const
    {
        SqliteFile db(file());
        QSqlQuery q(db.handle());
        q.exec("select Frequency, Maxhold_dBmW, H_Maxhold_dBmW, V_Maxhold_dBmW, Average_dBmW, H_Average_dBmW, "
               "V_Average_dBmW from Measurement order by Frequency");
        QList<Row> rows;
        while (q.next())
            rows.append({QString::number(q.value(0).toDouble(), 'f', 3), q.value(1).toDouble(), q.value(2).toDouble(),
                         q.value(3).toDouble(), q.value(4).toDouble(), q.value(5).toDouble(), q.value(6).toDouble()});
        return rows;
    }
    QStringList frequencies() const
    {
        QStringList out;
        for (const Row &r : rows())
            out << r.frequency;
        return out;
    }

    QTemporaryDir dir;
};

// Before each single sweep is started: a carrier at `frequency` with the level of that block.
std::function<void(int)> carrierLevels(EmcRun &r, double frequency, QList<double> levels)
{
    return [&r, frequency, levels](int tick) {
        r.analyser.scene = Scene({Emitter{frequency, levels[tick % levels.size()]}});
    };
}

} // namespace

class EmcRunTest : public QObject {
    Q_OBJECT

private slots:
    void stepRunRows_data()
    {
        QTest::addColumn<double>("start");
        QTest::addColumn<double>("stop");
        QTest::addColumn<int>("blocks");
        QTest::addColumn<bool>("horizontal");
        QTest::addColumn<bool>("vertical");
        QTest::addColumn<QStringList>("frequencies");
        QTest::addColumn<QStringList>("boxes");
        const QStringList upTo400{"100.100", "100.200", "100.300", "100.400"};
        const QString h = kSteppedTitle + "|" + kHorizontalText;
        // One block a frequency: the start gets no row, the last row lies one step above the stop.
        QTest::newRow("horizontal") << 100.0 << 100.3 << 1 << true << false << upTo400 << QStringList{h};
        QTest::newRow("vertical") << 100.0 << 100.3 << 1 << false << true << upTo400
                                  << QStringList{kSteppedTitle + "|" + kVerticalText};
        QTest::newRow("two rounds") << 100.0 << 100.3 << 1 << true << true << upTo400
                                    << QStringList{h, kSteppedTitle + "|" + kAntennaVerticalText};
        QTest::newRow("neither round") << 100.0 << 100.3 << 1 << false << false << upTo400 << QStringList{};
        // With more blocks the analyser stays at the start, and the start has its row; the round
        // goes on from start + 2 steps, since the step counted at the start is not measured.
        QTest::newRow("three blocks") << 100.0 << 100.3 << 3 << true << false
                                      << QStringList{"100.000", "100.200", "100.300", "100.400"}
                                      << QStringList{h};
        // The row carries the frequency the block reports, all four digits before the point.
        QTest::newRow("above 1000 MHz") << 1000.02 << 1000.12 << 1 << true << false
                                        << QStringList{"1000.120", "1000.220"} << QStringList{h};
    }
    void stepRunRows()
    {
        QFETCH(double, start);
        QFETCH(double, stop);
        QFETCH(int, blocks);
        QFETCH(bool, horizontal);
        QFETCH(bool, vertical);
        QFETCH(QStringList, frequencies);
        QFETCH(QStringList, boxes);
        EmcRun r(start, stop, 0.1, blocks, horizontal, vertical);
        r.run();
        QCOMPARE(r.frequencies(), frequencies);
        QCOMPARE(r.prompts->messages(kSteppedTitle), boxes);
        // Each round fills its own columns; without a round chosen the vertical ones, as the state stood.
        const bool hColumns = horizontal, vColumns = vertical || !horizontal;
        for (const Row &row : r.rows()) {
            QVERIFY2(row.maxhold > -200 && row.average > -200, qPrintable(row.frequency));
            QCOMPARE(row.hMaxhold > -1000, hColumns);
            QCOMPARE(row.vMaxhold > -1000, vColumns);
            QCOMPARE(row.hAverage > -1000, hColumns);
            QCOMPARE(row.maxhold, std::max(row.hMaxhold, row.vMaxhold));
            QCOMPARE(row.average, std::max(row.hAverage, row.vAverage));
        }
        QCOMPARE(r.state().emcRunActive, qint16(0));
        QVERIFY(r.ctx->run().startEnabled && !r.ctx->run().stopEnabled);
        QVERIFY(!r.state().busy);
    }

    // Three blocks at a frequency: the row holds the greatest of their results, as if every block
    // had the strongest level.
    void rowHoldsTheMaximaOfItsBlocks()
    {
        auto rowAt100 = [](QList<double> levels) {
            EmcRun r(100.0, 100.0, 0.1, 3, true, false);
            r.run(carrierLevels(r, 100.0, levels));
            return r.rows().value(0);
        };
        const Row mixed = rowAt100({-50, -30, -45}), strongest = rowAt100({-30}), weakest = rowAt100({-50});
        QCOMPARE(mixed.frequency, QString("100.000"));
        QCOMPARE(mixed.maxhold, strongest.maxhold);
        QVERIFY(std::abs(mixed.average - strongest.average) < 0.01);
        QVERIFY(mixed.maxhold > weakest.maxhold + 15);
    }

    // A stop during a frequency: the block in hand gets no row, and the run ends.
    void stopDuringARound()
    {
        EmcRun r(100.0, 102.0, 0.1, 1, true, true);
        r.run([&r](int tick) {
            if (tick == 5)
                stopEmcRun(*r.ctx);
        });
        QCOMPARE(r.frequencies(), (QStringList{"100.100", "100.200", "100.300", "100.400"}));
        QCOMPARE(r.prompts->messages(kSteppedTitle).size(), 1); // no second round
        QCOMPARE(r.state().emcRunActive, qint16(0));
    }

    void cancelInTheFileDialogTouchesNothing()
    {
        EmcRun r(100.0, 100.3, 0.1, 1, true, false);
        r.run({}, true);
        QVERIFY(!QFile::exists(r.file()));
        QVERIFY(r.port->sentByProgram().isEmpty());
        QVERIFY(r.prompts->messages().isEmpty());
        QCOMPARE(r.state().emcRunActive, qint16(0));
        QVERIFY(r.ctx->run().startEnabled && r.ctx->run().lockedControlsEnabled);
    }

    // The order of a Sweep + Step run: the operator's boxes and the sweep rounds with the round,
    // the ambient round and whether the rows exist, as each round begins.
    void sweepAndStepOrder_data()
    {
        QTest::addColumn<bool>("horizontal");
        QTest::addColumn<bool>("vertical");
        QTest::addColumn<bool>("ambient");
        QTest::addColumn<int>("stopInRound"); // the sweep round (from 1) in which Stop is pressed; 0 none
        QTest::addColumn<QStringList>("events");
        const QString h = "box " + kHorizontalText, v = "box " + kVerticalText, off = "box " + kDutOffText,
                      on = "box " + kDutOnText;
        QTest::newRow("both, ambient") << true << true << true << 0
                                       << QStringList{h, off, "sweep H ambient 1 rows 0", on, "sweep H ambient 0 rows 1",
                                                      v, off, "sweep V ambient 2 rows 1", on, "sweep V ambient 0 rows 1"};
        QTest::newRow("both") << true << true << false << 0
                              << QStringList{h, "sweep H ambient 0 rows 0", v, "sweep V ambient 0 rows 1"};
        QTest::newRow("horizontal, ambient") << true << false << true << 0
                                             << QStringList{h, off, "sweep H ambient 1 rows 0", on,
                                                            "sweep H ambient 0 rows 1"};
        QTest::newRow("vertical, ambient") << false << true << true << 0
                                           << QStringList{v, off, "sweep V ambient 2 rows 0", on,
                                                          "sweep V ambient 0 rows 1"};
        QTest::newRow("vertical") << false << true << false << 0 << QStringList{v, "sweep V ambient 0 rows 0"};
        QTest::newRow("neither") << false << false << true << 0 << QStringList{"sweep V ambient 0 rows 0"};
        // A stop in the ambient round: the DUT is not switched on again, the ending runs.
        QTest::newRow("stop in the ambient") << true << true << true << 1
                                             << QStringList{h, off, "sweep H ambient 1 rows 0"};
        QTest::newRow("stop in the first round") << true << true << false << 1
                                                 << QStringList{h, "sweep H ambient 0 rows 0"};
    }
    void sweepAndStepOrder()
    {
        QFETCH(bool, horizontal);
        QFETCH(bool, vertical);
        QFETCH(bool, ambient);
        QFETCH(int, stopInRound);
        QFETCH(QStringList, events);
        EmcRun r(100.0, 110.0, 0.1, 1, horizontal, vertical, 0);
        r.state().ambientOn = ambient ? 1 : 0;
        // Boxes and rounds in the order they came.
        QStringList seen;
        qsizetype boxesSeen = 0;
        const auto takeBoxes = [&] {
            for (; boxesSeen < r.prompts->shown.size(); ++boxesSeen) {
                const auto &shown = r.prompts->shown[boxesSeen];
                if (shown.kind == ScriptedPrompts::Kind::Message) {
                    QCOMPARE(shown.title, kSweepStepTitle);
                    seen << "box " + shown.text;
                }
            }
        };
        int rounds = 0;
        r.ctx->calls.sweepRound = [&] {
            takeBoxes();
            const AppState &s = r.state();
            seen << QString("sweep %1 ambient %2 rows %3")
                        .arg(s.horizontalRound ? "H" : "V")
                        .arg(s.ambientRound)
                        .arg(s.rowsExist);
            if (++rounds == stopInRound)
                stopEmcRun(*r.ctx);
        };
        r.run();
        takeBoxes();
        QCOMPARE(seen, events);
        // The ending takes the unit back to local and hands the controls back.
        QVERIFY(r.port->sentByProgram().endsWith("#kl0\r"));
        QCOMPARE(r.state().emcRunActive, qint16(0));
        QVERIFY(QFile::exists(r.file()));
    }
};

QTEST_GUILESS_MAIN(EmcRunTest)
#include "emc_run_test.moc"
