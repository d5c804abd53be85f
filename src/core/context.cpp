#include "core/context.h"

Context::Context(Platform platform)
    : platform_(std::move(platform)),
      clock(*platform_.clock),
      prompts(*platform_.prompts),
      port(*platform_.port)
{
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
