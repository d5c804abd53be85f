#pragma once
// A drawing surface that draws nothing and records every operation in user coordinates,
// with the pen as it stood at the time, so that tests can assert exactly what was drawn.

#include "chart/canvas.h"

#include <QList>
#include <QString>

class RecordingCanvas : public virtual Canvas {
public:
    enum class Op { Clear, Scale, DrawMode, DrawWidth, DrawStyle, Line, Box, TextPosition, ForeColour, Print,
                    // the page's operations: the argument in x1, a font name in text
                    FontName, FontSize, FontBold, FontUnderline, Orientation, NewLine, NewPage, EndDocument };

    struct Operation {
        Op op;
        double x1 = 0.0, y1 = 0.0, x2 = 0.0, y2 = 0.0; // coordinates, or the argument of a setter in x1
        quint32 colour = 0;                             // line and box colour; fore colour for Print
        QString text;
        int width = 1, mode = CopyPen, style = Solid;   // the pen in force
    };

    explicit RecordingCanvas(int pixelWidth = 1000, int pixelHeight = 1000);

    void setPixelSize(int width, int height);
    void forget() { operations.clear(); }

    // Lines, optionally only those of one colour.
    QList<Operation> lines() const { return ofKind(Op::Line); }
    QList<Operation> lines(quint32 colour) const;
    QList<Operation> boxes() const { return ofKind(Op::Box); }
    // Printed texts with their text position in x1, y1 and their fore colour.
    QList<Operation> texts() const { return ofKind(Op::Print); }
    QStringList printed() const;
    QList<Operation> ofKind(Op op) const;
    int count(Op op) const { return int(ofKind(op).size()); }

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
    // Every character is taken as kCharPixels wide.
    double textWidth(const QString &text) const override;
    // A line of text is taken as kRowPixels tall.
    double textHeight() const override;
    static constexpr int kRowPixels = 12;
    static constexpr int kCharPixels = 7;
    int pixelWidth() const override { return pixelWidth_; }
    int pixelHeight() const override { return pixelHeight_; }

    QList<Operation> operations;
    // The state the operations leave behind.
    double scaleLeft = 0.0, scaleTop = 0.0, scaleWidth = 1.0, scaleHeight = 1.0;
    double textX = 0.0, textY = 0.0;
    quint32 foreColour = 0;
    int width = 1, mode = CopyPen, style = Solid;

protected:
    void record(Op op, double x1 = 0, double y1 = 0, double x2 = 0, double y2 = 0, quint32 colour = 0,
                const QString &text = {});

private:
    int pixelWidth_, pixelHeight_;
};
