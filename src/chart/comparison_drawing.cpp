#include "chart/chart_painter.h"

#include "chart/canvas.h"
#include "chart/stored_rows.h"
#include "core/context.h"

#include <QFileInfo>
#include <algorithm>
#include <cmath>

namespace {

constexpr double kPlotWidth = 1000000.0;
constexpr double kLegendLine = 50000.0;   // the stretch of dashed line before the name
constexpr double kLegendGap = 10000.0;

} // namespace

// The compared file's trace, dashed over the traces shown, on their axes and in their unit (the
// stored dBm as level counts): walked, cut at the stop and thinned as a stored trace is. A
// zero-span chart has no frequency axis to lay it on.
void ChartPainter::paintComparison()
{
    const AppState &s = state();
    const ChartView &v = s.chart;
    const bool zeroSpan = s.analyser.span <= 0 && (s.traceFrozen == 0 || s.emcMode == 0);
    if (v.comparePath.isEmpty() || zeroSpan)
        return;
    const quint32 colour = s.screenColours[CompareColour];
    StoredRows rows(v.compareTrace);
    const double factor = std::nearbyint(double(rows.recordCount()) / 500.0);
    const bool thin = v.paintAllPoints != 1 && factor > 5;
    // One pixel on screen, so that the shown trace stays visible between the dashes.
    picture1_.setDrawWidth(1);
    picture1_.setDrawStyle(Canvas::Dashed);
    walkStored(rows, thin, int(factor), v.stopFrequency,
               [&](float f1, const Levels &previous, float f2, const Levels &current) {
                   drawSegment(f1, previous[Sample], f2, current[Sample], colour);
               });
    paintComparisonLegend(colour);
    picture1_.setDrawStyle(Canvas::Solid);
}

// In the top right corner of the plot: a stretch of the dashed line, then the compared file's name.
void ChartPainter::paintComparisonLegend(quint32 colour)
{
    const ChartView &v = view();
    const QString name = QFileInfo(v.comparePath).fileName();
    const double row = picture1_.textHeight();
    const double textX = kPlotWidth - kLegendGap - picture1_.textWidth(name);
    const double lineY = v.grafikMax - row;
    picture1_.line(textX - kLegendGap - kLegendLine, lineY, textX - kLegendGap, lineY, colour);
    picture1_.setForeColour(colour);
    picture1_.setTextPosition(textX, lineY + row / 2);
    picture1_.print(name);
}
