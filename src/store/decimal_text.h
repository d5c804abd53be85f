#pragma once
// Numbers written for people and spreadsheets: the fewest decimals that still read back as the
// value stored, so that a file exported and imported again holds the same 32-bit floats.

#include <QByteArray>

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

// The shortest decimals that read back as the same 32-bit float.
inline void appendFloat(QByteArray &out, float value)
{
    appendShortestDecimals(out, double(value), [value](double read) { return float(read) == value; });
}
