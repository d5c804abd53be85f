// A Step run over the simulated line at 115200 baud, on the real clock, with single sweeps of
// 0.3 s: the time it costs against the analyser's sweeps plus the line time of the bytes
// exchanged. The program's own work (detection, a file transaction per block) must hide inside
// the sweep that runs meanwhile. Target: at most 1.02 x.

#include "emc/run_controller.h"
#include "emc/stepped_scan.h"
#include "sim_run_bench.h"

#include <QCoreApplication>

#include <cstdio>

namespace {

constexpr double kTarget = 1.02;
constexpr double kSweepSeconds = 0.3;

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    SimRunBench b(kSweepSeconds);
    Context &ctx = *b.ctx;
    AppState &s = ctx.state;
    // 30 frequencies of 9 kHz, one block each, the horizontal round.
    s.emcScanMode = 1;
    s.chart.startFrequency = 0.15f;
    s.chart.stopFrequency = 0.15f + 29 * 0.009f;
    s.stepWidth = 0.009f;
    s.stepBlocks = 1;
    s.testHorizontal = -1;
    s.analyser.bandwidth = 9;
    s.emcViewAverage = s.emcViewQPeak = 1;
    const qint64 blocksBefore = b.analyser.blocks();
    const double start = b.clock->steadySeconds();
    startEmcRun(ctx);
    while (ctx.run().timer2Enabled) { // Timer2: a tick each 10 ms
        b.clock->sleep(0.01);
        ctx.run().setTimer2Enabled(false);
        stepTick(ctx);
    }
    const double spent = b.clock->steadySeconds() - start;
    const qint64 blocks = b.analyser.blocks() - blocksBefore;
    const double line = b.lineSeconds();
    const double ratio = spent / (blocks * kSweepSeconds + line);
    std::printf("Step run of %lld blocks at %d baud: %.3f s, %.4f x the sweeps (%.1f s) and the line time of its "
                "bytes (%.3f s) (target <= %.2f x), load %s\n",
                blocks, kRunBenchRate, spent, ratio, blocks * kSweepSeconds, line, kTarget, machineLoad().constData());
    if (s.online != 1)
        std::fprintf(stderr, "the run failed: %s\n", qPrintable(s.errorText));
    return ratio <= kTarget ? 0 : 1;
}
