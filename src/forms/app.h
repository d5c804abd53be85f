#pragma once
// Start and end of the program, and the assembly of its context.

#include "core/context.h"
#include "sim/analyser.h"

#include <memory>

// Start-up: defaults, setting.def, the working database, the port at 4800 baud (no unit is
// contacted), the stored mode, empty traces and a pending repaint.
void loadMainFrame(Context &ctx);
// The end: setting.def (after its question), then the port is closed.
void unloadMainFrame(Context &ctx);
// `comPort` opened at "4800,N,8,1" with its input emptied; a port that will not open is passed over.
void openStartupPort(Context &ctx);
// A start with --simulate: the built-in simulator becomes the port, and setting.def keeps the
// configured one unless the user chooses another.
void startOnSimulator(Context &ctx);
// True when something (file, folder, hidden or not) is at `path`. Yields the event queue once first.
bool fileExists(const QString &path);

// The program as the GUI runs it: the system clock, prompts on screen, and the ports: Com1..Com4
// on the serial devices and port 0 on the built-in simulator. The data folder follows the
// application name, so that is set first.
struct Program {
    Analyser simulator; // first: the simulated port inside the context refers to it
    std::unique_ptr<Context> ctx;
};
std::unique_ptr<Program> assembleProgram(const QString &simulatorModel);
