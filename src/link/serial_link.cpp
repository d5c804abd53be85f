#include "link/serial_link.h"

namespace {

// A reply that runs on this long without its carriage return is line noise, not an answer.
constexpr int kLongestReply = 256;

void showMonitor(Context &ctx, FrameControls::MonitorLabel label, const QString &text)
{
    if (ctx.state.transmissionMonitorOn == 1)
        ctx.frame().setMonitorLabel(label, text);
}

void appendMonitor(Context &ctx, FrameControls::MonitorLabel label, const QString &text)
{
    if (ctx.state.transmissionMonitorOn == 1)
        ctx.frame().setMonitorLabel(label, ctx.frame().monitorText(label) + text);
}

void monitorReceived(Context &ctx, int byte)
{
    if (byte < 0)
        return;
    appendMonitor(ctx, FrameControls::ReceivedLabel, QString(QChar(byte)));
    appendMonitor(ctx, FrameControls::CodesLabel, QLatin1Char(' ') + QString::number(byte) + QLatin1Char(';'));
}

void clearReceivedMonitor(Context &ctx)
{
    showMonitor(ctx, FrameControls::ReceivedLabel, QString());
    showMonitor(ctx, FrameControls::CodesLabel, QString());
}

// Steps shared by every sending routine: Timer4 off, the decimal point, the error text.
void prepareSending(Context &ctx)
{
    AppState &s = ctx.state;
    ctx.frame().setTimer4Enabled(false);
    // The analyser takes a point only; only the first comma is replaced.
    const int comma = s.lastCommand.indexOf(QLatin1Char(','));
    if (comma >= 0)
        s.lastCommand[comma] = QLatin1Char('.');
    s.errorText = QStringLiteral(" Data send error ( ") + s.lastCommand + QStringLiteral(" )");
    ctx.port.discardOutput();
}

// How long the line must stay quiet before a repeated pass: longer than any gap inside a reply.
constexpr double kQuietSeconds = 0.1;

// Writes `lastCommand` character by character, each compared with its echo. A missing or wrong
// echo sends the whole text again from its first character; the third pass is an error.
bool echoPasses(Context &ctx)
{
    AppState &s = ctx.state;
    const QByteArray text = s.lastCommand.toLatin1();
    s.echoAttempt = 0;
    for (;;) {
        if (++s.echoAttempt > 1)
            settleLine(ctx);
        showMonitor(ctx, FrameControls::SentLabel, QString());
        clearReceivedMonitor(ctx);
        bool passed = true;
        for (const char byte : text) {
            if (s.echoAttempt > 2) {
                raiseSerialError(ctx);
                return false;
            }
            ctx.port.discardInput();
            ctx.port.writeByte(byte);
            appendMonitor(ctx, FrameControls::SentLabel, QString(QChar(uchar(byte))));
            if (!waitForBytes(ctx)) {
                passed = false;
                break;
            }
            const int echo = readByte(ctx);
            monitorReceived(ctx, echo);
            if (echo != uchar(byte)) {
                passed = false;
                break;
            }
        }
        if (passed)
            return true;
    }
}

// Reads up to the carriage return into `lastReply`; a timeout is reported only when asked.
bool collectReply(Context &ctx, bool reportTimeout)
{
    AppState &s = ctx.state;
    for (;;) {
        if (!waitForBytes(ctx) || s.lastReply.size() > kLongestReply) {
            if (reportTimeout)
                raiseSerialError(ctx);
            return false;
        }
        const int byte = readByte(ctx);
        monitorReceived(ctx, byte);
        if (byte == '\r')
            return true;
        if (byte >= 0)
            s.lastReply += QChar(byte);
    }
}

} // namespace

void settleLine(Context &ctx)
{
    const double start = ctx.clock.steadySeconds();
    do {
        ctx.port.discardInput();
        ctx.port.waitForInput(1, kQuietSeconds);
    } while (ctx.port.bytesWaiting() > 0 && ctx.clock.steadySeconds() - start < ctx.state.serialTimeoutSeconds);
    ctx.port.discardInput();
}

QString lineSettings(qint32 baudRate)
{
    return QString::number(baudRate) + QStringLiteral(",N,8,1");
}

double stampWait(Context &ctx)
{
    ctx.state.commTimerStart = ctx.clock.secondsSinceMidnight();
    return ctx.clock.steadySeconds();
}

bool waitForBytesSince(Context &ctx, double steadyStart, int count)
{
    // Measured on the steady clock: a wait across midnight or a change of the clock keeps its bound.
    const double limit = ctx.state.serialTimeoutSeconds;
    for (;;) {
        if (!ctx.port.isOpen())
            return false;
        if (ctx.port.bytesWaiting() >= count)
            return true;
        const double elapsed = ctx.clock.steadySeconds() - steadyStart;
        if (elapsed > limit)
            return false;
        ctx.port.waitForInput(count, limit - elapsed + 0.01);
    }
}

bool waitForBytes(Context &ctx, int count)
{
    return waitForBytesSince(ctx, stampWait(ctx), count);
}

QString readCharacter(Context &ctx)
{
    const int byte = readByte(ctx);
    return byte < 0 ? QString() : QString(QChar(byte));
}

