#pragma once
// The measured traces and the read cycle that fills them.

#include "core/context.h"

// Empties the four traces and the level window (Erase, mode changes, a new span or centre).
void clearTraces(Context &ctx);
