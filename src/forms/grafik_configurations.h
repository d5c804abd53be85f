#pragma once
// The configuration tab of the equipment area: conDBCombo1..conDBCombo6, conFrame2, conLabel3, conLabel4.

#include "core/app_state.h"

#include <QWidget>
#include <array>

class Context;
class QComboBox;
class QFrame;
class QLabel;

class GrafikConfigurations : public QWidget {
    Q_OBJECT
public:
    GrafikConfigurations(Context &ctx, QWidget *parent = nullptr);
    // Loads the editor from its views, as the tab changes of grafik and the dialogs ask.
    void reload();

private:
    Context &ctx_;
    QComboBox *conDBCombo1_;
    std::array<QComboBox *, kChainSlots> slots_{}; // slot 1 conDBCombo6 ... slot 5 conDBCombo2
    QFrame *conFrame2_;
    QLabel *conLabel3_;
    QLabel *conLabel4_;
};
