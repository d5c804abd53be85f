#include "output/report_painter.h"

#include "chart/chart_painter.h"
#include "chart/grafik_controls.h"
#include "core/context.h"
#include "output/report_canvas.h"

#include <QLocale>
#include <QPointF>
#include <functional>

namespace {

constexpr double kPlotWidth = 1000000.0;
constexpr double kPageLeft = -100000.0;
constexpr quint32 kBlack = 0;
constexpr quint32 kUnitLineColour = 0x800080; // palette entry 5
// The second item of a line of the setting block stands at this column.
constexpr int kTabColumn = 40;

enum class Twin { Print, Preview };

// "general date": the locale's short date and the time.
QString generalDate(const QDateTime &t)
{
    return QLocale().toString(t.date(), QLocale::ShortFormat) + QLatin1Char(' ') +
           t.toString(QStringLiteral("hh:mm:ss"));
}

// The plot of the chart on the page. Clearing and scaling are the page's own business; the chart's
// pens are never thinner than `minWidth`; the first line drawn after `onFirstLine` was set is
// handed to it once (the start of a limit line, which prints the limit's name).
class PagePlot : public Canvas {
public:
    explicit PagePlot(ReportCanvas &page) : page_(page) {}

    int minWidth = 1;
    std::function<void(double x, double y, quint32 colour)> onFirstLine;

    void clear() override {}
    void setScale(double, double, double, double) override {}
    void setDrawMode(int mode) override { page_.setDrawMode(mode); }
    void setDrawWidth(int pixels) override { page_.setDrawWidth(std::max(pixels, minWidth)); }
    void setDrawStyle(int style) override { page_.setDrawStyle(style); }
    void line(double x1, double y1, double x2, double y2, quint32 colour) override
    {
        page_.line(x1, y1, x2, y2, colour);
        if (onFirstLine)
            std::exchange(onFirstLine, nullptr)(x1, y1, colour);
    }
    void box(double x1, double y1, double x2, double y2, quint32 colour) override { page_.box(x1, y1, x2, y2, colour); }
    void setTextPosition(double x, double y) override { page_.setTextPosition(x, y); }
    void setForeColour(quint32 colour) override { page_.setForeColour(colour); }
    void print(const QString &text) override { page_.print(text); }
    double textWidth(const QString &text) const override { return page_.textWidth(text); }
    double textHeight() const override { return page_.textHeight(); }
    int pixelWidth() const override { return page_.pixelWidth(); }
    int pixelHeight() const override { return page_.pixelHeight(); }

private:
    ReportCanvas &page_;
};

// A label picture of the chart on the page: its ticks are left out and its texts stand where
// `place` puts them, in black on a black page.
class PageLabels : public Canvas {
public:
    PageLabels(ReportCanvas &page, bool black, std::function<QPointF(double x, double y)> place)
        : page_(page), black_(black), place_(std::move(place))
    {
    }

