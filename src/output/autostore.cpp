#include "output/autostore.h"

#include "core/context.h"
#include "link/commands.h"
#include "link/discovery.h"
#include "store/measurement_file.h"


#include <algorithm>
#include <cmath>

namespace {

constexpr qint32 kLastCounter = 2147483600; // beyond it the last file is written again and again

// MDI.ckauto set or cleared by the program, with what its click does.
void setAutoReading(Context &ctx, bool on)
{
    AppState &s = ctx.state;
    ctx.frame().setAutoChecked(on);
    if (on && s.online == 0)
        connectUnit(ctx);
    s.autoReading = on ? 1 : 0;
    if (s.triggerOn == 1) {
        s.autoReading = 0;
        ctx.frame().setAutoChecked(false);
    }
}

void showStartCaption(AppState &s, AutostoreControls &controls)
{
    controls.setStartCaption(s.autostoreOn == 1 ? QStringLiteral("Pause") : QStringLiteral("Start"));
}

} // namespace

QString autostoreFileName(const QString &base, qint32 counter)
{
    // The number 0 writes no digit: the first file of a series has the plain base name.
    return base.trimmed() + (counter == 0 ? QString() : QString::number(counter)) + QStringLiteral(".mes");
}

QString autostoreTimeText(const QDateTime &time)
{
    return time.time().toString(QStringLiteral("HH:mm:ss"));
}

void autostoreLoad(Context &ctx, AutostoreControls &controls)
{
    AppState &s = ctx.state;
    s.autostoreCounter = 0;
    controls.setIntervalText(QString::number(s.autostoreInterval));
    controls.setFileLabel(s.autostoreFile.trimmed());
    showStartCaption(s, controls);
}

void autostoreIntervalEntered(Context &ctx, AutostoreControls &controls, const QString &text)
{
    AppState &s = ctx.state;
    // A text that is no number counts as 0, and so as the shortest interval.
    const double typed = text.trimmed().toDouble();
    s.autostoreInterval = qint32(std::clamp(std::round(typed), double(kShortestAutostoreInterval),
                                            double(kLongestAutostoreInterval)));
    controls.setIntervalText(QString::number(s.autostoreInterval));
}

void autostoreSelectFile(Context &ctx, AutostoreControls &controls)
{
    AppState &s = ctx.state;
    if (s.busy == 1)
        return;
    FileDialogRequest request;
    request.title = QStringLiteral("Save Data");
    request.filter = QStringLiteral("Measurement (*.mes) |*.mes");
    request.defaultExtension = QStringLiteral("MES");
    request.filterIndex = 1;
    request.flags = 8198; // overwrite prompt, hide read-only, create prompt
    const std::optional<QString> chosen = ctx.prompts.saveFileDialog(request);
    if (!chosen)
        return;
    const qsizetype extension = chosen->indexOf(QStringLiteral(".mes"), 0, Qt::CaseInsensitive);
    s.autostoreFile = extension < 0 ? *chosen : chosen->left(extension);
    controls.setFileLabel(s.autostoreFile + QStringLiteral("XXX.mes"));
}

void autostoreStartPause(Context &ctx, AutostoreControls &controls)
{
    AppState &s = ctx.state;
    if (s.busy == 1)
        return;
    if (s.autostoreOn == 1) {
        s.autostoreOn = 0;
        setAutoReading(ctx, false);
    } else {
        s.autostoreOn = 1;
    }
    showStartCaption(s, controls);
    if (s.online == 0)
        connectUnit(ctx);
    if (s.autostoreOn == 1 && s.online == 1) {
        readAllSettings(ctx);
        setAutoReading(ctx, true);
        s.autostoreNextTime = ctx.clock.now().addSecs(s.autostoreInterval);
        controls.setNextTimeLabel(autostoreTimeText(s.autostoreNextTime));
    }
}

void autostoreStop(Context &ctx, AutostoreControls &controls)
{
    AppState &s = ctx.state;
    if (s.busy == 1)
        return;
    s.autostoreOn = 0;
    s.autostoreCounter = 0;
    setAutoReading(ctx, false);
    showStartCaption(s, controls);
}

bool autostoreExit(Context &ctx)
{
    AppState &s = ctx.state;
    if (s.busy == 1)
        return false;
    s.autostoreCounter = 0;
    setAutoReading(ctx, false);
    return true;
}

void autostoreNow(Context &ctx, AutostoreControls &controls)
{
    AppState &s = ctx.state;
    setBusy(ctx);
    s.measurementFileName = autostoreFileName(s.autostoreFile, s.autostoreCounter);
    // The save replaces a file of the same name.
    const bool stored = saveTraceMeasurement(ctx).isEmpty();
    clearBusy(ctx);
    if (!stored)
        ctx.prompts.messageBox(QStringLiteral("Auto Save"), QStringLiteral("Bad Filename"));
    if (s.autostorePrint == 1)
        call(ctx.calls.printNow);
    if (s.autostoreCounter < kLastCounter)
        ++s.autostoreCounter;
    controls.setFileLabel(s.measurementFileName.trimmed());
}
