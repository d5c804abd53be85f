#include "forms/grafik_equipment.h"

#include "forms/grafik_bands.h"
#include "forms/grafik_components.h"
#include "forms/grafik_configurations.h"
#include "forms/grafik_limits.h"

#include <QTabWidget>
#include <QVBoxLayout>

GrafikEquipment::GrafikEquipment(Context &ctx, QWidget *parent)
    : QFrame(parent),
      equTab_(new QTabWidget(this)),
      limits_(new GrafikLimits(ctx)),
      components_(new GrafikComponents(ctx)),
      configurations_(new GrafikConfigurations(ctx)),
      bands_(new GrafikBands(ctx))
{
    setObjectName(QStringLiteral("fEquip"));
    equTab_->setObjectName(QStringLiteral("equTab"));
    equTab_->addTab(limits_, QStringLiteral("Limit lines"));
    equTab_->addTab(components_, QStringLiteral("Loss/Gain"));
    equTab_->addTab(configurations_, QStringLiteral("Configuration"));
    equTab_->addTab(bands_, QStringLiteral("Known bands"));
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(equTab_);
    connect(equTab_, &QTabWidget::currentChanged, this, [this] { reloadEditors(); });
}

void GrafikEquipment::reloadEditors()
{
    components_->reload();
    limits_->reload();
    configurations_->reload();
    bands_->reload();
}
