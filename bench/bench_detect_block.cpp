// Cost of one detector pass over a zero-span block (peak, average and quasi-peak of 2000 samples,
// the file left out), target below 30 us: the pass must end before the analyser's next block.

#include "chain_bench.h"
#include "emc/block_detector.h"

#include <QCoreApplication>

#include <cstdio>

int main(int argc, char **argv)
{
    constexpr int kRuns = 2001;
    constexpr double kTargetMicroseconds = 30.0;
    QCoreApplication app(argc, argv);
    const auto ctx = fiveComponentContext();
    AppState &s = ctx->state;
    s.emcViewAverage = s.emcViewQPeak = 1;
    const double median = medianMicroseconds(
        kRuns,
        [&s](int run) {
            // A noisy carrier with bursts: levels change from sample to sample, so both filter branches run.
            for (int i = 1; i <= s.pointCount; ++i)
                s.traces.rawSamples[i] = qint16(120 + (i * 37 + run) % 60 + (i % 200 < 20 ? 70 : 0));
            s.analyser.centerFrequency = 30.0f + (run % 970);
        },
        [&ctx, &s] {
            const BlockLevels levels = detectBlock(*ctx, stepDivisors(s));
            applyLevelWindow(*ctx, levels.lo, levels.hi);
        });
    std::printf("detector pass, average and quasi-peak on: %.1f us per block (target < %.0f us), median of %d blocks\n",
                median, kTargetMicroseconds, kRuns);
    return median < kTargetMicroseconds ? 0 : 1;
}
