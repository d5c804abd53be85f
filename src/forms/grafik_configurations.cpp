#include "forms/grafik_configurations.h"

#include "core/context.h"

GrafikConfigurations::GrafikConfigurations(Context &ctx, QWidget *parent) : QWidget(parent), ctx_(ctx)
{
    setObjectName(QStringLiteral("configurationsPage"));
}

void GrafikConfigurations::reload() {}
