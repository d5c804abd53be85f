#pragma once
// The measured traces and the read cycle that fills them.

#include "core/context.h"

// Empties the four traces and the level window (Erase, mode changes, a new span or centre).
void clearTraces(Context &ctx);
// The read cycle of normal mode: each wanted trace selected, fetched and converted.
void readTraces(Context &ctx);
// One block for the `traceTarget` that the caller has set and sent.
void readTraceSingle(Context &ctx);
// The raw block of a single sweep, for the stepped scans.
void receiveTrace(Context &ctx);
// Wires the calls of the link and the start-up into this subsystem.
void attachSignalProcessing(Context &ctx);
