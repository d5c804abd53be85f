#include "forms/run_controls_view.h"

#include "forms/grafik.h"
#include "forms/main_frame.h"

#include <QAction>
#include <QLabel>
#include <QTimer>

QWidget *RunControlsView::grafikControl(const char *name) const
{
    GrafikForm *grafik = frame_.grafik();
    return grafik ? grafik->findChild<QWidget *>(QLatin1String(name)) : nullptr;
}

void RunControlsView::enable(const char *name, bool on) const
{
    if (QWidget *control = grafikControl(name))
        control->setEnabled(on);
}

void RunControlsView::setStartEnabled(bool on)
{
    RunControls::setStartEnabled(on);
    enable("emcCommand1", on);
}

void RunControlsView::setStopEnabled(bool on)
{
    RunControls::setStopEnabled(on);
    enable("emcCommand2", on);
}

void RunControlsView::setLockedControlsEnabled(bool on)
{
    RunControls::setLockedControlsEnabled(on);
    for (const char *name : {"fSetunit", "fTest", "fEquip"})
        enable(name, on);
    if (auto *picture = frame_.findChild<QWidget *>(QStringLiteral("Picture1")))
        picture->setEnabled(on);
    for (const char *name : {"mnuhlp", "mnuKonfiguration", "settings", "mnumode"})
        if (auto *menu = frame_.findChild<QAction *>(QLatin1String(name)))
            menu->setEnabled(on);
    // Frame1 holds the two buttons as well, and Stop must stay in reach: its other controls are locked.
    if (QWidget *frame1 = grafikControl("Frame1"))
        for (QWidget *control : frame1->findChildren<QWidget *>())
            if (!control->objectName().startsWith(QLatin1String("emcCommand"))
                && !control->objectName().startsWith(QLatin1String("emcLabel")))
                control->setEnabled(on);
    enable("Check6", on);
}

void RunControlsView::setReadCommandEnabled(bool on)
{
    RunControls::setReadCommandEnabled(on);
    enable("Command1", on);
}

void RunControlsView::setFrequencyLabel(const QString &text)
{
    RunControls::setFrequencyLabel(text);
    if (auto *label = qobject_cast<QLabel *>(grafikControl("emcLabel1")))
        label->setText(text);
}

void RunControlsView::setBlocksLabel(const QString &text)
{
    RunControls::setBlocksLabel(text);
    if (auto *label = qobject_cast<QLabel *>(grafikControl("emcLabel3")))
        label->setText(text);
}

void RunControlsView::setProgressCaption(const QString &text)
{
    RunControls::setProgressCaption(text);
    if (GrafikForm *grafik = frame_.grafik())
        grafik->setCaption(text);
}

void RunControlsView::setTimer2Enabled(bool on)
{
    RunControls::setTimer2Enabled(on);
    if (auto *timer = frame_.findChild<QTimer *>(QStringLiteral("Timer2")))
        on ? timer->start() : timer->stop();
}
