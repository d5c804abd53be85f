#pragma once
// The form notesfrm: edits the notes that go with a measurement, and sends them as a support mail.

#include <QDialog>

class Context;
class QPlainTextEdit;

class NotesForm : public QDialog {
    Q_OBJECT
public:
    explicit NotesForm(Context &ctx, QWidget *parent = nullptr);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void keepWithinLength();

    Context &ctx_;
    QPlainTextEdit *text1_;
};
