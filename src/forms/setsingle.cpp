#include "forms/setsingle.h"

#include "core/context.h"
#include "forms/dialog_parts.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

namespace {

QLabel *label(const char *name, const QString &caption, QWidget *parent)
{
    auto *l = new QLabel(caption, parent);
    l->setObjectName(QLatin1String(name));
    return l;
}

} // namespace

SetsingleForm::SetsingleForm(Context &ctx, QWidget *parent)
    : QDialog(parent), ctx_(ctx), text1_(new QLineEdit(this)), text2_(new QLineEdit(this)),
      label2_(label("Label2", {}, this)), label3_(label("Label3", {}, this)),
      check1_(new QCheckBox(QStringLiteral("Print after trigger and wait for trigger"), this))
{
    setObjectName(QStringLiteral("setsingle"));
    setWindowTitle(QStringLiteral("Toolbox"));
    text1_->setObjectName(QStringLiteral("Text1"));
    text1_->setToolTip(QStringLiteral("Lvel for the trigger"));
    text2_->setObjectName(QStringLiteral("Text2"));
    text2_->setToolTip(QStringLiteral("Step for the centerfrequency"));
    for (QLineEdit *box : {text1_, text2_}) {
        box->setMaximumWidth(90);
        levelKeys(box, ctx_.state.decimalChar);
    }
    check1_->setObjectName(QStringLiteral("Check1"));
    QPushButton *cursor = dialogButton("Command1", QStringLiteral("Cursor A -->"),
                                       QStringLiteral("Set the triggerlevel to the cursor 1 level"), this);
    QPushButton *start = dialogButton("Command2", QStringLiteral("Start"), QStringLiteral("Wait for a triggersignal"), this);
    QPushButton *stop = dialogButton("Command3", QStringLiteral("Stop"),
                                     QStringLiteral("Set the analyser back into the normal mode"), this);
    QPushButton *down = dialogButton("Command4", QStringLiteral("Step -"),
                                     QStringLiteral("Subtract the selected value to the centerfrequency"), this);
    QPushButton *up = dialogButton("Command5", QStringLiteral("Step +"),
                                   QStringLiteral("Add the selected value to the centerfrequency"), this);

    auto *layout = new QGridLayout(this);
    layout->addWidget(label("Label1", QStringLiteral("Triggervalue"), this), 0, 0);
    layout->addWidget(cursor, 0, 1);
    layout->addWidget(text1_, 0, 2);
    layout->addWidget(label2_, 0, 3);
    layout->addWidget(label("Label4", QStringLiteral("Read signal after trigger"), this), 1, 0, 1, 2);
    layout->addWidget(label3_, 1, 2, 1, 2);
    layout->addWidget(check1_, 2, 0, 1, 4);
    layout->addWidget(start, 3, 0);
    layout->addWidget(stop, 3, 1);
    layout->addWidget(down, 4, 0);
    layout->addWidget(text2_, 4, 1);
    layout->addWidget(up, 4, 2);

    connect(text1_, &QLineEdit::returnPressed, this, [this] { triggerLevelEntered(ctx_, *this, text1_->text()); });
    connect(check1_, &QCheckBox::clicked, this, [this](bool on) { ctx_.state.printAfterTrigger = on ? 1 : 0; });
    connect(cursor, &QPushButton::clicked, this, [this] { triggerLevelFromCursor(ctx_, *this); });
    connect(start, &QPushButton::clicked, this, [this] { startTrigger(ctx_, *this, text1_->text()); });
    connect(stop, &QPushButton::clicked, this, [this] { ctx_.state.triggerOn = 0; });
    connect(down, &QPushButton::clicked, this, [this] { stepCenterFrequency(ctx_, text2_->text(), -1); });
    connect(up, &QPushButton::clicked, this, [this] { stepCenterFrequency(ctx_, text2_->text(), 1); });
}

void SetsingleForm::setStateText(const QString &text)
{
    TriggerControls::setStateText(text);
    label3_->setText(text);
    label3_->repaint(); // the watch may be in its wait loop
}

void SetsingleForm::setLevelText(const QString &text)
{
    TriggerControls::setLevelText(text);
    text1_->setText(text);
}

// What every paint of the form shows, taken when it comes up.
void SetsingleForm::showState()
{
    setStateText(triggerStateText(ctx_));
    label2_->setText(ctx_.state.unitName);
    setLevelText(triggerPaintedLevel(ctx_));
    check1_->setChecked(ctx_.state.printAfterTrigger == 1);
}

void SetsingleForm::showEvent(QShowEvent *event)
{
    showState();
    QDialog::showEvent(event);
}

void SetsingleForm::closeEvent(QCloseEvent *event)
{
    ctx_.state.triggerOn = 0;
    QDialog::closeEvent(event);
}
