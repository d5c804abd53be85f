#pragma once
// The known bands tab of the equipment area: DBGrid1, Text3(0..5), Check3, Check4, Label18 and its buttons.

#include <QWidget>
#include <array>

class Context;
class QCheckBox;
class QLabel;
class QLineEdit;
class QTableWidget;

class GrafikBands : public QWidget {
    Q_OBJECT
public:
    GrafikBands(Context &ctx, QWidget *parent = nullptr);
    // Loads the editor from its views, as the tab changes of grafik and the dialogs ask.
    void reload();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    // DBGrid1 anew from the rows of `known`, on its current row; the boxes stay.
    void showRows();
    void showCurrent();
    // A key in Text3(box); true when the key was dealt with here.
    bool textKey(int box, QKeyEvent *key);

    Context &ctx_;
    QTableWidget *grid_;
    std::array<QLineEdit *, 6> text3_{};
    std::array<QLabel *, 2> unitLabels_{};
    QCheckBox *check3_;
    QCheckBox *check4_;
    QLabel *label18_;
};
