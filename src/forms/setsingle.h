#pragma once
// The form setsingle, "Toolbox": the trigger watch and the centre frequency steps. Closing it
// ends a watch as Stop does; the form is hidden, never deleted, since a watch may be running
// inside one of its buttons.

#include "output/trigger_watch.h"

#include <QDialog>

class Context;
class QCheckBox;
class QLabel;
class QLineEdit;

class SetsingleForm : public QDialog, public TriggerControls {
    Q_OBJECT
public:
    explicit SetsingleForm(Context &ctx, QWidget *parent = nullptr);

    void setStateText(const QString &text) override;
    void setLevelText(const QString &text) override;

protected:
    void showEvent(QShowEvent *event) override;
    void closeEvent(QCloseEvent *event) override;

private:
    void showState();

    Context &ctx_;
    QLineEdit *text1_;
    QLineEdit *text2_;
    QLabel *label2_;
    QLabel *label3_;
    QCheckBox *check1_;
};
