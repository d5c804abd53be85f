#pragma once
// What the logic changes on the normal-mode panel fSetunit of grafik: the lists of the two limits,
// the unit and the configuration, the distance labels, the unit and tracking generator fields.
// The values are kept here so that logic and tests can read them back; the panel overrides the
// setters to mirror them on screen.

#include <QString>

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

    QString maxholdLimitText, averageLimitText, unitText, configurationText;
    bool distanceVisible = false;
    QString distanceNumber;
    bool distanceFromDutVisible = false;
    QString distanceFromDutText;
    QString unitLabel, trackingLevelText;
    bool trackingChecked = false;
    bool maxholdLimitTicked = false;
    bool averageLimitTicked = false;
};
