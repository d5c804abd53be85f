#pragma once
// The serial port setup: line speed, port (Com1..Com4 with their device paths, or the built-in
// simulator), and the search over the ports.

#include "core/context.h"

#include <QDialog>
#include <QList>

class QLineEdit;
class QRadioButton;

class BoxcomForm : public QDialog {
    Q_OBJECT
public:
    BoxcomForm(Context &ctx, QWidget *parent = nullptr);

private:
    QWidget *buildBaudGroup();
    QWidget *buildPortGroup();
    void okClicked();
    void autosearchClicked();
    void takeOptions();
    void applyDevicePaths();

    Context &ctx_;
    QList<QRadioButton *> baud_;  // baud1..baud5: the rates of kBaudRates
    QList<QRadioButton *> port_;  // port0 the simulator, port1..port4 Com1..Com4
    QList<QLineEdit *> portPath_; // portPath1..portPath4
};
