#pragma once
// The limit tab of the equipment area: limGrid1, limText1..limText6, limCheck1, limCheck2, limDBCombo1, limDBCombo2 and the three-picture preview.

#include <QWidget>

class Context;

class GrafikLimits : public QWidget {
    Q_OBJECT
public:
    GrafikLimits(Context &ctx, QWidget *parent = nullptr);
    // Loads the editor from its views, as the tab changes of grafik and the dialogs ask.
    void reload();

private:
    Context &ctx_;
};
