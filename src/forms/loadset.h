#pragma once
// The dialog loadset: brings a saved setting back into the state and the panels, or deletes one.
// Opened from the menu, or by a switch to normal mode, which it enters when it unloads.

#include "store/data_view.h"

#include <QDialog>

class Context;
class QComboBox;

class LoadsetForm : public QDialog {
    Q_OBJECT
public:
    explicit LoadsetForm(Context &ctx, QWidget *parent = nullptr);

private:
    void loadClicked();
    void deleteClicked();
    void showNames();

    Context &ctx_;
    DataView data1_;
    QComboBox *combo_; // DBCombo1 on Data1
};
