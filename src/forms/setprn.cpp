#include "forms/setprn.h"

#include "core/context.h"
#include "forms/printe.h"

#include <QCheckBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

// The headline takes no more keys once it is longer than this, trimmed.
constexpr int kHeadlineLength = 60;

} // namespace

SetprnForm::SetprnForm(Context &ctx, QWidget *parent) : QDialog(parent), ctx_(ctx)
{
    setObjectName(QStringLiteral("setprn"));
    setWindowTitle(QStringLiteral("Printer settings"));
    setAttribute(Qt::WA_DeleteOnClose);
    move(0, 0);
    AppState &s = ctx_.state;
    auto *layout = new QVBoxLayout(this);
    const struct {
        const char *name, *caption, *tip;
        quint8 &field;
        bool portraitOnly;
    } checks[] = {{"Check2", "Vertical", "Print in vertical direction", s.printVertical, false},
                  {"Check1", "Print Cursor", "Print the cursor", s.printCursor, false},
                  {"Check7", "Color", "Print in color (If the printer support this funktion)", s.printInColour, false},
                  // The preview shows the notes only in portrait; the field changes either way.
                  {"Check6", "Notes", "Print the notes", s.printNotes, true},
                  {"Check5", "Date", "Print the date", s.printDate, false}};
    for (const auto &check : checks) {
        auto *box = new QCheckBox(QLatin1String(check.caption), this);
        box->setObjectName(QLatin1String(check.name));
        box->setToolTip(QLatin1String(check.tip));
        box->setChecked(check.field == 1);
        layout->addWidget(box);
        quint8 &field = check.field;
        const bool portraitOnly = check.portraitOnly;
        connect(box, &QCheckBox::clicked, this, [this, &field, portraitOnly](bool on) {
            field = on ? 1 : 0;
            if (!portraitOnly || ctx_.state.printVertical == 1)
                refreshPreview();
        });
    }
    auto *headline = new QFormLayout;
    text1_ = new QLineEdit(s.headline, this);
    text1_->setObjectName(QStringLiteral("Text1"));
    text1_->setToolTip(QStringLiteral("Set the headline"));
    text1_->installEventFilter(this);
    headline->addRow(QStringLiteral("Headline"), text1_);
    layout->addLayout(headline);
    connect(text1_, &QLineEdit::returnPressed, this, &SetprnForm::headlineEntered);
    connect(text1_, &QLineEdit::editingFinished, this, &SetprnForm::headlineEntered);

    auto *buttons = new QHBoxLayout;
    auto *print = new QPushButton(QStringLiteral("&Print"), this);
    print->setObjectName(QStringLiteral("Command1"));
    auto *cancel = new QPushButton(QStringLiteral("&Cancel"), this);
    cancel->setObjectName(QStringLiteral("Command2"));
    for (QPushButton *button : {print, cancel}) {
        button->setAutoDefault(false);
        buttons->addWidget(button);
    }
    layout->addLayout(buttons);
    connect(print, &QPushButton::clicked, this, [this] {
        call(ctx_.calls.printNow);
        close();
    });
    connect(cancel, &QPushButton::clicked, this, &SetprnForm::close);
    // Escape rejects the dialog without closing it: close it, and the preview with it.
    connect(this, &QDialog::rejected, this, &SetprnForm::close);

    printe_ = new PrinteForm(ctx_, parent);
    printe_->show();
}

// The preview goes with the dialog.
void SetprnForm::closeEvent(QCloseEvent *event)
{
    if (printe_)
        printe_->close();
    QDialog::closeEvent(event);
}

void SetprnForm::headlineEntered()
{
    ctx_.state.headline = text1_->text().trimmed();
    refreshPreview();
}

void SetprnForm::refreshPreview()
{
    if (printe_)
        printe_->refresh();
}

bool SetprnForm::eventFilter(QObject *watched, QEvent *event)
{
    // Keys that would add a character are dropped once the headline is longer than 60 characters.
    if (watched == text1_ && event->type() == QEvent::KeyPress) {
        const auto *key = static_cast<QKeyEvent *>(event);
        if (!key->text().isEmpty() && key->text()[0].isPrint() && text1_->text().trimmed().size() > kHeadlineLength)
            return true;
    }
    return QDialog::eventFilter(watched, event);
}
