#include "chart/image_canvas.h"

#include <QFont>
#include <QFontMetrics>
#include <cmath>

namespace {

// Pixels a line may reach beyond the image before it is cut: the pen's width never matters more.
constexpr double kClipMargin = 8.0;

// Cuts the line to the rectangle [lo, hi] on both axes (Liang-Barsky); false when nothing is left.
bool clipLine(QPointF &a, QPointF &b, double loX, double loY, double hiX, double hiY)
{
    const double dx = b.x() - a.x(), dy = b.y() - a.y();
    double t0 = 0.0, t1 = 1.0;
    const double p[4] = {-dx, dx, -dy, dy};
    const double q[4] = {a.x() - loX, hiX - a.x(), a.y() - loY, hiY - a.y()};
    for (int i = 0; i < 4; ++i) {
        if (p[i] == 0.0) {
            if (q[i] < 0.0)
                return false;
            continue;
        }
        const double t = q[i] / p[i];
        if (p[i] < 0.0)
            t0 = std::max(t0, t);
        else
            t1 = std::min(t1, t);
        if (t0 > t1)
            return false;
    }
    const QPointF start = a;
    a = QPointF(start.x() + t0 * dx, start.y() + t0 * dy);
    b = QPointF(start.x() + t1 * dx, start.y() + t1 * dy);
    return true;
}

bool finite(QPointF p) { return std::isfinite(p.x()) && std::isfinite(p.y()); }

} // namespace

QColor bgrColour(quint32 bgr) { return QColor(bgr & 0xFF, (bgr >> 8) & 0xFF, (bgr >> 16) & 0xFF); }

ImageCanvas::ImageCanvas(int width, int height, qreal pixelRatio)
{
    resize(width, height, pixelRatio);
}

ImageCanvas::~ImageCanvas()
{
    if (painter_.isActive())
        painter_.end();
}

void ImageCanvas::resize(int width, int height, qreal pixelRatio)
{
    if (painter_.isActive())
        painter_.end();
    const qreal ratio = pixelRatio > 0 ? pixelRatio : 1.0;
    size_ = QSize(std::max(1, width), std::max(1, height));
    image_ = QImage(int(std::ceil(size_.width() * ratio)), int(std::ceil(size_.height() * ratio)),
                    QImage::Format_RGB32);
    image_.setDevicePixelRatio(ratio);
    image_.fill(Qt::white);
    beginPainting();
    setScale(scaleLeft_, scaleTop_, scaleWidth_, scaleHeight_);
}

void ImageCanvas::beginPainting()
{
    painter_.begin(&image_);
    painter_.setRenderHint(QPainter::Antialiasing, false);
    painter_.setRenderHint(QPainter::TextAntialiasing, false);
    QFont font(QStringLiteral("Sans Serif"));
    font.setStyleHint(QFont::SansSerif);
    font.setPixelSize(11);
    painter_.setFont(font);
    penValid_ = false;
    setDrawMode(mode_);
}

void ImageCanvas::clear()
{
    const auto composition = painter_.compositionMode();
    painter_.setCompositionMode(QPainter::CompositionMode_Source);
    painter_.fillRect(QRectF(QPointF(0, 0), image_.deviceIndependentSize()), Qt::white);
    painter_.setCompositionMode(composition);
    textX_ = scaleLeft_;
    textY_ = scaleTop_;
}

void ImageCanvas::setScale(double left, double top, double width, double height)
{
    scaleLeft_ = left;
    scaleTop_ = top;
    scaleWidth_ = width;
    scaleHeight_ = height;
    // A zero extent leaves every point at infinity: nothing is drawn until the scale is valid.
    scaleX_ = size_.width() / width;
    scaleY_ = size_.height() / height;
}

void ImageCanvas::setDrawMode(int mode)
{
    mode_ = mode;
    painter_.setCompositionMode(mode == NotXorPen ? QPainter::RasterOp_NotSourceXorDestination
                                                  : QPainter::CompositionMode_SourceOver);
}

