#pragma once
// The transmission monitor: what was sent and received in the current exchange, with the codes
// of the received bytes. Each change is drawn at once, so a hanging dialogue can be read.

#include "core/frame_controls.h"

#include <QWidget>

class QLabel;

class TrForm : public QWidget {
    Q_OBJECT
public:
    explicit TrForm(QWidget *parent = nullptr);
    void showText(FrameControls::MonitorLabel label, const QString &text);

private:
    QLabel *label3_; // sent
    QLabel *label4_; // received
    QLabel *label5_; // codes
};
