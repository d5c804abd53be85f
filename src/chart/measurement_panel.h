#pragma once
// The analyser's front on the measurement tab of grafik: each option group, check box, button,
// list and number field changes the panel record and sends its command. A change that alters the
// measured signal ends in restartCalculation, so that the analyser's average and max hold do not
// mix old and new data. Controls are reached through PanelControls; offline, nothing is sent.

#include "core/panel_controls.h"

#include <QString>

#include <array>

class Context;
struct AppState;

// The values of the option groups by index. The span list ends with 30 after "Zero Span", so
// its order on the form is not monotonic.
inline constexpr std::array<qint16, 12> kSpanOptions{1000, 500, 200, 100, 50, 20, 10, 5, 2, 1, 0, 30};
inline constexpr std::array<quint16, 3> kBandwidthOptions{1000, 120, 9};
inline constexpr std::array<float, 5> kAttenuatorOptions{0.0f, 10.0f, 20.0f, 30.0f, 40.0f};
inline constexpr int kMemoryOptions = 3;   // omemb: "Memory Off", "Memory B", "Memory A-B"
inline constexpr int kDetectorOptions = 5; // odet: sample, "Memory B", "Memory A - B", "Average", "Max. Hold"
inline constexpr int kSettingsMemories = 10; // the entries of cset

// detecCommand1 "Save A -> B", detecCommand2 "Save", detecCommand3 "Recall",
// detecCommand4 "Reset Calculation".
enum class PanelCommand { StoreAtoB, SaveMemory, RecallMemory, ResetCalculation };
// measText1 (centre frequency), measText2 (reference level), tgText1 (tracking level).
enum class PanelField { CenterFrequency, RefLevel, TrackingLevel };

// If the calculation is on, it starts afresh.
void restartCalculation(Context &ctx);

// A button of an option group released; an index outside the group does nothing.
void optionChosen(Context &ctx, PanelOption group, int index);
void panelChecked(Context &ctx, PanelCheck box, bool ticked);
// ctrack: the tracking generator on or off.
void trackingChecked(Context &ctx, bool ticked);
void panelCommand(Context &ctx, PanelCommand command);
// A click in cset.
void settingsMemoryChosen(Context &ctx, int index);
// Enter in a number field: the value is clamped to its range and sent, and the field shows what
// the analyser took. Text that is no number sends nothing and the field shows the value in force.
void fieldEntered(Context &ctx, PanelField field, const QString &text);
// The text a number field shows for the state.
QString fieldText(const AppState &s, PanelField field);

// Every control of the front shown from the state: refreshLimits shows the read mode and the
// settings memory with the limits, and the panel shows the other settings the same way.
void showPanelSettings(Context &ctx);
// Makes the refreshLimits hook (run after every readAllSettings) show the front as well.
void attachMeasurementPanel(Context &ctx);
