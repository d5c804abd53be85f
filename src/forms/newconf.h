#pragma once
// The dialog newconf: a new workplace configuration, or the components of one copied onto another.

#include "store/configurations.h"

#include <QDialog>
#include <functional>

class Context;
class QComboBox;
class QLineEdit;

class NewconfForm : public QDialog {
    Q_OBJECT
public:
    // `reloadEditor` loads the configuration tab of grafik after each change.
    NewconfForm(Context &ctx, std::function<void()> reloadEditor, QWidget *parent = nullptr);

protected:
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    void addNewClicked();
    void copyClicked();
    void showCombos();

    Context &ctx_;
    std::function<void()> reloadEditor_;
    NewconfViews views_;
    QLineEdit *text1_;
    QComboBox *source_;      // DBCombo1 on Data3
    QComboBox *destination_; // DBCombo2 on Data2
};
