#include "signal/trace_store.h"

#include "link/commands.h"
#include "link/trace_transfer.h"
#include "signal/correction_chain.h"

#include <algorithm>

namespace {

// The traces of a read in their order: which view asks for it, whether it needs the analyser's
// own calculation, and the array ("#vm" argument) it lands in.
struct WantedTrace {
    quint8 AppState::*view;
    bool needsCalculation;
    quint8 target;
};
constexpr WantedTrace kReadOrder[] = {
    {&AppState::viewSample, false, 0},
    {&AppState::viewAverage, true, 3},
    {&AppState::viewMaxhold, true, 4},
    {&AppState::viewMemoryB, false, 1},
    {&AppState::viewMemoryAB, false, 2},
};

} // namespace

void clearTraces(Context &ctx)
{
    AppState &s = ctx.state;
    s.pointCount = 2001;
    for (TraceArray *trace : {&s.traces.averageTrace, &s.traces.sampleTrace, &s.traces.maxholdTrace,
                              &s.traces.memoryTrace})
        std::fill(trace->begin() + 1, trace->begin() + 1 + s.pointCount, qint16(0));
    // The crossed pair tells the chart that no scale exists yet.
    s.chart.grafikMin = 1000;
    s.chart.grafikMax = -1000;
    s.chart.peakFrequency = 0.0f;
    s.chart.peakLevel = -1000;
    s.traceFrozen = 0;
    s.repaintRequest = 1;
}

void readTraces(Context &ctx)
{
    AppState &s = ctx.state;
    if (!ctx.port.isOpen() || s.online == 0)
        return;
    s.repaintRequest = 0;
    s.serialError = 0;
    s.pointCount = 2001;
    setBusy(ctx);
    if (s.emcMode == 0)
        s.traceFrozen = 0;
    s.chart.peakLevel = -1000;
    openChain(ctx);
    for (const WantedTrace &wanted : kReadOrder) {
        if (s.*wanted.view == 0 || (wanted.needsCalculation && s.analyser.calculationOn == 0))
            continue;
        // After a failure the selection is passed over offline, but the block is still asked for;
        // its own errors stay silent behind the first one.
        s.traceTarget = wanted.target;
        sendTraceTarget(ctx);
        readTraceBlock(ctx);
    }
    if (s.emcMode == 0) {
        sendReadMode(ctx); // the screen goes back to the mode the user chose
        readAllSettings(ctx);
        s.repaintRequest = 1;
    }
    clearBusy(ctx);
}

void readTraceSingle(Context &ctx)
{
    openChain(ctx);
    readTraceBlock(ctx);
}

void receiveTrace(Context &ctx)
{
    AppState &s = ctx.state;
    openChain(ctx);
    s.errorText = QStringLiteral("Read Data");
    s.traceTarget = 0;
    s.traceFrozen = 1;
    receiveTraceBlock(ctx);
}

void attachSignalProcessing(Context &ctx)
{
    ctx.calls.clearTraces = [&ctx] { clearTraces(ctx); };
    ctx.calls.convertBlock = [&ctx] { convertBlock(ctx); };
}
