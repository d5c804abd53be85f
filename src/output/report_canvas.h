#pragma once
// The surface a report is drawn on: the chart's canvas plus fonts, the page's orientation, lines
// of text and pages. On a report canvas `print` moves the text position on by the text's width,
// so that texts printed one after another stand side by side; `newLine` moves it to the left
// edge of the scale, one line of the font in force lower.

#include "chart/canvas.h"

class ReportCanvas : public virtual Canvas {
public:
    enum Orientation { Portrait = 1, Landscape = 2 };

    virtual void setFontName(const QString &name) = 0;
    virtual void setFontSize(double points) = 0;
    virtual void setFontBold(bool on) = 0;
    virtual void setFontUnderline(bool on) = 0;
    // Of the page being begun; a page already drawn on keeps its own.
    virtual void setOrientation(int orientation) = 0;
    virtual void newLine() = 0;
    // y of the text position.
    virtual double currentY() const = 0;
    virtual void newPage() = 0;
    // True when the pages come out of a printer, whose paper the user may have to turn.
    virtual bool onPaper() const { return true; }
    // The document is complete: a printer starts printing, a file is written.
    virtual void endDocument() = 0;
};
