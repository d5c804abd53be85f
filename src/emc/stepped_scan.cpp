#include "emc/stepped_scan.h"

#include "emc/detectors.h"
#include "emc/run_controller.h"
#include "link/commands.h"
#include "signal/trace_store.h"
#include "store/measurement_file.h"

#include <QCoreApplication>
#include <QLocale>

namespace {

// The progress caption comes after this many blocks and one more; the time per step is divided by
// this number, although the period holds one block more.
constexpr int kProgressBlocks = 30;
// The finest step a round takes: the rows' grain. A smaller one would never reach the stop.
constexpr double kMinimumStep = 0.001;

void showFrequency(Context &ctx)
{
    ctx.run().setFrequencyLabel(QString::number(double(ctx.state.analyser.centerFrequency), 'f', 3));
}

// Every 31 blocks: the time per step, when the run will be ready, and a paint of the rows so far.
void reportProgress(Context &ctx)
{
    AppState &s = ctx.state;
    s.stepCounter = 0;
    const QDateTime now = ctx.clock.now();
    s.traces.averageTime = s.traces.maxholdTime = now;
    const double timePerStep = double(s.progressMark.secsTo(now)) / kProgressBlocks;
    double stepsLeft = (double(s.chart.stopFrequency) - s.stepFrequency) / s.stepIncrement;
    if (s.testHorizontal == -1 && s.horizontalRound == -1 && s.testVertical == -1)
        stepsLeft += (double(s.chart.stopFrequency) - double(s.chart.startFrequency)) / s.stepIncrement;
    const QDateTime ready = now.addMSecs(qint64(timePerStep * stepsLeft * 1000.0));
    s.progressMark = now;
    call(ctx.calls.paintChart);
    ctx.run().setProgressCaption(QStringLiteral("Time per Step : ") + QString::number(timePerStep, 'f', 2)
                                 + QStringLiteral("s - Ready at : ")
                                 + QLocale().toString(ready.time(), QLocale::LongFormat));
}

// The next single sweep: another block here, or the first block of the next frequency. The centre
// field keeps the frequency of the block in hand, which is evaluated after this.
void startNextBlock(Context &ctx)
{
    AppState &s = ctx.state;
    if (s.stepBlocksLeft > 0) {
        startSingleSweep(ctx);
        --s.stepBlocksLeft;
        return;
    }
    s.stepFrequency += s.stepIncrement;
    const float inHand = s.analyser.centerFrequency;
    s.analyser.centerFrequency = float(s.stepFrequency);
    sendCenterFrequency(ctx);
    startSingleSweep(ctx);
    s.analyser.centerFrequency = inHand;
    s.stepBlocksLeft = quint8(s.stepBlocks - 1);
}

// The round is over: the vertical round follows, or the run ends (without going local).
void endStepRound(Context &ctx)
{
    AppState &s = ctx.state;
    ctx.run().setTimer2Enabled(false);
    if (s.emcStopRequest == 0 && s.testHorizontal == -1 && s.testVertical == -1 && s.rowsExist == 0
        && s.online == 1) {
        s.rowsExist = 1;
        s.horizontalRound = 0;
        ctx.prompts.messageBox(kSteppedTitle, kAntennaVerticalText, MsgButtons::Ok);
        singleSweepModeOff(ctx);
        beginStepRound(ctx);
        updateEmcChartRange(ctx);
        return;
    }
    s.repaintRequest = 1;
    sendPresetSettings(ctx);
    clearBusy(ctx);
    unlockRunControls(ctx);
    updateEmcChartRange(ctx);
}

// A tick runs while an earlier one waits in the operator's box between the rounds (the box runs
// the event queue): it must not take blocks of the round that the box will begin.
bool tickInProgress = false;

} // namespace

qint16 spanForBandwidth(quint16 bandwidth)
{
    return bandwidth == 9 ? 2 : bandwidth == 120 ? 20 : 200;
}

void beginStepRound(Context &ctx)
{
    AppState &s = ctx.state;
    s.repaintRequest = 0;
    s.emcMode = 1;
    sendZeroSpanSettings(ctx);
    s.emcStopRequest = 0;
    clearTraces(ctx);
    s.traceFrozen = 1;
    s.stepCounter = 0;
    s.qpeakValue = 0.0;
    s.emcStartTime = ctx.clock.now();
    s.stepBlocks = qMax<quint8>(1, s.stepBlocks);
    s.stepFrequency = s.chart.startFrequency;
    s.stepIncrement = qMax(kMinimumStep, double(s.stepWidth));
    s.analyser.span = spanForBandwidth(s.analyser.bandwidth);
    s.analyser.centerFrequency = float(s.stepFrequency);
    sendCenterFrequency(ctx);
    readCenterFrequency(ctx);
    showFrequency(ctx);
    QCoreApplication::processEvents();
    startSingleSweep(ctx);
    receiveTrace(ctx); // the first block is thrown away
    s.stepFrequency += s.stepIncrement;
    if (s.stepBlocks == 1) {
        s.analyser.centerFrequency = float(s.stepFrequency);
        sendCenterFrequency(ctx);
    }
    s.stepBlocksLeft = quint8(s.stepBlocks - 1);
    startSingleSweep(ctx);
    s.progressMark = ctx.clock.now();
    ctx.run().setTimer2Enabled(true);
}

void stepTick(Context &ctx)
{
    AppState &s = ctx.state;
    if (tickInProgress) {
        ctx.run().setTimer2Enabled(true); // comes again once the box is answered
        return;
    }
    tickInProgress = true;
    receiveTrace(ctx);
    // A block up to one step above the stop is still evaluated; the one that ends the round is not.
    if (float(double(s.chart.stopFrequency) + s.stepIncrement) < s.analyser.centerFrequency
        || s.emcStopRequest == 1 || s.online != 1) {
        endStepRound(ctx);
        tickInProgress = false;
        return;
    }
    startNextBlock(ctx); // before the evaluation: the analyser measures while the program works
    showFrequency(ctx);
    ctx.run().setBlocksLabel(QString::number(s.stepBlocksLeft + 1));
    detectStepBlock(ctx);
    if (++s.stepCounter > kProgressBlocks)
        reportProgress(ctx);
    ctx.run().setTimer2Enabled(true);
    tickInProgress = false;
}
