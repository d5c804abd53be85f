#pragma once
// The on-screen drawing surface: a white RGB32 image with one painter kept open across all
// operations. User coordinates map to pixels by setScale; pens have no antialiasing.

#include "chart/canvas.h"

#include <QImage>
#include <QPainter>
#include <QPointF>

class ImageCanvas : public Canvas {
public:
    explicit ImageCanvas(int width = 1, int height = 1);
    ~ImageCanvas() override;
    ImageCanvas(const ImageCanvas &) = delete;
    ImageCanvas &operator=(const ImageCanvas &) = delete;

    // A new blank image of the given pixel size; scale, pen and text position are kept.
    void resize(int width, int height);
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
    int pixelWidth() const override { return image_.width(); }
    int pixelHeight() const override { return image_.height(); }

private:
    void beginPainting();
    void applyPen(quint32 colour);
    QPointF toPixel(double x, double y) const;

    QImage image_;
    QPainter painter_;
    int mode_ = CopyPen;
    int width_ = 1;
    int style_ = Solid;
    quint32 penColour_ = 0;
    bool penValid_ = false;
    quint32 foreColour_ = 0;
    double textX_ = 0.0, textY_ = 0.0;
    double scaleLeft_ = 0.0, scaleTop_ = 0.0, scaleWidth_ = 1.0, scaleHeight_ = 1.0;
    double scaleX_ = 1.0, scaleY_ = 1.0; // pixels per user unit
};

// 0xBBGGRR as a colour.
QColor bgrColour(quint32 bgr);
