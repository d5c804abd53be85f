#pragma once
// The chart of the form grafik, painted from scratch by paintChart: the frame on three
// pictures (plot, level labels, frequency labels), the grids and labels, and the traces,
// live from the trace store or stored in the current measurement file.

#include "chart/cursors.h"
#include "chart/overlays.h"

#include <QString>
#include <functional>

class Canvas;
class Context;
class GrafikControls;
struct AppState;
struct ChartView;

// Steps that paintChart runs at their place in the paint, when set. The chart's own overlays
// fill the first two; the others are work of later subsystems.
struct ChartHooks {
    std::function<void()> paintKnownBands;   // under the grid, when showKnownBands is set
    // Limit lines over the grid; true when the level window was widened and the paint must
    // start again from the clean frame.
    std::function<bool()> paintLimitLines;
    std::function<void()> paintCursors;      // over the traces
    std::function<void()> refreshLevelmeter; // after the cursors; the meter knows whether it is open
    std::function<void()> refreshPreview;    // last; the preview knows whether it is open
};

// While it lives, the zoom window stands in for the real one in startFrequency and
// stopFrequency (a zoom that runs past the stop is pulled back to end there); the real window
// comes back when it ends.
class ShownWindow {
public:
    explicit ShownWindow(ChartView &view);
    ~ShownWindow();
    ShownWindow(const ShownWindow &) = delete;
    ShownWindow &operator=(const ShownWindow &) = delete;

    const float realStart, realStop;

private:
    ChartView &view_;
};

class ChartPainter {
public:
    ChartPainter(Context &ctx, Canvas &picture1, Canvas &picture2, Canvas &picture3, GrafikControls &controls);
    // The hooks hold this painter.
    ChartPainter(const ChartPainter &) = delete;
    ChartPainter &operator=(const ChartPainter &) = delete;

    void paintChart();

    // x on Picture1 of a frequency in MHz: whole units on the linear axis, with fraction on the
    // log axis; not finite when the window has no width.
    double frequencyToX(float f) const;
    // One line on Picture1 between two (frequency, level count) points; dropped whole when a
    // frequency or an x is negative.
    void drawSegment(float f1, double y1, float f2, double y2, quint32 colour);
    void drawBar(float f, double y1, double y2, quint32 colour);
    void drawBox(float f1, float f2, double y1, double y2, quint32 colour);
    // Tick and text on Picture3, and on Picture2.
    void drawFrequencyLabel(float f, quint32 colour);
    void drawLevelLabel(double y, quint32 colour);
    // Ends of the logarithmic axis on 1..9 steps and the decade of its start.
    void computeLogBounds();

    // Steps of paintChart for a page that draws them in its own order: the grids with their
    // labels, and the traces, which lie on the real window while `shown` stands in for it.
    void paintFrequencyGrid();
    void paintLevelGrid();
    void paintTraces(const ShownWindow &shown);

    Canvas &picture1() { return picture1_; }
    Canvas &picture2() { return picture2_; }
    Canvas &picture3() { return picture3_; }
    ChartCursors &cursors() { return cursors_; }

    ChartHooks hooks;

private:
    AppState &state();
    ChartView &view();
    void paintFrame();
    void checkLogAxis();
    void showDistance();
    void paintLinearGrid();
    void paintLogGrid();
    void paintZeroSpanLine();
    void paintLevelLine(double y);
    void paintTraces();
    void paintLiveSweep();
    void paintLiveZeroSpan();
    QString liveCaption();
    void paintStored();
    void paintComparison();
    void paintComparisonLegend(quint32 colour);

    Context &ctx_;
    Canvas &picture1_;
    Canvas &picture2_;
    Canvas &picture3_;
    GrafikControls &controls_;
    ChartOverlays overlays_;
    ChartCursors cursors_;
    // The real window while the zoom stands in for it: the live sweep lies on it.
    float sweepStart_ = 0.0f, sweepStop_ = 0.0f;
    // Right end of the last frequency label printed in this paint, in x units of Picture3.
    double labelsEnd_ = 0.0;
};

// A number in a picture of `#` (optional digit) and `0` (digit), one optional point and a
// literal letter after the digits: "###0.00M" makes 1.5 into "1.50M".
QString formatPicture(double value, const QString &picture);
// The frequency text of an axis label, or of the "Zerospan / Freq: " line.
QString frequencyLabelText(float f, bool zeroSpan);
