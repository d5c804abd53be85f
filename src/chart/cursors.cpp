#include "chart/cursors.h"

#include "chart/canvas.h"
#include "chart/chart_painter.h"
#include "chart/grafik_controls.h"
#include "core/context.h"
#include "link/commands.h"
#include "link/discovery.h"
#include "signal/level_math.h"
#include "signal/trace_store.h"
#include "store/database.h"

#include <QSqlQuery>
#include <cmath>

namespace {

constexpr qint32 kPlotWidth = 1000000;
// A cursor is near the mouse within a hundredth of the width; only x counts.
constexpr qint32 kGrabDistance = 10000;

bool sweep(const AppState &s) { return s.emcMode > 0 || s.analyser.span > 0; }

double logOfKilohertz(float f)
{
    double v = double(f) * 1000.0;
    return logTen(v);
}

// x on the log axis of the last paint to MHz.
float logFrequency(const ChartView &v, double x)
{
    const double low = logOfKilohertz(v.logStart);
    return float(std::pow(10.0, (logOfKilohertz(v.logStop) - low) * x / kPlotWidth + low) / 1000.0);
}

// The clamp of the drawing, one bound after the other, so that a crossed level window (nothing
// read yet) leaves the cursor on its upper edge.
qint32 clampedTo(qint32 value, qint32 low, qint32 high)
{
    if (value < low)
        value = low;
    if (value > high)
        value = high;
    return value;
}

qint32 rounded(double v) { return qint32(std::lrint(std::clamp(v, -2e9, 2e9))); }

QString levelText(double level) { return formatPicture(level, QStringLiteral("###0.0")); }

} // namespace

float linearCursorFrequency(const AppState &s, double x)
{
    const ChartView &v = s.chart;
    if (!sweep(s))
        return std::max(0.0f, v.zoomOn ? v.zoomStart : v.startFrequency);
    const float width = v.zoomOn ? (v.zoomStart + v.zoomSpan) - v.zoomStart : v.stopFrequency - v.startFrequency;
    const float start = v.zoomOn ? v.zoomStart : v.startFrequency;
    return std::max(0.0f, float(width / float(kPlotWidth) * x) + start);
}

float cursorFrequency(const AppState &s, qint32 x, CursorId cursor)
{
    const ChartView &v = s.chart;
    if (v.logAxis != 0)
        return std::max(0.0f, logFrequency(v, x));
    // B's readout multiplies first and divides after, which rounds differently in single precision.
    if (cursor == CursorId::B && sweep(s) && !v.zoomOn)
        return std::max(0.0f, (v.stopFrequency - v.startFrequency) * float(x) / float(kPlotWidth) + v.startFrequency);
    return linearCursorFrequency(s, x);
}

QString cursorFrequencyText(float f, float scale)
{
    if (f < 1.0f)
        return formatPicture(double(f) * 1000.0, QStringLiteral("###0.0K"));
    if (scale < 1000.0f)
        return formatPicture(f, QStringLiteral("###0.000M"));
    return formatPicture(double(f) / 1000.0, QStringLiteral("###0.000G"));
}

ChartCursors::ChartCursors(Context &ctx, ChartPainter &painter, GrafikControls &controls)
    : ctx_(ctx), painter_(painter), controls_(controls)
{
}

void ChartCursors::paintCursors()
{
    ChartView &v = ctx_.state.chart;
    const ColourList &colours = ctx_.state.screenColours;
    Canvas &picture = painter_.picture1();
    picture.setDrawMode(Canvas::NotXorPen);
    picture.setDrawWidth(1);
    picture.setDrawStyle(Canvas::Dashed);
    v.cursorAX = clampedTo(v.cursorAX, 0, kPlotWidth);
    v.cursorBX = clampedTo(v.cursorBX, 0, kPlotWidth);
    v.cursorAY = clampedTo(v.cursorAY, v.grafikMin, v.grafikMax);
    v.cursorBY = clampedTo(v.cursorBY, v.grafikMin, v.grafikMax);
    // After a paint there is nothing to take away.
    const bool erase = v.cursorFresh != 1;
    v.cursorFresh = 0;
    if (erase)
        drawCursor(v.cursorAOldX, v.cursorAOldY, colours[CursorAColour]);
    drawCursor(v.cursorAX, v.cursorAY, colours[CursorAColour]);
    picture.setDrawStyle(Canvas::Dotted);
    if (erase)
        drawCursor(v.cursorBOldX, v.cursorBOldY, colours[CursorBColour]);
    drawCursor(v.cursorBX, v.cursorBY, colours[CursorBColour]);
    picture.setDrawStyle(Canvas::Dashed);
    v.cursorAOldX = v.cursorAX;
    v.cursorAOldY = v.cursorAY;
    v.cursorBOldX = v.cursorBX;
    v.cursorBOldY = v.cursorBY;
    showReadouts();
    // Outside the cursors the picture is always drawn in copy mode.
    picture.setDrawMode(Canvas::CopyPen);
    picture.setDrawWidth(1);
    picture.setDrawStyle(Canvas::Solid);
}

void ChartCursors::drawCursor(qint32 x, qint32 y, quint32 colour)
{
    const ChartView &v = ctx_.state.chart;
    Canvas &picture = painter_.picture1();
    picture.line(x, v.grafikMax, x, v.grafikMin, colour);
    picture.line(0, y, kPlotWidth, y, colour);
}

