#pragma once
// The dialog deltest, "Delete EMC-Test": deletes the test picked in its list, with no question.

#include "store/data_view.h"

#include <QDialog>

class Context;
class QComboBox;

class DeltestForm : public QDialog {
    Q_OBJECT
public:
    explicit DeltestForm(Context &ctx, QWidget *parent = nullptr);

protected:
    // Closing refreshes the tests and makes the selected one the state.
    void hideEvent(QHideEvent *event) override;

private:
    void deleteClicked();

    Context &ctx_;
    DataView data2_;
    QComboBox *combo_; // DBCombo2
};
