#include "forms/grafik_configurations.h"

#include "core/context.h"
#include "forms/catalogue_combo.h"
#include "store/catalogue_views.h"
#include "store/configurations.h"

#include <QFormLayout>
#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>

namespace {

struct SlotCombo {
    const char *name;
    const char *toolTip;
};
const SlotCombo kSlotCombos[kChainSlots] = {
    {"conDBCombo6", "Select 1st component"}, {"conDBCombo5", "Select 2nd component"},
    {"conDBCombo4", "Select 3rd component"}, {"conDBCombo3", "Select 4th component"},
    {"conDBCombo2", "Select 5th component"},
};

} // namespace

GrafikConfigurations::GrafikConfigurations(Context &ctx, QWidget *parent)
    : QWidget(parent),
      ctx_(ctx),
      conDBCombo1_(catalogueCombo("conDBCombo1", QStringLiteral("Select the configuration"), this)),
      conFrame2_(new QFrame(this)),
      conLabel3_(new QLabel(QStringLiteral("Distance (m)"), conFrame2_)),
      conLabel4_(new QLabel(conFrame2_))
{
    setObjectName(QStringLiteral("configurationsPage"));
    conFrame2_->setObjectName(QStringLiteral("conFrame2"));
    conLabel3_->setObjectName(QStringLiteral("conLabel3"));
    conLabel4_->setObjectName(QStringLiteral("conLabel4"));
    auto *distance = new QHBoxLayout(conFrame2_);
    distance->addWidget(conLabel3_);
    distance->addWidget(conLabel4_, 1);
    auto *layout = new QFormLayout(this);
    layout->addRow(QStringLiteral("Configuration"), conDBCombo1_);
    connect(conDBCombo1_, &QComboBox::textActivated, this, [this](const QString &name) {
        configurationChosen(ctx_, name);
        reload();
    });
    for (int slot = 1; slot <= kChainSlots; ++slot) {
        const SlotCombo &c = kSlotCombos[slot - 1];
        QComboBox *combo = catalogueCombo(c.name, QLatin1String(c.toolTip), this);
        slots_[slot - 1] = combo;
        layout->addRow(QStringLiteral("Component %1").arg(slot), combo);
        connect(combo, &QComboBox::textActivated, this, [this, slot](const QString &name) {
            componentChosen(ctx_, slot, name);
            reload();
        });
    }
    layout->addRow(conFrame2_);
    conFrame2_->hide();
}

void GrafikConfigurations::reload()
{
    CatalogueViews &views = catalogueViews(ctx_);
    const std::optional<ConfigurationEditor> shown = reloadConfigurationEditor(ctx_);
    fillCombo(conDBCombo1_, ctx_, views.conData2, QStringLiteral("ConfigName"));
    for (int slot = 1; slot <= kChainSlots; ++slot)
        fillCombo(slots_[slot - 1], ctx_, slot == 1 ? views.conData1 : views.conData3, QStringLiteral("losname"));
    if (!shown)
        return;
    conDBCombo1_->setEditText(shown->name);
    for (int k = 0; k < kChainSlots; ++k)
        slots_[k]->setEditText(shown->components[k]);
    conFrame2_->setVisible(shown->distanceVisible);
    conLabel3_->setVisible(shown->distanceVisible);
    conLabel4_->setVisible(shown->distanceVisible);
    conLabel4_->setText(shown->distance);
}
