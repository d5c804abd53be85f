#pragma once
// The one context of the program: it owns the state and the platform parts, and routines
// reach each other through it. A test builds a fresh one with test backends.

#include "core/app_state.h"
#include "core/frame_controls.h"
#include "core/panel_controls.h"
#include "core/run_controls.h"
#include "core/platform.h"
#include "core/test_controls.h"

#include <functional>
#include <memory>

struct Platform {
    std::unique_ptr<Clock> clock;
    std::unique_ptr<Prompts> prompts;
    std::unique_ptr<SerialPort> port;
};

// Entry points of subsystems that sit above the core; the program wires them when it is assembled.
struct SubsystemCalls {
    std::function<void()> openWorkingDatabase;
    std::function<void()> enterNormalMode;
    std::function<void()> enterEmcMode;
    std::function<void()> clearTraces;
    // Turns the block in `rawSamples` into levels of the array that `traceTarget` selects.
    std::function<void()> convertBlock;
    // The panel's lists, redisplayed after the analyser's settings were read.
    std::function<void()> refreshUnits;
    std::function<void()> refreshLimits;
    std::function<void()> refreshConfiguration;
    // The rows of table losdef for one component, in frequency order.
    std::function<QList<ComponentRow>(qint32 losnr)> componentRows;
    // The chart drawn anew (the form grafik is up) and the duties the timers and commands
    // hand on to subsystems that come later: autostore, the stepped scan, the immediate
    // print, the test in force.
    std::function<void()> paintChart;
    std::function<void()> autostoreNow;
    std::function<void()> steppedScanStep;
    std::function<void()> printNow;
    std::function<void()> applyEmcTest;
    // One sweep round of a Sweep + Step run (with its step pass when the DUT is on).
    std::function<void()> sweepRound;
    // The result table of the stored EMC run filled anew (its file or the comparison changed).
    std::function<void()> refreshResults;
};

class Context {
    Platform platform_; // first: the references below point into it

public:
    explicit Context(Platform platform);
    Context(const Context &) = delete;
    Context &operator=(const Context &) = delete;

    AppState state;
    Clock &clock;
    Prompts &prompts;
    SerialPort &port;
    SubsystemCalls calls;

    FrameControls &frame() { return *frame_; }
    // The main frame attaches itself when it is created; until then the controls are kept off screen.
    void attachFrame(FrameControls *frame) { frame_ = frame ? frame : &offscreenFrame_; }
    // The normal-mode panel of grafik, attached the same way while the form exists.
    PanelControls &panel() { return *panel_; }
    void attachPanel(PanelControls *panel) { panel_ = panel ? panel : &offscreenPanel_; }
    // The EMC test page fTest of grafik, attached the same way.
    TestControls &testPage() { return *testPage_; }
    void attachTestPage(TestControls *page) { testPage_ = page ? page : &offscreenTestPage_; }
    // The controls an EMC run locks and the scan's labels and timer, attached by the main frame.
    RunControls &run() { return *run_; }
    void attachRunControls(RunControls *run) { run_ = run ? run : &offscreenRun_; }

    // Folder of setting.def and the databases.
    QString dataFolder;

private:
    FrameControls offscreenFrame_;
    FrameControls *frame_ = &offscreenFrame_;
    PanelControls offscreenPanel_;
    PanelControls *panel_ = &offscreenPanel_;
    TestControls offscreenTestPage_;
    TestControls *testPage_ = &offscreenTestPage_;
    RunControls offscreenRun_;
    RunControls *run_ = &offscreenRun_;
};

// Runs a hook when a subsystem has set it.
inline void call(const std::function<void()> &hook)
{
    if (hook)
        hook();
}

// Enters the mode that `emcMode` holds: EMC mode for any value but 0.
inline void enterStoredMode(Context &ctx)
{
    call(ctx.state.emcMode != 0 ? ctx.calls.enterEmcMode : ctx.calls.enterNormalMode);
}

// The panel redisplays the state: units, limits, configuration, units again; then a repaint.
// Runs after the analyser's settings were read or sent, and after a saved setting was loaded.
void refreshPanel(Context &ctx);

// Hourglass pointer and the flag `busy`.
void setBusy(Context &ctx);
void clearBusy(Context &ctx);
// The status caption: the title with "       Offline".
QString offlineCaption();
