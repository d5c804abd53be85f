#pragma once
// The dialog delconf: deletes the configuration picked in its list, with no question.

#include "store/data_view.h"

#include <QDialog>
#include <functional>

class Context;
class QComboBox;

class DelconfForm : public QDialog {
    Q_OBJECT
public:
    // `reloadEditor` loads the configuration tab of grafik after the delete.
    DelconfForm(Context &ctx, std::function<void()> reloadEditor, QWidget *parent = nullptr);

private:
    void deleteClicked();

    Context &ctx_;
    std::function<void()> reloadEditor_;
    DataView data2_;
    QComboBox *combo_; // DBCombo2
};
