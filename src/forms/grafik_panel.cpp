#include "forms/grafik_panel.h"

#include "core/context.h"

GrafikPanel::GrafikPanel(Context &ctx, QWidget *parent) : QWidget(parent), ctx_(ctx)
{
    setObjectName(QStringLiteral("fSetunitPanel"));
}

void GrafikPanel::reload() {}
