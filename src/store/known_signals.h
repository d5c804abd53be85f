#pragma once
// The known bands: the user's list of frequency bands that the chart can lay over the traces.
// The logic of the "Known bands" editor on view `known`; its grid and boxes are the form's.

#include <QString>

#include <array>
#include <optional>

class Context;

// What the editor shows of the current row: the boxes Text3(0..5), the check boxes, the colour.
struct KnownSignalEditor {
    std::array<QString, 6> texts;  // name, start, stop, max level, min level, memo
    bool horizontal = false;        // Check3
    bool vertical = false;          // Check4
    quint32 colour = 0;             // Label18, 0xBBGGRR
    QString unitName;               // the two unit labels
};

enum KnownSignalBox { SignalBox = 0, StartBox, StopBox, MaxLevelBox, MinLevelBox, MemoBox };

KnownSignalEditor reloadKnownSignalEditor(Context &ctx);

// A key typed into a Text3 box: a comma or a point becomes `decimalChar`, and none at all
// while that is 0 (the key is dropped).
std::optional<QChar> knownSignalKey(const Context &ctx, QChar key);
// Any key but Return in the name box: once the name has reached 50 characters the decimal
// character is lost until it is set again. True when the computer should beep.
bool knownSignalNameKey(Context &ctx, const QString &text);
// Return in a box: that box alone is written to the current row. Gives the box's new text.
QString commitKnownSignalText(Context &ctx, int box, const QString &text);
// Check3 and Check4, bound to the columns hor and ver.
void knownSignalChecked(Context &ctx, bool vertical, bool ticked);

// Command4(0) "New entry": an empty row, written at once.
void newKnownSignal(Context &ctx);
// Command4(1) "Delete entry": the current row, with no question.
void deleteKnownSignal(Context &ctx);
// Command5(0) "Sort by freq." and Command5(1) "Sort by name".
void sortKnownSignals(Context &ctx, bool byFrequency);
// Command6 "Change color": the colour dialog on the row's colour; true when a colour was taken.
bool changeKnownSignalColour(Context &ctx);
