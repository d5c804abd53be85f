#pragma once
// The preview graph of the limit and loss/gain editors: three pictures forming one graph, the plot,
// its level labels at the side and its frequency labels below. Frequency runs linearly over
// 0 to 1,000,000 across the plot; ten frequency and five level divisions; the curve on top.

#include "store/curve_editor.h"

class Canvas;
class Context;

struct PreviewPictures {
    Canvas &plot;
    Canvas &levels;
    Canvas &frequencies;
};

struct CurveStyle {
    CurveScale scale;         // a sign other than 1 turns the picture upside down
    bool logarithmic = false; // levels between two points follow log frequency, drawn in 50 pieces
    quint32 gridColour = 0;
    quint32 curveColour = 0;
};

// Clears the pictures and, for a curve with points, draws the graph. Equal level bounds are
// widened by 1 dB each way (kept in `bounds`). Equal frequency bounds leave nothing to draw on.
void drawCurvePreview(const PreviewPictures &pictures, const QList<QPointF> &points, PreviewBounds &bounds,
                      const CurveStyle &style);

// The limit editor's preview (drawLimitPreview) and the loss/gain editor's (drawLossGainPreview)
// of the grid just filled, with the bounds and colours of the state.
void drawLimitPreview(Context &ctx, const PreviewPictures &pictures, const CurveGrid &grid, bool logarithmic);
void drawLossGainPreview(Context &ctx, const PreviewPictures &pictures, const CurveGrid &grid);
