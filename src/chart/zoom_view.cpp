#include "chart/zoom_view.h"

#include "core/context.h"
#include "link/commands.h"
#include "link/serial_link.h"

namespace {

constexpr float kNarrowestZoom = 0.5f;
constexpr float kWidestZoom = 1000.0f;

float windowWidth(const ChartView &v) { return v.stopFrequency - v.startFrequency; }

// The typed text as a number through the picture "0.000"; either decimal character is taken.
float typedNumber(const AppState &s, const QString &text)
{
    QString plain = text;
    plain.replace(QChar(s.decimalChar), QLatin1Char('.')).replace(QLatin1Char(','), QLatin1Char('.'));
    return float(numberValue(numberPicture(numberValue(plain), 1, 3)));
}

void boundZoomSpan(ChartView &v) { v.zoomSpan = qBound(kNarrowestZoom, v.zoomSpan, kWidestZoom); }

void repaint(Context &ctx) { ctx.state.repaintRequest = 1; }

} // namespace

QString zoomFieldText(const AppState &s, float value)
{
    return numberPicture(value, 1, 3).replace(QLatin1Char('.'), QChar(s.decimalChar));
}

void zoomChecked(Context &ctx, bool ticked)
{
    ChartView &v = ctx.state.chart;
    v.zoomOn = ticked;
    if (ticked) {
        if (v.zoomSpan > windowWidth(v))
            v.zoomSpan = windowWidth(v) / 5.0f;
        boundZoomSpan(v);
        if (v.zoomStart < v.startFrequency || v.zoomStart > v.stopFrequency)
            v.zoomStart = v.startFrequency;
    }
    repaint(ctx);
}

void zoomStartEntered(Context &ctx, const QString &text, bool enter)
{
    ChartView &v = ctx.state.chart;
    v.zoomStart = typedNumber(ctx.state, text);
    if (v.zoomStart + v.zoomSpan > v.stopFrequency)
        v.zoomStart = v.stopFrequency - v.zoomSpan;
    // Only Enter also tests the stop; leaving the field does not.
    if (v.zoomStart < v.startFrequency || (enter && v.zoomStart > v.stopFrequency))
        v.zoomStart = v.startFrequency;
    repaint(ctx);
}

void zoomSpanEntered(Context &ctx, const QString &text)
{
    ChartView &v = ctx.state.chart;
    v.zoomSpan = typedNumber(ctx.state, text);
    if (v.zoomSpan > windowWidth(v))
        v.zoomSpan = windowWidth(v);
    boundZoomSpan(v);
    if (v.zoomStart + v.zoomSpan > v.stopFrequency)
        v.zoomStart = qMax(v.stopFrequency - v.zoomSpan, v.startFrequency);
    repaint(ctx);
}

void zoomMoved(Context &ctx, int index)
{
    ChartView &v = ctx.state.chart;
    const float half = v.zoomSpan / 2.0f;
    if (index == 0)
        v.zoomStart = v.zoomStart - half <= v.startFrequency ? v.startFrequency : v.zoomStart - half;
    else if (v.zoomStart + half < v.stopFrequency)
        v.zoomStart = qMax(v.zoomStart + half, v.startFrequency);
    else
        // Tested against half the width: the paint pulls the window back to end at the stop.
        v.zoomStart = qMax(v.stopFrequency - half, v.startFrequency);
    repaint(ctx);
}

void logAxisChecked(Context &ctx, bool ticked)
{
    ctx.state.chart.logAxis = ticked ? 1 : 0;
    repaint(ctx);
}

void knownBandsChecked(Context &ctx, bool ticked)
{
    ctx.state.chart.showKnownBands = ticked ? -1 : 0;
    repaint(ctx);
}

void paintModeChosen(Context &ctx, int index)
{
    ctx.state.chart.paintSelection = quint8(qBound(0, index, 2));
    repaint(ctx);
}

void allPointsChecked(Context &ctx, bool ticked)
{
    ctx.state.chart.paintAllPoints = ticked ? 1 : 0;
    repaint(ctx);
}
