#pragma once
// The Sweep + Step scan. A round sweeps the test's range with the analyser's max hold, segment by
// segment, and keeps one row per step width in the run's .emc file. After a round with the device
// on, the rows whose sweep level comes close to the limit line in the file are marked, and only
// those are measured again in zero span with the slow detectors.
//
// In this mode the column sample_dBmW of a row is its mark: 1 selected, 0 not, -1000 not classified.

#include "core/context.h"

// One round: reads `ambientRound`, `rowsExist` and `horizontalRound`. Without a limit line in the
// file it measures nothing and says nothing.
void sweepRound(Context &ctx);

// Writes the segment in `maxholdTrace` (between the chart's start and stop) into the file: one
// row at each grid frequency, starting a new grid at the limit line's first point. With
// `rowsExist` the rows are there and are walked by cursor.
void mergeSweep(Context &ctx);

// Marks each row by comparing the round's sweep column with the limit line of the file.
void selectCriticalFrequencies(Context &ctx);

// Measures the marked rows in zero span, one block after the other (no block ahead).
void stepCriticalFrequencies(Context &ctx);
