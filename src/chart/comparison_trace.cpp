#include "chart/comparison_trace.h"

#include "store/measurement_file.h"
#include "store/sqlite_file.h"

#include <QSqlQuery>
#include <algorithm>
#include <cmath>

namespace {

qint64 wholeKhz(double frequency) { return std::llround(frequency * 1000.0); }

} // namespace

std::optional<std::vector<ComparisonPoint>> readComparisonTrace(const QString &path, QString *fault)
{
    const auto summary = describeMeasurementFile(path, fault);
    if (!summary)
        return std::nullopt;
    // -1000 in an EMC row means that no detector measured there.
    const QString sql = isEmcFile(*summary)
                            ? QStringLiteral("select frequency, maxhold_dbmw from measurement "
                                             "where maxhold_dbmw > -1000 order by frequency")
                            : QStringLiteral("select frequency, sample_dbmw from measurement order by frequency");
    std::vector<ComparisonPoint> trace;
    trace.reserve(size_t(summary->rowCount));
    const SqliteFile file(path);
    QSqlQuery rows(file.handle());
    rows.setForwardOnly(true);
    if (rows.exec(sql)) {
        while (rows.next()) {
            if (!rows.value(0).isNull() && !rows.value(1).isNull())
                trace.push_back({rows.value(0).toFloat(), rows.value(1).toFloat()});
        }
    }
    return trace;
}

QString compareWith(ChartView &view, const QString &path)
{
    QString fault;
    auto trace = readComparisonTrace(path, &fault);
    if (!trace)
        return fault;
    view.comparePath = path;
    view.compareTrace = std::move(*trace);
    return {};
}

void clearComparison(ChartView &view)
{
    view.comparePath.clear();
    view.compareTrace.clear();
}

std::optional<float> comparedLevel(const std::vector<ComparisonPoint> &trace, float frequency)
{
    const qint64 khz = wholeKhz(frequency);
    const auto at = std::lower_bound(trace.begin(), trace.end(), khz, [](const ComparisonPoint &point, qint64 key) {
        return wholeKhz(point.frequency) < key;
    });
    if (at == trace.end() || wholeKhz(at->frequency) != khz)
        return std::nullopt;
    return at->level;
}
