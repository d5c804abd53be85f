#include "chart/chart_painter.h"

#include "chart/canvas.h"
#include "chart/grafik_controls.h"
#include "chart/stored_rows.h"
#include "core/context.h"
#include "store/measurement_file.h"

#include <QLocale>
#include <cmath>
#include <tuple>

void ChartPainter::paintTraces(const ShownWindow &shown)
{
    sweepStart_ = shown.realStart;
    sweepStop_ = shown.realStop;
    paintTraces();
}

void ChartPainter::paintTraces()
{
    AppState &s = state();
    if (s.traceFrozen == 0) {
        picture1_.setDrawWidth(1);
        controls_.setLiveButtonsEnabled(true);
        controls_.setCaption(QString());
        if (s.analyser.span > 0)
            paintLiveSweep();
        else
            paintLiveZeroSpan();
        controls_.setCaption(liveCaption());
    } else {
        paintStored();
    }
    paintComparison();
}

namespace {

struct LiveTrace {
    const TraceArray &levels;
    quint32 colour;
};

// The live traces that are on, in the order sample, average, max hold, memory.
QList<LiveTrace> liveTraces(const AppState &s)
{
    const Slots on = visibleSlots(s);
    const TraceStore &t = s.traces;
    QList<LiveTrace> traces;
    const std::pair<Slot, const TraceArray *> table[] = {
        {Sample, &t.sampleTrace}, {Average, &t.averageTrace}, {Maxhold, &t.maxholdTrace}, {Memory, &t.memoryTrace}};
    for (const auto &[slot, levels] : table)
        if (on[slot])
            traces.append(LiveTrace{*levels, s.screenColours[kSlotColour[slot]]});
    return traces;
}

int livePointCount(const AppState &s) { return std::min(s.pointCount, kTraceSize - 1); }

// The highest point of the visible traces; `at` is where the chart draws it.
void notePeak(ChartView &v, qint16 level, float at)
{
    if (level > v.peakLevel) {
        v.peakLevel = level;
        v.peakFrequency = at;
    }
}

} // namespace

void ChartPainter::paintLiveSweep()
{
    AppState &s = state();
    ChartView &v = s.chart;
    const QList<LiveTrace> traces = liveTraces(s);
    const int n = livePointCount(s);
    // The sweep lies on the analyser's window, also while the zoom shows a part of it: each point
    // is drawn at its true frequency, and only the points in the zoom window count for the peak.
    // The step divides by the number of points, so the last point falls one step short of the stop.
    const float step = (sweepStop_ - sweepStart_) / s.pointCount;
    for (int i = 2; i <= n; ++i) {
        const float f1 = sweepStart_ + step * (i - 2);
        const float f2 = sweepStart_ + step * (i - 1);
        if (f1 > v.stopFrequency)
            break;
        const bool shown = f2 >= v.startFrequency && f2 <= v.stopFrequency;
        for (const LiveTrace &trace : traces) {
            drawSegment(f1, trace.levels[i - 1], f2, trace.levels[i], trace.colour);
            if (shown)
                notePeak(v, trace.levels[i], f2);
        }
    }
}

void ChartPainter::paintLiveZeroSpan()
{
    AppState &s = state();
    ChartView &v = s.chart;
    const QList<LiveTrace> traces = liveTraces(s);
    const int n = livePointCount(s);
    for (int i = 2; i <= n; ++i) {
        const double x1 = double(qint64(i - 2) * 1000000) / s.pointCount;
        const double x2 = double(qint64(i - 1) * 1000000) / s.pointCount;
        for (const LiveTrace &trace : traces) {
            picture1_.line(x1, trace.levels[i - 1], x2, trace.levels[i], trace.colour);
            notePeak(v, trace.levels[i], float(x2)); // in zero span the peak is an x position
        }
    }
}

// "   Sam:" and the time of each trace on; the long time is shown as hh:mm:ss in every locale.
QString ChartPainter::liveCaption()
{
    const AppState &s = state();
    const Slots on = visibleSlots(s);
    const TraceStore &t = s.traces;
    const std::tuple<Slot, const char *, const QDateTime *> table[] = {{Sample, "   Sam:", &t.sampleTime},
                                                                       {Average, "   Ave:", &t.averageTime},
                                                                       {Maxhold, "   Max:", &t.maxholdTime},
                                                                       {Memory, "   Mem:", &t.memoryTime}};
    QString caption;
    for (const auto &[slot, label, time] : table)
        if (on[slot])
            caption += QLatin1String(label) + time->toString(QStringLiteral("hh:mm:ss"));
    return caption;
}

