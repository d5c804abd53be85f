#pragma once
// The one bulk transfer: a block of 2001 samples, 43 bytes of text and a checksum, either asked
// for with "#bm1" or sent by the analyser at the end of a single sweep.

#include "core/context.h"

// Asks for a block and converts it into the array of `traceTarget`; three attempts on a bad checksum.
void readTraceBlock(Context &ctx);
// Takes the block of a single sweep as it arrives, raw, and the centre frequency from its text.
void receiveTraceBlock(Context &ctx);

constexpr int kBlockBytes = 2044; // samples and text, before the checksum
