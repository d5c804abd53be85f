#pragma once
// Numbers written for people and spreadsheets: the fewest decimals that still read back as the
// value stored, so that a file exported and imported again holds the same 32-bit floats.

#include <QByteArray>

#include <algorithm>
#include <charconv>

// Appends the shortest fixed-point text of `value` (a point as decimal mark, 0 to 9 decimals) of
// which `readsBack(number read from the text)` holds; 17 significant digits when none does.
template <typename ReadsBack>
void appendShortestDecimals(QByteArray &out, double value, ReadsBack readsBack)
{
    char text[64]; // the largest float has 39 digits before the point
    for (int decimals = 0; decimals <= 9; ++decimals) {
        const auto written = std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, decimals);
        double read = 0;
        if (written.ec == std::errc() && std::from_chars(text, written.ptr, read).ec == std::errc() && readsBack(read)) {
            out.append(text, written.ptr - text);
            return;
        }
    }
    const auto written = std::to_chars(text, text + sizeof text, value, std::chars_format::general, 17);
    out.append(text, written.ptr - text);
}

// The shortest decimals that read back as the same 32-bit float. The float's own shortest form
// nearly always is that text and costs one conversion instead of a search; it is taken when it
// reads back through a double, as a spreadsheet reads it, and has no more decimals than the search
// would try.
inline void appendFloat(QByteArray &out, float value)
{
    const auto readsBack = [value](double read) { return float(read) == value; };
    char text[64];
    const auto written = std::to_chars(text, text + sizeof text, value, std::chars_format::fixed);
    double read = 0;
    if (written.ec == std::errc() && std::from_chars(text, written.ptr, read).ec == std::errc() && readsBack(read)) {
        const char *point = std::find(text, written.ptr, '.');
        if (written.ptr - point <= 10) { // the point and at most 9 decimals
            out.append(text, written.ptr - text);
            return;
        }
    }
    appendShortestDecimals(out, double(value), readsBack);
}
