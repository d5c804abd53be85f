#pragma once
// What the logic changes on the normal-mode panel of grafik: on fSetunit the lists of the two
// limits, the unit and the configuration, the distance labels; on the measurement tab the
// analyser's front: option groups, check boxes, the settings memory list and the number fields.
// The values are kept here so that logic and tests can read them back; the panel overrides the
// setters to mirror them on screen.

#include <QString>

#include <array>

// The option groups of the front: ospan, obw, oatt, omemb, odet.
enum class PanelOption { Span, Bandwidth, Attenuator, Memory, Detector };
inline constexpr int kPanelOptions = 5;
// The check boxes that follow a setting: detecCheck1..3 ("Sample", "Average", "Max. Hold"),
// detecCheck7 "Calculation On", CVideo "Video Filter", db "5 dB/Div", cCorrection "Correction On".
// ctrack has its own setter below.
enum class PanelCheck { Sample, Average, Maxhold, Calculation, VideoFilter, FivePerDivision, Correction };
inline constexpr int kPanelChecks = 7;

class PanelControls {
public:
    virtual ~PanelControls() = default;

    virtual void setMaxholdLimitText(const QString &text) { maxholdLimitText = text; } // detecDBCombo1
    virtual void setAverageLimitText(const QString &text) { averageLimitText = text; } // detecDBCombo2
    virtual void setUnitText(const QString &text) { unitText = text; }                 // DBmeasur1
    virtual void setConfigurationText(const QString &text) { configurationText = text; } // DBmeasur2
    // measLabel3 and measLabel4: the distance of the configuration's antenna.
    virtual void setDistanceLabels(bool visible, const QString &number)
    {
        distanceVisible = visible;
        distanceNumber = number;
    }
    // grafik.Label5: "Distance from DUT: ...m".
    virtual void setDistanceFromDutLabel(bool visible, const QString &text)
    {
        distanceFromDutVisible = visible;
        distanceFromDutText = text;
    }
    virtual void setUnitLabel(const QString &text) { unitLabel = text; }                  // tgLabel4
    virtual void setTrackingLevelText(const QString &text) { trackingLevelText = text; }  // tgText1
    virtual void setTrackingChecked(bool on) { trackingChecked = on; }                    // ctrack
    // detecCheck5 "View Max. Hold limit" and detecCheck6 "View Average limit".
    virtual void setMaxholdLimitTicked(bool on) { maxholdLimitTicked = on; }
    virtual void setAverageLimitTicked(bool on) { averageLimitTicked = on; }
    // The button of `index` in an option group; -1 selects none.
    virtual void setOption(PanelOption group, int index) { options[int(group)] = index; }
    virtual void setChecked(PanelCheck box, bool on) { checks[int(box)] = on; }
    virtual void setSettingsMemory(int index) { settingsMemory = index; }                // cset
    virtual void setCenterFrequencyText(const QString &text) { centerFrequencyText = text; } // measText1
    virtual void setRefLevelText(const QString &text) { refLevelText = text; }          // measText2
    // ctrack, tgLabel4 and tgText1: only a unit with a tracking generator has them.
    virtual void setTrackingEnabled(bool on) { trackingEnabled = on; }

    int option(PanelOption group) const { return options[int(group)]; }
    bool checked(PanelCheck box) const { return checks[int(box)]; }

    QString maxholdLimitText, averageLimitText, unitText, configurationText;
    bool distanceVisible = false;
    QString distanceNumber;
    bool distanceFromDutVisible = false;
    QString distanceFromDutText;
    QString unitLabel, trackingLevelText;
    bool trackingChecked = false;
    bool maxholdLimitTicked = false;
    bool averageLimitTicked = false;
    std::array<int, kPanelOptions> options{0, 0, 1, 0, 0};
    std::array<bool, kPanelChecks> checks{true, false, false, false, false, false, false};
    int settingsMemory = 1;
    QString centerFrequencyText, refLevelText;
    bool trackingEnabled = false;
};
