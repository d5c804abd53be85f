#include "forms/grafik_components.h"

#include "core/context.h"

GrafikComponents::GrafikComponents(Context &ctx, QWidget *parent) : QWidget(parent), ctx_(ctx)
{
    setObjectName(QStringLiteral("componentsPage"));
}

void GrafikComponents::reload() {}
