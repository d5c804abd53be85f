#pragma once
// A context on virtual time with scripted prompts and the analyser simulator behind the port.

#include "core/clock.h"
#include "core/context.h"
#include "core/scripted_prompts.h"
#include "link/serial_link.h"
#include "sim/device_switch.h"
#include "sim/simulated_port.h"

#include <memory>
#include <optional>

struct SimBench {
    // The texts of the operator's boxes that switch the device under test off and on.
    struct DeviceBoxes {
        QString off;
        QString on;
    };

    // With `deviceBoxes`, answering those boxes switches the scene's device as delfor-cli does.
    explicit SimBench(const QString &model = QStringLiteral("K320-A"),
                      const QString &firmware = QStringLiteral("1.40"), QTime timeOfDay = QTime(10, 0),
                      std::optional<DeviceBoxes> deviceBoxes = std::nullopt)
        : analyser(model, firmware)
    {
        auto clockOwned = std::make_unique<VirtualClock>(QDateTime(QDate(2026, 1, 5), timeOfDay));
        auto promptsOwned = std::make_unique<ScriptedPrompts>();
        auto portOwned = std::make_unique<SimulatedPort>(analyser, *clockOwned);
        clock = clockOwned.get();
        prompts = promptsOwned.get();
        port = portOwned.get();
        std::unique_ptr<Prompts> operatorPrompts = std::move(promptsOwned);
        if (deviceBoxes)
            operatorPrompts = std::make_unique<DeviceSwitchPrompts>(std::move(operatorPrompts), analyser.scene,
                                                                    deviceBoxes->off, deviceBoxes->on);
        ctx = std::make_unique<Context>(
            Platform{std::move(clockOwned), std::move(operatorPrompts), std::move(portOwned)});
    }

    // The port open at the analyser's rate and the link up, as after a connect; traffic cleared.
    void online()
    {
        ctx->state.baudRate = analyser.rate;
        openConfiguredPort(*ctx);
        ctx->state.online = 1;
        port->clearTraffic();
    }

    AppState &state() { return ctx->state; }

    Analyser analyser;
    VirtualClock *clock = nullptr;
    ScriptedPrompts *prompts = nullptr;
    SimulatedPort *port = nullptr;
    std::unique_ptr<Context> ctx;
};
