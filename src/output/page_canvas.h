#pragma once
// A report canvas on a QPainter: a printer or a PDF file (a paged device), or the image of the
// preview. The scale maps onto the whole paintable area of the page. Pen widths count in dots
// of 1/300 inch, so that a page looks the same at every resolution (on a screen image a dot is
// a pixel). Drawing is always in copy mode: paper has no not-xor.
//
// The painter begins with the first thing drawn and a new page is begun only when something is
// drawn on it, so that an orientation set after `newPage` is the new page's.

#include "chart/image_canvas.h"
#include "output/report_canvas.h"

#include <QFont>
#include <QPainter>

class QPagedPaintDevice;

class PageCanvas : public ReportCanvas {
public:
    // `pages` is `device` when it is a paged one (a printer, a PDF writer), else null; `paper`
    // when it is a printer.
    explicit PageCanvas(QPaintDevice &device, QPagedPaintDevice *pages = nullptr, bool paper = false);
    ~PageCanvas() override;
    PageCanvas(const PageCanvas &) = delete;
    PageCanvas &operator=(const PageCanvas &) = delete;

    // False once the device refused to be painted on (no printer, a file that cannot be written).
    bool ok() const { return ok_; }

    void clear() override;
    void setScale(double left, double top, double width, double height) override;
    void setDrawMode(int) override {}
    void setDrawWidth(int dots) override;
    void setDrawStyle(int style) override;
    void line(double x1, double y1, double x2, double y2, quint32 colour) override;
    void box(double x1, double y1, double x2, double y2, quint32 colour) override;
    void setTextPosition(double x, double y) override;
    void setForeColour(quint32 colour) override { foreColour_ = colour; }
    void print(const QString &text) override;
    double textWidth(const QString &text) const override;
    double textHeight() const override;
    int pixelWidth() const override;
    int pixelHeight() const override;

    void setFontName(const QString &name) override;
    void setFontSize(double points) override;
    void setFontBold(bool on) override;
    void setFontUnderline(bool on) override;
    void setOrientation(int orientation) override;
    void newLine() override;
    double currentY() const override { return textY_; }
    void newPage() override;
    void endDocument() override;
    bool onPaper() const override { return paper_; }

private:
    // Begins the painter or the pending page; false when there is nothing to draw on.
    bool ready();
    void fitScale();
    void applyFont();
    QPointF toDevice(double x, double y) const;
    QFontMetricsF metrics() const;

    QPaintDevice &device_;
    QPagedPaintDevice *pages_;
    const bool paper_;
    QPainter painter_;
    QFont font_;
    bool ok_ = true;
    bool pagePending_ = false;
    int penWidth_ = 1, style_ = Solid;
    DashRun dashRun_;
    quint32 foreColour_ = 0;
    double textX_ = 0.0, textY_ = 0.0;
    double left_ = 0.0, top_ = 0.0, scaleWidth_ = 1.0, scaleHeight_ = 1.0;
    double scaleX_ = 1.0, scaleY_ = 1.0; // device pixels per user unit
};
