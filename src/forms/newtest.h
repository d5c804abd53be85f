#pragma once
// The dialog newtest, "New / Copy Test": a new EMC test, or the settings of one copied onto another.

#include "emc/emc_test.h"

#include <QDialog>

class Context;
class QComboBox;
class QLineEdit;

class NewtestForm : public QDialog {
    Q_OBJECT
public:
    explicit NewtestForm(Context &ctx, QWidget *parent = nullptr);

protected:
    // Closing refreshes the tests and makes the selected one the state.
    void hideEvent(QHideEvent *event) override;

private:
    void addNewClicked();
    void showCombos();

    Context &ctx_;
    NewtestViews views_;
    QLineEdit *text1_;
    QComboBox *source_;      // DBCombo1 on Data3
    QComboBox *destination_; // DBCombo2 on Data2
};
