#include "output/result_table.h"

#include "chart/comparison_trace.h"
#include "chart/limit_line.h"
#include "signal/level_math.h"
#include "store/measurement_file.h"
#include "store/sqlite_file.h"

#include <QSqlError>
#include <QSqlQuery>
#include <algorithm>
#include <cmath>

namespace {

// A detector's overall column, the columns of its two polarisation rounds, and the limit line it
// is held against: peak and quasi-peak the max hold line, average the average line.
struct DetectorColumns {
    const char *name;
    const char *overall, *horizontal, *vertical;
    LimitKind limit;
};

const std::array<DetectorColumns, ResultDetectorCount> kDetectors = {{
    {"Peak", "maxhold_dbmw", "h_maxhold_dbmw", "v_maxhold_dbmw", LimitKind::Maxhold},
    {"QPeak", "qpeak_dbmw", "h_qpeak_dbmw", "v_qpeak_dbmw", LimitKind::Maxhold},
    {"Average", "average_dbmw", "h_average_dbmw", "v_average_dbmw", LimitKind::Average},
}};

std::optional<float> measuredLevel(const QVariant &value)
{
    bool isNumber = false;
    const float level = value.toFloat(&isNumber);
    if (value.isNull() || !isNumber || !std::isfinite(level) || level <= kNotMeasured)
        return std::nullopt;
    return level;
}

// The higher of two recorded levels.
std::optional<float> higher(std::optional<float> a, std::optional<float> b)
{
    return a && b ? std::max(*a, *b) : a ? a : b;
}

// To the hundredth of a dB, so that float noise neither fails a level right on the limit nor
// shows as "-0.00" (adding 0.0 turns a negative zero positive).
double hundredths(double value) { return std::round(value * 100.0) / 100.0 + 0.0; }

struct LimitLine {
    QList<LimitPoint> points;
    bool logInterpolation;
};

struct TableSource {
    float unitOffset;
    std::array<LimitLine, 2> limits; // by LimitKind
};

DetectorResult detectorResult(const TableSource &source, const DetectorColumns &columns, const QSqlQuery &row,
                              float frequency)
{
    DetectorResult result;
    const auto level = measuredLevel(row.value(QLatin1String(columns.overall)));
    if (!level)
        return result;
    result.level = levelInUnit(*level, source.unitOffset);
    const LimitLine &line = source.limits[size_t(columns.limit)];
    if (const auto limit = limitLevelAt(line.points, frequency, line.logInterpolation)) {
        result.limit = levelInUnit(*limit, source.unitOffset);
        result.margin = hundredths(*result.level - *result.limit);
    }
    const auto horizontal = measuredLevel(row.value(QLatin1String(columns.horizontal)));
    const auto vertical = measuredLevel(row.value(QLatin1String(columns.vertical)));
    if (horizontal && (!vertical || *horizontal >= *vertical))
        result.polarisation = QStringLiteral("H");
    else if (vertical)
        result.polarisation = QStringLiteral("V");
    return result;
}

// Worst margin first; rows without a margin after them, in the frequency order they came in.
void sortWorstFirst(std::vector<ResultRow> &rows)
{
    std::stable_sort(rows.begin(), rows.end(), [](const ResultRow &a, const ResultRow &b) {
        const auto worstA = a.worstMargin(), worstB = b.worstMargin();
        return worstA && (!worstB || *worstA > *worstB);
    });
}

QString number(double value, int decimals) { return QString::number(value, 'f', decimals); }

QString optionalNumber(const std::optional<double> &value)
{
    return value ? number(*value, 2) : QString();
}

} // namespace

std::optional<double> ResultRow::worstMargin() const
{
    std::optional<double> worst;
    for (const DetectorResult &detector : detectors)
        if (detector.margin && (!worst || *detector.margin > *worst))
            worst = detector.margin;
    return worst;
}

