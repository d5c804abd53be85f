#include "chart/curve_preview.h"

#include "chart/canvas.h"
#include "chart/chart_painter.h"
#include "core/context.h"
#include "signal/level_math.h"
#include "store/limits.h"
#include "store/loss_gain.h"

#include <cmath>

namespace {

constexpr double kPlotWidth = 1000000.0;
constexpr quint32 kLabelColour = 0;
constexpr int kLogPieces = 50;

double logTenOf(double v) { return logTen(v); }

class PreviewPainter {
public:
    PreviewPainter(const PreviewPictures &p, const PreviewBounds &b, const CurveStyle &s)
        : pictures_(p), bounds_(b), style_(s)
    {
    }

    void setScales()
    {
        const double max = bounds_.maxLevel;
        const double min = bounds_.minLevel;
        const double range = std::abs(max - min);
        // A gain is stored negative: its picture is turned so that the shown value grows upward.
        const bool inverted = style_.scale.sign != 1;
        const double top = inverted ? min - range / 20.0 : max + range / 20.0;
        const double height = inverted ? (max - min) + range / 10.0 : (min - max) - range / 10.0;
        pictures_.plot.setScale(0, top, kPlotWidth, height);
        const double ratio = double(pictures_.levels.pixelHeight()) / qMax(1, pictures_.plot.pixelHeight());
        pictures_.levels.setScale(0, top, 10, height * ratio);
        pictures_.frequencies.setScale(0, 10, kPlotWidth, -11);
        pictures_.plot.setDrawWidth(1);
    }

    void drawGrid()
    {
        const double fMin = bounds_.minFrequency, fMax = bounds_.maxFrequency;
        const double lMin = bounds_.minLevel, lMax = bounds_.maxLevel;
        frequencyLabel(fMin);
        for (int i = 1; i <= 9; ++i) {
            const double f = (fMax - fMin) * i / 10.0 + fMin;
            line(f, lMax + 2, f, lMin - 2, style_.gridColour);
            frequencyLabel(f);
        }
        levelLine(lMin);
        for (int i = 1; i <= 4; ++i)
            levelLine((lMax - lMin) * i / 5.0 + lMin);
        levelLine(lMax);
    }

    void drawCurve(const QList<QPointF> &points)
    {
        pictures_.plot.setDrawWidth(3);
        for (qsizetype i = 1; i < points.size(); ++i)
            segment(points[i - 1].x(), points[i - 1].y(), points[i].x(), points[i].y());
    }

private:
    // Fix((f - minimum) * 1000000 / (maximum - minimum)): linear whether or not the curve is logarithmic.
    double x(double f) const
    {
        return std::trunc((f - bounds_.minFrequency) * kPlotWidth / (bounds_.maxFrequency - bounds_.minFrequency));
    }

    // One line on the plot, dropped when a frequency or an x is negative.
    void line(double f1, double l1, double f2, double l2, quint32 colour)
    {
        const double x1 = x(f1), x2 = x(f2);
        if (f1 < 0 || f2 < 0 || x1 < 0 || x2 < 0)
            return;
        pictures_.plot.line(x1, l1, x2, l2, colour);
    }

    void segment(double f1, double l1, double f2, double l2)
    {
        if (!style_.logarithmic || l1 == l2 || f1 == f2) {
            line(f1, l1, f2, l2, style_.curveColour);
            return;
        }
        const double low = logTenOf(f1);
        const double slope = (l2 - l1) / (logTenOf(f2) - low);
        const auto level = [&](double f) { return l1 + (logTenOf(f) - low) * slope; };
        const double step = (f2 - f1) / kLogPieces;
        for (int i = 0; i < kLogPieces; ++i) {
            const double from = f1 + step * i;
            const double to = i + 1 == kLogPieces ? f2 : f1 + step * (i + 1);
            line(from, level(from), to, i + 1 == kLogPieces ? l2 : level(to), style_.curveColour);
        }
    }

    void frequencyLabel(double f)
    {
        const double at = x(f);
        if (f < 0 || at < 0)
            return;
        Canvas &c = pictures_.frequencies;
        c.line(at, 10, at, 7, kLabelColour);
        c.setForeColour(kLabelColour);
        c.setTextPosition(at, 8);
        c.print(frequencyLabelText(float(f), false));
    }

    // A line across the plot at a level, and its label at the side.
    void levelLine(double l)
    {
        Canvas &c = pictures_.levels;
        c.line(8, l, 10, l, kLabelColour);
        c.setForeColour(kLabelColour);
        c.setTextPosition(0, l);
        c.print(formatPicture(l * style_.scale.sign + style_.scale.offset, QStringLiteral("###0.0")));
        pictures_.plot.line(0, l, kPlotWidth, l, style_.gridColour);
    }

    const PreviewPictures &pictures_;
    const PreviewBounds &bounds_;
    const CurveStyle &style_;
};

} // namespace

void drawCurvePreview(const PreviewPictures &pictures, const QList<QPointF> &points, PreviewBounds &bounds,
                      const CurveStyle &style)
{
    for (Canvas *c : {&pictures.plot, &pictures.levels, &pictures.frequencies})
        c->clear();
    if (points.isEmpty())
        return;
    if (bounds.minLevel == bounds.maxLevel) {
        bounds.maxLevel += 1.0f;
        bounds.minLevel -= 1.0f;
    }
    PreviewPainter painter(pictures, bounds, style);
    painter.setScales();
    // One frequency only (a single point, or all at one frequency) gives the x axis no width.
    if (bounds.minFrequency == bounds.maxFrequency)
        return;
    painter.drawGrid();
    painter.drawCurve(points);
}

void drawLimitPreview(Context &ctx, const PreviewPictures &pictures, const CurveGrid &grid, bool logarithmic)
{
    AppState &s = ctx.state;
    PreviewBounds bounds = limitPreviewBounds(s);
    drawCurvePreview(pictures, grid.points, bounds,
                     {limitScale(s), logarithmic, s.screenColours[GridColour], s.screenColours[LimitColour]});
    setLimitPreviewBounds(s, bounds);
}

void drawLossGainPreview(Context &ctx, const PreviewPictures &pictures, const CurveGrid &grid)
{
    AppState &s = ctx.state;
    PreviewBounds bounds = lossGainPreviewBounds(s);
    drawCurvePreview(pictures, grid.points, bounds,
                     {lossGainScale(s), false, s.screenColours[GridColour], s.screenColours[LossGainColour]});
    setLossGainPreviewBounds(s, bounds);
}
