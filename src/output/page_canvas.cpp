#include "output/page_canvas.h"

#include "chart/image_canvas.h"

#include <QFontMetricsF>
#include <QPagedPaintDevice>
#include <cmath>

namespace {

constexpr double kDotsPerInch = 300.0;

bool finite(QPointF p) { return std::isfinite(p.x()) && std::isfinite(p.y()); }

} // namespace

PageCanvas::PageCanvas(QPaintDevice &device, QPagedPaintDevice *pages, bool paper)
    : device_(device), pages_(pages), paper_(paper)
{
    font_.setFamily(QStringLiteral("arial"));
    font_.setStyleHint(QFont::SansSerif);
    font_.setPointSizeF(10);
}

PageCanvas::~PageCanvas() { endDocument(); }

bool PageCanvas::ready()
{
    if (!ok_)
        return false;
    if (!painter_.isActive()) {
        if (!painter_.begin(&device_)) {
            ok_ = false;
            return false;
        }
        painter_.setRenderHint(QPainter::Antialiasing, pages_ != nullptr);
        painter_.setFont(font_);
        fitScale();
    }
    if (pagePending_) {
        pagePending_ = false;
        if (pages_ && !pages_->newPage())
            ok_ = false;
        fitScale(); // the new page may stand the other way
    }
    return ok_;
}

void PageCanvas::fitScale()
{
    scaleX_ = device_.width() / scaleWidth_;
    scaleY_ = device_.height() / scaleHeight_;
}

QPointF PageCanvas::toDevice(double x, double y) const { return QPointF((x - left_) * scaleX_, (y - top_) * scaleY_); }

QFontMetricsF PageCanvas::metrics() const { return QFontMetricsF(font_, &device_); }

void PageCanvas::clear()
{
    if (ready() && !pages_)
        painter_.fillRect(QRect(0, 0, device_.width(), device_.height()), Qt::white);
    textX_ = left_;
    textY_ = top_;
}

void PageCanvas::setScale(double left, double top, double width, double height)
{
    left_ = left;
    top_ = top;
    scaleWidth_ = width;
    scaleHeight_ = height;
    fitScale();
}

void PageCanvas::setDrawWidth(int dots) { penWidth_ = std::max(1, dots); }

void PageCanvas::setDrawStyle(int style) { style_ = style; }

void PageCanvas::line(double x1, double y1, double x2, double y2, quint32 colour)
{
    const QPointF a = toDevice(x1, y1), b = toDevice(x2, y2);
    if (!finite(a) || !finite(b) || !ready())
        return;
    const double dot = std::max(1.0, device_.logicalDpiX() / kDotsPerInch);
    painter_.setPen(linePen(colour, penWidth_ * dot, style_, a, b, dashRun_));
    painter_.drawLine(a, b);
}

void PageCanvas::box(double x1, double y1, double x2, double y2, quint32 colour)
{
    const QPointF a = toDevice(x1, y1), b = toDevice(x2, y2);
    if (finite(a) && finite(b) && ready())
        painter_.fillRect(QRectF(a, b).normalized(), bgrColour(colour));
}

void PageCanvas::setTextPosition(double x, double y)
{
    textX_ = x;
    textY_ = y;
}

void PageCanvas::print(const QString &text)
{
    const QPointF at = toDevice(textX_, textY_);
    if (finite(at) && ready()) {
        painter_.setPen(bgrColour(foreColour_));
        painter_.drawText(QPointF(at.x(), at.y() + metrics().ascent()), text);
    }
    textX_ += textWidth(text);
}

double PageCanvas::textWidth(const QString &text) const { return metrics().horizontalAdvance(text) / std::abs(scaleX_); }
double PageCanvas::textHeight() const { return metrics().height() / std::abs(scaleY_); }

int PageCanvas::pixelWidth() const { return device_.width(); }
int PageCanvas::pixelHeight() const { return device_.height(); }

void PageCanvas::applyFont()
{
    if (painter_.isActive())
        painter_.setFont(font_);
}

void PageCanvas::setFontName(const QString &name)
{
    font_.setFamily(name);
    applyFont();
}

void PageCanvas::setFontSize(double points)
{
    font_.setPointSizeF(points);
    applyFont();
}

void PageCanvas::setFontBold(bool on)
{
    font_.setBold(on);
    applyFont();
}

void PageCanvas::setFontUnderline(bool on)
{
    font_.setUnderline(on);
    applyFont();
}

void PageCanvas::setOrientation(int orientation)
{
    if (pages_)
        pages_->setPageOrientation(orientation == Landscape ? QPageLayout::Landscape : QPageLayout::Portrait);
    if (!painter_.isActive() || pagePending_)
        fitScale();
}

void PageCanvas::newLine()
{
    textX_ = left_;
    textY_ += metrics().lineSpacing() / scaleY_;
}

void PageCanvas::newPage()
{
    pagePending_ = true;
    textX_ = left_;
    textY_ = top_;
}

void PageCanvas::endDocument()
{
    if (painter_.isActive())
        painter_.end();
}
