#pragma once
// What the logic may change on the main frame and its child windows. The values are kept
// here so that logic and tests can read them back; the main frame overrides the setters
// to mirror them on screen.

#include "core/app_state.h"

#include <QString>

class FrameControls {
public:
    virtual ~FrameControls() = default;

    enum MonitorLabel { SentLabel = 3, ReceivedLabel = 4, CodesLabel = 5 };

    virtual void setCaption(const QString &text) { caption = text; }
    virtual void setRemoteChecked(bool on) { remoteChecked = on; }         // MDI.ckrm
    virtual void setAutoChecked(bool on) { autoChecked = on; }             // MDI.ckauto
    virtual void setToolboxVisible(bool on) { toolboxVisible = on; }       // MDI.Command6
    virtual void setTrackingControlsEnabled(bool on) { trackingEnabled = on; } // grafik.ctrack, tgLabel4, tgText1
    virtual void setUncalVisible(bool on) { uncalVisible = on; }           // grafik.Label11
    virtual void setTimer4Enabled(bool on) { timer4Enabled = on; }
    virtual void setBusyCursor(bool on) { busyCursor = on; }
    // The transmission monitor Tr: each change is shown at once, so a hanging dialogue can be read.
    virtual void setMonitorLabel(MonitorLabel label, const QString &text)
    {
        monitorText(label) = text;
    }
    virtual void closeBoxcom() {}
    // The geometry of the forms grafik and levelmeter as they stand, for setting.def;
    // forms that are not shown leave the fields as they are.
    virtual void takeFormGeometry(FormGeometry &) {}

    QString &monitorText(MonitorLabel label)
    {
        return label == SentLabel ? monitorSent : label == ReceivedLabel ? monitorReceived : monitorCodes;
    }

    QString caption;
    bool remoteChecked = false;
    bool autoChecked = false;
    bool toolboxVisible = false;
    bool trackingEnabled = false;
    bool uncalVisible = false;
    bool timer4Enabled = true;
    bool busyCursor = false;
    QString monitorSent, monitorReceived, monitorCodes;
};
