#pragma once
// The known bands tab of the equipment area: DBGrid1, Text3(0..5), Check3, Check4, Label18 and its buttons.

#include <QWidget>

class Context;

class GrafikBands : public QWidget {
    Q_OBJECT
public:
    GrafikBands(Context &ctx, QWidget *parent = nullptr);
    // Loads the editor from its views, as the tab changes of grafik and the dialogs ask.
    void reload();

private:
    Context &ctx_;
};
