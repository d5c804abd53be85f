#pragma once
// CSV import and export of a limit line and of a loss/gain component, so that a standard's limit
// or a calibration certificate's antenna factors come in without typing.
//
// Format: a header line "Frequency_MHz,<unit>" (a row of table unit, e.g. "dBuV/m", for a limit;
// "dB" for a component), then one point a line. Comma or semicolon separate; a point or a comma
// is the decimal mark; lines starting with '#' and empty lines are ignored. An import converts
// levels from the file's unit to dBm with the unit's offset and refuses, naming the line, a file
// with an unknown unit, a value that is not a number, a frequency that appears twice or fewer than
// two points; nothing is written on a refusal.

#include <QSqlDatabase>
#include <QString>

// Kinds of component, as column lostyp holds them.
enum class ComponentKind { Antenna = 0, Loss = 1, Gain = 2 };

struct CsvOutcome {
    bool ok = false;
    QString message; // on a refusal: what is wrong, and where ("FILE: line 7: ...")
    bool nameExists = false; // refused because the name exists: an import with replace takes it
};

// Creates limit `name` from the file, or with `replace` replaces the points of the one that exists
// (without it, an existing name is refused). Its unit becomes the file's unit.
CsvOutcome importLimitCsv(QSqlDatabase db, const QString &name, const QString &path, bool replace);
// Writes the points of limit `name` in the limit's own unit.
CsvOutcome exportLimitCsv(QSqlDatabase db, const QString &name, const QString &path);

// Creates component `name` of `kind` (with the antenna's `distance` in metres) or with `replace`
// replaces its points. The file's values are what the user sees: a gain of 20 is stored -20.
CsvOutcome importComponentCsv(QSqlDatabase db, const QString &name, ComponentKind kind, float distance,
                              const QString &path, bool replace);
// Writes the points of component `name` as the user sees them (a gain positive), unit "dB".
CsvOutcome exportComponentCsv(QSqlDatabase db, const QString &name, const QString &path);