void ChartPainter::paintStored()
{
    AppState &s = state();
    const ChartView &v = s.chart;
    controls_.setLiveButtonsEnabled(false);
    // "general date": the locale's short date and the time.
    controls_.setCaption(QStringLiteral("Measure date: ") +
                         QLocale().toString(s.measurementDate.date(), QLocale::ShortFormat) + QLatin1Char(' ') +
                         s.measurementDate.toString(QStringLiteral("hh:mm:ss")));
    controls_.setMemoryTraceCaption(s.emcMode == 0 ? QStringLiteral("Mem B") : QStringLiteral("Sweep"));
    picture1_.setDrawWidth(1);

    const bool emcBars = s.emcMode == 2;
    const bool zeroSpan = s.emcMode == 0 && s.analyser.span <= 0;
    if (s.emcMode > 2)
        return;
    Slots wanted = visibleSlots(s);
    wanted[AmbientH] = wanted[AmbientH] && emcBars;
    wanted[AmbientV] = wanted[AmbientV] && emcBars;
    wanted[Sample] = wanted[Sample] || emcBars; // the mark of a measured row
    StoredRows rows(measurementFilePath(s), zeroSpan ? 0 : v.paintSelection, wanted);
    const Slots on = visibleSlots(s);
    auto colour = [&s](int slot) { return s.screenColours[kSlotColour[slot]]; };

    if (zeroSpan) {
        const qint64 n = rows.recordCount();
        Levels previous{};
        if (!rows.next())
            return;
        rows.read(previous);
        for (qint64 i = 2; i <= n && rows.next(); ++i) {
            Levels current = previous;
            rows.read(current);
            const double x1 = double((i - 2) * 1000000) / n, x2 = double((i - 1) * 1000000) / n;
            for (int slot = Sample; slot <= Memory; ++slot)
                if (on[slot])
                    picture1_.line(x1, previous[slot], x2, current[slot], colour(slot));
            previous = current;
        }
        return;
    }

    // A factor too large for its byte is not taken: the last one stays (the system's overflow).
    const double factor = std::nearbyint(double(rows.recordCount()) / 500.0);
    if (factor <= 255)
        s.chart.thinFactor = quint8(factor);
    const bool thin = !(v.paintAllPoints == 1 || v.thinFactor <= 5);

    if (!emcBars) {
        walkStored(rows, thin, v.thinFactor, v.stopFrequency,
                   [&](float f1, const Levels &previous, float f2, const Levels &current) {
                       for (int slot = Sample; slot <= Memory; ++slot)
                           if (on[slot])
                               drawSegment(f1, previous[slot], f2, current[slot], colour(slot));
                   });
        return;
    }
    walkStored(rows, thin, v.thinFactor, v.stopFrequency,
               [&](float f1, const Levels &previous, float f2, const Levels &current) {
                   if (on[Memory])
                       drawSegment(f1, previous[Memory], f2, current[Memory], colour(Memory));
                   // Detector bars show only where they stand above the ambient by the distance.
                   int threshold = -10000;
                   if (on[AmbientH]) {
                       if (s.emcViewAmbient)
                           drawSegment(f1, previous[AmbientH], f2, current[AmbientH], colour(AmbientH));
                       if (s.emcCalcAmbient)
                           threshold = previous[AmbientH];
                   }
                   if (on[AmbientV]) {
                       if (s.emcViewAmbient)
                           drawSegment(f1, previous[AmbientV], f2, current[AmbientV], colour(AmbientV));
                       if (s.emcCalcAmbient && previous[AmbientV] > threshold)
                           threshold = previous[AmbientV];
                   }
                   if (s.emcCalcAmbient)
                       threshold += int(std::nearbyint(2.5 * s.emcAmbientDistance));
                   // A row the step scan has measured carries a positive mark in its sample column.
                   if (previous[Sample] > 0)
                       for (Slot slot : {Maxhold, QPeak, Average})
                           if (on[slot] && previous[slot] > threshold)
                               drawBar(f1, v.grafikMin, previous[slot], colour(slot));
               });
}
