#pragma once
// The stepped scan: the analyser in zero span at one frequency after the other, a block of levels
// over time per single sweep, each block reduced to the row of its frequency (detectStepBlock).
// The analyser is kept one block ahead: the next single sweep is started before the block in hand
// is evaluated, so the program's work hides inside the analyser's sweep.

#include "core/context.h"

// Starts a round at the test's start frequency; the first block is thrown away. Ends by enabling
// Timer2.
void beginStepRound(Context &ctx);
// One tick of Timer2, which the tick has disabled: takes the block announced, starts the next one,
// evaluates the one in hand. Re-enables Timer2 while the round goes on; at its end begins the
// vertical round or ends the run.
void stepTick(Context &ctx);

// The span that goes with the bandwidth in MHz: the sweep's segment width, and the chart's span
// while a scan stands in zero span.
qint16 spanForBandwidth(quint16 bandwidth);
