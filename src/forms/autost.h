#pragma once
// The form autost, "AutoStore": the interval, the file name and the print after each store;
// Start/Pause and Stop. While it is open Timer1 stores through it.

#include "output/autostore.h"

#include <QDialog>

class Context;
class QCheckBox;
class QLabel;
class QLineEdit;
class QPushButton;

class AutostForm : public QDialog, public AutostoreControls {
    Q_OBJECT
public:
    explicit AutostForm(Context &ctx, QWidget *parent = nullptr);
    ~AutostForm() override;

    void setFileLabel(const QString &text) override;
    void setNextTimeLabel(const QString &text) override;
    void setStartCaption(const QString &text) override;
    void setIntervalText(const QString &text) override;

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    Context &ctx_;
    QLineEdit *text1_;
    QCheckBox *check1_;
    QPushButton *command2_;
    QLabel *label1_;
    QLabel *label4_;
};
