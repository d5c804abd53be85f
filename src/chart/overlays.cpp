#include "chart/overlays.h"

#include "chart/canvas.h"
#include "chart/chart_painter.h"
#include "core/context.h"
#include "store/database.h"
#include "store/measurement_file.h"

#include <QSqlQuery>
#include <cmath>
#include <limits>
#include <optional>
#include <utility>

namespace {

constexpr double kPlotWidth = 1000000.0;
// A limit segment is drawn in this many pieces where the axis and the interpolation differ.
constexpr int kLimitPieces = 50;

// Fix: the fraction dropped towards zero.
double fix(double v) { return std::trunc(v); }

// The part of the segment f1..f2 inside the window, by the first of these tests that holds.
std::optional<std::pair<double, double>> insidePart(double f1, double f2, double start, double stop)
{
    if (f1 <= start && f2 >= stop)
        return std::pair{start, stop};
    if (f1 <= stop && f2 >= stop)
        return std::pair{f1, stop};
    if (f1 >= start && f2 <= stop)
        return std::pair{f1, f2};
    if (f1 <= start && f2 >= start)
        return std::pair{start, f2};
    return std::nullopt;
}

} // namespace

ChartOverlays::ChartOverlays(Context &ctx, ChartPainter &painter) : ctx_(ctx), painter_(painter) {}

void ChartOverlays::paintKnownBands()
{
    const QSqlDatabase db = workingDatabase(ctx_);
    if (!db.isOpen())
        return;
    const ChartView &v = ctx_.state.chart;
    const quint8 selection = v.paintSelection;
    QSqlQuery query(db);
    query.setForwardOnly(true);
    // Equal starts keep the order of entry.
    if (!query.exec(QStringLiteral("select startfreq, stopfreq, \"min-level\", \"max-level\", hor, ver, screenColor "
                                   "from knownsignals order by startfreq, rowid")))
        return;
    while (query.next()) {
        // A new entry of the band editor has no frequencies yet.
        if (query.isNull(0) || query.isNull(1))
            continue;
        double s = query.value(0).toDouble(), e = query.value(1).toDouble();
        double a = query.value(2).toDouble() * 2.5, b = query.value(3).toDouble() * 2.5;
        // Strict: a band that ends right at the start is still drawn, with no width.
        if (e < v.startFrequency)
            continue;
        if (s > v.stopFrequency)
            break; // sorted by start: no later band reaches into the window
        s = std::max(s, double(v.startFrequency));
        e = std::min(e, double(v.stopFrequency));
        a = std::max(a, double(v.grafikMin));
        b = std::min(b, double(v.grafikMax));
        if ((selection == 1 && query.value(4).toInt() == 0) || (selection == 2 && query.value(5).toInt() == 0))
            continue;
        painter_.drawBox(float(s), float(e), a, b, quint32(query.value(6).toLongLong()));
    }
}

bool ChartOverlays::paintLimitLines()
{
    const AppState &s = ctx_.state;
    localMin_ = 2000;
    localMax_ = -2000;
    const bool sweep = s.emcMode > 0 || s.analyser.span > 0;
    const struct {
        quint8 shown;
        LimitKind line;
        bool logInterpolation;
        ColourRole colour;
    } limits[] = {{s.viewLimitMax, LimitKind::Maxhold, s.maxholdLimitLog != 0, MaxholdColour},
                  {s.viewLimitAverage, LimitKind::Average, s.averageLimitLog != 0, AverageColour}};
    for (const auto &limit : limits) {
        // grafikMin still at 1000: no trace has set the level window yet.
        if (limit.shown == 0 || s.chart.grafikMin >= 1000)
            continue;
        const QList<Point> points = limitPoints(limit.line);
        const quint32 colour = s.screenColours[limit.colour];
        if (sweep)
            walkLimit(points, limit.logInterpolation, colour);
        else
            paintLevelLine(points, colour);
        if (widenLevelWindow())
            return true;
    }
    return false;
}

// The points of a limit line in frequency order: from limitdef while the chart is live, from
// the measurement file's Limitlines when it shows stored data.
QList<ChartOverlays::Point> ChartOverlays::limitPoints(LimitKind line) const
{
    const AppState &s = ctx_.state;
    if (s.traceFrozen == 0) {
        const QSqlDatabase db = workingDatabase(ctx_);
        if (!db.isOpen())
            return {};
        QSqlQuery query(db);
        query.setForwardOnly(true);
        // Points of equal frequency (a step of the line) keep the order of entry.
        query.prepare(QStringLiteral("select frequency, level_dbmw from limitdef where limitnr = ? "
                                     "order by frequency, rowid"));
        query.addBindValue(line == LimitKind::Maxhold ? s.maxholdLimitNr : s.averageLimitNr);
        return limitPointsOf(query);
    }
    return storedLimitPoints(measurementFilePath(s), line);
}

