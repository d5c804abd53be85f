#include "forms/grafik_panel.h"

#include "core/context.h"
#include "forms/catalogue_combo.h"
#include "store/catalogue_refresh.h"
#include "store/catalogue_views.h"

#include <QCheckBox>
#include <QFormLayout>
#include <QLabel>

namespace {

QCheckBox *checkBox(const char *name, const QString &caption, QWidget *parent)
{
    auto *box = new QCheckBox(caption, parent);
    box->setObjectName(QLatin1String(name));
    return box;
}

} // namespace

GrafikPanel::GrafikPanel(Context &ctx, QWidget *parent)
    : QWidget(parent),
      ctx_(ctx),
      detecDBCombo1_(catalogueCombo("detecDBCombo1", QStringLiteral("Max. Hold limit"), this)),
      detecDBCombo2_(catalogueCombo("detecDBCombo2", QStringLiteral("Average limit"), this)),
      DBmeasur1_(catalogueCombo("DBmeasur1", QStringLiteral("Level unit"), this)),
      DBmeasur2_(catalogueCombo("DBmeasur2", QStringLiteral("Workplace configuration"), this)),
      detecCheck5_(checkBox("detecCheck5", QStringLiteral("View Max. Hold limit"), this)),
      detecCheck6_(checkBox("detecCheck6", QStringLiteral("View Average limit"), this)),
      measLabel3_(new QLabel(QStringLiteral("Distance"), this)),
      measLabel4_(new QLabel(this))
{
    setObjectName(QStringLiteral("fSetunitPanel"));
    measLabel3_->setObjectName(QStringLiteral("measLabel3"));
    measLabel4_->setObjectName(QStringLiteral("measLabel4"));
    auto *layout = new QFormLayout(this);
    layout->addRow(detecCheck5_, detecDBCombo1_);
    layout->addRow(detecCheck6_, detecDBCombo2_);
    layout->addRow(QStringLiteral("Unit"), DBmeasur1_);
    layout->addRow(QStringLiteral("Configuration"), DBmeasur2_);
    layout->addRow(measLabel3_, measLabel4_);
    measLabel3_->hide();
    measLabel4_->hide();

    connect(detecDBCombo1_, &QComboBox::textActivated, this,
            [this](const QString &name) { limitPicked(ctx_, PanelLimit::Maxhold, name); });
    connect(detecDBCombo2_, &QComboBox::textActivated, this,
            [this](const QString &name) { limitPicked(ctx_, PanelLimit::Average, name); });
    connect(DBmeasur1_, &QComboBox::textActivated, this, [this](const QString &name) { unitPicked(ctx_, name); });
    connect(DBmeasur2_, &QComboBox::textActivated, this,
            [this](const QString &name) { configurationPicked(ctx_, name); });
    connect(detecCheck5_, &QCheckBox::clicked, this,
            [this](bool on) { limitViewChecked(ctx_, PanelLimit::Maxhold, on); });
    connect(detecCheck6_, &QCheckBox::clicked, this,
            [this](bool on) { limitViewChecked(ctx_, PanelLimit::Average, on); });
    ctx_.attachPanel(this);
}

GrafikPanel::~GrafikPanel()
{
    if (&ctx_.panel() == this)
        ctx_.attachPanel(nullptr);
}

void GrafikPanel::reload()
{
    CatalogueViews &views = catalogueViews(ctx_);
    fillCombo(detecDBCombo1_, ctx_, views.detecData1, QStringLiteral("limitname"));
    fillCombo(detecDBCombo2_, ctx_, views.detecData2, QStringLiteral("limitname"));
    fillCombo(DBmeasur1_, ctx_, views.measData1, QStringLiteral("unitname"));
    fillCombo(DBmeasur2_, ctx_, views.measData2, QStringLiteral("configname"));
    refreshLimits(ctx_);
    refreshConfiguration(ctx_);
    refreshUnits(ctx_);
}

void GrafikPanel::setMaxholdLimitText(const QString &text)
{
    PanelControls::setMaxholdLimitText(text);
    detecDBCombo1_->setEditText(text);
}

void GrafikPanel::setAverageLimitText(const QString &text)
{
    PanelControls::setAverageLimitText(text);
    detecDBCombo2_->setEditText(text);
}

void GrafikPanel::setUnitText(const QString &text)
{
    PanelControls::setUnitText(text);
    DBmeasur1_->setEditText(text);
}

void GrafikPanel::setConfigurationText(const QString &text)
{
    PanelControls::setConfigurationText(text);
    DBmeasur2_->setEditText(text);
}

void GrafikPanel::setDistanceLabels(bool visible, const QString &number)
{
    PanelControls::setDistanceLabels(visible, number);
    measLabel4_->setText(number);
    measLabel3_->setVisible(visible);
    measLabel4_->setVisible(visible);
}

void GrafikPanel::setDistanceFromDutLabel(bool visible, const QString &text)
{
    PanelControls::setDistanceFromDutLabel(visible, text);
    emit distanceFromDutChanged(visible, text);
}

void GrafikPanel::setMaxholdLimitTicked(bool on)
{
    PanelControls::setMaxholdLimitTicked(on);
    detecCheck5_->setChecked(on);
}

void GrafikPanel::setAverageLimitTicked(bool on)
{
    PanelControls::setAverageLimitTicked(on);
    detecCheck6_->setChecked(on);
}
