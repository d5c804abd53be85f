#pragma once
// The form colordef: the 13 screen and 13 printer colours, each a button that opens the colour
// dialog and a label beside it that shows the colour.

#include <QDialog>

class Context;

class ColordefForm : public QDialog {
    Q_OBJECT
public:
    explicit ColordefForm(Context &ctx, QWidget *parent = nullptr);

protected:
    // Each label takes its colour whenever the form comes up.
    void showEvent(QShowEvent *event) override;

private:
    Context &ctx_;
};
