#pragma once
// The key filter of the number fields of the EMC pages: digits, "-" and the decimal character
// (a point or a comma becomes `decimalChar`); any other character is dropped. Return runs the
// field's validation, and so does leaving the field for another control.

#include <functional>

class Context;
class QLineEdit;

void numberKeys(QLineEdit *field, const Context &ctx, std::function<void()> validate);
