#pragma once
// What an EMC run changes on the screen: the start and stop buttons, the controls it locks while
// it runs, the scan's labels and the caption of grafik, and Timer2, which carries a stepped scan.
// The values are kept here so that logic, delfor-cli and tests can read them back; the main frame
// overrides the setters to mirror them on screen.

#include <QString>

class RunControls {
public:
    virtual ~RunControls() = default;

    virtual void setStartEnabled(bool on) { startEnabled = on; } // grafik.emcCommand1
    virtual void setStopEnabled(bool on) { stopEnabled = on; }   // grafik.emcCommand2
    // Locked during a run: the pages fSetunit, fTest, fEquip of grafik, Picture1 of MDI, the menus
    // mnuhlp, mnuKonfiguration, settings and mnumode, Frame1 (but for the two buttons) and Check6.
    virtual void setLockedControlsEnabled(bool on) { lockedControlsEnabled = on; }
    virtual void setReadCommandEnabled(bool on) { readCommandEnabled = on; } // grafik.Command1
    virtual void setFrequencyLabel(const QString &text) { frequencyLabel = text; } // emcLabel1
    virtual void setBlocksLabel(const QString &text) { blocksLabel = text; }       // emcLabel3
    virtual void setProgressCaption(const QString &text) { progressCaption = text; } // grafik's caption
    // Timer2: 10 ms, one stepTick a tick. A host without the main frame ticks while it is on.
    virtual void setTimer2Enabled(bool on) { timer2Enabled = on; }

    bool startEnabled = true;
    bool stopEnabled = false;
    bool lockedControlsEnabled = true;
    bool readCommandEnabled = true;
    QString frequencyLabel, blocksLabel, progressCaption;
    bool timer2Enabled = false;
};
