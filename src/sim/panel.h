#pragma once
// The panel as the analyser holds it.

// "#sv" and "#rc" address memories 0 to 9.
inline constexpr int kSimMemories = 10;

struct SimPanel {
    double centerFrequency = 500.0;
    double refLevel = -30.0;
    double attenuator = 10.0;
    int span = 1000;
    int bandwidth = 1000;
    int videoFilter = 0;
    int readMode = 0;
    int tgOn = 0;
    double tgLevel = -50.0;
    int calculation = 0;
    int dbPerDivision = 10;
    int uncal = 0;
    int singleSweep = 0;
    int keyboardLocked = 0;
    int triggerOn = 0;
    double triggerLevel = -30.0;
    int settingsMemory = 1;
};
