#pragma once
// Peak, average and quasi-peak of one zero-span block: 2001 samples of the level at one frequency
// over time, 0.5 ms apart. The quasi-peak is a first-order filter with a fast charge and a slow
// discharge, run sample by sample on the linear amplitude.

#include "core/context.h"

// What the two passes over a block differ in. Each divisor counts samples.
struct DetectorDivisors {
    double average;   // the sum of the amplitudes is divided by this
    double charge;    // the filter closes this share of a rising distance per sample
    double discharge; // and this share of a falling one
};

// The results of one block.
struct BlockLevels {
    qint16 peak = -1000;  // dB, a whole number
    double average = 0.0; // dB: the mean of the amplitudes
    double qpeak = 0.0;   // dB: the filter's state at the end of the block, not its maximum
    int lo = 0;           // running minimum and maximum in counts, for the level window
    int hi = 0;
};

// The upper band begins at exactly 30 MHz.
bool upperBand(float centerFrequency);

// The Step mode's divisors: table qpeak's values by band, the average over pointCount although
// one sample fewer is summed.
DetectorDivisors stepDivisors(const AppState &s);
// The step pass of Sweep + Step: fixed divisors whatever table qpeak holds, the average over the
// samples summed.
DetectorDivisors selectedDivisors(const AppState &s);

// Reduces the raw block in `rawSamples` at `centerFrequency`, through the open correction chain,
// to its levels. Afterwards samples 1 to pointCount - 1 hold whole dB values and `qpeakValue`
// the filter's state. The level window is left to the caller.
BlockLevels detectBlock(Context &ctx, const DetectorDivisors &divisors);
