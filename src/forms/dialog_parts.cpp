#include "forms/dialog_parts.h"

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

} // namespace

void limitNameKeys(QLineEdit *box, int longestName) { box->installEventFilter(new NameKeys(box, longestName)); }

QPushButton *dialogButton(const char *name, const QString &caption, const QString &toolTip, QWidget *parent)
{
    auto *b = new QPushButton(caption, parent);
    b->setObjectName(QLatin1String(name));
    b->setToolTip(toolTip);
    b->setAutoDefault(false);
    return b;
}
