#pragma once
// The wiring of the core's hooks that needs no window, shared by the program and delfor-cli, so
// that a run from the command line works on the same logic as the GUI. The forms add only what
// needs a window (modes, the paint of the chart).

class Context;

// Working database, trace store, conversion and correction chain, catalogue refreshes, the
// measurement panel, the print command.
void attachLogic(Context &ctx);
