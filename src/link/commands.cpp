#include "link/commands.h"

#include "link/serial_link.h"

#include <QRegularExpression>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

bool isOnline(const Context &ctx)
{
    return ctx.state.online == 1;
}

// A setting with its argument, only while the link is up.
void setting(Context &ctx, const QString &command)
{
    if (isOnline(ctx))
        sendCommand(ctx, command);
}

// A number as plain decimal text, as the analyser takes it.
QString plain(double value)
{
    return QString::number(value, 'g', 10);
}

// The signed reference picture of "#rl" and "#tl": a plus sign for 0 and above, a minus sign
// below, also for a level that rounds to zero (-0.04 is "-00.0": "00.0" would read as +0).
QString signedLevel(double value)
{
    return (value >= 0 ? QStringLiteral("+") : QStringLiteral("-")) + numberPicture(std::fabs(value), 2, 1);
}

// Tracking generator commands are held back by the model text, not by the model's capability.
bool withoutTrackingGenerator(const Context &ctx)
{
    return ctx.state.unitModel.contains(QLatin1String("K310-A"));
}

// The value of a query's reply, when the reply is the one asked for: its tag is the command's own
// ("SP" for "#sp") and a whole number follows. A stray "LO" or a byte of noise gives nothing.
std::optional<double> taggedValue(const QString &reply, const QString &command)
{
    static const QRegularExpression number(QStringLiteral("^ *[+-]?(\\d+\\.?\\d*|\\.\\d+) *$"));
    if (!reply.startsWith(command.mid(1, 2).toUpper()) || !number.match(reply.mid(2)).hasMatch())
        return std::nullopt;
    return numberValue(reply.mid(2));
}

// Queries `command` and gives the value of its reply; nothing on failure. Any other reply than the
// one asked for is a failed read: three attempts, as for a setting, then the one error box.
std::optional<double> queried(Context &ctx, const QString &command)
{
    for (int attempt = 1; attempt <= 3; ++attempt) {
        if (!queryUnit(ctx, command) || ctx.state.serialError == 1)
            return std::nullopt;
        if (const auto value = taggedValue(ctx.state.lastReply, command))
            return value;
        settleLine(ctx);
    }
    raiseSerialError(ctx);
    return std::nullopt;
}

// A queried value rounded into an integer field; a value the field cannot hold leaves it alone.
template <typename T>
void readRounded(Context &ctx, const QString &command, T &field)
{
    const auto value = queried(ctx, command);
    if (!value)
        return;
    const double rounded = std::nearbyint(*value);
    if (rounded >= std::numeric_limits<T>::min() && rounded <= std::numeric_limits<T>::max())
        field = T(rounded);
}

void readFloat(Context &ctx, const QString &command, float &field)
{
    if (const auto value = queried(ctx, command))
        field = float(*value);
}

} // namespace

QString numberPicture(double value, int integerDigits, int decimals)
{
    QString digits = QString::number(std::fabs(value), 'f', decimals);
    const int point = decimals > 0 ? digits.indexOf(QLatin1Char('.')) : digits.size();
    if (point < integerDigits)
        digits.prepend(QString(integerDigits - point, QLatin1Char('0')));
    const bool negative = value < 0 && digits.contains(QRegularExpression(QStringLiteral("[1-9]")));
    return (negative ? QStringLiteral("-") : QString()) + digits;
}

void sendCenterFrequency(Context &ctx)
{
    AnalyserSettings &a = ctx.state.analyser;
    // The clamp holds also while offline.
    a.centerFrequency = std::clamp(a.centerFrequency, 0.0f, ctx.state.maxCenterFrequency);
    setting(ctx, QStringLiteral("#cf") + numberPicture(a.centerFrequency, 4, 3));
}

void sendSpan(Context &ctx)
{
    setting(ctx, QStringLiteral("#sp") + QString::number(ctx.state.analyser.span));
}

void sendZeroSpan(Context &ctx)
{
    setting(ctx, QStringLiteral("#sp0"));
}

void sendRefLevel(Context &ctx)
{
    if (!isOnline(ctx))
        return;
    sendCommand(ctx, QStringLiteral("#rl") + signedLevel(ctx.state.analyser.refLevel));
    readRefLevel(ctx);
}

void sendAttenuator(Context &ctx)
{
    setting(ctx, QStringLiteral("#at") + plain(ctx.state.analyser.attenuator));
}

void sendBandwidth(Context &ctx)
{
    setting(ctx, QStringLiteral("#bw") + QString::number(ctx.state.analyser.bandwidth));
}

