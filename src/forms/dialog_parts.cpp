#include "forms/dialog_parts.h"

#include "store/curve_editor.h"

#include <QKeyEvent>
#include <QLineEdit>
#include <QPushButton>

namespace {

class NameKeys : public QObject {
public:
    NameKeys(QLineEdit *box, int longestName) : QObject(box), box_(box), longest_(longestName) {}

    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() != QEvent::KeyPress)
            return false;
        const auto *key = static_cast<QKeyEvent *>(event);
        return !key->text().isEmpty() && key->key() != Qt::Key_Backspace && box_->text().trimmed().size() > longest_;
    }

private:
    QLineEdit *box_;
    int longest_;
};

class LevelKeys : public QObject {
public:
    LevelKeys(QLineEdit *box, const unsigned char &decimalChar) : QObject(box), box_(box), decimalChar_(decimalChar) {}

    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() != QEvent::KeyPress)
            return false;
        const auto *key = static_cast<QKeyEvent *>(event);
        if (key->text().size() != 1)
            return false;
        const QChar typed = key->text()[0];
        const auto accepted = pointKey(typed, true, decimalChar_);
        if (accepted && *accepted == typed)
            return false;
        if (accepted)
            box_->insert(QString(*accepted));
        return true;
    }

private:
    QLineEdit *box_;
    const unsigned char &decimalChar_;
};

} // namespace

void levelKeys(QLineEdit *box, const unsigned char &decimalChar)
{
    box->installEventFilter(new LevelKeys(box, decimalChar));
}

void limitNameKeys(QLineEdit *box, int longestName) { box->installEventFilter(new NameKeys(box, longestName)); }

QPushButton *dialogButton(const char *name, const QString &caption, const QString &toolTip, QWidget *parent)
{
    auto *b = new QPushButton(caption, parent);
    b->setObjectName(QLatin1String(name));
    b->setToolTip(toolTip);
    b->setAutoDefault(false);
    return b;
}
