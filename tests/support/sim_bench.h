#pragma once
// A context on virtual time with scripted prompts and the analyser simulator behind the port.

#include "core/clock.h"
#include "core/context.h"
#include "core/scripted_prompts.h"
#include "link/serial_link.h"
#include "sim/simulated_port.h"

#include <memory>

struct SimBench {
    explicit SimBench(const QString &model = QStringLiteral("K320-A"),
                      const QString &firmware = QStringLiteral("1.40"), QTime timeOfDay = QTime(10, 0))
        : analyser(model, firmware)
    {
        auto clockOwned = std::make_unique<VirtualClock>(QDateTime(QDate(2026, 1, 5), timeOfDay));
        auto promptsOwned = std::make_unique<ScriptedPrompts>();
        auto portOwned = std::make_unique<SimulatedPort>(analyser, *clockOwned);
        clock = clockOwned.get();
        prompts = promptsOwned.get();
        port = portOwned.get();
        ctx = std::make_unique<Context>(
            Platform{std::move(clockOwned), std::move(promptsOwned), std::move(portOwned)});
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