// Each segment of the line, cut to the window; levels in dB, drawn as counts.
void ChartOverlays::walkLimit(const QList<Point> &points, bool logInterpolation, quint32 colour)
{
    if (points.isEmpty())
        return;
    const ChartView &v = ctx_.state.chart;
    const double start = v.startFrequency, stop = v.stopFrequency;
    double f1 = points[0].frequency, y1 = points[0].level;
    for (qsizetype i = 1; i < points.size(); ++i) {
        const double f2 = points[i].frequency;
        double y2 = points[i].level;
        if (const auto part = insidePart(f1, f2, start, stop)) {
            const auto [p, q] = *part;
            if (p > f1)
                y1 = (y2 - y1) * (p - f1) / (f2 - f1) + y1;
            // This uses the y1 just cut at the start, so a segment cut at both ends comes out
            // bent; the line has always been drawn so.
            if (q < f2)
                y2 = (y2 - y1) * (q - f1) / (f2 - f1) + y1;
            drawLimitPart(p, y1, q, y2, logInterpolation, colour);
        }
        f1 = f2;
        y1 = y2;
        noteLevel(y1);
    }
}

// One straight segment where the line is straight on the axis; otherwise fifty pieces: a line
// straight in frequency bends on the log axis, a log-interpolated one on the linear axis.
void ChartOverlays::drawLimitPart(double p, double y1, double q, double y2, bool logInterpolation, quint32 colour)
{
    const bool logAxis = ctx_.state.chart.logAxis != 0;
    if (logAxis == logInterpolation || q - p < 0.001 || y1 == y2) {
        painter_.drawSegment(float(p), fix(y1 * 2.5), float(q), fix(y2 * 2.5), colour);
        return;
    }
    auto level = [&](double f) { return limitLevelBetween(p, y1, q, y2, f, logInterpolation); };
    // Counted, so that rounding in the steps neither drops the last piece nor adds one; the last
    // ends on q itself.
    const double w = (q - p) / kLimitPieces;
    auto at = [&](int k) { return k == kLimitPieces ? q : p + w * k; };
    for (int k = 0; k < kLimitPieces; ++k)
        painter_.drawSegment(float(at(k)), fix(level(at(k)) * 2.5), float(at(k + 1)), fix(level(at(k + 1)) * 2.5),
                             colour);
}

// Zero span: the limit's level at the one frequency, across the whole plot.
void ChartOverlays::paintLevelLine(const QList<Point> &points, quint32 colour)
{
    // The frequency is looked up under the column name of limitdef, which a file's Limitlines
    // does not have: a stored zero-span chart shows no level line.
    if (ctx_.state.traceFrozen != 0)
        return;
    const float frequency = ctx_.state.chart.startFrequency;
    const Point *below = nullptr, *above = nullptr;
    for (const Point &point : points) {
        if (point.frequency <= frequency)
            below = &point; // the last one at or below
        if (point.frequency >= frequency && !above)
            above = &point; // the first one at or above
    }
    if (!below || !above)
        return;
    double y1 = below->level;
    if (frequency > below->frequency)
        y1 = (double(above->level) - y1) * (double(frequency) - below->frequency) /
                 (double(above->frequency) - below->frequency) + y1;
    painter_.picture1().line(0, y1 * 2.5, kPlotWidth, y1 * 2.5, colour);
    noteLevel(y1);
}

void ChartOverlays::noteLevel(double level)
{
    const double rounded = std::clamp(std::nearbyint(level), double(std::numeric_limits<qint16>::min()),
                                      double(std::numeric_limits<qint16>::max()));
    if (level > localMax_)
        localMax_ = int(rounded);
    if (level < localMin_)
        localMin_ = int(rounded);
}

// The levels reached, in dB, widen the level window, which is in counts: a limit at 60 dB lifts
// an upper edge of 50 counts to 60 counts. The system has always joined the two so.
bool ChartOverlays::widenLevelWindow()
{
    ChartView &v = ctx_.state.chart;
    bool widened = false;
    if (localMin_ < v.grafikMin) {
        v.grafikMin = qint16(localMin_);
        widened = true;
    }
    if (localMax_ > v.grafikMax) {
        v.grafikMax = qint16(localMax_);
        widened = true;
    }
    return widened;
}