    void clear() override {}
    void setScale(double, double, double, double) override {}
    void setDrawMode(int) override {}
    void setDrawWidth(int) override {}
    void setDrawStyle(int) override {}
    void line(double, double, double, double, quint32) override {}
    void box(double, double, double, double, quint32) override {}
    void setTextPosition(double x, double y) override
    {
        const QPointF at = place_(x, y);
        page_.setTextPosition(at.x(), at.y());
    }
    void setForeColour(quint32 colour) override { page_.setForeColour(black_ ? kBlack : colour); }
    void print(const QString &text) override { page_.print(text); }
    double textWidth(const QString &text) const override { return page_.textWidth(text); }
    double textHeight() const override { return page_.textHeight(); }
    int pixelWidth() const override { return page_.pixelWidth(); }
    int pixelHeight() const override { return page_.pixelHeight(); }

private:
    ReportCanvas &page_;
    const bool black_;
    std::function<QPointF(double, double)> place_;
};

// While it lives the chart's colours are the page's: the printer colours or black, the grid black.
class PageColours {
public:
    explicit PageColours(AppState &s) : s_(s), screen_(s.screenColours)
    {
        if (s.printInColour == 1)
            s.screenColours = s.printColours;
        else
            s.screenColours.fill(kBlack);
        s.screenColours[GridColour] = s.screenColours[DecadeColour] = kBlack;
    }
    ~PageColours() { s_.screenColours = screen_; }
    PageColours(const PageColours &) = delete;
    PageColours &operator=(const PageColours &) = delete;

private:
    AppState &s_;
    const ColourList screen_;
};

class ReportPainter {
public:
    ReportPainter(Context &ctx, ReportCanvas &page, Twin twin)
        : ctx_(ctx), s_(ctx.state), v_(ctx.state.chart), page_(page), twin_(twin), plot_(page),
          frequencyLabels_(page, s_.printInColour != 1, [this](double x, double) { return QPointF(x, v_.grafikMin - 1); }),
          levelLabels_(page, s_.printInColour != 1, [](double, double y) { return QPointF(-kPlotWidth / 15, y); }),
          chart_(ctx, plot_, levelLabels_, frequencyLabels_, controls_)
    {
    }

    void paint();

private:
    quint32 colour(ColourRole role) const { return s_.printInColour == 1 ? s_.printColours[role] : kBlack; }
    double h() const { return double(v_.grafikMin) - v_.grafikMax; }
    void setPageScale(double width, double heightFactor);
    void say(const QString &text, quint32 colour);
    void header(double textSize);
    void traceLine();
    void chart(const ShownWindow &shown);
    void frame();
    void limitLines();
    void cursors();
    void settingBlock();
    void notes();

