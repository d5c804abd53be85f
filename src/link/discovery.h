#pragma once
// Bringing the link up and down: the speed search, the keyboard lock, model and firmware.

#include "core/context.h"

struct UnitModel {
    const char *code;
    qint16 hasTrackingGenerator;
    float maxCenterFrequency;
};
// The model whose code is exactly `reply`, or nullptr.
const UnitModel *findUnitModel(const QString &reply);

inline constexpr qint32 kBaudRates[] = {4800, 9600, 19200, 38400, 115200};

// One "#QM" at the current port settings; result in `unitFound`.
void probeUnit(Context &ctx);
// Finds the unit at any rate, moves it to `baudRate`, locks its keys, reads model and firmware.
void connectUnit(Context &ctx);
// "#kl0": the unit back to local operation; the port stays open. False when the unit did not
// take it (the error box has told why) or the port is closed.
bool goLocal(Context &ctx);
// Tries ports 1 to 4 (button "Autosearch" of boxcom).
void autosearchUnit(Context &ctx);
// The caption while a unit is attached: title, unit and firmware.
QString unitCaption(const AppState &state);
