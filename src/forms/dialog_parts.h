#pragma once
// Parts the small dialogs share: their push buttons and their name boxes.

class QLineEdit;
class QPushButton;
class QString;
class QWidget;

// A button that never takes Return as the dialog's default: Return belongs to the lists and boxes.
QPushButton *dialogButton(const char *name, const QString &caption, const QString &toolTip, QWidget *parent);

// The name box takes no more keys once its trimmed text is longer than the longest name
// (editing keys without text, Backspace among them, still work).
void limitNameKeys(QLineEdit *box, int longestName = 80);

// A number box of a level: digits, the minus sign and editing keys pass, a comma or point typed
// becomes the decimal character that `decimalChar` holds at the time of the key.
void levelKeys(QLineEdit *box, const unsigned char &decimalChar);
