#pragma once
// The zoom window and the small view switches of the chart. They change only the view and ask
// for a repaint; the analyser is not told anything.

#include <QString>

class Context;
struct AppState;

// Check6: the zoom view on or off. A window that no longer fits is brought back into the chart.
void zoomChecked(Context &ctx, bool ticked);
// Text2 left by Enter (`enter`) or by the focus: the start of the zoom window, MHz.
void zoomStartEntered(Context &ctx, const QString &text, bool enter);
// Text4 left by Enter or by the focus: the width of the zoom window, MHz.
void zoomSpanEntered(Context &ctx, const QString &text);
// Command7(0) and Command7(1): the zoom window half its width to the left or to the right.
void zoomMoved(Context &ctx, int index);
// Check1, Check5, the paint mode and the thinning switch.
void logAxisChecked(Context &ctx, bool ticked);
void knownBandsChecked(Context &ctx, bool ticked);
void paintModeChosen(Context &ctx, int index);
void allPointsChecked(Context &ctx, bool ticked);

// A zoom field's text: "0.000" with the decimal character of the user's locale.
QString zoomFieldText(const AppState &s, float value);
