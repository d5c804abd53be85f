#include "core/context.h"

Context::Context(Platform platform)
    : platform_(std::move(platform)),
      clock(*platform_.clock),
      prompts(*platform_.prompts),
      port(*platform_.port)
{
}

void refreshPanel(Context &ctx)
{
    const SubsystemCalls &c = ctx.calls;
    for (const auto *refresh : {&c.refreshUnits, &c.refreshLimits, &c.refreshConfiguration, &c.refreshUnits})
        call(*refresh);
    ctx.state.repaintRequest = 1;
}

void setBusy(Context &ctx)
{
    ctx.frame().setBusyCursor(true);
    ctx.state.busy = 1;
}

void clearBusy(Context &ctx)
{
    ctx.frame().setBusyCursor(false);
    ctx.state.busy = 0;
}

QString offlineCaption()
{
    return kTitle + kOfflineSuffix;
}
