#pragma once
// Measurement files (.mes traces, .emc runs): small SQLite files with the tables Measurement,
// Limitlines and Settings, made, written, read back into the state and described.
//
// Every routine opens the file named by `measurementFileName` (trailing blanks trimmed), does
// its work in one transaction and closes it again; failures of a write pass silently and leave an
// incomplete result, never a half-written file. A saved .mes file replaces an old one only when it
// is complete. A read refuses a file that is not a regular file, lacks one of the three tables (a
// view in the place of a table counts as missing) or that SQLite finds damaged anywhere in its
// rows, and then says why, naming the file.

#include "store/schema.h"

#include <QList>
#include <QPair>
#include <QString>
#include <QVariant>

#include <optional>

class Context;
struct AppState;

// The three tables in the order they are created, with the declared types of the format.
const QList<TableSchema> &measurementTables();

// File versions in the settings row.
inline constexpr int kTraceFileVersion = 100;
inline constexpr int kOldEmcFileVersion = 101; // still read, no longer written
inline constexpr int kEmcFileVersion = 102;

// In a level column of an .emc row: nothing was measured there.
inline constexpr double kNotMeasured = -1000.0;

// `measurementFileName` as every routine here uses it: trailing blanks cut off.
QString measurementFilePath(const AppState &s);

// Frequency of trace point i (1 to `pointCount`), MHz: start + (i - 1) * step in 32-bit floats.
float traceFrequency(const AppState &s, qint32 i);

// Deletes the file and makes it anew with the three empty tables. False when it could not be made.
bool createMeasurementFile(Context &ctx);

// Fills a .mes file from the state: one Measurement row per trace point, the limit lines,
// the settings row.
void writeTraceMeasurement(Context &ctx);

// The command's save of a .mes file: made and filled beside the file under the name + ".part",
// then renamed into place, so that a save cut short keeps the file that was there. Empty when
// saved, otherwise a text that names the file and the reason (a missing folder, a read-only
// file, a full disk).
QString saveTraceMeasurement(Context &ctx);

// What stands against saving a file at `path` by renaming a new one into place, before anything is
// written ("the folder does not exist", "the file is read-only"); empty when nothing does.
QString obstacleToSaving(const QString &path);

// Fills Limitlines and the settings row of an .emc file at the start of a run.
void writeEmcHeader(Context &ctx);

// After a run: writes the chart's level bounds into the settings row.
void updateEmcChartRange(Context &ctx);

// Puts the state back from the file and switches to its mode; the display freezes on the file.
// The rows are counted and their first and last frequency found without reading them into memory.
// Empty when read; for a file that is refused, the state is as it was and the text says why.
QString readMeasurementFile(Context &ctx);

// What a file holds, for delfor-cli and tests.
struct MeasurementFileSummary {
    QList<QPair<QString, QVariant>> settings; // the settings row in column order; empty without a row
    int rowCount = 0;                         // rows of Measurement
    std::optional<float> startFrequency;      // lowest and highest Frequency, MHz
    std::optional<float> stopFrequency;
};

// None when `path` is refused as readMeasurementFile refuses it; `fault` then says why.
std::optional<MeasurementFileSummary> describeMeasurementFile(const QString &path, QString *fault = nullptr);
// A column of the file's settings row (matched without regard to case); null when missing.
QVariant settingOf(const MeasurementFileSummary &summary, const QString &column);
// Whether the file holds an EMC run: its settings row has mode 1 or 2, a trace file's 0.
bool isEmcFile(const MeasurementFileSummary &summary);

// A display unit of the working database's units, looked up by name (without regard to case)
// as an EMC file's unit is when it is shown; an unknown name gives dBmW without an offset.
struct DisplayUnit {
    QString name;
    float offset = 0.0f;
};
DisplayUnit findDisplayUnit(Context &ctx, const QString &name);
