#pragma once
// Stored measurements as CSV, for spreadsheets and scripts.
//
// A .mes file gives the frequency and its four traces: Frequency_MHz, Sample_dBm, Average_dBm,
// Maxhold_dBm, Memory_dBm. An .emc file gives every column of its table Measurement in the table's
// order: Frequency_MHz, Selected_for_step (the Sweep + Step mark: 1 = the detectors measured the
// row, 0 = they did not), Average_dBm, Maxhold_dBm (peak), QPeak_dBm, Memory_dBm (sweep),
// Ambient_H_dBm, Ambient_V_dBm, V_Memory_dBm, H_Memory_dBm, H_Average_dBm, H_Maxhold_dBm,
// H_QPeak_dBm, V_Average_dBm, V_Maxhold_dBm, V_QPeak_dBm. Whether a file is an .emc file is told by
// its settings row (mode not 0), not by its name.
//
// One line per stored row, in frequency order. Levels in dBm as stored, each in the fewest decimals
// that read back as the same 32-bit float, with a point as decimal mark. A cell is empty where the
// file holds no number, and in an .emc file where it holds -1000, "nothing measured": a spreadsheet
// then leaves the point out of a chart and a sum instead of plotting it 1000 dB down.

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <optional>
#include <span>

class Context;

// The columns of a .mes file's CSV, also those of the traces that `delfor-cli read --csv` writes.
const QStringList &traceCsvColumns();

// A CSV of 32-bit values: the header line, then one line per row; a missing value is an empty cell.
class LevelCsv {
public:
    explicit LevelCsv(const QStringList &columns);
    void reserve(qsizetype rows);
    void addRow(std::span<const std::optional<float>> values);
    const QByteArray &text() const { return text_; }

private:
    QByteArray text_;
    qsizetype columns_;
};

// The CSV of the measurement file at `path`; none when the file is refused, `fault` then says why,
// naming the file.
std::optional<QByteArray> measurementCsv(const QString &path, QString *fault = nullptr);

// Writes `bytes` to `path` through a file beside it that is renamed into place when complete, so
// that a failure never leaves half a file over an old one; a pipe or a device is written as it is.
// Empty when written, otherwise "Cannot save PATH: reason".
QString saveWhole(const QString &path, const QByteArray &bytes);

// The CSV of the measurement file at `path` written to `csvPath`. Empty when written; otherwise why
// not: the file's refusal, or "Cannot save CSVPATH: reason".
QString exportMeasurementCsv(const QString &path, const QString &csvPath);

// Data > Export CSV...: the stored file shown (with live traces shown, a .mes or .emc file the user
// picks first) written as CSV under a name the user gives; a failure is told in a box.
void exportCsvCommand(Context &ctx);
