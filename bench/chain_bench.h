#pragma once
// What the block benchmarks share: a context on the system clock with five components in the
// correction chain, and the median time of a piece of work over many blocks.

#include "core/clock.h"
#include "core/context.h"
#include "core/scripted_prompts.h"
#include "link/qt_serial_port.h"
#include "signal/correction_chain.h"

#include <algorithm>
#include <chrono>
#include <memory>
#include <vector>

// About twenty points from 25 to 1100 MHz, each component on its own grid and curve.
inline QList<ComponentRow> benchComponent(qint32 losnr)
{
    QList<ComponentRow> rows;
    for (int j = 0; j < 20 + losnr; ++j)
        rows.append({25.0f + j * 1075.0f / (19 + losnr), float(losnr) + 0.37f * j - 0.02f * j * j});
    return rows;
}

// A context whose correction chain holds five components and the distance term of 3 m to 10 m.
inline std::unique_ptr<Context> fiveComponentContext()
{
    auto ctx = std::make_unique<Context>(Platform{std::make_unique<SystemClock>(), std::make_unique<ScriptedPrompts>(),
                                                  std::make_unique<QtSerialPort>()});
    AppState &s = ctx->state;
    s.correctionOn = 1;
    s.componentNumber = {1, 2, 3, 4, 5};
    s.distanceFromDut = 3.0f;
    s.maxholdLimitDistance = 10.0f;
    ctx->calls.componentRows = benchComponent;
    openChain(*ctx);
    return ctx;
}

// Median in microseconds of `work` over `runs` blocks; `prepare(run)` fills each block untimed.
template <typename Prepare, typename Work>
double medianMicroseconds(int runs, Prepare prepare, Work work)
{
    std::vector<double> times;
    for (int run = 0; run < runs; ++run) {
        prepare(run);
        const auto t0 = std::chrono::steady_clock::now();
        work();
        times.push_back(std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - t0).count());
    }
    std::nth_element(times.begin(), times.begin() + runs / 2, times.end());
    return times[runs / 2];
}
