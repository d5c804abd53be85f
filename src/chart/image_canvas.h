#pragma once
// The on-screen drawing surface: a white RGB32 image with one painter kept open across all
// operations. User coordinates map to pixels by setScale; pens have no antialiasing.
// The image holds the screen's pixels: at a pixel ratio of 2 it has twice the pixels each way,
// and the painter draws lines and text at the size they have at 1, with the finer pixels.

#include "chart/canvas.h"

#include <QImage>
#include <QPen>
#include <QPainter>
#include <QPointF>

// A dashed or dotted trace is drawn as many short lines; each would start its pattern afresh and
// look solid. A line that starts where the last one ended goes on where the pattern stood.
class DashRun {
public:
    // The dash offset for the line from a to b drawn with a pen of `penWidth`, in pen widths.
    double offsetFor(QPointF a, QPointF b, double penWidth);

private:
    QPointF end_{qQNaN(), qQNaN()};
    double run_ = 0.0; // length drawn since the pattern started, in device units
};

// The pen of a line, its dashes running on from the last line in `run`.
QPen linePen(quint32 colour, double width, int style, QPointF a, QPointF b, DashRun &run);

class ImageCanvas : public Canvas {
public:
    explicit ImageCanvas(int width = 1, int height = 1, qreal pixelRatio = 1.0);
    ~ImageCanvas() override;
    ImageCanvas(const ImageCanvas &) = delete;
    ImageCanvas &operator=(const ImageCanvas &) = delete;

    // A new blank image of the given size in device-independent pixels at the screen's pixel
    // ratio; scale, pen and text position are kept.
    void resize(int width, int height, qreal pixelRatio = 1.0);
    qreal pixelRatio() const { return image_.devicePixelRatio(); }
    // What has been drawn so far: the raster painter writes straight into the image.
    const QImage &image() const { return image_; }

    void clear() override;
    void setScale(double left, double top, double width, double height) override;
    void setDrawMode(int mode) override;
    void setDrawWidth(int pixels) override;
    void setDrawStyle(int style) override;
    void line(double x1, double y1, double x2, double y2, quint32 colour) override;
    void box(double x1, double y1, double x2, double y2, quint32 colour) override;
    void setTextPosition(double x, double y) override;
    void setForeColour(quint32 colour) override;
    void print(const QString &text) override;
    double textWidth(const QString &text) const override;
    double textHeight() const override;
    int pixelWidth() const override { return size_.width(); }
    int pixelHeight() const override { return size_.height(); }

private:
    void beginPainting();
    void applyPen(quint32 colour);
    QPointF toPixel(double x, double y) const;

    QImage image_;
    QSize size_; // in device-independent pixels
    QPainter painter_;
    int mode_ = CopyPen;
    int width_ = 1;
    int style_ = Solid;
    DashRun dashRun_;
    quint32 penColour_ = 0;
    bool penValid_ = false;
    quint32 foreColour_ = 0;
    double textX_ = 0.0, textY_ = 0.0;
    double scaleLeft_ = 0.0, scaleTop_ = 0.0, scaleWidth_ = 1.0, scaleHeight_ = 1.0;
    double scaleX_ = 1.0, scaleY_ = 1.0; // pixels per user unit
};

// 0xBBGGRR as a colour.
QColor bgrColour(quint32 bgr);