int readByte(Context &ctx)
{
    const QByteArray bytes = ctx.port.readByte();
    return bytes.size() == 1 ? int(uchar(bytes[0])) : -1;
}

bool openConfiguredPort(Context &ctx)
{
    AppState &s = ctx.state;
    s.serialError = 0;
    s.errorText = QStringLiteral(" Can not open com. port");
    if (ctx.port.isOpen())
        ctx.port.close();
    ctx.port.setPortNumber(s.comPort);
    const bool settingsTaken = ctx.port.setSettings(lineSettings(s.baudRate));
    if (!ctx.port.open() || !settingsTaken) {
        raiseSerialError(ctx);
        return false;
    }
    return true;
}

bool sendCommand(Context &ctx)
{
    AppState &s = ctx.state;
    s.sendAttempt = 1;
    for (;;) {
        s.serialError = 0;
        if (!ctx.port.isOpen())
            return false;
        prepareSending(ctx);
        // One more carriage return on every attempt: the third ends in three. The analyser
        // answers them all, and the repetition is kept as the line has always had it.
        s.lastCommand += QLatin1Char('\r');
        if (!echoPasses(ctx))
            return false; // sendAttempt keeps its value on this way out
        readReply(ctx);
        if (s.lastReply == QLatin1String("RD")) {
            s.sendAttempt = 0;
            ctx.frame().setTimer4Enabled(true);
            return true;
        }
        if (s.sendAttempt > 2) {
            raiseSerialError(ctx);
            s.sendAttempt = 0;
            return false;
        }
        ++s.sendAttempt;
    }
}

bool sendWithEcho(Context &ctx)
{
    AppState &s = ctx.state;
    s.serialError = 0;
    if (!ctx.port.isOpen())
        return false;
    prepareSending(ctx);
    if (!s.lastCommand.contains(QLatin1Char('\r')))
        s.lastCommand += QLatin1Char('\r');
    if (!echoPasses(ctx))
        return false;
    ctx.frame().setTimer4Enabled(true);
    return true;
}

bool readReply(Context &ctx)
{
    AppState &s = ctx.state;
    s.errorText = QStringLiteral(" Data read error ( ") + s.lastCommand + QStringLiteral(" )");
    s.serialError = 0;
    if (!ctx.port.isOpen()) {
        raiseSerialError(ctx);
        return false;
    }
    s.lastReply.clear();
    ctx.frame().setTimer4Enabled(false);
    clearReceivedMonitor(ctx);
    // Within sendCommand a missing reply is not reported: the caller sees a wrong reply and tries again.
    return collectReply(ctx, s.sendAttempt == 0);
}

bool queryUnit(Context &ctx)
{
    AppState &s = ctx.state;
    if (s.online == 0)
        return false;
    ctx.frame().setTimer4Enabled(false);
    if (!sendWithEcho(ctx) || s.serialError == 1)
        return false;
    if (!ctx.port.isOpen()) {
        raiseSerialError(ctx);
        return false;
    }
    s.errorText = QStringLiteral(" Data read error ( ") + s.lastCommand + QStringLiteral(" )");
    s.serialError = 0;
    s.lastReply.clear();
    clearReceivedMonitor(ctx);
    return collectReply(ctx, true);
}

bool sendCommand(Context &ctx, const QString &command)
{
    ctx.state.lastCommand = command;
    return sendCommand(ctx);
}

bool sendWithEcho(Context &ctx, const QString &command)
{
    ctx.state.lastCommand = command;
    return sendWithEcho(ctx);
}

bool queryUnit(Context &ctx, const QString &command)
{
    ctx.state.lastCommand = command;
    return queryUnit(ctx);
}

void raiseSerialError(Context &ctx)
{
    AppState &s = ctx.state;
    if (s.autosearchActive == 1 || s.serialError == 1)
        return;
    clearBusy(ctx);
    ctx.prompts.messageBox(QStringLiteral("Serial - Error"), s.errorText);
    s.autoReadOn = 0;
    s.online = 0;
    ctx.frame().setRemoteChecked(false);
    // Clearing the Auto box runs its click: automatic reading stops.
    ctx.frame().setAutoChecked(false);
    s.autoReading = 0;
    s.serialError = 1;
    s.emcStopRequest = 0;
}

double numberValue(const QString &text)
{
    const QByteArray bytes = text.toLatin1();
    int i = 0;
    while (i < bytes.size() && (bytes[i] == ' ' || bytes[i] == '\t'))
        ++i;
    const int start = i;
    if (i < bytes.size() && (bytes[i] == '+' || bytes[i] == '-'))
        ++i;
    const auto digits = [&] {
        const int from = i;
        while (i < bytes.size() && bytes[i] >= '0' && bytes[i] <= '9')
            ++i;
        return i - from;
    };
    int mantissa = digits();
    if (i < bytes.size() && bytes[i] == '.') {
        ++i;
        mantissa += digits();
    }
    if (mantissa == 0)
        return 0.0;
    int end = i;
    if (i < bytes.size() && (bytes[i] == 'E' || bytes[i] == 'e')) {
        ++i;
        if (i < bytes.size() && (bytes[i] == '+' || bytes[i] == '-'))
            ++i;
        if (digits() > 0)
            end = i;
    }
    return bytes.mid(start, end - start).toDouble();
}
