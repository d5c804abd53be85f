#include "emc/block_detector.h"

#include "signal/correction_chain.h"
#include "signal/level_math.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace {

// fromDecibel of a whole dB value. The pass meets only whole dB, mostly within +-500 dB: those
// amplitudes come from a table made once, which keeps the pass well inside the time between blocks.
double amplitudeOf(qint16 db)
{
    constexpr int kLowest = -512, kCount = 1024;
    static const std::array<double, kCount> table = [] {
        std::array<double, kCount> amplitudes{};
        for (int k = 0; k < kCount; ++k)
            amplitudes[k] = fromDecibel(k + kLowest);
        return amplitudes;
    }();
    const int k = db - kLowest;
    return k >= 0 && k < kCount ? table[k] : fromDecibel(db);
}

// One step of the quasi-peak filter: charge on a rising distance, discharge on a falling one (no
// distance adds nothing). A divisor of 0 (a table qpeak that holds 0) would be a floating-point
// fault; that statement is passed over and the state stays.
void followFilter(double &state, double x, const DetectorDivisors &divisors)
{
    const double d = x - state;
    const double divisor = d > 0 ? divisors.charge : divisors.discharge;
    if (divisor != 0)
        state += d / divisor;
}

} // namespace

bool upperBand(float centerFrequency)
{
    return !(centerFrequency < 30.0f);
}

DetectorDivisors stepDivisors(const AppState &s)
{
    const bool upper = upperBand(s.analyser.centerFrequency);
    return {double(s.pointCount), double(upper ? s.tauf1000 : s.tauf30), double(upper ? s.tent1000 : s.tent30)};
}

DetectorDivisors selectedDivisors(const AppState &s)
{
    return {double(s.pointCount - 1), 2.0, upperBand(s.analyser.centerFrequency) ? 1100.0 : 320.0};
}

BlockLevels detectBlock(Context &ctx, const DetectorDivisors &divisors)
{
    AppState &s = ctx.state;
    BlockLevels levels;
    emptySegments(ctx);
    s.qpeakValue = 0.0;
    levels.lo = s.chart.grafikMin;
    levels.hi = s.chart.grafikMax;
    // All samples have one frequency: one lookup serves the whole block.
    correctionAt(ctx, s.analyser.centerFrequency);
    const float corr = s.correctionAtFrequency - distanceTerm(ctx);
    const double reference = double(s.analyser.refLevel + s.analyser.attenuator) * 2.5; // raw 227
    const double perRawStep = s.analyser.dbPerDivision / 10.0;
    TraceArray &raw = s.traces.rawSamples;
    double average = 0.0;
    // The last sample of the block is not used.
    const int last = std::min(s.pointCount, kTraceSize - 1) - 1;
    for (int i = 1; i <= last; ++i) {
        qint16 &sample = raw[i];
        if (sample < s.noiseValue)
            sample = 0; // under the gate falls to the raw zero, not to the gate
        // Counts as a trace block converts them: truncation first, half to even after the correction.
        storeCount(sample, std::trunc(reference + perRawStep * (sample - 227)));
        storeCount(sample, std::rint(corr * 2.5 + sample));
        levels.lo = std::min<int>(levels.lo, sample);
        levels.hi = std::max<int>(levels.hi, sample);
        // Whole dB from here on; the detectors' results depend on this coarse rounding.
        storeCount(sample, std::rint(sample / 2.5));
        const double x = amplitudeOf(sample);
        if (i == 1) {
            // The first sample opens the average whatever the switch says; the filter starts at the second.
            average = x / divisors.average;
            levels.peak = sample;
            continue;
        }
        levels.peak = std::max(levels.peak, sample);
        if (s.emcViewAverage == 1)
            average += x / divisors.average;
        if (s.emcViewQPeak == 1)
            followFilter(s.qpeakValue, x, divisors);
    }
    levels.average = toDecibel(average);
    levels.qpeak = toDecibel(s.qpeakValue);
    return levels;
}
