#pragma once
// The loss/gain tab of the equipment area: LGGrid1, LGText1..LGText6, lgOption1, LGDBCombo1 and the three-picture preview.

#include <QWidget>

class Context;

class GrafikComponents : public QWidget {
    Q_OBJECT
public:
    GrafikComponents(Context &ctx, QWidget *parent = nullptr);
    // Loads the editor from its views, as the tab changes of grafik and the dialogs ask.
    void reload();

private:
    Context &ctx_;
};
