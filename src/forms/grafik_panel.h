#pragma once
// The normal-mode panel of grafik, in two parts that mirror PanelControls on screen:
// - on fSetunit the lists of limits, units and configurations, the distance labels, the two limit
//   check boxes and "Correction On";
// - the analyser's front (`front()`), which grafik lays out at the right of the chart on the
//   measurement tab: span, bandwidth, attenuator, trace and memory selection, the view and
//   calculation boxes, the settings memories, centre, reference level and tracking generator.

#include "core/panel_controls.h"

#include <QWidget>

#include <array>

class Context;
class QAbstractButton;
class QButtonGroup;
class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QScrollArea;

class GrafikPanel : public QWidget, public PanelControls {
    Q_OBJECT
public:
    GrafikPanel(Context &ctx, QWidget *parent = nullptr);
    ~GrafikPanel() override;
    // The lists anew from their views, then the limits, the configuration and the unit.
    void reload();
    // The analyser's front; its parent is the measurement tab.
    QScrollArea *front() const;

    void setMaxholdLimitText(const QString &text) override;
    void setAverageLimitText(const QString &text) override;
    void setUnitText(const QString &text) override;
    void setConfigurationText(const QString &text) override;
    void setDistanceLabels(bool visible, const QString &number) override;
    void setDistanceFromDutLabel(bool visible, const QString &text) override;
    void setMaxholdLimitTicked(bool on) override;
    void setAverageLimitTicked(bool on) override;
    void setUnitLabel(const QString &text) override;
    void setTrackingLevelText(const QString &text) override;
    void setTrackingChecked(bool on) override;
    void setOption(PanelOption group, int index) override;
    void setChecked(PanelCheck box, bool on) override;
    void setSettingsMemory(int index) override;
    void setCenterFrequencyText(const QString &text) override;
    void setRefLevelText(const QString &text) override;
    void setTrackingEnabled(bool on) override;

signals:
    // grafik.Label5 lies on the measurement tab.
    void distanceFromDutChanged(bool visible, const QString &text);

protected:
    // The number fields take digits, a sign and the decimal character; cset takes no key.
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QScrollArea *buildFront();
    // The radio buttons `name`_0, `name`_1, ... in `columns` columns.
    QWidget *optionGroup(PanelOption group, const char *name, const QStringList &captions, int columns);
    QCheckBox *frontCheck(PanelCheck box, const char *name, const QString &caption);
    QLineEdit *numberField(const char *name, int field);

    Context &ctx_;
    QComboBox *detecDBCombo1_;
    QComboBox *detecDBCombo2_;
    QComboBox *DBmeasur1_;
    QComboBox *DBmeasur2_;
    QCheckBox *detecCheck5_;
    QCheckBox *detecCheck6_;
    QLabel *measLabel3_;
    QLabel *measLabel4_;
    std::array<QButtonGroup *, kPanelOptions> options_{};
    std::array<QCheckBox *, kPanelChecks> checks_{};
    QScrollArea *front_ = nullptr;
    QListWidget *cset_ = nullptr;
    QLineEdit *measText1_ = nullptr;
    QLineEdit *measText2_ = nullptr;
    QLineEdit *tgText1_ = nullptr;
    QLabel *tgLabel4_ = nullptr;
    QCheckBox *ctrack_ = nullptr;
};
