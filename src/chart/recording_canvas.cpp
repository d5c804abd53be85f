#include "chart/recording_canvas.h"

#include <QStringList>
#include <algorithm>

RecordingCanvas::RecordingCanvas(int pixelWidth, int pixelHeight)
    : pixelWidth_(pixelWidth), pixelHeight_(pixelHeight)
{
}

void RecordingCanvas::setPixelSize(int width, int height)
{
    pixelWidth_ = width;
    pixelHeight_ = height;
}

QList<RecordingCanvas::Operation> RecordingCanvas::ofKind(Op op) const
{
    QList<Operation> found;
    for (const Operation &o : operations)
        if (o.op == op)
            found.append(o);
    return found;
}

QList<RecordingCanvas::Operation> RecordingCanvas::lines(quint32 colour) const
{
    QList<Operation> found;
    for (const Operation &o : operations)
        if (o.op == Op::Line && o.colour == colour)
            found.append(o);
    return found;
}

QStringList RecordingCanvas::printed() const
{
    QStringList found;
    for (const Operation &o : operations)
        if (o.op == Op::Print)
            found.append(o.text);
    return found;
}

void RecordingCanvas::record(Op op, double x1, double y1, double x2, double y2, quint32 colour,
                             const QString &text)
{
    operations.append(Operation{op, x1, y1, x2, y2, colour, text, width, mode, style});
}

void RecordingCanvas::clear()
{
    textX = scaleLeft;
    textY = scaleTop;
    record(Op::Clear);
}

void RecordingCanvas::setScale(double left, double top, double w, double h)
{
    scaleLeft = left;
    scaleTop = top;
    scaleWidth = w;
    scaleHeight = h;
    record(Op::Scale, left, top, w, h);
}

void RecordingCanvas::setDrawMode(int m)
{
    mode = m;
    record(Op::DrawMode, m);
}

void RecordingCanvas::setDrawWidth(int pixels)
{
    width = pixels;
    record(Op::DrawWidth, pixels);
}

void RecordingCanvas::setDrawStyle(int s)
{
    style = s;
    record(Op::DrawStyle, s);
}

void RecordingCanvas::line(double x1, double y1, double x2, double y2, quint32 colour)
{
    record(Op::Line, x1, y1, x2, y2, colour);
}

void RecordingCanvas::box(double x1, double y1, double x2, double y2, quint32 colour)
{
    record(Op::Box, x1, y1, x2, y2, colour);
}

void RecordingCanvas::setTextPosition(double x, double y)
{
    textX = x;
    textY = y;
    record(Op::TextPosition, x, y);
}

void RecordingCanvas::setForeColour(quint32 colour)
{
    foreColour = colour;
    record(Op::ForeColour, 0, 0, 0, 0, colour);
}

void RecordingCanvas::print(const QString &text)
{
    record(Op::Print, textX, textY, 0, 0, foreColour, text);
}

double RecordingCanvas::textHeight() const
{
    return kRowPixels * std::abs(scaleHeight) / std::max(1, pixelHeight_);
}

double RecordingCanvas::textWidth(const QString &text) const
{
    return double(text.size()) * kCharPixels * scaleWidth / std::max(1, pixelWidth_);
}
