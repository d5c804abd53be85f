#pragma once
// The overlays of the chart: the known frequency bands as filled boxes under the grid, and the
// limit lines for max hold and average over the grid, which can widen the level window.
//
// Both are read anew at every paint: the bands and the live limit lines from the working
// database, the limit lines of a stored chart from the measurement file's Limitlines.

#include "chart/limit_line.h"

#include <QList>
#include <QtGlobal>

class ChartPainter;
class Context;

class ChartOverlays {
public:
    ChartOverlays(Context &ctx, ChartPainter &painter);

    // The bands of knownsignals inside the window, cut to it and to the level window, for the
    // polarisation of paintSelection.
    void paintKnownBands();
    // The max hold limit, then the average limit. True when one of them reached past the level
    // window: the window has been widened and the paint must start again from a clean frame.
    bool paintLimitLines();

private:
    using Point = LimitPoint;

    QList<Point> limitPoints(LimitKind line) const;
    void walkLimit(const QList<Point> &points, bool logInterpolation, quint32 colour);
    void drawLimitPart(double p, double y1, double q, double y2, bool logInterpolation, quint32 colour);
    void paintLevelLine(const QList<Point> &points, quint32 colour);
    void noteLevel(double level);
    bool widenLevelWindow();

    Context &ctx_;
    ChartPainter &painter_;
    // The levels the limit lines of this pass reached, in dB.
    int localMin_ = 2000, localMax_ = -2000;
};
