#include "forms/app.h"

#include "core/clock.h"
#include "forms/qt_prompts.h"
#include "core/settings_file.h"
#include "emc/run_controller.h"
#include "link/port_selector.h"
#include "link/qt_serial_port.h"
#include "link/serial_link.h"
#include "sim/device_switch.h"
#include "sim/simulated_port.h"
#include "output/logic_wiring.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

namespace {

// The simulator answers no faster than this on the real clock, as a unit on a line would.
constexpr double kSimulatorReplyLatency = 0.02;

void setDefaults(Context &ctx)
{
    ctx.state = AppState();
    ctx.state.autostoreFile = ctx.dataFolder + QStringLiteral("/AutomessXXX.mes");
    ctx.state.decimalChar = localeDecimalChar();
    ctx.frame().setCaption(offlineCaption());
}

} // namespace

void loadMainFrame(Context &ctx)
{
    // Nothing is unpacked on a first start and no restart is needed: the data folder is made
    // when it is missing, and the databases are written out from the program itself.
    QDir().mkpath(ctx.dataFolder);
    setDefaults(ctx);
    readSettingsFile(ctx);
    call(ctx.calls.openWorkingDatabase);
    openStartupPort(ctx);
    enterStoredMode(ctx);
    call(ctx.calls.clearTraces);
    ctx.state.repaintRequest = 1;
}

void unloadMainFrame(Context &ctx)
{
    AppState &s = ctx.state;
    if (s.comPort == 0 && s.configuredComPort >= 0)
        s.comPort = s.configuredComPort;
    writeSettingsFile(ctx);
    if (ctx.port.isOpen())
        ctx.port.close();
}

void openStartupPort(Context &ctx)
{
    if (ctx.port.isOpen())
        ctx.port.close();
    ctx.port.setPortNumber(ctx.state.comPort);
    ctx.port.setSettings(lineSettings(4800));
    // No unit is contacted here; a port that will not open shows only when a connect is tried.
    if (ctx.port.open())
        ctx.port.discardInput();
}

void startOnSimulator(Context &ctx)
{
    ctx.state.configuredComPort = ctx.state.comPort;
    ctx.state.comPort = 0;
    openStartupPort(ctx);
}

bool fileExists(const QString &path)
{
    QCoreApplication::processEvents();
    return !path.isEmpty() && QFileInfo::exists(path);
}

std::unique_ptr<Program> assembleProgram(const QString &simulatorModel)
{
    auto program = std::make_unique<Program>(Program{Analyser(simulatorModel), nullptr});
    auto clock = std::make_unique<SystemClock>();
    auto simulated = std::make_unique<SimulatedPort>(program->simulator, *clock, kSimulatorReplyLatency);
    auto real = std::make_unique<QtSerialPort>();
    real->setDevicePaths(loadDevicePaths());
    auto port = std::make_unique<PortSelector>(std::move(simulated), std::move(real));
    // The operator's boxes that switch the device under test switch the simulator's device too;
    // on a real port the simulator is not heard, so they may well do that always.
    auto prompts = std::make_unique<DeviceSwitchPrompts>(std::make_unique<QtPrompts>(), program->simulator.scene,
                                                         kDutOffText, kDutOnText);
    program->ctx = std::make_unique<Context>(Platform{std::move(clock), std::move(prompts), std::move(port)});
    program->ctx->dataFolder = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
    attachLogic(*program->ctx);
    return program;
}
