#pragma once
// The dialog saveset: stores the panel and the view flags under a name. Opened from the menu, or
// by a switch to EMC mode, which it enters when it unloads.

#include "store/saved_settings.h"

#include <QDialog>

class Context;
class QLineEdit;
class QTableWidget;

class SavesetForm : public QDialog {
    Q_OBJECT
public:
    explicit SavesetForm(Context &ctx, QWidget *parent = nullptr);

private:
    void saveClicked();
    void showNames();

    Context &ctx_;
    SavesetViews views_;
    QLineEdit *text1_;
    QTableWidget *grid_; // DBGrid1 on Data2
};
