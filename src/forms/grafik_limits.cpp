#include "forms/grafik_limits.h"

#include "core/context.h"

GrafikLimits::GrafikLimits(Context &ctx, QWidget *parent) : QWidget(parent), ctx_(ctx)
{
    setObjectName(QStringLiteral("limitsPage"));
}

void GrafikLimits::reload() {}