void ImageCanvas::setDrawWidth(int pixels)
{
    width_ = std::max(1, pixels);
    penValid_ = false;
}

void ImageCanvas::setDrawStyle(int style)
{
    style_ = style;
    penValid_ = false;
}

void ImageCanvas::applyPen(quint32 colour)
{
    if (penValid_ && colour == penColour_)
        return;
    DashRun fresh;
    painter_.setPen(linePen(colour, width_, style_, {}, {}, fresh));
    penColour_ = colour;
    penValid_ = true;
}

QPointF ImageCanvas::toPixel(double x, double y) const
{
    return QPointF((x - scaleLeft_) * scaleX_, (y - scaleTop_) * scaleY_);
}

void ImageCanvas::line(double x1, double y1, double x2, double y2, quint32 colour)
{
    QPointF a = toPixel(x1, y1), b = toPixel(x2, y2);
    if (!finite(a) || !finite(b))
        return;
    // Far-off ends are cut here, so the rasteriser only ever sees coordinates near the image.
    if (!clipLine(a, b, -kClipMargin, -kClipMargin, size_.width() + kClipMargin, size_.height() + kClipMargin))
        return;
    if (style_ != Solid && mode_ == CopyPen) {
        // Cursors (drawn not-xor) keep a fixed pattern, so that drawing one again erases it.
        painter_.setPen(linePen(colour, width_, style_, a, b, dashRun_));
        penValid_ = false;
    } else {
        applyPen(colour);
    }
    painter_.drawLine(a, b);
}

void ImageCanvas::box(double x1, double y1, double x2, double y2, quint32 colour)
{
    const QPointF a = toPixel(x1, y1), b = toPixel(x2, y2);
    if (!finite(a) || !finite(b))
        return;
    const QRectF bounds(-kClipMargin, -kClipMargin, size_.width() + 2 * kClipMargin,
                        size_.height() + 2 * kClipMargin);
    const QRectF rect = QRectF(a, b).normalized().intersected(bounds);
    if (!rect.isEmpty())
        painter_.fillRect(rect, bgrColour(colour));
}

void ImageCanvas::setTextPosition(double x, double y)
{
    textX_ = x;
    textY_ = y;
}

void ImageCanvas::setForeColour(quint32 colour) { foreColour_ = colour; }

void ImageCanvas::print(const QString &text)
{
    const QPointF at = toPixel(textX_, textY_);
    if (!finite(at) || std::abs(at.x()) > 1e6 || std::abs(at.y()) > 1e6)
        return;
    penValid_ = false;
    painter_.setPen(bgrColour(foreColour_));
    painter_.drawText(QPointF(at.x(), at.y() + painter_.fontMetrics().ascent()), text);
}

double ImageCanvas::textWidth(const QString &text) const
{
    return painter_.fontMetrics().horizontalAdvance(text) / std::abs(scaleX_);
}

double ImageCanvas::textHeight() const
{
    return painter_.fontMetrics().height() / std::abs(scaleY_);
}

double DashRun::offsetFor(QPointF a, QPointF b, double penWidth)
{
    if (a != end_)
        run_ = 0.0;
    const double offset = run_ / penWidth;
    run_ += QLineF(a, b).length();
    end_ = b;
    return offset;
}

QPen linePen(quint32 colour, double width, int style, QPointF a, QPointF b, DashRun &run)
{
    static constexpr Qt::PenStyle kStyles[] = {Qt::SolidLine, Qt::DashLine, Qt::DotLine};
    const Qt::PenStyle penStyle = kStyles[style >= 0 && style <= 2 ? style : 0];
    QPen pen(bgrColour(colour), width, penStyle, Qt::FlatCap);
    if (penStyle != Qt::SolidLine)
        pen.setDashOffset(run.offsetFor(a, b, width));
    return pen;
}
