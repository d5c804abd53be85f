// The simulated analyser making one trace block: a fresh sweep of the scene on an unchanged
// panel, after a new centre frequency, and in zero span. Target: well under 1 ms.

#include "sim/analyser.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <vector>

namespace {

constexpr int kRuns = 201;
constexpr double kTargetMicroseconds = 1000.0;

void command(Analyser &a, const QByteArray &text)
{
    for (char c : text + '\r')
        a.receive(c);
}

// The median time of "#bm1" in microseconds; one of `turns`, in turn, goes ahead of each block, untimed.
double medianBlock(Analyser &a, const QList<QByteArray> &turns)
{
    std::vector<double> runs;
    for (int i = 0; i < kRuns; ++i) {
        if (!turns.isEmpty())
            command(a, turns[i % turns.size()]);
        const auto start = std::chrono::steady_clock::now();
        command(a, "#bm1");
        runs.push_back(std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - start).count());
    }
    std::nth_element(runs.begin(), runs.begin() + kRuns / 2, runs.end());
    return runs[kRuns / 2];
}

} // namespace

int main()
{
    struct Case {
        const char *name;
        QList<QByteArray> setup;
        QList<QByteArray> turns;
    };
    const Case cases[] = {
        {"same panel", {}, {}},
        {"new centre each time", {"#bw120"}, {"#cf0100.000", "#cf0200.000"}},
        {"zero span, pulsed", {"#cf0433.920", "#sp0", "#bw120"}, {}},
    };
    bool met = true;
    for (const Case &c : cases) {
        Analyser a("K550-B");
        for (const QByteArray &text : c.setup)
            command(a, text);
        const double us = medianBlock(a, c.turns);
        std::printf("one block, %-22s %7.1f us (target < %.0f us)\n", c.name, us, kTargetMicroseconds);
        met = met && us < kTargetMicroseconds;
    }
    return met ? 0 : 1;
}
