#include "output/trigger_watch.h"

#include "core/context.h"
#include "link/commands.h"
#include "link/discovery.h"
#include "link/serial_link.h"
#include "signal/correction_chain.h"
#include "signal/trace_store.h"
#include "store/catalogue_refresh.h"

#include <QCoreApplication>

#include <algorithm>

namespace {

// How long one pass of the wait loop sleeps on the port when nothing came: the loop blocks
// instead of spinning, and a Stop is noticed within this time.
constexpr double kWaitPassSeconds = 0.05;

const QString kNotActive = QStringLiteral("Not activ");
const QString kWaiting = QStringLiteral("Wait for trigger");

QString shownLevel(const Context &ctx, double level)
{
    return fieldNumber(level, 1, ctx.state.decimalChar);
}

// `triggerLevel` from a level shown with the unit's offset, the attenuator and `extra` dB.
void takeShownLevel(Context &ctx, TriggerControls &controls, double shown, double extra)
{
    AppState &s = ctx.state;
    const double offsets = s.analyser.unitOffset + s.analyser.attenuator + extra;
    s.triggerLevel = float(std::clamp(shown - offsets, double(kLowestTriggerLevel), double(kHighestTriggerLevel)));
    controls.setLevelText(shownLevel(ctx, s.triggerLevel + offsets));
}

void showReceived(Context &ctx, const QString &text)
{
    if (ctx.state.transmissionMonitorOn == 1)
        ctx.frame().setMonitorLabel(FrameControls::ReceivedLabel, text);
}

// Step 4 of the watch: true on "RD", false on Stop or on any other reply of three characters.
bool waitForTrigger(Context &ctx)
{
    AppState &s = ctx.state;
    for (;;) {
        if (ctx.port.bytesWaiting() > 0) {
            s.lastReply += readCharacter(ctx);
            showReceived(ctx, s.lastReply);
            if (s.lastReply == QLatin1String("RD"))
                return true;
            if (s.lastReply.size() >= 3)
                return false;
            continue;
        }
        QCoreApplication::processEvents();
        if (s.triggerOn == 0)
            return false;
        ctx.port.waitForInput(1, kWaitPassSeconds);
    }
}

} // namespace

QString triggerStateText(const Context &ctx)
{
    return ctx.state.triggerOn == 1 ? kWaiting : kNotActive;
}

QString triggerPaintedLevel(const Context &ctx)
{
    return shownLevel(ctx, double(ctx.state.triggerLevel) + ctx.state.analyser.unitOffset);
}

void triggerLevelEntered(Context &ctx, TriggerControls &controls, const QString &text)
{
    double shown = 0.0;
    typedNumber(text, ctx.state.decimalChar, shown);
    takeShownLevel(ctx, controls, shown, 0.0);
}

void triggerLevelFromCursor(Context &ctx, TriggerControls &controls)
{
    AppState &s = ctx.state;
    emptySegments(ctx);
    correctionAt(ctx, s.chart.cursorAFrequency);
    s.correctionAtFrequency -= distanceTerm(ctx);
    takeShownLevel(ctx, controls, s.chart.cursorALevel, s.correctionAtFrequency);
}

void startTrigger(Context &ctx, TriggerControls &controls, const QString &levelText)
{
    AppState &s = ctx.state;
    s.autoReading = 0;
    ctx.frame().setAutoChecked(false);
    s.triggerOn = 1;
    triggerLevelEntered(ctx, controls, levelText);
    runTriggerWatch(ctx, controls);
}

void runTriggerWatch(Context &ctx, TriggerControls &controls)
{
    AppState &s = ctx.state;
    s.repaintRequest = 0;
    controls.setStateText(QStringLiteral("Init"));
    clearTraces(ctx);
    s.viewMaxhold = 0;
    s.viewSample = 0;
    s.viewMemoryB = 1;
    s.viewMemoryAB = 0;
    refreshLimits(ctx);
    for (;;) {
        if (s.online == 0)
            connectUnit(ctx);
        sendTriggerLevel(ctx);
        if (s.online == 0 || s.serialError == 1) {
            // The error box has told why; a watch that had printed gives the pointer back.
            clearBusy(ctx);
            return;
        }
        ctx.frame().setTimer4Enabled(false);
        s.lastReply.clear();
        showReceived(ctx, QString());
        setBusy(ctx);
        controls.setStateText(kWaiting);
        if (!waitForTrigger(ctx))
            break;
        // The carriage return behind "RD" stays on the line; the next exchange drops it.
        controls.setStateText(QStringLiteral("Read Datas"));
        readAllSettings(ctx);
        readTraces(ctx);
        if (s.printAfterTrigger != 1)
            break;
        call(ctx.calls.printNow);
    }
    triggerOff(ctx);
    clearBusy(ctx);
    controls.setStateText(kNotActive);
    ctx.frame().setTimer4Enabled(true);
}

void stepCenterFrequency(Context &ctx, const QString &stepText, int direction)
{
    AppState &s = ctx.state;
    double step = 0.0;
    typedNumber(stepText, s.decimalChar, step);
    s.analyser.centerFrequency =
        float(std::clamp(s.analyser.centerFrequency + direction * step, 0.0, double(s.maxCenterFrequency)));
    ctx.panel().setCenterFrequencyText(fieldNumber(s.analyser.centerFrequency, 3, s.decimalChar));
    if (s.online == 0) {
        connectUnit(ctx);
        sendCenterFrequency(ctx);
        goLocal(ctx);
    } else {
        sendCenterFrequency(ctx);
    }
    if (s.analyser.calculationOn == 1)
        calculationStart(ctx);
    if (s.online == 1) {
        readAllSettings(ctx);
        readTraces(ctx);
    }
}