void sendBandwidth1000(Context &ctx)
{
    setting(ctx, QStringLiteral("#bw1000"));
}

void sendBandwidth120(Context &ctx)
{
    setting(ctx, QStringLiteral("#bw120"));
}

void sendBandwidth9(Context &ctx)
{
    setting(ctx, QStringLiteral("#bw9"));
}

void sendVideoFilter(Context &ctx)
{
    setting(ctx, QStringLiteral("#vf") + QString::number(ctx.state.analyser.videoFilter));
}

void sendReadMode(Context &ctx)
{
    setting(ctx, QStringLiteral("#vm") + QString::number(ctx.state.analyser.readMode));
}

void sendTraceTarget(Context &ctx)
{
    setting(ctx, QStringLiteral("#vm") + QString::number(ctx.state.traceTarget));
}

void sendMemoryReadMode(Context &ctx)
{
    const quint8 mode = ctx.state.analyser.memoryReadMode;
    if (mode <= 2)
        setting(ctx, QStringLiteral("#vm") + QString::number(mode));
}

void sendTrackingOn(Context &ctx)
{
    if (!isOnline(ctx) || withoutTrackingGenerator(ctx))
        return;
    sendTrackingLevel(ctx);
    sendCommand(ctx, QStringLiteral("#tg") + QString::number(ctx.state.analyser.tgOn));
    if (ctx.state.analyser.tgOn == 1)
        sendTrackingLevel(ctx);
}

void sendTrackingLevel(Context &ctx)
{
    if (!isOnline(ctx) || withoutTrackingGenerator(ctx))
        return;
    sendCommand(ctx, QStringLiteral("#tl") + signedLevel(ctx.state.analyser.tgLevel));
    readTrackingLevel(ctx);
}

void sendDbPerDivision(Context &ctx)
{
    setting(ctx, QStringLiteral("#db") + QString::number(ctx.state.analyser.dbPerDivision));
}

void calculationStart(Context &ctx)
{
    if (!isOnline(ctx))
        return;
    sendCommand(ctx, QStringLiteral("#dm1"));
    sendReadMode(ctx);
}

void calculationStop(Context &ctx)
{
    setting(ctx, QStringLiteral("#dm0"));
}

void singleSweepModeOff(Context &ctx)
{
    setting(ctx, QStringLiteral("#es0"));
}

void singleSweepModeOn(Context &ctx)
{
    setting(ctx, QStringLiteral("#es1"));
}

void startSingleSweep(Context &ctx)
{
    // The block follows the echo; there is no "RD" to wait for.
    if (isOnline(ctx))
        sendWithEcho(ctx, QStringLiteral("#ss1"));
}

void storeAtoB(Context &ctx)
{
    setting(ctx, QStringLiteral("#sa"));
}

void saveSettingsMemory(Context &ctx)
{
    setting(ctx, QStringLiteral("#sv") + QString::number(ctx.state.analyser.settingsMemory));
}

void recallSettingsMemory(Context &ctx)
{
    setting(ctx, QStringLiteral("#rc") + QString::number(ctx.state.analyser.settingsMemory));
}

void sendTriggerLevel(Context &ctx)
{
    // Never a plus sign: a trigger level is always negative.
    setting(ctx, QStringLiteral("#tr") + numberPicture(ctx.state.triggerLevel, 2, 1));
}

void triggerOff(Context &ctx)
{
    ctx.state.triggerOn = 0;
    setting(ctx, QStringLiteral("#tr0"));
}

void readCenterFrequency(Context &ctx)
{
    readFloat(ctx, QStringLiteral("#cf"), ctx.state.analyser.centerFrequency);
}

void readRefLevelRaw(Context &ctx)
{
    readFloat(ctx, QStringLiteral("#rl"), ctx.state.analyser.refLevel);
}

void readRefLevel(Context &ctx)
{
    // The level is read with the screen on the sample trace, then the screen goes back.
    ctx.state.traceTarget = 0;
    sendTraceTarget(ctx);
    readRefLevelRaw(ctx);
    sendReadMode(ctx);
}

void readAttenuator(Context &ctx)
{
    readFloat(ctx, QStringLiteral("#at"), ctx.state.analyser.attenuator);
}

void readSpan(Context &ctx)
{
    readRounded(ctx, QStringLiteral("#sp"), ctx.state.analyser.span);
}

void readBandwidth(Context &ctx)
{
    readRounded(ctx, QStringLiteral("#bw"), ctx.state.analyser.bandwidth);
}

