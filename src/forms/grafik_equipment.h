#pragma once
// The equipment area fEquip of grafik: the tab equTab with the editors of limits, loss/gain
// components, workplace configurations and known bands.

#include <QFrame>

class Context;
class GrafikBands;
class GrafikComponents;
class GrafikConfigurations;
class GrafikLimits;
class QTabWidget;

class GrafikEquipment : public QFrame {
    Q_OBJECT
public:
    GrafikEquipment(Context &ctx, QWidget *parent = nullptr);
    // The four editors in the order loss/gain, limit, configuration, known signal.
    void reloadEditors();

    GrafikLimits *limits() const { return limits_; }
    GrafikComponents *components() const { return components_; }
    GrafikConfigurations *configurations() const { return configurations_; }
    GrafikBands *bands() const { return bands_; }

private:
    QTabWidget *equTab_;
    GrafikLimits *limits_;
    GrafikComponents *components_;
    GrafikConfigurations *configurations_;
    GrafikBands *bands_;
};
