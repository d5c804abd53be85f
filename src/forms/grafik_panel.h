#pragma once
// The normal-mode measurement panel fSetunit: the lists of limits, units and configurations.

#include <QWidget>

class Context;

class GrafikPanel : public QWidget {
    Q_OBJECT
public:
    GrafikPanel(Context &ctx, QWidget *parent = nullptr);
    // Loads the editor from its views, as the tab changes of grafik and the dialogs ask.
    void reload();

private:
    Context &ctx_;
};
