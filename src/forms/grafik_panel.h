#pragma once
// The normal-mode measurement panel fSetunit: the lists of limits, units and configurations,
// the distance labels and the two limit check boxes. It mirrors PanelControls on screen.

#include "core/panel_controls.h"

#include <QWidget>

class Context;
class QCheckBox;
class QComboBox;
class QLabel;

class GrafikPanel : public QWidget, public PanelControls {
    Q_OBJECT
public:
    GrafikPanel(Context &ctx, QWidget *parent = nullptr);
    ~GrafikPanel() override;
    // The lists anew from their views, then the limits, the configuration and the unit.
    void reload();

    void setMaxholdLimitText(const QString &text) override;
    void setAverageLimitText(const QString &text) override;
    void setUnitText(const QString &text) override;
    void setConfigurationText(const QString &text) override;
    void setDistanceLabels(bool visible, const QString &number) override;
    void setDistanceFromDutLabel(bool visible, const QString &text) override;
    void setMaxholdLimitTicked(bool on) override;
    void setAverageLimitTicked(bool on) override;

signals:
    // grafik.Label5 lies on the measurement tab.
    void distanceFromDutChanged(bool visible, const QString &text);

private:
    Context &ctx_;
    QComboBox *detecDBCombo1_;
    QComboBox *detecDBCombo2_;
    QComboBox *DBmeasur1_;
    QComboBox *DBmeasur2_;
    QCheckBox *detecCheck5_;
    QCheckBox *detecCheck6_;
    QLabel *measLabel3_;
    QLabel *measLabel4_;
};
