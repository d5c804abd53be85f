#pragma once
// The EMC run: from the start button to the saved .emc file. It asks for the file, takes the test
// into force, orders the rounds and the operator's boxes, and cleans up. A Step run returns from
// startEmcRun at once and goes on in the ticks of Timer2 (stepped_scan.h); a Sweep + Step run is one
// long call, kept alive by the waits of its sweep rounds yielding the event queue.

#include "core/context.h"

// Handler of emcCommand1.
void startEmcRun(Context &ctx);
// Handler of emcCommand2: asks the run to stop; the start button comes back at once.
void stopEmcRun(Context &ctx);

void lockRunControls(Context &ctx);
void unlockRunControls(Context &ctx);

// The operator's texts and the boxes' titles.
inline const QString kSteppedTitle = QStringLiteral("EMC - Stepped");
inline const QString kSweepStepTitle = QStringLiteral("EMC - Sweep + Step");
inline const QString kHorizontalText = QStringLiteral("Set to horizontal / L position");
inline const QString kVerticalText = QStringLiteral("Set to vertical / N position");
inline const QString kAntennaVerticalText = QStringLiteral("Set Antenna to vertical position");
inline const QString kDutOffText = QStringLiteral("Switch DUT Off");
inline const QString kDutOnText = QStringLiteral("Switch DUT ON");
