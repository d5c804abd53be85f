#pragma once
// The level meter: for the frequency under cursor A, one bar for each stored result of the
// current measurement file (sweep, average, quasi-peak, peak and ambient, each horizontal and
// vertical), read from the file's first row at or above that frequency.

#include <QString>

#include <optional>

class Canvas;
class Context;

// Draws the meter on `graph` for the frequency under cursor A by the linear rule (the log axis
// is not considered) and gives the text of its label ("Measure-Freq.: 150.000MHz"), or
// an empty text when no row lies at or above the cursor. Nothing happens without a measurement
// file (none).
std::optional<QString> refreshLevelmeter(Context &ctx, Canvas &graph);