void readVideoFilter(Context &ctx)
{
    readRounded(ctx, QStringLiteral("#vf"), ctx.state.analyser.videoFilter);
}

void readReadMode(Context &ctx)
{
    readRounded(ctx, QStringLiteral("#vm"), ctx.state.analyser.readMode);
}

void readTrackingOn(Context &ctx)
{
    if (!withoutTrackingGenerator(ctx))
        readRounded(ctx, QStringLiteral("#tg"), ctx.state.analyser.tgOn);
}

void readTrackingLevel(Context &ctx)
{
    if (!withoutTrackingGenerator(ctx))
        readFloat(ctx, QStringLiteral("#tl"), ctx.state.analyser.tgLevel);
}

void readCalculation(Context &ctx)
{
    readRounded(ctx, QStringLiteral("#dm"), ctx.state.analyser.calculationOn);
}

void readDbPerDivision(Context &ctx)
{
    readRounded(ctx, QStringLiteral("#db"), ctx.state.analyser.dbPerDivision);
}

void readUncalFlag(Context &ctx)
{
    // Firmware up to 1.38 has no "#uc": the flag keeps its value.
    if (numberValue(ctx.state.firmwareVersion) <= 1.38)
        return;
    const auto value = queried(ctx, QStringLiteral("#uc"));
    if (!value)
        return;
    const bool uncalibrated = *value == 1.0;
    ctx.frame().setUncalVisible(uncalibrated);
    ctx.state.uncalibratedFlag = uncalibrated ? 1 : 0;
}

void readAllSettings(Context &ctx)
{
    if (!isOnline(ctx))
        return;
    setBusy(ctx);
    singleSweepModeOff(ctx);
    readCenterFrequency(ctx);
    readReadMode(ctx);
    readRefLevel(ctx);
    readVideoFilter(ctx);
    readSpan(ctx);
    readBandwidth(ctx);
    readAttenuator(ctx);
    readTrackingOn(ctx);
    readTrackingLevel(ctx);
    readCalculation(ctx);
    readDbPerDivision(ctx);
    readUncalFlag(ctx);
    ctx.state.traceFrozen = 0;
    refreshPanel(ctx);
    clearBusy(ctx);
}

void sendAllSettings(Context &ctx)
{
    if (!isOnline(ctx))
        return;
    setBusy(ctx);
    // The bandwidth goes to 1000 kHz first and to its value only after the span.
    sendBandwidth1000(ctx);
    singleSweepModeOff(ctx);
    sendCenterFrequency(ctx);
    sendRefLevel(ctx);
    sendVideoFilter(ctx);
    sendAttenuator(ctx);
    sendMemoryReadMode(ctx);
    sendTrackingOn(ctx);
    sendDbPerDivision(ctx);
    refreshPanel(ctx);
    sendReadMode(ctx);
    sendSpan(ctx);
    sendBandwidth(ctx);
    if (ctx.state.analyser.calculationOn == 1)
        calculationStart(ctx);
    else
        calculationStop(ctx);
    clearBusy(ctx);
}

void sendPresetSettings(Context &ctx)
{
    if (!isOnline(ctx))
        return;
    setBusy(ctx);
    AppState &s = ctx.state;
    s.traceTarget = 0;
    singleSweepModeOff(ctx);
    sendTraceTarget(ctx);
    s.analyser.centerFrequency = 500.0f;
    s.analyser.span = 1000;
    s.analyser.readMode = 0;
    sendCenterFrequency(ctx);
    sendRefLevel(ctx);
    sendVideoFilter(ctx);
    sendSpan(ctx);
    sendBandwidth(ctx);
    sendAttenuator(ctx);
    sendMemoryReadMode(ctx);
    sendTrackingOn(ctx);
    sendDbPerDivision(ctx);
    sendBandwidth1000(ctx);
    clearBusy(ctx);
}

void sendZeroSpanSettings(Context &ctx)
{
    if (!isOnline(ctx))
        return;
    setBusy(ctx);
    singleSweepModeOff(ctx);
    sendCenterFrequency(ctx);
    sendRefLevel(ctx);
    sendVideoFilter(ctx);
    sendZeroSpan(ctx);
    sendBandwidth(ctx);
    sendAttenuator(ctx);
    sendMemoryReadMode(ctx);
    sendDbPerDivision(ctx);
    calculationStart(ctx);
    ctx.state.analyser.readMode = 0;
    sendReadMode(ctx);
    clearBusy(ctx);
    readAllSettings(ctx);
    singleSweepModeOn(ctx);
}
