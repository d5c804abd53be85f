// A Sweep + Step run over the simulated line at 115200 baud, on the real clock: 30 to 70 MHz at
// 120 kHz in segments of 20 MHz with a sweep time of 1 s, the horizontal round, no ambient, single
// sweeps of 0.3 s in the step pass. Its time against the segments' measuring time, the sweeps of
// the step pass and the line time of the bytes exchanged: the merge of each segment, the selection
// and the detection must hide inside them. Median of five runs. Target: at most 1.02 x.

#include "emc/run_controller.h"
#include "emc/sweep_scan.h"
#include "sim_run_bench.h"
#include "store/sqlite_file.h"

#include <QCoreApplication>
#include <QSqlQuery>

#include <cstdio>
#include <utility>

namespace {

constexpr double kTarget = 1.02;
constexpr double kBlockSeconds = 0.3;
constexpr int kRuns = 5;

struct Run {
    double ratio;
    qint64 segments, sweeps;
    double spent, line;
};

Run sweepRun()
{
    SimRunBench b(kBlockSeconds);
    AppState &s = b.ctx->state;
    s.emcScanMode = 0;
    s.chart.startFrequency = 30.0f;
    s.chart.stopFrequency = 70.0f;
    s.stepWidth = 0.12f;
    s.analyser.bandwidth = 120;
    s.sweepTime = 1;
    s.stepBlocks = 1;
    s.testHorizontal = -1;
    s.emcViewAverage = s.emcViewQPeak = 1;
    bool limitWritten = false;
    b.ctx->calls.sweepRound = [&] {
        // The line the header copies from the catalogue: the device's 48 MHz clock reaches it.
        if (!std::exchange(limitWritten, true)) {
            SqliteFile db(b.file());
            QSqlQuery(db.handle()).exec("insert into Limitlines (maxfreq, Maxhold_dBmW) values (30, -60), (100, -60)");
        }
        sweepRound(*b.ctx);
    };
    const qint64 blocksBefore = b.analyser.blocks();
    const double start = b.clock->steadySeconds();
    startEmcRun(*b.ctx);
    Run run;
    run.spent = b.clock->steadySeconds() - start;
    run.sweeps = b.port->sentByProgram().count("#ss1");
    run.segments = b.analyser.blocks() - blocksBefore - run.sweeps;
    run.line = b.lineSeconds();
    run.ratio = run.spent / (run.segments * s.sweepTime + run.sweeps * kBlockSeconds + run.line);
    // The run ends by handing the analyser back to its keys, so the link is down by then either way.
    if (run.segments != 2 || run.sweeps < 2)
        std::fprintf(stderr, "the run did not sweep and step: %s\n", qPrintable(s.errorText));
    return run;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    std::vector<double> ratios;
    for (int i = 0; i < kRuns; ++i) {
        const Run run = sweepRun();
        std::printf("Sweep + Step run of %lld segments and %lld step sweeps at %d baud: %.3f s, %.4f x the measuring "
                    "time and the line time of its bytes (%.3f s)\n",
                    run.segments, run.sweeps, kRunBenchRate, run.spent, run.ratio, run.line);
        ratios.push_back(run.ratio);
    }
    const double m = median(ratios);
    std::printf("median %.4f x (target <= %.2f x), load %s\n", m, kTarget, machineLoad().constData());
    return m <= kTarget ? 0 : 1;
}
