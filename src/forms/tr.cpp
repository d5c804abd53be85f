#include "forms/tr.h"

#include <QGridLayout>
#include <QLabel>

namespace {

QLabel *monitorLabel(const char *name, QWidget *parent)
{
    auto *label = new QLabel(parent);
    label->setObjectName(QLatin1String(name));
    label->setTextFormat(Qt::PlainText); // line bytes are shown as they are, never as markup
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    label->setMinimumWidth(260);
    label->setWordWrap(true);
    return label;
}

} // namespace

TrForm::TrForm(QWidget *parent)
    : QWidget(parent),
      label3_(monitorLabel("Label3", this)),
      label4_(monitorLabel("Label4", this)),
      label5_(monitorLabel("Label5", this))
{
    setObjectName(QStringLiteral("Tr"));
    setWindowTitle(QStringLiteral("Transmission"));
    auto *grid = new QGridLayout(this);
    grid->addWidget(new QLabel(QStringLiteral("Send"), this), 0, 0);
    grid->addWidget(label3_, 0, 1);
    grid->addWidget(new QLabel(QStringLiteral("Receive"), this), 1, 0);
    grid->addWidget(label4_, 1, 1);
    grid->addWidget(label5_, 2, 1);
    grid->setRowStretch(3, 1);
}

void TrForm::showText(FrameControls::MonitorLabel label, const QString &text)
{
    QLabel *target = label == FrameControls::SentLabel       ? label3_
                     : label == FrameControls::ReceivedLabel ? label4_
                                                             : label5_;
    target->setText(text);
    target->repaint();
}
