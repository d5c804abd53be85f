#pragma once
// The view boxes of the EMC frame: which results a stored run shows, which ambient they are held
// against, and by how many dB a signal must stand above that ambient to show. They change the view
// only, never a stored value.

#include <QString>

class Context;
struct AppState;

// The flag of emcCheck1 to emcCheck8: "Max. Hold", "Quasipeak", "Average", "Sweep",
// "Calc/View Horizontal", "Calc/View Vertical", "Calc On", "View Ambient"; null for another number.
quint8 *emcViewFlag(AppState &s, int number);
// A box clicked: its flag takes the box's value and the chart is drawn anew.
void emcViewChecked(Context &ctx, int number, bool on);
// emcText1 on Return: the difference between signals and ambient, taken as a whole number of dB
// (halves to even) within the 16-bit range; the field shows the value taken, and the chart is drawn anew.
void ambientDistanceEntered(Context &ctx, const QString &text);
