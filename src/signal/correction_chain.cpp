#include "signal/correction_chain.h"

#include "signal/level_math.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <utility>

namespace {

// Linear along the segment, worked in double and kept as float. A segment whose ends coincide
// (only a cache left over from another pass can hold one) adds nothing.
float interpolate(const ComponentSegment &g, float frequency)
{
    if (g.highFrequency == g.lowFrequency)
        return 0.0f;
    return float(g.lowLevel + (double(g.highLevel) - g.lowLevel) * (double(frequency) - g.lowFrequency) /
                                  (double(g.highFrequency) - g.lowFrequency));
}

bool rowBelow(const ComponentRow &row, float frequency)
{
    return row.frequency < frequency;
}

bool rowAbove(float frequency, const ComponentRow &row)
{
    return frequency < row.frequency;
}

// One slot's share in dB. Outside the table the slot counts 0 dB, not its nearest point.
float slotShare(const QList<ComponentRow> &rows, ComponentSegment &segment, float frequency)
{
    // Only the upper end is tested, so a frequency below lowFrequency is extrapolated along the segment.
    if (frequency < segment.highFrequency)
        return interpolate(segment, frequency);

    // All five slots search alike: slot 2's equality criterion is written "frequency  = ", with two
    // blanks, and finds the same rows.
    const float key = queryFrequency(frequency);
    const ComponentRow *first = rows.constData();
    const ComponentRow *last = first + rows.size();
    const ComponentRow *above = std::upper_bound(first, last, key, rowAbove);  // first row "> key"
    const ComponentRow *equal = std::lower_bound(first, above, key, rowBelow); // first row "= key"
    if (equal != above)
        return above[-1].levelDbmw; // searching from the end: the last row "= key"; the segment stays
    if (equal == first)
        return 0.0f; // below the first point, or no rows
    segment.lowFrequency = equal[-1].frequency; // the last row "< key"
    segment.lowLevel = equal[-1].levelDbmw;
    if (above == last)
        return 0.0f; // above the last point; the upper end keeps its old values
    segment.highFrequency = above->frequency;
    segment.highLevel = above->levelDbmw;
    return interpolate(segment, frequency);
}

TraceArray *targetTrace(AppState &s)
{
    switch (s.traceTarget) {
    case 0: return &s.traces.sampleTrace;
    case 1:
    case 2: return &s.traces.memoryTrace;
    case 3: return &s.traces.averageTrace;
    case 4: return &s.traces.maxholdTrace;
    default: return nullptr;
    }
}

QDateTime *targetTime(AppState &s)
{
    switch (s.traceTarget) {
    case 0: return &s.traces.sampleTime;
    case 1:
    case 2: return &s.traces.memoryTime;
    case 3: return &s.traces.averageTime;
    case 4: return &s.traces.maxholdTime;
    default: return nullptr;
    }
}

} // namespace

// Seven significant digits without text, where that gives the same float: for 1e-4 <= f < 1e7 a
// scale 10^k (k 0..10) brings f into [1e6, 1e7) exactly, as 24 by 24 bits fit a double; rounding
// that to an integer is the text's rounding, and float(N) / 10^k is one correctly rounded division,
// as reading the text back is. Other magnitudes go through the text itself.
float queryFrequency(float frequency)
{
    static constexpr float kScale[] = {1e0f, 1e1f, 1e2f, 1e3f, 1e4f, 1e5f, 1e6f, 1e7f, 1e8f, 1e9f, 1e10f};
    if (frequency >= 1e-4f && frequency < 1e7f) {
        int k = 0;
        while (double(frequency) * kScale[k] < 1e6)
            ++k;
        return float(std::rint(double(frequency) * kScale[k])) / kScale[k];
    }
    char text[32];
    const auto written = std::to_chars(text, text + sizeof text, frequency, std::chars_format::general, 7);
    float read = frequency;
    std::from_chars(text, written.ptr, read);
    return read;
}

void openChain(Context &ctx)
{
    AppState &s = ctx.state;
    for (int k = 0; k < kChainSlots; ++k) {
        const qint32 losnr = s.componentNumber[k];
        s.componentRows[k] = losnr >= 1 && ctx.calls.componentRows ? ctx.calls.componentRows(losnr)
                                                                    : QList<ComponentRow>{};
    }
}

void emptySegments(Context &ctx)
{
    for (ComponentSegment &segment : ctx.state.componentSegment)
        segment.highFrequency = 0.0f;
}

void correctionAt(Context &ctx, float frequency)
{
    AppState &s = ctx.state;
    s.correctionAtFrequency = 0.0f;
    if (frequency < 0.0f || s.correctionOn == 0)
        return;
    // Target 2 is memory A - B, a difference of two readings through the same chain: no components.
    if (s.traceTarget == 2)
        return;
    float sum = 0.0f;
    for (int k = 0; k < kChainSlots; ++k) {
        if (s.componentNumber[k] >= 1)
            sum += slotShare(std::as_const(s.componentRows[k]), s.componentSegment[k], frequency);
    }
    s.correctionAtFrequency = sum;
}

float distanceTerm(Context &ctx)
{
    const AppState &s = ctx.state;
    const float dut = s.distanceFromDut;
    const float limit = s.maxholdLimitDistance;
    if (dut <= 0.0f || limit <= 0.0f || dut == limit || s.correctionOn != 1)
        return 0.0f;
    double ratio = limit / dut;
    return float(20.0 * logTen(ratio));
}

void convertBlock(Context &ctx)
{
    AppState &s = ctx.state;
    emptySegments(ctx);
    int lo = s.chart.grafikMin; // the running minimum and maximum start from the window
    int hi = s.chart.grafikMax;
    const float term = distanceTerm(ctx);
    const double reference = double(s.analyser.refLevel + s.analyser.attenuator) * 2.5; // raw 227
    const double perRawStep = s.analyser.dbPerDivision / 10.0;
    // The divisor is pointCount, not the number of gaps, and point 1 lies one step above the start.
    const double step = double(s.chart.stopFrequency - s.chart.startFrequency) / s.pointCount;
    TraceArray &raw = s.traces.rawSamples;
    TraceArray *target = targetTrace(s);
    const int points = std::min(s.pointCount, kTraceSize - 1);
    for (int i = 1; i <= points; ++i) {
        // Two roundings on purpose: truncation towards zero here, half to even after the correction.
        storeCount(raw[i], std::trunc(reference + perRawStep * (raw[i] - 227)));
        correctionAt(ctx, float(s.chart.startFrequency + step * i));
        s.correctionAtFrequency -= term;
        storeCount(raw[i], std::rint(s.correctionAtFrequency * 2.5 + raw[i]));
        lo = std::min<int>(lo, raw[i]);
        hi = std::max<int>(hi, raw[i]);
        if (target)
            (*target)[i] = raw[i];
    }
    if (QDateTime *stamp = targetTime(s))
        *stamp = ctx.clock.now();
    applyLevelWindow(ctx, lo, hi);
}

void applyLevelWindow(Context &ctx, int lo, int hi)
{
    ChartView &c = ctx.state.chart;
    lo -= 10;
    hi += 10;
    // Each end moves only by more than 10 counts (4 dB).
    if (std::abs(c.grafikMin - lo) > 10)
        storeCount(c.grafikMin, lo);
    if (std::abs(c.grafikMax - hi) > 10)
        storeCount(c.grafikMax, hi);
    // The window keeps at least 100 counts (40 dB), by raising its top.
    const int width = std::abs(c.grafikMax - c.grafikMin);
    if (width < 100)
        storeCount(c.grafikMax, c.grafikMax + 100 - width);
}
