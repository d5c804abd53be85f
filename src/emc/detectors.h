#pragma once
// The two detector passes of the stepped scans: each reduces the block that `receiveTrace` has just
// delivered (with the correction chain open) to peak, average and quasi-peak, writes them into the
// run's .emc file and moves the level window.

#include "core/context.h"

class DataView;

// Step mode. The row of `centerFrequency` (at 1 kHz grain) is found or added in the file named by
// `measurementFileName`; the file is opened and closed for each block, so a break of the run loses
// at most the block in hand. Repeated blocks at a frequency keep each detector's maximum.
void detectStepBlock(Context &ctx);

// The step pass of Sweep + Step. Writes the current row of `measurementRecordset`, which the
// caller has opened on the file's measurement table and placed; no row is ever added.
void detectSelectedBlock(Context &ctx, DataView &measurementRecordset);
