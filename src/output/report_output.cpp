#include "output/report_output.h"

#include "chart/chart_painter.h"
#include "chart/grafik_controls.h"
#include "chart/image_canvas.h"
#include "core/context.h"
#include "output/page_canvas.h"
#include "output/report_painter.h"

#include <QFileInfo>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <QPrinter>
#include <QPrinterInfo>

namespace {

// The label strips of the picture: the level labels' width and the frequency labels' height.
constexpr int kLevelLabelsWidth = 60;
constexpr int kFrequencyLabelsHeight = 24;

void printToPdf(Context &ctx)
{
    FileDialogRequest request;
    request.title = kPrintToPdf;
    request.filter = QStringLiteral("PDF (*.pdf) |*.pdf");
    request.defaultExtension = QStringLiteral("PDF");
    const std::optional<QString> chosen = ctx.prompts.saveFileDialog(request);
    if (!chosen || chosen->isEmpty())
        return;
    QString path = *chosen;
    if (QFileInfo(path).suffix().isEmpty())
        path += QStringLiteral(".pdf");
    if (!writeReportPdf(ctx, path))
        ctx.prompts.messageBox(QStringLiteral("Print"), QStringLiteral("Cannot write ") + path);
}

} // namespace

void printChartCommand(Context &ctx)
{
    const QString &name = ctx.state.printerName;
    if (name == kPrintToPdf || QPrinterInfo::availablePrinterNames().isEmpty()) {
        printToPdf(ctx);
        return;
    }
    QPrinter printer(QPrinter::HighResolution);
    if (!name.isEmpty())
        printer.setPrinterName(name);
    printer.setDocName(ctx.state.headline.trimmed());
    PageCanvas page(printer, &printer, true);
    printChart(ctx, page);
    if (!page.ok())
        ctx.prompts.messageBox(QStringLiteral("Print"),
                               QStringLiteral("The printer ") + printer.printerName() + QStringLiteral(" cannot print"));
}

bool writeReportPdf(Context &ctx, const QString &path)
{
    QPdfWriter writer(path);
    writer.setPageSize(QPageSize(QPageSize::A4));
    writer.setResolution(300);
    writer.setTitle(ctx.state.headline.trimmed());
    writer.setCreator(QStringLiteral("DELFOR"));
    PageCanvas page(writer, &writer);
    printChart(ctx, page);
    return page.ok();
}

QImage chartPicture(Context &ctx, QSize size)
{
    const int plotWidth = std::max(1, size.width() - kLevelLabelsWidth);
    const int plotHeight = std::max(1, size.height() - kFrequencyLabelsHeight);
    ImageCanvas plot(plotWidth, plotHeight), levels(kLevelLabelsWidth, plotHeight),
        frequencies(plotWidth, kFrequencyLabelsHeight);
    GrafikControls controls;
    ChartPainter painter(ctx, plot, levels, frequencies, controls);
    painter.paintChart();
    QImage picture(size, QImage::Format_RGB32);
    picture.fill(Qt::white);
    QPainter p(&picture);
    p.drawImage(kLevelLabelsWidth, 0, plot.image());
    p.drawImage(0, 0, levels.image());
    p.drawImage(kLevelLabelsWidth, plotHeight, frequencies.image());
    p.end();
    return picture;
}
