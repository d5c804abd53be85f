#pragma once
// The correction chain: the loss or gain of up to five components at a frequency, the distance
// term, and the conversion of a block of raw samples into corrected level counts.

#include "core/context.h"

// Takes each used slot's rows anew from the working database. Runs before every trace read.
void openChain(Context &ctx);

// Empties the segment cache of all five slots; each pass over a block starts with this.
void emptySegments(Context &ctx);

// Sets `correctionAtFrequency` (dB, without the distance term) and the slots' segments for a
// frequency in MHz.
void correctionAt(Context &ctx, float frequency);

// dB to subtract from the correction for measuring at another distance than the limit's.
float distanceTerm(Context &ctx);

// Turns the block in `rawSamples` into level counts in the array that `traceTarget` selects,
// stamps that array and widens the level window.
void convertBlock(Context &ctx);

// Moves `grafikMin` and `grafikMax` towards the running minimum and maximum of a pass, in counts.
void applyLevelWindow(Context &ctx, int lo, int hi);

// Stores a whole value in a 16-bit count; a value outside 16 bits is not stored, and the target
// keeps what it held.
inline void storeCount(qint16 &target, double value)
{
    if (value >= -32768.0 && value <= 32767.0)
        target = qint16(value);
}

// The frequency as a search compares it: rounded to its seven-significant-digit text and read
// back as a 32-bit float, the type of the stored column.
float queryFrequency(float frequency);
