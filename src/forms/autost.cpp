#include "forms/autost.h"

#include "core/context.h"
#include "forms/dialog_parts.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

AutostForm::AutostForm(Context &ctx, QWidget *parent)
    : QDialog(parent), ctx_(ctx), text1_(new QLineEdit(this)),
      check1_(new QCheckBox(QStringLiteral("Print after storage"), this)),
      command2_(dialogButton("Command2", QStringLiteral("&Start"), {}, this)), label1_(new QLabel(this)),
      label4_(new QLabel(this))
{
    setObjectName(QStringLiteral("autost"));
    setWindowTitle(QStringLiteral("AutoStore"));
    setAttribute(Qt::WA_DeleteOnClose);
    text1_->setObjectName(QStringLiteral("Text1"));
    text1_->setToolTip(QStringLiteral("Set the waittime between to saved signals"));
    text1_->setMaximumWidth(80);
    check1_->setObjectName(QStringLiteral("Check1"));
    label1_->setObjectName(QStringLiteral("Label1"));
    label4_->setObjectName(QStringLiteral("Label4"));
    QPushButton *select = dialogButton("Command1", QStringLiteral("Select &Filename"), {}, this);
    QPushButton *stop = dialogButton("Command4", QStringLiteral("S&top"), {}, this);
    QPushButton *exit = dialogButton("Command3", QStringLiteral("E&xit"), {}, this);

    auto *layout = new QGridLayout(this);
    layout->addWidget(new QLabel(QStringLiteral("Filename"), this), 0, 0);
    layout->addWidget(label1_, 0, 1, 1, 3);
    layout->addWidget(new QLabel(QStringLiteral("Store every"), this), 1, 0);
    layout->addWidget(text1_, 1, 1);
    layout->addWidget(new QLabel(QStringLiteral("seconds"), this), 1, 2);
    layout->addWidget(check1_, 2, 0, 1, 2);
    layout->addWidget(new QLabel(QStringLiteral("Next storage:"), this), 3, 0);
    layout->addWidget(label4_, 3, 1, 1, 3);
    layout->addWidget(select, 4, 0);
    layout->addWidget(command2_, 4, 1);
    layout->addWidget(stop, 4, 2);
    layout->addWidget(exit, 4, 3);

    autostoreLoad(ctx_, *this);
    check1_->setChecked(ctx_.state.autostorePrint == 1);
    // Return and leaving the box both confirm the interval.
    connect(text1_, &QLineEdit::editingFinished, this,
            [this] { autostoreIntervalEntered(ctx_, *this, text1_->text()); });
    connect(check1_, &QCheckBox::clicked, this, [this](bool on) { ctx_.state.autostorePrint = on ? 1 : 0; });
    connect(select, &QPushButton::clicked, this, [this] { autostoreSelectFile(ctx_, *this); });
    connect(command2_, &QPushButton::clicked, this, [this] { autostoreStartPause(ctx_, *this); });
    connect(stop, &QPushButton::clicked, this, [this] { autostoreStop(ctx_, *this); });
    connect(exit, &QPushButton::clicked, this, [this] {
        if (autostoreExit(ctx_))
            close();
    });
    // Timer1 sets the next time before it stores.
    ctx_.calls.autostoreNow = [this] {
        autostoreNow(ctx_, *this);
        setNextTimeLabel(autostoreTimeText(ctx_.state.autostoreNextTime));
    };
}

AutostForm::~AutostForm()
{
    ctx_.state.autostoreOn = 0;
    ctx_.calls.autostoreNow = nullptr;
}

void AutostForm::closeEvent(QCloseEvent *event)
{
    ctx_.state.autostoreOn = 0;
    event->accept();
}

void AutostForm::setFileLabel(const QString &text)
{
    AutostoreControls::setFileLabel(text);
    label1_->setText(text);
}

void AutostForm::setNextTimeLabel(const QString &text)
{
    AutostoreControls::setNextTimeLabel(text);
    label4_->setText(text);
}

void AutostForm::setStartCaption(const QString &text)
{
    AutostoreControls::setStartCaption(text);
    command2_->setText(text);
}

void AutostForm::setIntervalText(const QString &text)
{
    AutostoreControls::setIntervalText(text);
    text1_->setText(text);
}
