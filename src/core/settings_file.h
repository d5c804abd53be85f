#pragma once
// setting.def: window geometry, mode, port, database path, colours and the known-bands flag,
// kept between runs in a 343-byte little-endian file in the data folder (the compared trace's colours
// after the original 335 bytes).

#include "core/context.h"

// Reads setting.def at start-up. A missing, unreadable or foreign file, or something other than a
// regular file in its place, gives the box "Load default settings" and the defaults; a short file
// is taken as far as it goes.
void readSettingsFile(Context &ctx);
// Asks "Save default settings?" and, on Yes, writes the file with the geometry of this run;
// a write that fails says so in a box naming the file and the reason.
void writeSettingsFile(Context &ctx);
