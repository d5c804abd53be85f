#pragma once
// The list controls bound to a catalogue view: an editable combo whose list holds one column of
// the view's rows, and whose text the logic sets (a name from a file need not be in the list).

#include <QComboBox>

class Context;
class DataView;

// An editable combo that never adds typed text to its list.
QComboBox *catalogueCombo(const char *name, const QString &toolTip, QWidget *parent);
// The list anew from the rows of the view's source, read apart so that its current row stays;
// the text shown is kept.
void fillCombo(QComboBox *combo, const Context &ctx, const DataView &view, const QString &column);
