#include "emc/run_controller.h"

#include "emc/stepped_scan.h"
#include "link/commands.h"
#include "link/discovery.h"
#include "signal/trace_store.h"
#include "store/measurement_file.h"

namespace {

// The run is to end: the user pressed Stop or the link is down.
bool runBroken(const AppState &s) { return s.emcStopRequest == 1 || s.online == 0; }

// What every run does last, also after an early exit. Offline the analyser commands pass over.
void endEmcRun(Context &ctx)
{
    updateEmcChartRange(ctx);
    sendPresetSettings(ctx);
    goLocal(ctx);
    ctx.state.repaintRequest = 1;
    unlockRunControls(ctx);
    call(ctx.calls.refreshResults);
}

void operatorBox(Context &ctx, const QString &title, const QString &text)
{
    ctx.prompts.messageBox(title, text, MsgButtons::Ok);
}

// A Step run: the first round begins here, Timer2 carries it and the second round on. The test's
// ambient switch plays no part.
void stepBranch(Context &ctx)
{
    AppState &s = ctx.state;
    s.rowsExist = 0;
    if (s.testHorizontal == -1 || s.testVertical != 0) {
        const bool horizontal = s.testHorizontal == -1;
        operatorBox(ctx, kSteppedTitle, horizontal ? kHorizontalText : kVerticalText);
        s.horizontalRound = horizontal ? -1 : 0;
        writeEmcHeader(ctx);
        beginStepRound(ctx);
        if (runBroken(s))
            endEmcRun(ctx);
        return;
    }
    // Neither round chosen: one round, in the columns of the round that stood last.
    writeEmcHeader(ctx);
    beginStepRound(ctx);
}

// Ambient with the DUT switched off, then the DUT on again. False when the run broke off.
bool ambientRound(Context &ctx, quint8 rowsExist, quint8 round)
{
    AppState &s = ctx.state;
    operatorBox(ctx, kSweepStepTitle, kDutOffText);
    s.rowsExist = rowsExist;
    s.ambientRound = round;
    if (runBroken(s))
        return false;
    call(ctx.calls.sweepRound);
    if (runBroken(s))
        return false;
    operatorBox(ctx, kSweepStepTitle, kDutOnText);
    s.rowsExist = 1;
    return true;
}

// The round with the DUT on that ends a polarisation, after its ambient round.
void lastDutRound(Context &ctx)
{
    AppState &s = ctx.state;
    s.ambientRound = 0;
    if (!runBroken(s))
        call(ctx.calls.sweepRound);
}

// Both polarisations: ambient H, DUT H, ambient V, DUT V; the rows are made in the first round.
void bothPolarisations(Context &ctx)
{
    AppState &s = ctx.state;
    operatorBox(ctx, kSweepStepTitle, kHorizontalText);
    s.horizontalRound = -1;
    writeEmcHeader(ctx);
    if (s.ambientOn == 1) {
        if (!ambientRound(ctx, 0, 1))
            return;
    } else {
        s.rowsExist = 0;
    }
    s.ambientRound = 0;
    if (runBroken(s))
        return;
    call(ctx.calls.sweepRound);
    if (runBroken(s))
        return;
    operatorBox(ctx, kSweepStepTitle, kVerticalText);
    s.horizontalRound = 0;
    if (s.ambientOn == 1) {
        if (ambientRound(ctx, 1, 2))
            lastDutRound(ctx);
        return;
    }
    s.rowsExist = 1;
    s.ambientRound = 0;
    // Only the stop is looked at here; the round itself passes over offline.
    if (s.emcStopRequest == 0 && s.online != 0)
        call(ctx.calls.sweepRound);
}

void onePolarisation(Context &ctx, bool horizontal)
{
    AppState &s = ctx.state;
    if (horizontal) {
        operatorBox(ctx, kSweepStepTitle, kHorizontalText);
        s.horizontalRound = -1;
    } else {
        s.horizontalRound = 0;
        operatorBox(ctx, kSweepStepTitle, kVerticalText);
    }
    writeEmcHeader(ctx);
    if (s.ambientOn != 1) {
        s.rowsExist = 0;
        s.ambientRound = 0;
        if (s.emcStopRequest == 0 && s.online != 0)
            call(ctx.calls.sweepRound);
        return;
    }
    if (ambientRound(ctx, 0, horizontal ? 1 : 2))
        lastDutRound(ctx);
}

void sweepAndStepBranch(Context &ctx)
{
    AppState &s = ctx.state;
    const bool horizontal = s.testHorizontal == -1, vertical = s.testVertical == -1;
    if (horizontal && vertical) {
        bothPolarisations(ctx);
    } else if (horizontal || vertical) {
        onePolarisation(ctx, horizontal);
    } else {
        writeEmcHeader(ctx);
        s.rowsExist = 0;
        s.ambientRound = 0;
        lastDutRound(ctx);
    }
    endEmcRun(ctx);
}

// The file of the run: a cancel leaves nothing touched.
std::optional<QString> chooseRunFile(Context &ctx)
{
    FileDialogRequest request;
    request.title = QStringLiteral("Select Measurement");
    request.filter = QStringLiteral("EMC (*.emc) |*.emc");
    request.defaultExtension = QStringLiteral(".emc");
    request.filterIndex = 1;
    request.flags = 8198; // create prompt, hide read-only, overwrite prompt
    return ctx.prompts.saveFileDialog(request);
}

} // namespace

void lockRunControls(Context &ctx)
{
    RunControls &run = ctx.run();
    run.setStartEnabled(false);
    run.setStopEnabled(true);
    run.setLockedControlsEnabled(false);
    ctx.state.emcRunActive = -1;
}

void unlockRunControls(Context &ctx)
{
    RunControls &run = ctx.run();
    run.setLockedControlsEnabled(true);
    run.setStopEnabled(false);
    run.setStartEnabled(true);
    ctx.state.emcRunActive = 0;
}

void stopEmcRun(Context &ctx)
{
    ctx.state.emcStopRequest = 1;
    ctx.run().setStartEnabled(true);
}

void startEmcRun(Context &ctx)
{
    AppState &s = ctx.state;
    if (s.online == 0)
        connectUnit(ctx);
    if (s.online == 0)
        return;
    lockRunControls(ctx);
    s.emcStopRequest = 0;
    s.testApplyView = 1;
    call(ctx.calls.applyEmcTest);
    clearTraces(ctx);
    const std::optional<QString> file = chooseRunFile(ctx);
    if (!file) {
        unlockRunControls(ctx);
        return;
    }
    s.measurementFileName = *file;
    setBusy(ctx);
    ctx.run().setReadCommandEnabled(false);
    createMeasurementFile(ctx);
    if (s.online == 0)
        connectUnit(ctx);
    if (s.online == 0) {
        unlockRunControls(ctx);
        return;
    }
    if (s.emcScanMode == 1)
        stepBranch(ctx);
    else
        sweepAndStepBranch(ctx);
}
