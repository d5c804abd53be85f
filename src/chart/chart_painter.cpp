#include "chart/chart_painter.h"

#include "chart/canvas.h"
#include "chart/grafik_controls.h"
#include "core/context.h"
#include "link/commands.h"
#include "signal/level_math.h"
#include "chart/zoom_view.h"

#include <array>
#include <cmath>
#include <limits>

namespace {

constexpr double kPlotWidth = 1000000.0;
constexpr quint32 kLabelColour = 5;          // ticks and label texts
constexpr quint32 kZeroSpanColour = 0x800080; // palette entry 5
constexpr quint32 kBlack = 0;
// Each of the two limit lines widens the window at most once; a further pass would mean the
// window never settles.
constexpr int kMaxPaintPasses = 3;
// Decades of the log axis searched from 1 kHz up; beyond them the window is not a number.
constexpr int kMaxDecades = 20;

// logTen of a value, leaving the caller's variable alone.
double logTenOf(double v) { return logTen(v); }

// Fix: the fraction dropped towards zero; a value that is not finite stays so, and is skipped later.
double fix(double v) { return std::isfinite(v) ? std::trunc(v) : v; }

// A single as the system joins it to text: shortest digits, no trailing zeros.
QString plainNumber(float value, quint8 decimalChar)
{
    return QString::number(double(value), 'g', 7).replace(QLatin1Char('.'), QChar(decimalChar));
}

} // namespace

QString formatPicture(double value, const QString &picture)
{
    const int point = picture.indexOf(QLatin1Char('.'));
    const QString whole = point < 0 ? picture : picture.left(point);
    const QString rest = point < 0 ? QString() : picture.mid(point + 1);
    int decimals = 0;
    while (decimals < rest.size() && (rest[decimals] == QLatin1Char('0') || rest[decimals] == QLatin1Char('#')))
        ++decimals;
    int digits = 0;
    while (digits < whole.size() && (whole[digits] == QLatin1Char('0') || whole[digits] == QLatin1Char('#')))
        ++digits;
    const QString suffix = (point < 0 ? whole.mid(digits) : rest.mid(decimals));
    return numberPicture(value, int(whole.left(digits).count(QLatin1Char('0'))), decimals) + suffix;
}

QString frequencyLabelText(float f, bool zeroSpan)
{
    if (f < 1.0f)
        return formatPicture(double(f) * 1000.0, QStringLiteral("###0.0K"));
    if (f < 1000.0f)
        return formatPicture(f, QStringLiteral("###0.00M"));
    // The zero-span line shows gigahertz with two decimals, the axis with three.
    return formatPicture(double(f) / 1000.0, zeroSpan ? QStringLiteral("###0.00G") : QStringLiteral("###0.000G"));
}

ChartPainter::ChartPainter(Context &ctx, Canvas &picture1, Canvas &picture2, Canvas &picture3,
                           GrafikControls &controls)
    : ctx_(ctx), picture1_(picture1), picture2_(picture2), picture3_(picture3), controls_(controls),
      overlays_(ctx, *this), cursors_(ctx, *this, controls)
{
    hooks.paintKnownBands = [this] { overlays_.paintKnownBands(); };
    hooks.paintLimitLines = [this] { return overlays_.paintLimitLines(); };
    hooks.paintCursors = [this] { cursors_.paintCursors(); };
}

ShownWindow::ShownWindow(ChartView &view)
    : realStart(view.startFrequency), realStop(view.stopFrequency), view_(view)
{
    if (!view.zoomOn)
        return;
    if (view.zoomStart > view.startFrequency)
        view.startFrequency = view.zoomStart;
    else
        view.zoomStart = view.startFrequency;
    if (view.zoomStart + view.zoomSpan < view.stopFrequency) {
        view.stopFrequency = view.zoomStart + view.zoomSpan;
    } else {
        view.zoomStart = view.stopFrequency - view.zoomSpan;
        view.startFrequency = view.zoomStart;
    }
}

ShownWindow::~ShownWindow()
{
    if (view_.zoomOn) {
        view_.startFrequency = realStart;
        view_.stopFrequency = realStop;
    }
}

AppState &ChartPainter::state() { return ctx_.state; }
ChartView &ChartPainter::view() { return ctx_.state.chart; }

void ChartPainter::paintChart()
{
    ChartView &v = view();
    if (v.paintBusy == 1)
        return;
    v.paintBusy = 1;
    setBusy(ctx_);

    {
        // The zoom window stands in for the real one during the paint.
        const ShownWindow shown(v);
        for (int pass = 1;; ++pass) {
            paintFrame();
            picture1_.setDrawMode(Canvas::CopyPen);
            picture1_.setDrawWidth(2);
            if (!hooks.paintLimitLines || !hooks.paintLimitLines() || pass == kMaxPaintPasses)
                break;
        }
        picture1_.setDrawWidth(1);
        controls_.setCaption(QString());
        paintTraces(shown);
        call(hooks.paintCursors);
        call(hooks.refreshLevelmeter);
        call(hooks.refreshPreview);
        v.paintBusy = 0;
    }
    controls_.setZoomControls(v.zoomOn, zoomFieldText(state(), v.zoomStart), zoomFieldText(state(), v.zoomSpan));
    controls_.setKnownBandsCheck(v.showKnownBands != 0);
    clearBusy(ctx_);
}

