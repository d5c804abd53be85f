// A Step run over the simulated line at 115200 baud, on the real clock, with single sweeps of
// 0.3 s: the time it costs against the analyser's sweeps plus the line time of the bytes
// exchanged. The program's own work (detection, a file transaction per block) must hide inside
// the sweep that runs meanwhile. Target: at most 1.02 x.

#include "core/clock.h"
#include "core/scripted_prompts.h"
#include "emc/run_controller.h"
#include "emc/stepped_scan.h"
#include "link/serial_link.h"
#include "signal/trace_store.h"
#include "sim/simulated_port.h"

#include <QCoreApplication>
#include <QTemporaryDir>

#include <cstdio>

namespace {

constexpr double kTarget = 1.02;
constexpr double kSweepSeconds = 0.3;
constexpr qint32 kRate = 115200;

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QTemporaryDir dir;
    Analyser analyser;
    analyser.rate = kRate;
    analyser.scene.zeroSpanSampleTime = kSweepSeconds / kTracePoints;
    auto clockOwned = std::make_unique<SystemClock>();
    auto promptsOwned = std::make_unique<ScriptedPrompts>();
    Clock &clock = *clockOwned;
    ScriptedPrompts &prompts = *promptsOwned;
    auto portOwned = std::make_unique<SimulatedPort>(analyser, clock);
    SimulatedPort &port = *portOwned;
    Context ctx(Platform{std::move(clockOwned), std::move(promptsOwned), std::move(portOwned)});
    attachSignalProcessing(ctx);
    AppState &s = ctx.state;
    s.baudRate = kRate;
    openConfiguredPort(ctx);
    s.online = 1;
    // 30 frequencies of 9 kHz, one block each, the horizontal round.
    s.emcScanMode = 1;
    s.chart.startFrequency = 0.15f;
    s.chart.stopFrequency = 0.15f + 29 * 0.009f;
    s.stepWidth = 0.009f;
    s.stepBlocks = 1;
    s.testHorizontal = -1;
    s.analyser.bandwidth = 9;
    s.emcViewAverage = s.emcViewQPeak = 1;
    prompts.answerFile(QStringLiteral("Select Measurement"), dir.filePath("bench.emc"));
    port.clearTraffic();
    const qint64 blocksBefore = analyser.blocks();
    const double start = clock.steadySeconds();
    startEmcRun(ctx);
    while (ctx.run().timer2Enabled) { // Timer2: a tick each 10 ms
        clock.sleep(0.01);
        ctx.run().setTimer2Enabled(false);
        stepTick(ctx);
    }
    const double spent = clock.steadySeconds() - start;
    const qint64 blocks = analyser.blocks() - blocksBefore;
    const double line = double(port.traffic.size()) * 10.0 / kRate;
    const double ratio = spent / (blocks * kSweepSeconds + line);
    std::printf("Step run of %lld blocks at %d baud: %.3f s, %.4f x the sweeps (%.1f s) and the line time of its "
                "bytes (%.3f s) (target <= %.2f x)\n",
                blocks, kRate, spent, ratio, blocks * kSweepSeconds, line, kTarget);
    if (s.online != 1)
        std::fprintf(stderr, "the run failed: %s\n", qPrintable(s.errorText));
    return ratio <= kTarget ? 0 : 1;
}