    Context &ctx_;
    AppState &s_;
    ChartView &v_;
    ReportCanvas &page_;
    const Twin twin_;
    PagePlot plot_;
    PageLabels frequencyLabels_, levelLabels_;
    GrafikControls controls_; // what the chart would show on its form; the readouts of the cursors
    ChartPainter chart_;
};

void ReportPainter::setPageScale(double width, double heightFactor)
{
    page_.setScale(kPageLeft, v_.grafikMax - h() / 5, width, h() * heightFactor);
}

void ReportPainter::say(const QString &text, quint32 colour)
{
    page_.setForeColour(colour);
    page_.print(text);
}

void ReportPainter::paint()
{
    if (s_.printBusy == 1)
        return;
    const bool portrait = s_.printVertical == 1;
    {
        const ShownWindow shown(v_);
        setBusy(ctx_);
        s_.printBusy = 1;
        if (twin_ == Twin::Print) {
            page_.setOrientation(portrait ? ReportCanvas::Portrait : ReportCanvas::Landscape);
            setPageScale(1210000, portrait ? 2.1 : 1.3);
            page_.setFontName(QStringLiteral("arial"));
        } else {
            setPageScale(1150000, portrait ? 2.3 : 1.3);
            page_.clear();
            page_.setFontName(QStringLiteral("Courier New"));
            page_.setFontSize(8);
            page_.setFontBold(true);
        }
        header(10);
        chart(shown);
        if (s_.printCursor == 1)
            cursors();
        if (twin_ == Twin::Print && s_.printNotes == 1) {
            if (!portrait) {
                page_.newPage();
                if (page_.onPaper())
                    ctx_.prompts.messageBox(QStringLiteral("Print"), QStringLiteral("Ready to print notes? (Turn the paper)"));
                page_.setOrientation(ReportCanvas::Portrait);
                setPageScale(1150000, 1.3);
                header(12);
            } else {
                // The area under the chart holds the notes section; two lines clear the labels.
                page_.setTextPosition(kPageLeft, v_.grafikMin);
                page_.newLine();
                page_.newLine();
            }
            settingBlock();
            notes();
        }
        page_.endDocument();
        s_.printBusy = 0;
    }
    clearBusy(ctx_);
}

// Headline, trace line, print date and unit line, from the top left of the page.
void ReportPainter::header(double textSize)
{
    page_.setFontSize(16);
    page_.setFontBold(true);
    page_.setTextPosition(kPageLeft, v_.grafikMax - h() / 7);
    say(s_.headline.trimmed(), kBlack);
    page_.setFontSize(textSize);
    page_.setFontBold(false);
    page_.newLine();
    traceLine();
    if (s_.printInColour != 1)
        say(QStringLiteral("      RBW: ") + QString::number(s_.analyser.bandwidth) + QStringLiteral("kHz"), kBlack);
    if (s_.printDate == 1) {
        page_.newLine();
        say(QStringLiteral("Print date: ") + generalDate(ctx_.clock.now()), kBlack);
        // A stored chart also names when it was measured, as the chart's caption does on screen.
        if (s_.traceFrozen != 0)
            say(QStringLiteral("    Measure date: ") + generalDate(s_.measurementDate), kBlack);
    }
    page_.newLine();
    const quint32 unitColour = s_.printInColour == 1 ? kUnitLineColour : kBlack;
    QString unit = QStringLiteral("Unit: ") + s_.unitName.trimmed();
    if (s_.distanceFromDut > 0)
        unit += QStringLiteral("    Distance from DUT: ") + QString::number(double(s_.distanceFromDut), 'g', 7) +
                QStringLiteral("m      ");
    if (s_.emcMode > 0)
        unit += QStringLiteral("    ") + s_.emcTestName;
    if (s_.autostoreOn != 0)
        unit += QStringLiteral("    ") + s_.measurementFileName;
    if (s_.uncalibratedFlag != 0)
        unit += QStringLiteral("    UNCAL");
    say(unit, unitColour);
}

// The traces shown, each in its colour: with their time when live.
void ReportPainter::traceLine()
{
    const bool live = s_.traceFrozen == 0;
    const TraceStore &t = s_.traces;
    const auto timed = [&](const QString &name, const QDateTime &time, ColourRole role) {
        say(name + (live ? QStringLiteral(": ") + generalDate(time) + QStringLiteral("   ") : QStringLiteral("   ")),
            colour(role));
    };
    if (s_.viewSample != 0)
        timed(QStringLiteral("Sam"), t.sampleTime, SampleColour);
    if (s_.viewAverage != 0)
        timed(QStringLiteral("Ave"), t.averageTime, AverageColour);
    if (s_.viewMaxhold != 0)
        timed(s_.emcMode > 0 ? QStringLiteral("Peak") : QStringLiteral("Max.HLD"), t.maxholdTime, MaxholdColour);
    if (s_.viewQPeak != 0 && s_.emcMode > 0)
        say(QStringLiteral("QPeak   "), colour(QPeakColour));
    const auto memory = [&](const QString &name) {
        if (live)
            say(name + QStringLiteral(": ") + generalDate(t.memoryTime), colour(MemoryColour));
        else
            say(s_.emcMode == 0 ? name + QStringLiteral("   ") : QStringLiteral("Sweep   "), colour(MemoryColour));
    };
    if (s_.viewMemoryB != 0)
        memory(QStringLiteral("Mem"));
    if (s_.viewMemoryAB != 0)
        memory(QStringLiteral("A-B"));
}

// Known bands, frame, grids, limit lines and traces, by the chart's own drawing.
void ReportPainter::chart(const ShownWindow &shown)
{
    const PageColours colours(s_);
    if (v_.showKnownBands != 0)
        call(chart_.hooks.paintKnownBands);
    frame();
    chart_.paintFrequencyGrid();
    chart_.paintLevelGrid();
    limitLines();
    // The page leaves the peak that the screen found alone.
    const float peakFrequency = v_.peakFrequency;
    const qint16 peakLevel = v_.peakLevel;
    plot_.minWidth = s_.traceFrozen != 0 ? 3 : 1;
    chart_.paintTraces(shown);
    plot_.minWidth = 1;
    page_.setDrawWidth(1);
    v_.peakFrequency = peakFrequency;
    v_.peakLevel = peakLevel;
}

void ReportPainter::frame()
{
    page_.setDrawWidth(4);
    page_.line(0, v_.grafikMax, 0, v_.grafikMin, kBlack);
    page_.line(kPlotWidth, v_.grafikMax, kPlotWidth, v_.grafikMin, kBlack);
    page_.line(0, v_.grafikMin, kPlotWidth, v_.grafikMin, kBlack);
    page_.line(0, v_.grafikMax, kPlotWidth, v_.grafikMax, kBlack);
    page_.setDrawWidth(1);
}

// Each limit line on its own, so that its first segment prints its name with a leader.
void ReportPainter::limitLines()
{
    const quint8 shownMax = s_.viewLimitMax, shownAverage = s_.viewLimitAverage;
    const struct {
        quint8 max, average;
        QString name;
    } passes[] = {{shownMax, 0, s_.maxholdLimitName}, {0, shownAverage, s_.averageLimitName}};
    page_.setDrawWidth(6);
    for (const auto &pass : passes) {
        if (pass.max == 0 && pass.average == 0)
            continue;
        s_.viewLimitMax = pass.max;
        s_.viewLimitAverage = pass.average;
        s_.limitNamePending = 1;
        plot_.onFirstLine = [this, name = pass.name](double x, double y, quint32 colour) {
            s_.limitNamePending = 0;
            page_.setTextPosition(x + 10000, y + 10);
            say(name, colour);
            page_.setDrawWidth(1);
            page_.line(x, y, x + 10000, y + 8, colour);
            page_.setDrawWidth(6);
        };
        call(chart_.hooks.paintLimitLines);
        plot_.onFirstLine = nullptr;
        s_.limitNamePending = 0;
    }
    s_.viewLimitMax = shownMax;
    s_.viewLimitAverage = shownAverage;
    page_.setDrawWidth(1);
}

// Both cursors across the plot with their marks, and their readouts at the top of the plot.
void ReportPainter::cursors()
{
    const bool print = twin_ == Twin::Print;
    page_.setDrawMode(Canvas::NotXorPen);
    page_.setDrawWidth(1);
    page_.setDrawStyle(Canvas::Dashed);
    // One bound after the other, as on the screen.
    const auto clamp = [](qint32 &value, qint32 low, qint32 high) {
        value = std::max(value, low);
        value = std::min(value, high);
    };
    clamp(v_.cursorAX, 0, qint32(kPlotWidth));
    clamp(v_.cursorBX, 0, qint32(kPlotWidth));
    clamp(v_.cursorAY, v_.grafikMin, v_.grafikMax);
    clamp(v_.cursorBY, v_.grafikMin, v_.grafikMax);
    // The screen's cursor colours: the printer's cursor rows stay unused.
    const quint32 colourA = s_.printInColour == 1 ? s_.screenColours[CursorAColour] : kBlack;
    const quint32 colourB = s_.printInColour == 1 ? s_.screenColours[CursorBColour] : kBlack;
    const auto cross = [this](qint32 x, qint32 y, double end, const QString &mark, quint32 colour) {
        page_.line(x, v_.grafikMin, x, v_.grafikMax, colour);
        page_.line(0, y, end, y, colour);
        page_.setTextPosition(end, y);
        say(mark, colour);
    };
    cross(v_.cursorAX, v_.cursorAY, 1030000, print ? QStringLiteral("C1") : QStringLiteral("CA"), colourA);
    page_.setDrawStyle(Canvas::Dotted);
    cross(v_.cursorBX, v_.cursorBY, 1010000, print ? QStringLiteral("C2") : QStringLiteral("CB"), colourB);
    page_.setDrawStyle(Canvas::Dashed);

    chart_.cursors().showReadouts();
    const CursorReadouts &r = controls_.readouts;
    const QString unit = s_.unitName.trimmed();
    page_.setFontSize(8);
    page_.setTextPosition(1000, v_.grafikMax);
    say((print ? QStringLiteral("C1: Freq.: ") : QStringLiteral("Cursor 1: Freq.: ")) + r.freqa +
            QStringLiteral("   Lev.:") + r.leva + unit,
        colourA);
    page_.newLine();
    page_.setTextPosition(1000, page_.currentY());
    say((print ? QStringLiteral("C2: Freq.: ") : QStringLiteral("Cursor 2: Freq.: ")) + r.freqb +
            QStringLiteral("   Lev.:") + r.levb + unit,
        colourB);
    page_.newLine();
    page_.setTextPosition(1000, page_.currentY());
    say((print ? QStringLiteral("C1-C2: Freq.: ") : QStringLiteral("Cursor 1-2: Freq.: ")) + r.freqab +
            QStringLiteral("   Lev.:") + r.levab + QStringLiteral("dB"),
        kBlack);
    page_.setDrawMode(Canvas::CopyPen);
    page_.setDrawWidth(1);
    page_.setDrawStyle(Canvas::Solid);
}

// The analyser's settings, two to a line (normal mode only).
void ReportPainter::settingBlock()
{
    if (s_.emcMode != 0)
        return;
    const AnalyserSettings &a = s_.analyser;
    const QString unit = s_.unitName.trimmed();
    const auto line = [this](const QString &first, const QString &second) {
        page_.newLine();
        say(first, kBlack);
        if (second.isEmpty())
            return;
        page_.setTextPosition(kPageLeft + page_.textWidth(QString(kTabColumn, QLatin1Char('0'))), page_.currentY());
        say(second, kBlack);
    };
    page_.setFontSize(10);
    line(QStringLiteral("CF: ") + formatPicture(a.centerFrequency, QStringLiteral("0.000")) + QStringLiteral("MHz"),
         QStringLiteral("SPAN: ") + formatPicture(a.span, QStringLiteral("0.0")) + QStringLiteral("MHz"));
    line(QStringLiteral("RBW: ") + formatPicture(a.bandwidth, QStringLiteral("0.00")) + QStringLiteral("kHz"),
         QStringLiteral("ATTN.: ") + formatPicture(a.attenuator, QStringLiteral("0.0")) + QStringLiteral("dB"));
    line(QStringLiteral("REF: ") +
             formatPicture(double(a.refLevel) + a.unitOffset + a.attenuator, QStringLiteral("###0.0")) + unit,
         formatPicture(a.dbPerDivision, QStringLiteral("0")) + QStringLiteral("dB/div"));
    line(QStringLiteral("Videofilter: ") + (a.videoFilter == 1 ? QStringLiteral("On") : QStringLiteral("Off")), {});
    line(a.tgOn == 1 ? QStringLiteral("TG: ") + formatPicture(double(a.tgLevel) + a.unitOffset, QStringLiteral("###0.0")) +
                           unit
                     : QStringLiteral("TG: OFF"),
         {});
}

// "Notes:" and the notes, a line feed starting a new line.
void ReportPainter::notes()
{
    page_.newLine();
    page_.newLine();
    page_.setFontSize(14);
    page_.setFontBold(true);
    page_.setFontUnderline(true);
    say(QStringLiteral("Notes:"), kBlack);
    page_.setFontSize(12);
    page_.setFontBold(false);
    page_.setFontUnderline(false);
    page_.newLine();
    page_.newLine();
    for (const QChar c : s_.notes) {
        if (c == QChar(13))
            continue;
        if (c == QChar(10))
            page_.newLine();
        else
            page_.print(QString(c));
    }
}

} // namespace

void printChart(Context &ctx, ReportCanvas &page) { ReportPainter(ctx, page, Twin::Print).paint(); }

void previewChart(Context &ctx, ReportCanvas &picture) { ReportPainter(ctx, picture, Twin::Preview).paint(); }
