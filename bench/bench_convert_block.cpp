// Cost of converting one trace block with five components in the correction chain.

#include "chain_bench.h"

#include <QCoreApplication>

#include <cstdio>

int main(int argc, char **argv)
{
    constexpr int kRuns = 2001;
    constexpr double kTargetMicroseconds = 50.0;
    QCoreApplication app(argc, argv);
    const auto ctx = fiveComponentContext();
    AppState &s = ctx->state;
    s.chart.startFrequency = 30.0f;
    s.chart.stopFrequency = 1000.0f;
    const double median = medianMicroseconds(
        kRuns,
        [&s](int run) {
            for (int i = 1; i <= s.pointCount; ++i)
                s.traces.rawSamples[i] = qint16((i * 37 + run) % 256);
        },
        [&ctx] { convertBlock(*ctx); });
    std::printf("convertBlock, five components: %.1f us per block (target < %.0f us), median of %d blocks\n",
                median, kTargetMicroseconds, kRuns);
    return median < kTargetMicroseconds ? 0 : 1;
}
