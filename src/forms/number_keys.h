#pragma once
// The key filter of the number fields of the EMC pages: digits, "-" and the decimal character
// (a point or a comma becomes `decimalChar`); any other character is dropped. Return runs the
// field's validation, and so does leaving the field for another control unless the field takes
// its value on Return only.

#include <functional>

class Context;
class QLineEdit;

enum class NumberTaken { OnReturnOrLeaving, OnReturnOnly };
void numberKeys(QLineEdit *field, const Context &ctx, std::function<void()> validate,
                NumberTaken taken = NumberTaken::OnReturnOrLeaving);
