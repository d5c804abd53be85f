#include "forms/dialog_parts.h"

#include "forms/catalogue_combo.h"
#include "store/curve_editor.h"

#include <QComboBox>
#include <QDialog>
#include <QGridLayout>
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
        return takePointKey(box_, *static_cast<QKeyEvent *>(event), true, decimalChar_);
    }

private:
    QLineEdit *box_;
    const unsigned char &decimalChar_;
};

} // namespace

bool takePointKey(QLineEdit *box, const QKeyEvent &key, bool level, unsigned char decimalChar, QChar alsoTaken)
{
    if (key.text().size() != 1)
        return false;
    const QChar typed = key.text()[0];
    const auto accepted = !alsoTaken.isNull() && typed == alsoTaken ? std::optional<QChar>(typed)
                                                                    : pointKey(typed, level, decimalChar);
    if (accepted && *accepted == typed)
        return false;
    if (accepted)
        box->insert(QString(*accepted));
    return true;
}

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

NewCopyRows newCopyRows(QDialog *dialog, const QString &nameTip, const QString &addTip, const QString &copyTip)
{
    NewCopyRows rows{new QLineEdit(dialog),
                     catalogueCombo("DBCombo1", QStringLiteral("Source for the copy"), dialog),
                     catalogueCombo("DBCombo2", QStringLiteral("Destination for the copy"), dialog),
                     dialogButton("Command1", QStringLiteral("Add New"), addTip, dialog),
                     dialogButton("Command2", QStringLiteral("Copy"), copyTip, dialog)};
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    rows.text1->setObjectName(QStringLiteral("Text1"));
    rows.text1->setToolTip(nameTip);
    limitNameKeys(rows.text1);
    rows.source->setStyleSheet(QStringLiteral("QComboBox { color: green; }"));
    rows.destination->setStyleSheet(QStringLiteral("QComboBox { color: red; }"));
    auto *layout = new QGridLayout(dialog);
    layout->addWidget(rows.text1, 0, 0);
    layout->addWidget(rows.addNew, 0, 1);
    layout->addWidget(rows.source, 1, 0);
    layout->addWidget(rows.destination, 2, 0);
    layout->addWidget(rows.copy, 2, 1);
    return rows;
}
