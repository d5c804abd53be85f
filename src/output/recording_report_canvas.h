#pragma once
// A report canvas that draws nothing and records every operation, for tests. A line of text is
// kLinePixels pixels high at every font size.

#include "chart/recording_canvas.h"
#include "output/report_canvas.h"

class RecordingReportCanvas : public RecordingCanvas, public ReportCanvas {
public:
    using RecordingCanvas::RecordingCanvas;

    void print(const QString &text) override;
    void setFontName(const QString &name) override;
    void setFontSize(double points) override;
    void setFontBold(bool on) override;
    void setFontUnderline(bool on) override;
    void setOrientation(int orientation) override;
    void newLine() override;
    double currentY() const override { return textY; }
    void newPage() override;
    void endDocument() override;

    static constexpr int kLinePixels = 20;
    // The font in force.
    QString fontName;
    double fontSize = 10.0;
    bool fontBold = false, fontUnderline = false;
};
