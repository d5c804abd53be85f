#pragma once
// A drawing surface in user coordinates, as the chart and the report draw on it.
// setScale fixes the user coordinate system: x grows from `left` over `width`, y from `top`
// over `height` (a negative height makes y grow upward). Colours are 0xBBGGRR values.

#include <QString>
#include <QtGlobal>

class Canvas {
public:
    enum DrawMode { CopyPen = 13, NotXorPen = 10 };
    enum DrawStyle { Solid = 0, Dashed = 1, Dotted = 2 };

    virtual ~Canvas() = default;

    // Erases to the background and puts the text position back to the top left.
    virtual void clear() = 0;
    virtual void setScale(double left, double top, double width, double height) = 0;
    virtual void setDrawMode(int mode) = 0;
    virtual void setDrawWidth(int pixels) = 0;
    virtual void setDrawStyle(int style) = 0;
    virtual void line(double x1, double y1, double x2, double y2, quint32 colour) = 0;
    virtual void box(double x1, double y1, double x2, double y2, quint32 colour) = 0; // filled
    virtual void setTextPosition(double x, double y) = 0;
    virtual void setForeColour(quint32 colour) = 0;
    // Text with its top left corner at the text position.
    virtual void print(const QString &text) = 0;
    // How wide `text` would be printed, in user units of x.
    virtual double textWidth(const QString &text) const = 0;
    // How tall a line of text is, in user units of y (positive whichever way y runs).
    virtual double textHeight() const = 0;

    // Size of the surface in pixels (device-independent: on a screen at 200 % a pixel here is two
    // of the screen's, and lines and text keep their size).
    virtual int pixelWidth() const = 0;
    virtual int pixelHeight() const = 0;
};
