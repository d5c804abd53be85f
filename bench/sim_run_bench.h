#pragma once
// What the run benchmarks share: a context on the system clock with the analyser simulator behind
// the port at 115200 baud, online, the run's file chosen in a folder of its own; the line time of
// the bytes exchanged, the median of several runs and the machine's load.

#include "core/clock.h"
#include "core/scripted_prompts.h"
#include "link/serial_link.h"
#include "signal/trace_store.h"
#include "sim/simulated_port.h"

#include <QFile>
#include <sys/prctl.h>
#include <QTemporaryDir>

#include <algorithm>
#include <memory>
#include <vector>

constexpr qint32 kRunBenchRate = 115200;

struct SimRunBench {
    // `blockSeconds`: what one single sweep in zero span takes.
    explicit SimRunBench(double blockSeconds)
    {
        // The simulated line hands each byte over by sleeping until it arrives; the kernel's default
        // timer slack (50 us) would add to every such sleep a delay that a real line does not have.
        prctl(PR_SET_TIMERSLACK, 1UL);
        analyser.rate = kRunBenchRate;
        analyser.scene.zeroSpanSampleTime = blockSeconds / kTracePoints;
        auto clockOwned = std::make_unique<SystemClock>();
        auto promptsOwned = std::make_unique<ScriptedPrompts>();
        auto portOwned = std::make_unique<SimulatedPort>(analyser, *clockOwned);
        clock = clockOwned.get();
        prompts = promptsOwned.get();
        port = portOwned.get();
        ctx = std::make_unique<Context>(
            Platform{std::move(clockOwned), std::move(promptsOwned), std::move(portOwned)});
        attachSignalProcessing(*ctx);
        ctx->state.baudRate = kRunBenchRate;
        openConfiguredPort(*ctx);
        ctx->state.online = 1;
        prompts->answerFile(QStringLiteral("Select Measurement"), file());
        port->clearTraffic();
    }
    QString file() const { return dir.filePath(QStringLiteral("bench.emc")); }

    // Seconds the bytes exchanged so far take on the line, ten bits each.
    double lineSeconds() const { return double(port->traffic.size()) * 10.0 / kRunBenchRate; }

    QTemporaryDir dir;
    Analyser analyser;
    Clock *clock = nullptr;
    ScriptedPrompts *prompts = nullptr;
    SimulatedPort *port = nullptr;
    std::unique_ptr<Context> ctx;
};

inline double median(std::vector<double> values)
{
    std::nth_element(values.begin(), values.begin() + values.size() / 2, values.end());
    return values[values.size() / 2];
}

// The load averages of the last 1, 5 and 15 minutes, as the system reports them.
inline QByteArray machineLoad()
{
    QFile file(QStringLiteral("/proc/loadavg"));
    if (!file.open(QIODevice::ReadOnly))
        return "unknown";
    return file.readLine().split(' ').mid(0, 3).join(' ');
}
