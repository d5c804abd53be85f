#pragma once
// A limit line as the chart draws it: its points in frequency order and its level between two of
// them, straight in frequency or in log frequency. The chart's overlay and the result table of a
// stored EMC run both take the line from here, so the table's limit is the line on the screen.

#include <QList>
#include <QString>

#include <optional>

class QSqlQuery;

struct LimitPoint {
    float frequency; // MHz
    float level;     // dB on the dBmW scale
};

enum class LimitKind { Maxhold, Average };

// The query's first two columns as points; rows with a NULL or an unusable value are left out.
QList<LimitPoint> limitPointsOf(QSqlQuery &query);

// One of the two lines of a measurement file's Limitlines; none when the file has no such line.
// The shorter of the two lines leaves NULL pairs in the surplus rows; they are left out.
QList<LimitPoint> storedLimitPoints(const QString &path, LimitKind kind);

// The level at f of the segment from (p, y1) to (q, y2): a share of the way in frequency, or in
// log frequency with `logInterpolation`.
double limitLevelBetween(double p, double y1, double q, double y2, double f, bool logInterpolation);

// The line's level at f; none below its first point or above its last, where the chart draws
// nothing. At a point's own frequency the first point there gives the level.
std::optional<double> limitLevelAt(const QList<LimitPoint> &points, double f, bool logInterpolation);
