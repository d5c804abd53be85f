#pragma once
// Where a report goes: the printer chosen in the printer setup, or a PDF file; and the chart
// alone as a picture.

#include <QImage>
#include <QSize>
#include <QString>

class Context;

// The printer setup's choice of a PDF file instead of a printer.
inline const QString kPrintToPdf = QStringLiteral("Print to PDF");

// The print command: the report on the printer of `printerName` (empty: the system's default
// printer), or, when "Print to PDF" was chosen or the system has no printer, in a PDF file that
// the user names. A printer or a file that fails is reported in a message box.
void printChartCommand(Context &ctx);

// The report as an A4 PDF file; false when the file could not be written.
bool writeReportPdf(Context &ctx, const QString &path);

// The chart alone, painted as on the screen, with its level labels at the left and its frequency
// labels below it, as a picture of `size` pixels.
QImage chartPicture(Context &ctx, QSize size);
