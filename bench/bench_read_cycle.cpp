// A Read over the simulated line (the panel read and one trace block) at 4800 and 115200 baud:
// the time it costs against the line time of the bytes it exchanged. Target: at most 1.02 x.

#include "link/commands.h"
#include "link/discovery.h"
#include "signal/trace_store.h"
#include "support/sim_bench.h"

#include <QCoreApplication>
#include <QElapsedTimer>

#include <algorithm>
#include <cstdio>
#include <vector>

namespace {

constexpr int kRuns = 9;
constexpr double kTarget = 1.02;

struct Result {
    double ratio;
    double lineSeconds;
    double realMilliseconds;
};

Result oneRead(qint32 rate)
{
    SimBench b;
    b.analyser.rate = rate;
    b.state().baudRate = rate;
    attachSignalProcessing(*b.ctx);
    connectUnit(*b.ctx);
    b.port->clearTraffic();
    QElapsedTimer real;
    real.start();
    const double start = b.clock->steadySeconds();
    readAllSettings(*b.ctx);
    b.state().traceTarget = 0;
    readTraceSingle(*b.ctx);
    const double spent = b.clock->steadySeconds() - start;
    const double line = double(b.port->traffic.size()) * 10.0 / rate;
    if (b.state().online != 1)
        std::fprintf(stderr, "the read failed: %s\n", qPrintable(b.state().errorText));
    return {spent / line, line, real.nsecsElapsed() / 1e6};
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    bool met = true;
    for (const qint32 rate : {4800, 115200}) {
        std::vector<Result> runs;
        for (int i = 0; i < kRuns; ++i)
            runs.push_back(oneRead(rate));
        std::sort(runs.begin(), runs.end(), [](const Result &a, const Result &b) { return a.ratio < b.ratio; });
        const Result &median = runs[kRuns / 2];
        std::vector<double> real;
        for (const Result &r : runs)
            real.push_back(r.realMilliseconds);
        std::sort(real.begin(), real.end());
        std::printf("Read at %6d baud: %.4f x the line time of its bytes (%.3f s on the line; %.2f ms of real time) "
                    "(target <= %.2f x)\n",
                    rate, median.ratio, median.lineSeconds, real[kRuns / 2], kTarget);
        met = met && median.ratio <= kTarget;
    }
    return met ? 0 : 1;
}
