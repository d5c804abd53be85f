#include "signal/trace_store.h"

#include <algorithm>

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