// The clean frame: scales, grids, labels and the text lines around the chart.
void ChartPainter::paintFrame()
{
    ChartView &v = view();
    v.peakLevel = -1000;
    picture1_.clear();
    v.cursorFresh = 1; // the cursors went with the picture
    labelsEnd_ = -std::numeric_limits<double>::infinity();
    picture3_.clear();
    picture2_.clear();
    picture1_.setDrawMode(Canvas::CopyPen);
    const double levelHeight = double(v.grafikMin) - v.grafikMax;
    const double p1Width = std::max(1, picture1_.pixelWidth());
    const double p1Height = std::max(1, picture1_.pixelHeight());
    picture1_.setScale(0, v.grafikMax, kPlotWidth, levelHeight);
    // One count is as high on Picture2 as on Picture1, one x unit as wide on Picture3.
    picture2_.setScale(0, v.grafikMax, 10, levelHeight * picture2_.pixelHeight() / p1Height);
    picture3_.setScale(0, 10, kPlotWidth * picture3_.pixelWidth() / p1Width, -11);
    picture1_.setDrawWidth(1);
    checkLogAxis();
    picture1_.setDrawWidth(1);
    showDistance();
    if (v.showKnownBands != 0)
        call(hooks.paintKnownBands);
    paintFrequencyGrid();
    controls_.setUnitLabel(state().unitName.trimmed());
    paintLevelGrid();
}

void ChartPainter::checkLogAxis()
{
    ChartView &v = view();
    if (v.startFrequency * 10 > v.stopFrequency) {
        v.logAxis = 0;
        controls_.setLogAxisCheck(false, false);
    } else {
        controls_.setLogAxisCheck(true, v.logAxis == 1);
    }
}

void ChartPainter::showDistance()
{
    const AppState &s = state();
    if (!(s.distanceFromDut > 0)) {
        controls_.setDistanceLabel(false, controls_.distanceText);
        return;
    }
    QString text = QStringLiteral("Distance from DUT: ") + plainNumber(s.distanceFromDut, s.decimalChar) +
                   QStringLiteral("m");
    if (s.distanceFromDut != s.maxholdLimitDistance && s.maxholdLimitDistance > 0) {
        const double offset = -20.0 * logTenOf(double(s.maxholdLimitDistance) / s.distanceFromDut);
        text += QStringLiteral(" offset ") + formatPicture(offset, QStringLiteral("0.0")) + QStringLiteral("dB");
    }
    controls_.setDistanceLabel(true, text);
}

double ChartPainter::frequencyToX(float f) const
{
    const ChartView &v = ctx_.state.chart;
    if (v.logAxis == 0)
        return fix((double(f) - v.startFrequency) * kPlotWidth / (double(v.stopFrequency) - v.startFrequency));
    if (f == 0)
        return 0;
    const double low = logTenOf(double(v.logStart) * 1000.0);
    return (logTenOf(double(f) * 1000.0) - low) / (logTenOf(double(v.logStop) * 1000.0) - low) * kPlotWidth;
}

void ChartPainter::drawSegment(float f1, double y1, float f2, double y2, quint32 colour)
{
    if (f1 < 0 || f2 < 0)
        return;
    const double x1 = frequencyToX(f1), x2 = frequencyToX(f2);
    // No clipping at the left edge: a stretch that begins left of the window is not drawn.
    if (!(x1 >= 0 && x2 >= 0) || !std::isfinite(x1) || !std::isfinite(x2))
        return;
    picture1_.line(x1, y1, x2, y2, colour);
}

void ChartPainter::drawBar(float f, double y1, double y2, quint32 colour)
{
    drawSegment(f, y1, f, y2, colour);
}

void ChartPainter::drawBox(float f1, float f2, double y1, double y2, quint32 colour)
{
    if (f2 < 0)
        return;
    const double x1 = frequencyToX(f1), x2 = frequencyToX(f2);
    if (!(x1 >= 0 && x2 >= 0) || !std::isfinite(x1) || !std::isfinite(x2))
        return;
    picture1_.box(x1, y1, x2, y2, colour);
}

void ChartPainter::drawFrequencyLabel(float f, quint32 colour)
{
    const double x = frequencyToX(f);
    if (!(x >= 0) || !std::isfinite(x))
        return;
    picture3_.line(x, 10, x, 7, colour);
    // A text that would run into the one before it is left out; its tick stays.
    const QString text = frequencyLabelText(f, false);
    if (x < labelsEnd_)
        return;
    picture3_.setForeColour(colour);
    picture3_.setTextPosition(x, 8);
    picture3_.print(text);
    labelsEnd_ = x + picture3_.textWidth(text + QLatin1Char(' '));
}

