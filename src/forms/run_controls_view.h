#pragma once
// The controls of an EMC run on screen: the buttons and labels of grafik's Frame1, the controls a
// run locks on grafik and on the main frame, and Timer2 of the main frame.

#include "core/run_controls.h"

class MainFrame;
class QWidget;

class RunControlsView : public RunControls {
public:
    explicit RunControlsView(MainFrame &frame) : frame_(frame) {}

    void setStartEnabled(bool on) override;
    void setStopEnabled(bool on) override;
    void setLockedControlsEnabled(bool on) override;
    void setReadCommandEnabled(bool on) override;
    void setFrequencyLabel(const QString &text) override;
    void setBlocksLabel(const QString &text) override;
    void setProgressCaption(const QString &text) override;
    void setTimer2Enabled(bool on) override;

private:
    // A control of grafik by its name; nothing while grafik is not loaded.
    QWidget *grafikControl(const char *name) const;
    void enable(const char *name, bool on) const;

    MainFrame &frame_;
};
