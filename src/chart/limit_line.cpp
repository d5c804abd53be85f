#include "chart/limit_line.h"

#include "signal/level_math.h"
#include "store/sqlite_file.h"

#include <QSqlQuery>
#include <QVariant>
#include <cmath>

QList<LimitPoint> limitPointsOf(QSqlQuery &query)
{
    QList<LimitPoint> points;
    if (!query.exec())
        return points;
    while (query.next()) {
        if (query.isNull(0) || query.isNull(1))
            continue;
        const float frequency = query.value(0).toFloat(), level = query.value(1).toFloat();
        if (std::isfinite(frequency) && std::isfinite(level))
            points.append(LimitPoint{frequency, level});
    }
    return points;
}

QList<LimitPoint> storedLimitPoints(const QString &path, LimitKind kind)
{
    const SqliteFile file(path);
    if (!file.isOpen())
        return {};
    QSqlQuery query(file.handle());
    query.setForwardOnly(true);
    // Points of equal frequency (a step of the line) keep the order of entry.
    query.prepare(kind == LimitKind::Maxhold
                      ? QStringLiteral("select maxfreq, maxhold_dbmw from limitlines order by maxfreq, rowid")
                      : QStringLiteral("select avefreq, average_dbmw from limitlines order by avefreq, rowid"));
    return limitPointsOf(query);
}

double limitLevelBetween(double p, double y1, double q, double y2, double f, bool logInterpolation)
{
    const double share = logInterpolation ? (logTen(f) - logTen(p)) / (logTen(q) - logTen(p)) : (f - p) / (q - p);
    return (y2 - y1) * share + y1;
}

std::optional<double> limitLevelAt(const QList<LimitPoint> &points, double f, bool logInterpolation)
{
    for (qsizetype i = 0; i < points.size(); ++i) {
        const LimitPoint &point = points[i];
        if (point.frequency == f)
            return point.level;
        if (point.frequency > f) {
            if (i == 0)
                return std::nullopt;
            const LimitPoint &before = points[i - 1];
            return limitLevelBetween(before.frequency, before.level, point.frequency, point.level, f,
                                     logInterpolation);
        }
    }
    return std::nullopt;
}
