#include "forms/grafik_bands.h"

#include "core/context.h"

GrafikBands::GrafikBands(Context &ctx, QWidget *parent) : QWidget(parent), ctx_(ctx)
{
    setObjectName(QStringLiteral("bandsPage"));
}

void GrafikBands::reload() {}
