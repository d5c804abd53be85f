#include "output/recording_report_canvas.h"

void RecordingReportCanvas::print(const QString &text)
{
    RecordingCanvas::print(text);
    textX += textWidth(text);
}

void RecordingReportCanvas::setFontName(const QString &name)
{
    fontName = name;
    record(Op::FontName, 0, 0, 0, 0, 0, name);
}

void RecordingReportCanvas::setFontSize(double points)
{
    fontSize = points;
    record(Op::FontSize, points);
}

void RecordingReportCanvas::setFontBold(bool on)
{
    fontBold = on;
    record(Op::FontBold, on);
}

void RecordingReportCanvas::setFontUnderline(bool on)
{
    fontUnderline = on;
    record(Op::FontUnderline, on);
}

void RecordingReportCanvas::setOrientation(int orientation) { record(Op::Orientation, orientation); }

void RecordingReportCanvas::newLine()
{
    textX = scaleLeft;
    textY += kLinePixels * scaleHeight / std::max(1, pixelHeight());
    record(Op::NewLine, textX, textY);
}

void RecordingReportCanvas::newPage()
{
    textX = scaleLeft;
    textY = scaleTop;
    record(Op::NewPage);
}

void RecordingReportCanvas::endDocument() { record(Op::EndDocument); }
