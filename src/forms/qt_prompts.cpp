#include "forms/qt_prompts.h"

#include "output/report_output.h"

#include <QApplication>
#include <QColorDialog>
#include <QDesktopServices>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QInputDialog>
#include <QMessageBox>
#include <QPrintDialog>
#include <QPrinter>
#include <QStandardPaths>
#include <QUrl>

namespace {

QMessageBox::StandardButtons standardButtons(MsgButtons buttons)
{
    switch (buttons) {
    case MsgButtons::Ok:
        return QMessageBox::Ok;
    case MsgButtons::OkCancel:
        return QMessageBox::Ok | QMessageBox::Cancel;
    case MsgButtons::YesNo:
        return QMessageBox::Yes | QMessageBox::No;
    case MsgButtons::YesNoCancel:
        return QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel;
    }
    return QMessageBox::Ok;
}

// Overwrite prompt of a save dialog.
constexpr int kOverwritePrompt = 0x2;

// "*.MES" -> "*.MES *.mes"
QString bothCases(const QString &patterns)
{
    QStringList out;
    for (const QString &pattern : patterns.split(QLatin1Char(' '), Qt::SkipEmptyParts))
        for (const QString &variant : {pattern, pattern.toLower(), pattern.toUpper()})
            if (!out.contains(variant))
                out.append(variant);
    return out.join(QLatin1Char(' '));
}

} // namespace

QStringList nameFilters(const QString &filter)
{
    const QStringList parts = filter.split(QLatin1Char('|'));
    QStringList out;
    for (int i = 0; i + 1 < parts.size(); i += 2) {
        const QString pattern = parts[i + 1].trimmed().replace(QLatin1Char(';'), QLatin1Char(' '));
        if (pattern.isEmpty())
            continue;
        // The description carries its own pattern in brackets; the pattern after it is the one that counts.
        QString description = parts[i].section(QLatin1Char('('), 0, 0).trimmed();
        if (description.isEmpty())
            description = pattern;
        out.append(description + QStringLiteral(" (") + bothCases(pattern) + QLatin1Char(')'));
    }
    return out;
}

QColor colourFromBgr(quint32 bgr)
{
    return QColor(int(bgr & 0xFF), int((bgr >> 8) & 0xFF), int((bgr >> 16) & 0xFF));
}

quint32 bgrFromColour(const QColor &colour)
{
    return quint32(colour.red()) | quint32(colour.green()) << 8 | quint32(colour.blue()) << 16;
}

std::optional<QString> QtPrompts::runFileDialog(const FileDialogRequest &request, bool save)
{
    const QFileDialog::AcceptMode mode = save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen;
    // The first dialog of a run opens in the documents (the home folder when there is none), never in
    // the folder the program was started from.
    if (lastFolder_.isEmpty()) {
        lastFolder_ = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
        if (!QFileInfo(lastFolder_).isDir())
            lastFolder_ = QDir::homePath();
    }
    QFileDialog dialog(QApplication::activeWindow(), request.title, lastFolder_);
    dialog.setAcceptMode(mode);
    dialog.setFileMode(mode == QFileDialog::AcceptOpen ? QFileDialog::ExistingFile : QFileDialog::AnyFile);
    if (mode == QFileDialog::AcceptSave && !(request.flags & kOverwritePrompt))
        dialog.setOption(QFileDialog::DontConfirmOverwrite);
    const QStringList filters = nameFilters(request.filter);
    if (!filters.isEmpty()) {
        dialog.setNameFilters(filters);
        dialog.selectNameFilter(filters.value(request.filterIndex - 1, filters.first()));
    }
    dialog.setDefaultSuffix(request.defaultExtension);
    if (!request.fileName.isEmpty())
        dialog.selectFile(request.fileName);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return std::nullopt;
    const QString chosen = dialog.selectedFiles().first();
    lastFolder_ = QFileInfo(chosen).absolutePath();
    return chosen;
}

MsgAnswer QtPrompts::messageBox(const QString &title, const QString &text, MsgButtons buttons)
{
    QMessageBox box(QMessageBox::NoIcon, title, text, standardButtons(buttons), QApplication::activeWindow());
    switch (box.exec()) {
    case QMessageBox::Ok:
        return MsgAnswer::Ok;
    case QMessageBox::Yes:
        return MsgAnswer::Yes;
    case QMessageBox::No:
        return MsgAnswer::No;
    default: // closed without a button
        return buttons == MsgButtons::YesNo ? MsgAnswer::No
               : buttons == MsgButtons::Ok  ? MsgAnswer::Ok
                                            : MsgAnswer::Cancel;
    }
}

QString QtPrompts::inputBox(const QString &title, const QString &prompt, const QString &defaultText)
{
    bool ok = false;
    const QString text = QInputDialog::getText(QApplication::activeWindow(), title, prompt, QLineEdit::Normal,
                                               defaultText, &ok);
    return ok ? text : QString();
}

std::optional<QString> QtPrompts::openFileDialog(const FileDialogRequest &request)
{
    return runFileDialog(request, false);
}

std::optional<QString> QtPrompts::saveFileDialog(const FileDialogRequest &request)
{
    return runFileDialog(request, true);
}

std::optional<quint32> QtPrompts::colourDialog(quint32 initial)
{
    const QColor chosen = QColorDialog::getColor(colourFromBgr(initial), QApplication::activeWindow());
    if (!chosen.isValid())
        return std::nullopt;
    return bgrFromColour(chosen);
}

std::optional<QString> QtPrompts::printerSetup(const QString &printerName)
{
    QPrinter printer;
    if (!printerName.isEmpty())
        printer.setPrinterName(printerName);
    QPrintDialog dialog(&printer, QApplication::activeWindow());
    dialog.setWindowTitle(QStringLiteral("Printer setup"));
    if (dialog.exec() != QDialog::Accepted)
        return std::nullopt;
    // The dialog's PDF entry: the report goes to a file named when it is printed.
    if (printer.outputFormat() == QPrinter::PdfFormat)
        return kPrintToPdf;
    return printer.printerName();
}

bool QtPrompts::openUrl(const QString &url)
{
    return QDesktopServices::openUrl(QUrl(url));
}
