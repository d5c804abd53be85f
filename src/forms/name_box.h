#pragma once
// The name boxes of the dialogs: they take no more keys once their trimmed text is longer than
// the longest name (editing keys without text, Backspace among them, still work).

class QLineEdit;

void limitNameKeys(QLineEdit *box, int longestName = 80);