void ChartCursors::showReadouts()
{
    AppState &s = ctx_.state;
    ChartView &v = s.chart;
    const float fA = cursorFrequency(s, v.cursorAX, CursorId::A);
    const float fB = cursorFrequency(s, v.cursorBX, CursorId::B);
    const float distance = std::abs(fB - fA);
    const double levelA = levelInUnit(v.cursorAY / 2.5, s.analyser.unitOffset);
    const double levelB = levelInUnit(v.cursorBY / 2.5, s.analyser.unitOffset);
    v.cursorAFrequency = fA;
    v.cursorALevel = float(levelA);
    // B's unit follows A's frequency once B is 1 MHz or more.
    CursorReadouts texts{cursorFrequencyText(fA, fA), QString(), cursorFrequencyText(fB, fA), QString(),
                         cursorFrequencyText(distance, distance), QString()};
    const bool levelsKnown = v.grafikMin < v.grafikMax;
    const QString unknown = QStringLiteral("---");
    texts.leva = levelsKnown ? levelText(levelA) : unknown;
    texts.levb = levelsKnown ? levelText(levelB) : unknown;
    texts.levab = levelsKnown ? levelText(levelA - levelB) : unknown;
    controls_.setCursorReadouts(texts);
}

MousePointer ChartCursors::mouseMove(int buttons, double x, double y)
{
    AppState &s = ctx_.state;
    ChartView &v = s.chart;
    if (v.paintBusy == 1 || s.emcRunActive != 0)
        return MousePointer::Keep;
    if (!v.savedCaption.isEmpty() && !(buttons & RightButton)) {
        controls_.setCaption(v.savedCaption);
        v.savedCaption.clear();
    }
    if (v.cursorsActive != 1)
        return MousePointer::Cross;
    const bool left = buttons & LeftButton;
    if (!left)
        v.cursorGrabbed = 0;
    const double X = std::trunc(x);
    const auto far = [X](qint32 cursorX) { return X <= cursorX - kGrabDistance || X >= cursorX + kGrabDistance; };
    // A wins when both are near; a grabbed cursor stays concerned however far the mouse is.
    CursorId concerned = CursorId::A;
    if ((far(v.cursorAX) && v.cursorGrabbed != 1) || v.cursorGrabbed == 2) {
        if (far(v.cursorBX) && v.cursorGrabbed != 2)
            return MousePointer::Cross;
        concerned = CursorId::B;
    }
    if (!left)
        return MousePointer::Grip;
    const bool isA = concerned == CursorId::A;
    v.cursorGrabbed = isA ? 1 : 2;
    qint32 &cursorX = isA ? v.cursorAX : v.cursorBX;
    qint32 &cursorY = isA ? v.cursorAY : v.cursorBY;
    cursorX = rounded(x);
    cursorY = rounded(y);
    const bool moved = isA ? (cursorX != v.cursorAOldX || cursorY != v.cursorAOldY)
                           : (cursorX != v.cursorBOldX || cursorY != v.cursorBOldY);
    if (moved) {
        paintCursors();
        if (isA)
            call(painter_.hooks.refreshLevelmeter);
    }
    return MousePointer::Grip;
}

void ChartCursors::mouseDown(int button, double x)
{
    AppState &s = ctx_.state;
    if (button != RightButton || s.chart.showKnownBands == 0 || s.emcRunActive != 0)
        return;
    const float f = linearCursorFrequency(s, x);
    if (s.chart.savedCaption.isEmpty())
        s.chart.savedCaption = controls_.caption;
    QSqlQuery query(workingDatabase(ctx_));
    query.setForwardOnly(true);
    query.prepare(QStringLiteral("select signal, startfreq, stopfreq from knownsignals where stopfreq > ? "
                                 "order by startfreq"));
    query.addBindValue(double(f));
    if (!query.exec())
        return;
    // Bands may overlap: the last one that holds the frequency names it.
    while (query.next())
        if (!query.isNull(1) && query.value(1).toDouble() <= f && f <= query.value(2).toDouble())
            controls_.setCaption(query.value(0).toString());
}

void ChartCursors::doubleClicked()
{
    if (ctx_.state.emcMode != 0) {
        call(ctx_.calls.paintChart);
        return;
    }
    if (ctx_.state.online == 0)
        connectUnit(ctx_);
    readAllSettings(ctx_);
    readTraces(ctx_);
}

void ChartCursors::peakClicked()
{
    const ChartView &v = ctx_.state.chart;
    moveCursorA(v.peakFrequency, v.peakLevel);
}

void ChartCursors::moveCursorA(float frequency, qint32 level)
{
    ChartView &v = ctx_.state.chart;
    double x = 0;
    {
        // The frequency lies in the window that the chart shows, zoomed or not.
        const ShownWindow shown(v);
        x = painter_.frequencyToX(frequency);
    }
    v.cursorAX = std::isfinite(x) ? rounded(std::trunc(x)) : 0;
    v.cursorAY = level;
    paintCursors();
    call(painter_.hooks.refreshLevelmeter);
}

void ChartCursors::centreClicked()
{
    AppState &s = ctx_.state;
    const ChartView &v = s.chart;
    float &centre = s.analyser.centerFrequency;
    // The analyser's own window, whatever the zoom shows.
    if (v.logAxis != 0)
        centre = logFrequency(v, v.cursorAX);
    else if (s.analyser.span > 0)
        centre = (v.stopFrequency - v.startFrequency) * float(v.cursorAX) / float(kPlotWidth) + v.startFrequency;
    else
        centre = v.startFrequency;
    centreChanged();
}

void ChartCursors::doubleCentreClicked()
{
    ctx_.state.analyser.centerFrequency *= 2;
    centreChanged();
}

void ChartCursors::centreChanged()
{
    sendCenterFrequency(ctx_);
    if (ctx_.state.analyser.calculationOn == 1)
        calculationStart(ctx_);
    if (ctx_.state.online == 1) {
        readAllSettings(ctx_);
        readTraces(ctx_);
    }
}
