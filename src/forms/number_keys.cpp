#include "forms/number_keys.h"

#include "core/context.h"
#include "forms/dialog_parts.h"

#include <QFocusEvent>
#include <QKeyEvent>
#include <QLineEdit>

namespace {

class NumberKeys : public QObject {
public:
    NumberKeys(QLineEdit *field, const Context &ctx, std::function<void()> validate, NumberTaken taken)
        : QObject(field), field_(field), ctx_(ctx), validate_(std::move(validate)), taken_(taken)
    {
    }

    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == QEvent::FocusOut && taken_ == NumberTaken::OnReturnOrLeaving) {
            // A box that the validation opens takes the focus too: only the user's move counts.
            const Qt::FocusReason reason = static_cast<QFocusEvent *>(event)->reason();
            if (reason != Qt::ActiveWindowFocusReason && reason != Qt::PopupFocusReason)
                runValidation();
            return false;
        }
        if (event->type() != QEvent::KeyPress)
            return false;
        const auto *key = static_cast<QKeyEvent *>(event);
        if (key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter) {
            runValidation();
            return true;
        }
        return takePointKey(field_, *key, true, ctx_.state.decimalChar);
    }

private:
    void runValidation()
    {
        if (busy_)
            return;
        busy_ = true;
        validate_();
        busy_ = false;
    }

    QLineEdit *field_;
    const Context &ctx_;
    std::function<void()> validate_;
    NumberTaken taken_;
    bool busy_ = false;
};

} // namespace

void numberKeys(QLineEdit *field, const Context &ctx, std::function<void()> validate, NumberTaken taken)
{
    field->installEventFilter(new NumberKeys(field, ctx, std::move(validate), taken));
}
