#include "link/discovery.h"

#include "link/serial_link.h"

namespace {

constexpr UnitModel kModels[] = {
    {"K310-A", 0, 1050.0f},
    {"K320-A", -1, 1050.0f},
    {"K550-B", 0, 3050.0f},
};

// The probe repeats a character whose echo failed once; the second failure ends it.
bool echoOnce(Context &ctx, char byte)
{
    for (int attempt = 0; attempt < 2; ++attempt) {
        ctx.port.discardInput();
        ctx.port.writeByte(byte);
        if (waitForBytes(ctx) && readByte(ctx) == uchar(byte))
            return true;
    }
    return false;
}

// Closes the port, sets the rate and opens it again; false when the port will not open.
bool reopenAt(Context &ctx, qint32 rate)
{
    if (ctx.port.isOpen())
        ctx.port.close();
    const bool settingsTaken = ctx.port.setSettings(lineSettings(rate));
    return ctx.port.open() && settingsTaken;
}

void showOffline(Context &ctx)
{
    AppState &s = ctx.state;
    s.autoReadOn = 0;
    s.online = 0;
    s.autoReading = 0; // clearing the Auto box stops automatic reading
    ctx.frame().setRemoteChecked(false);
    ctx.frame().setAutoChecked(false);
    ctx.frame().setCaption(offlineCaption());
}

} // namespace

const UnitModel *findUnitModel(const QString &reply)
{
    for (const UnitModel &model : kModels)
        if (reply == QLatin1String(model.code))
            return &model;
    return nullptr;
}

QString unitCaption(const AppState &state)
{
    // Port 0 is the built-in simulator: the caption says so, lest it be taken for an instrument.
    const QString simulated = state.comPort == 0 ? QStringLiteral(" (simulated)") : QString();
    return kTitle + QStringLiteral("       Unit:") + state.unitModel + simulated + QStringLiteral("       Firmware:")
           + state.firmwareVersion;
}

void probeUnit(Context &ctx)
{
    AppState &s = ctx.state;
    s.serialError = 0;
    s.unitFound = 0;
    s.lastReply.clear();
    if (!ctx.port.isOpen())
        return;
    ctx.frame().setTimer4Enabled(false);
    s.errorText = QStringLiteral(" Unit not found ");
    s.lastCommand = QStringLiteral("#QM");
    ctx.port.discardOutput();
    s.lastCommand += QLatin1Char('\r');
    for (const char byte : s.lastCommand.toLatin1())
        if (!echoOnce(ctx, byte))
            return; // no unit at this rate: no box, and Timer4 stays off

    // One limit for the whole reply, not one per byte.
    const double start = stampWait(ctx);
    for (;;) {
        if (!waitForBytesSince(ctx, start) || s.lastReply.size() > 64) {
            raiseSerialError(ctx);
            ctx.frame().setTimer4Enabled(true);
            return;
        }
        const int byte = readByte(ctx);
        if (byte == '\r')
            break;
        if (byte >= 0)
            s.lastReply += QChar(byte);
    }
    if (const UnitModel *model = findUnitModel(s.lastReply)) {
        s.unitFound = 1;
        s.hasTrackingGenerator = model->hasTrackingGenerator;
        s.maxCenterFrequency = model->maxCenterFrequency;
    }
    ctx.frame().setTimer4Enabled(true);
}

void connectUnit(Context &ctx)
{
    AppState &s = ctx.state;
    s.serialError = 0;
    setBusy(ctx);
    if (!openConfiguredPort(ctx))
        return;
    probeUnit(ctx);
    for (int i = 0; s.unitFound != 1 && i < int(std::size(kBaudRates)); ++i) {
        if (!reopenAt(ctx, kBaudRates[i])) {
            raiseSerialError(ctx);
            return;
        }
        probeUnit(ctx);
    }
    if (s.unitFound != 1) {
        s.errorText = QStringLiteral("Unit not found");
        raiseSerialError(ctx);
        return;
    }
    // The unit changes its speed at once, so no "RD" can be awaited.
    if (!sendWithEcho(ctx, QStringLiteral("#br") + QString::number(s.baudRate)))
        return;
    if (!openConfiguredPort(ctx))
        return;
    ctx.clock.sleep(1.0);
    if (!sendCommand(ctx, QStringLiteral("#kl1")))
        return;
    s.online = 1;
    ctx.frame().setRemoteChecked(true);
    if (queryUnit(ctx, QStringLiteral("#QM")))
        s.unitModel = s.lastReply;
    queryUnit(ctx, QStringLiteral("#VN"));
    for (int repeat = 0; repeat < 2 && numberValue(s.lastReply) == 0.0; ++repeat)
        queryUnit(ctx, QStringLiteral("#VN"));
    s.firmwareVersion = s.lastReply.trimmed();
    ctx.frame().setToolboxVisible(true);
    ctx.frame().setCaption(unitCaption(s));
    clearBusy(ctx);
    ctx.frame().setTrackingControlsEnabled(s.hasTrackingGenerator == -1);
}

bool goLocal(Context &ctx)
{
    if (!ctx.port.isOpen())
        return false;
    setBusy(ctx);
    ctx.state.serialError = 0;
    const bool local = sendCommand(ctx, QStringLiteral("#kl0"));
    if (local)
        showOffline(ctx);
    clearBusy(ctx);
    return local;
}

void autosearchUnit(Context &ctx)
{
    AppState &s = ctx.state;
    s.autosearchActive = 1;
    setBusy(ctx);
    // comPort itself runs through the ports; after a search without result it stays at 5.
    for (s.comPort = 1; s.comPort <= 4; ++s.comPort) {
        if (ctx.port.isOpen())
            ctx.port.close();
        ctx.port.setPortNumber(s.comPort);
        if (reopenAt(ctx, 4800))
            connectUnit(ctx);
        if (s.online == 1) {
            ctx.prompts.messageBox(QStringLiteral("Autosearch"),
                                   QStringLiteral("Unit found at port: ") + QLatin1Char(' ')
                                       + QString::number(s.comPort) + QStringLiteral("   Baud: ")
                                       + QLatin1Char(' ') + QString::number(s.baudRate));
            ctx.frame().closeBoxcom();
            break;
        }
    }
    s.autosearchActive = 0;
    if (s.online == 0) {
        s.errorText = QStringLiteral("Unit not found");
        raiseSerialError(ctx);
    }
}
