#pragma once
// The result table of a stored EMC run: for each frequency the detectors measured, the level of
// peak, quasi-peak and average in the file's display unit, the limit the chart draws there, the
// margin to it, the verdict and the polarisation that gave the level; sorted worst first. A run
// that recorded an ambient also gives the ambient there, so that a signal that fails on a
// broadcast can be told from the device's own. Held against a comparison trace it also gives the
// difference of the peak to the compared level.

#include "core/app_state.h"

#include <QString>
#include <QStringList>

#include <array>
#include <optional>
#include <vector>

class Context;

enum ResultDetector { PeakResult, QPeakResult, AverageResult, ResultDetectorCount };

struct DetectorResult {
    std::optional<double> level;  // in the table's unit; none where the detector measured nothing
    std::optional<double> limit;  // in the table's unit; none outside the limit line or without one
    std::optional<double> margin; // level - limit in dB, to the hundredth
    QString polarisation;         // "H" or "V": the round whose level is the higher
    // A margin of 0 passes; without a margin there is no verdict.
    bool fails() const { return margin && *margin > 0; }
};

struct ResultRow {
    float frequency = 0; // MHz
    std::array<DetectorResult, ResultDetectorCount> detectors;
    std::optional<float> peak;         // the peak as the file holds it, dB on the dBmW scale
    std::optional<double> ambient;     // the higher recorded ambient, in the table's unit
    std::optional<double> difference;  // peak - compared level, dB
    std::optional<double> worstMargin() const;
};

struct ResultTable {
    QString unit;          // the display unit of the levels and limits
    bool ambient = false;  // the run recorded an ambient: with the ambient column
    bool compared = false; // with the difference column
    std::vector<ResultRow> rows;
};

struct ResultRequest {
    bool allRows = false; // every row of the file, not only the ones a detector measured
    const std::vector<ComparisonPoint> *compared = nullptr;
};

// The table of the .emc file at `path`, in the unit that the working database of `ctx` gives the
// file's unit. None for a file that a load refuses or that holds no EMC run; `fault` says why.
std::optional<ResultTable> readResultTable(Context &ctx, const QString &path, const ResultRequest &request,
                                           QString *fault = nullptr);

// The column names with their units (Frequency_MHz, Peak_dBuV, Peak_limit_dBuV, Peak_margin_dB,
// Peak_verdict, Peak_polarisation, ..., Ambient_dBuV, Difference_dB) and a row's cells under them: numbers with
// a point, empty where there is no value.
QStringList resultColumns(const ResultTable &table);
QStringList resultCells(const ResultTable &table, const ResultRow &row);
