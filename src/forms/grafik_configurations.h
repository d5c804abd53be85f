#pragma once
// The configuration tab of the equipment area: conDBCombo1..conDBCombo6, conFrame2, conLabel3, conLabel4.

#include <QWidget>

class Context;

class GrafikConfigurations : public QWidget {
    Q_OBJECT
public:
    GrafikConfigurations(Context &ctx, QWidget *parent = nullptr);
    // Loads the editor from its views, as the tab changes of grafik and the dialogs ask.
    void reload();

private:
    Context &ctx_;
};
