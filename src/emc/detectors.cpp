#include "emc/detectors.h"

#include "emc/block_detector.h"
#include "signal/correction_chain.h"
#include "store/data_view.h"
#include "store/measurement_file.h"
#include "store/sqlite_file.h"

#include <array>

namespace {


// The overall column of a detector and its columns of the two polarisation rounds.
struct DetectorColumns {
    QString overall, horizontal, vertical;
};

const DetectorColumns kMaxhold{"Maxhold_dBmW", "H_Maxhold_dBmW", "V_Maxhold_dBmW"};
const DetectorColumns kAverage{"Average_dBmW", "H_Average_dBmW", "V_Average_dBmW"};
const DetectorColumns kQPeak{"QPeak_dBmW", "H_QPeak_dBmW", "V_QPeak_dBmW"};

struct DetectorValue {
    const DetectorColumns *columns;
    bool on;
    double value;
};

// Maxhold always; average and quasi-peak only while their detectors are switched on.
std::array<DetectorValue, 3> detectorValues(const AppState &s, const BlockLevels &levels)
{
    return {{{&kMaxhold, true, double(levels.peak)},
             {&kAverage, s.emcViewAverage == 1, levels.average},
             {&kQPeak, s.emcViewQPeak == 1, levels.qpeak}}};
}

const QString &roundColumn(const AppState &s, const DetectorColumns &columns)
{
    return s.horizontalRound != 0 ? columns.horizontal : columns.vertical;
}

// Sets the column of the row in edit when the value is greater than the one stored; an empty
// column compares as unknown and stays empty.
void raise(DataView &row, const QString &column, double value)
{
    const QVariant stored = row.value(column);
    if (!stored.isNull() && value > stored.toDouble())
        row.setValue(column, value);
}

// Each detector that is on raises its overall column and the column of the round.
void raiseDetectorColumns(const AppState &s, DataView &row, const BlockLevels &levels)
{
    for (const DetectorValue &d : detectorValues(s, levels)) {
        if (!d.on)
            continue;
        raise(row, d.columns->overall, d.value);
        raise(row, roundColumn(s, *d.columns), d.value);
    }
}

// A new row: the detectors' results in the overall column and the round's own, -1000 wherever
// nothing was measured.
void fillNewRow(const AppState &s, DataView &row, float frequency, const BlockLevels &levels)
{
    row.setValue(QStringLiteral("Frequency"), double(frequency));
    for (const DetectorValue &d : detectorValues(s, levels)) {
        const double value = d.on ? d.value : kNotMeasured;
        row.setValue(d.columns->overall, value);
        row.setValue(d.columns->horizontal, kNotMeasured);
        row.setValue(d.columns->vertical, kNotMeasured);
        row.setValue(roundColumn(s, *d.columns), value);
    }
    for (const char *column : {"Ambient_H_dBmW", "Ambient_V_dBmW", "V_memory_dBmW", "H_memory_dBmW"})
        row.setValue(QLatin1String(column), kNotMeasured);
}

// Rows are keyed by the frequency rounded to 1 kHz, as the text "0.000" gives it.
double frequencyKey(float frequency)
{
    return QString::number(double(frequency), 'f', 3).toDouble();
}

void writeStepRow(Context &ctx, const BlockLevels &levels)
{
    const AppState &s = ctx.state;
    SqliteFile file(measurementFilePath(s));
    DataView rows(file.handle());
    if (!rows.setSource(QStringLiteral("select * from measurement order by frequency")))
        return;
    const double key = frequencyKey(s.analyser.centerFrequency);
    if (rows.findFirst(QStringLiteral("frequency = ") + QString::number(key, 'g', 15))) {
        if (rows.edit())
            raiseDetectorColumns(s, rows, levels);
    } else if (rows.addNew()) {
        fillNewRow(s, rows, float(key), levels);
    }
    rows.update();
}

void writeSelectedRow(const AppState &s, DataView &row, const BlockLevels &levels)
{
    if (!row.edit())
        return;
    raiseDetectorColumns(s, row, levels);
    // Deliberately asymmetric: the horizontal round overwrites what the sweep left in the overall
    // peak column, the vertical round only raises it.
    if (s.horizontalRound != 0)
        row.setValue(kMaxhold.overall, double(levels.peak));
    row.update();
}

} // namespace

void detectStepBlock(Context &ctx)
{
    const BlockLevels levels = detectBlock(ctx, stepDivisors(ctx.state));
    writeStepRow(ctx, levels);
    applyLevelWindow(ctx, levels.lo, levels.hi);
}

void detectSelectedBlock(Context &ctx, DataView &measurementRecordset)
{
    const BlockLevels levels = detectBlock(ctx, selectedDivisors(ctx.state));
    writeSelectedRow(ctx.state, measurementRecordset, levels);
    applyLevelWindow(ctx, levels.lo, levels.hi);
}
