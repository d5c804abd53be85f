#include "forms/notesfrm.h"

#include "core/context.h"
#include "forms/dialog_parts.h"
#include "output/notes.h"

#include <QGridLayout>
#include <QKeyEvent>
#include <QPlainTextEdit>
#include <QPushButton>

NotesForm::NotesForm(Context &ctx, QWidget *parent) : QDialog(parent), ctx_(ctx), text1_(new QPlainTextEdit(this))
{
    setObjectName(QStringLiteral("notesfrm"));
    setWindowTitle(QStringLiteral("Notes"));
    setAttribute(Qt::WA_DeleteOnClose);
    text1_->setObjectName(QStringLiteral("Text1"));
    text1_->setPlainText(ctx_.state.notes);
    text1_->installEventFilter(this);
    QPushButton *clear = dialogButton("Command1", QStringLiteral("&Clear"), {}, this);
    QPushButton *exit = dialogButton("Command2", QStringLiteral("E&xit"), {}, this);
    QPushButton *ok = dialogButton("Command3", QStringLiteral("&OK"), {}, this);
    QPushButton *mail = dialogButton("Command5", QStringLiteral("Send as e-mail"), {}, this);
    auto *layout = new QGridLayout(this);
    layout->addWidget(text1_, 0, 0, 1, 4);
    layout->addWidget(clear, 1, 0);
    layout->addWidget(mail, 1, 1);
    layout->addWidget(ok, 1, 2);
    layout->addWidget(exit, 1, 3);
    resize(520, 360);

    connect(text1_, &QPlainTextEdit::textChanged, this, &NotesForm::keepWithinLength);
    connect(clear, &QPushButton::clicked, text1_, &QPlainTextEdit::clear);
    connect(exit, &QPushButton::clicked, this, &QDialog::close);
    connect(ok, &QPushButton::clicked, this, [this] {
        ctx_.state.notes = text1_->toPlainText();
        close();
    });
    connect(mail, &QPushButton::clicked, this, [this] {
        if (sendNotesByMail(ctx_, text1_->toPlainText()))
            close();
    });
}

bool NotesForm::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == text1_ && event->type() == QEvent::KeyPress) {
        const auto *key = static_cast<QKeyEvent *>(event);
        const bool adds = !key->text().isEmpty() && key->key() != Qt::Key_Backspace && key->key() != Qt::Key_Delete;
        if (adds && !notesTakeKey(text1_->toPlainText()))
            return true;
    }
    return QDialog::eventFilter(watched, event);
}

// A paste may bring more than the field holds.
void NotesForm::keepWithinLength()
{
    const QString text = text1_->toPlainText();
    const QString kept = notesWithinLength(text);
    if (kept.size() == text.size())
        return;
    text1_->setPlainText(kept);
    text1_->moveCursor(QTextCursor::End);
}