std::optional<ResultTable> readResultTable(Context &ctx, const QString &path, const ResultRequest &request,
                                           QString *fault)
{
    const auto summary = describeMeasurementFile(path, fault);
    if (!summary)
        return std::nullopt;
    const auto refuse = [fault](const QString &why) {
        if (fault)
            *fault = why;
        return std::nullopt;
    };
    if (!isEmcFile(*summary))
        return refuse(path + QStringLiteral(" holds no EMC run: the result table lists the rows of an .emc file"));

    const DisplayUnit unit = findDisplayUnit(ctx, settingOf(*summary, QStringLiteral("unit")).toString());
    const auto logFlag = [&](const char *column) { return settingOf(*summary, QLatin1String(column)).toInt() != 0; };
    const TableSource source{unit.offset,
                             {LimitLine{storedLimitPoints(path, LimitKind::Maxhold), logFlag("lmaxlog")},
                              LimitLine{storedLimitPoints(path, LimitKind::Average), logFlag("lavelog")}}};

    const SqliteFile file(path);
    QSqlQuery rows(file.handle());
    rows.setForwardOnly(true);
    if (!rows.exec(QStringLiteral("select * from measurement order by frequency, rowid")))
        return refuse(path + QStringLiteral(" is no measurement file: ") + rows.lastError().databaseText());

    ResultTable table;
    table.unit = unit.name.trimmed();
    table.compared = request.compared != nullptr;
    while (rows.next()) {
        const QVariant frequency = rows.value(QStringLiteral("frequency"));
        if (frequency.isNull())
            continue;
        ResultRow row;
        row.frequency = frequency.toFloat();
        bool measured = false;
        for (int d = 0; d < ResultDetectorCount; ++d) {
            row.detectors[d] = detectorResult(source, kDetectors[d], rows, row.frequency);
            measured = measured || row.detectors[d].level;
        }
        const auto ambient = higher(measuredLevel(rows.value(QStringLiteral("ambient_h_dbmw"))),
                                    measuredLevel(rows.value(QStringLiteral("ambient_v_dbmw"))));
        table.ambient = table.ambient || ambient;
        if (!measured && !request.allRows)
            continue;
        if (ambient)
            row.ambient = levelInUnit(*ambient, source.unitOffset);
        row.peak = measuredLevel(rows.value(QLatin1String(kDetectors[PeakResult].overall)));
        if (request.compared && row.peak)
            if (const auto compared = comparedLevel(*request.compared, row.frequency))
                row.difference = hundredths(double(*row.peak) - *compared);
        table.rows.push_back(row);
    }
    sortWorstFirst(table.rows);
    return table;
}

QStringList resultColumns(const ResultTable &table)
{
    QStringList columns{QStringLiteral("Frequency_MHz")};
    const QString &unit = table.unit;
    for (const DetectorColumns &detector : kDetectors) {
        const QString name = QLatin1String(detector.name);
        columns << name + QLatin1Char('_') + unit << name + QStringLiteral("_limit_") + unit
                << name + QStringLiteral("_margin_dB") << name + QStringLiteral("_verdict")
                << name + QStringLiteral("_polarisation");
    }
    if (table.ambient)
        columns << QStringLiteral("Ambient_") + unit;
    if (table.compared)
        columns << QStringLiteral("Difference_dB");
    return columns;
}

QStringList resultCells(const ResultTable &table, const ResultRow &row)
{
    QStringList cells{number(row.frequency, 3)};
    for (const DetectorResult &detector : row.detectors) {
        const QString verdict = !detector.margin ? QString()
                                : detector.fails() ? QStringLiteral("FAIL")
                                                   : QStringLiteral("PASS");
        cells << optionalNumber(detector.level) << optionalNumber(detector.limit) << optionalNumber(detector.margin)
              << verdict << detector.polarisation;
    }
    if (table.ambient)
        cells << optionalNumber(row.ambient);
    if (table.compared)
        cells << optionalNumber(row.difference);
    return cells;
}
