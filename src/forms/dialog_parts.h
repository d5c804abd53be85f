#pragma once
// Parts the small dialogs share: their push buttons and their name boxes.

#include <QChar>

class QComboBox;
class QDialog;
class QKeyEvent;
class QLineEdit;
class QPushButton;
class QString;
class QWidget;

// A button that never takes Return as the dialog's default: Return belongs to the lists and boxes.
QPushButton *dialogButton(const char *name, const QString &caption, const QString &toolTip, QWidget *parent);

// The name box takes no more keys once its trimmed text is longer than the longest name
// (editing keys without text, Backspace among them, still work).
void limitNameKeys(QLineEdit *box, int longestName = 80);

// A key typed into a number box: a digit, the minus sign (in a level) and editing keys pass, a
// comma or point becomes `decimalChar`, `alsoTaken` passes as it is, any other character is
// dropped. True when the key was handled here: dropped, or put in the box in its place.
bool takePointKey(QLineEdit *box, const QKeyEvent &key, bool level, unsigned char decimalChar, QChar alsoTaken = {});

// A number box of a level: digits, the minus sign and editing keys pass, a comma or point typed
// becomes the decimal character that `decimalChar` holds at the time of the key.
void levelKeys(QLineEdit *box, const unsigned char &decimalChar);

// The rows of a "New / Copy" dialog: the new entry's name (Text1) with "Add New" (Command1), then
// the source list (DBCombo1, green) and the destination list (DBCombo2, red) with "Copy" (Command2).
struct NewCopyRows {
    QLineEdit *text1;
    QComboBox *source, *destination;
    QPushButton *addNew, *copy;
};
NewCopyRows newCopyRows(QDialog *dialog, const QString &nameTip, const QString &addTip, const QString &copyTip);