void ChartPainter::drawLevelLabel(double y, quint32 colour)
{
    picture2_.line(8, y, 10, y, colour);
    picture2_.setForeColour(colour);
    picture2_.setTextPosition(0, y);
    picture2_.print(formatPicture(levelInUnit(y / 2.5, state().analyser.unitOffset), QStringLiteral("###0.0")));
}

void ChartPainter::computeLogBounds()
{
    ChartView &v = view();
    v.logStart = 0;
    v.logStop = 0;
    v.logDecade = 0.001f;
    // Decades are exact powers of ten, so that 5 x 100 is 500 and not a hair above it.
    int decade = -3;
    auto d = [&decade] { return std::pow(10.0, decade); };
    if (v.startFrequency <= 0.002f)
        v.logStart = 0.001f;
    else
        for (bool found = false; !found && decade < kMaxDecades;) {
            for (int i = 1; i <= 9 && !found; ++i) {
                if (d() * i > v.startFrequency) {
                    // A start just below a decade goes up to it; any other down to its step.
                    v.logStart = float(i == 1 ? d() : d() * (i - 1));
                    v.logDecade = float(d());
                    found = true;
                }
            }
            if (!found)
                ++decade;
        }
    for (; decade < kMaxDecades; ++decade)
        for (int i = 1; i <= 9; ++i)
            if (d() * i > v.stopFrequency) {
                v.logStop = float(d() * i);
                return;
            }
}

void ChartPainter::paintFrequencyGrid()
{
    const AppState &s = state();
    if (s.emcMode == 0 && s.analyser.span <= 0)
        paintZeroSpanLine();
    else if (view().logAxis == 0)
        paintLinearGrid();
    else
        paintLogGrid();
}

void ChartPainter::paintLinearGrid()
{
    const ChartView &v = view();
    const quint32 grid = state().screenColours[GridColour];
    if (v.startFrequency < 0) {
        // The zero line of a window reaching below 0 MHz stands in for the left label.
        picture1_.setDrawWidth(2);
        drawSegment(0, v.grafikMin, 0, v.grafikMax, kBlack);
        picture1_.setDrawWidth(1);
    } else {
        drawFrequencyLabel(v.startFrequency, kLabelColour);
    }
    for (int i = 1; i <= 9; ++i) {
        const float f = (v.stopFrequency - v.startFrequency) * i / 10 + v.startFrequency;
        drawSegment(f, v.grafikMin, f, v.grafikMax, grid);
        drawFrequencyLabel(f, kLabelColour);
    }
    drawFrequencyLabel(v.stopFrequency, kLabelColour);
}

void ChartPainter::paintLogGrid()
{
    computeLogBounds();
    const ChartView &v = view();
    const quint32 grid = state().screenColours[GridColour];
    const quint32 decadeColour = state().screenColours[DecadeColour];
    // The decade as the exact power of ten that computeLogBounds found, so that a step of the
    // grid is the same single as the bound it is compared with.
    int decade = int(std::lround(std::log10(double(v.logDecade))));
    auto d = [&decade] { return std::pow(10.0, decade); };
    int i0 = int(v.logStart / v.logDecade);
    drawFrequencyLabel(v.logStart, kLabelColour);
    float f = v.logStart;
    do {
        for (int i = i0; i <= 9; ++i) {
            f = float(d() * i);
            if (f < v.logStop)
                drawSegment(f, v.grafikMin, f, v.grafikMax, grid);
        }
        ++decade;
        if (const float next = float(d()); next < v.logStop) {
            drawSegment(next, v.grafikMin, next, v.grafikMax, decadeColour);
            drawFrequencyLabel(next, kLabelColour);
        }
        i0 = 2;
    } while (f < v.logStop);
    drawFrequencyLabel(v.logStop, kLabelColour);
}

void ChartPainter::paintZeroSpanLine()
{
    picture3_.setForeColour(kZeroSpanColour);
    picture3_.setTextPosition(1000, 10);
    picture3_.print(QStringLiteral("Zerospan / Freq: ") + frequencyLabelText(view().startFrequency, true));
}

void ChartPainter::paintLevelGrid()
{
    const ChartView &v = view();
    const AnalyserSettings &a = state().analyser;
    const float g = (a.refLevel + a.attenuator) * 2.5f;
    const float step = 2.5f * a.dbPerDivision;
    if (!(step > 0) || !std::isfinite(g))
        return;
    if (g <= v.grafikMax) {
        for (float y = g; y <= v.grafikMax; y += step)
            paintLevelLine(y);
        for (float y = g - step; y >= v.grafikMin; y -= step)
            paintLevelLine(y);
    } else {
        // An anchor above the window: the lines stand at whole steps from the top edge.
        for (float y = v.grafikMax; y >= v.grafikMin; y -= step)
            if (y < g)
                paintLevelLine(y);
    }
}

void ChartPainter::paintLevelLine(double y)
{
    picture1_.line(0, y, kPlotWidth, y, state().screenColours[GridColour]);
    drawLevelLabel(y, kLabelColour);
}
