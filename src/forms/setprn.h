#pragma once
// The form setprn, "Printer settings": what the report shows (orientation, cursors, colour,
// notes, date, headline), with the page in the preview beside it. "&Print" prints and closes
// both forms; "&Cancel" closes them and keeps what was changed.

#include <QDialog>
#include <QPointer>

class Context;
class PrinteForm;
class QLineEdit;

class SetprnForm : public QDialog {
    Q_OBJECT
public:
    explicit SetprnForm(Context &ctx, QWidget *parent = nullptr);

    PrinteForm *preview() const { return printe_; }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void closeEvent(QCloseEvent *event) override;

private:
    void headlineEntered();
    void refreshPreview();

    Context &ctx_;
    QLineEdit *text1_;
    QPointer<PrinteForm> printe_;
};
