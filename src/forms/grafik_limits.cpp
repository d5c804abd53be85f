#include "forms/grafik_limits.h"

#include "core/context.h"
#include "forms/dellim.h"
#include "forms/newlim.h"
#include "store/catalogue_views.h"
#include "store/database.h"
#include "store/limits.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

GrafikLimits::GrafikLimits(Context &ctx, QWidget *parent)
    : CurvePage(ctx, QStringLiteral("lim"), catalogueViews(ctx).limData2, "limitname", parent),
      unit_(new QComboBox(this)),
      radiated_(new QCheckBox(QStringLiteral("Limit for radiated signals"), this)),
      logarithmic_(new QCheckBox(QStringLiteral("Logarithmic def."), this))
{
    setObjectName(QStringLiteral("limitsPage"));
    unit_->setObjectName(QStringLiteral("limDBCombo2"));
    radiated_->setObjectName(QStringLiteral("limCheck1"));
    logarithmic_->setObjectName(QStringLiteral("limCheck2"));
    text(3)->setToolTip(QStringLiteral("Valid distance for this settings"));
    text(4)->setToolTip(QStringLiteral("User defined text field"));
    const int row = nextHeadRow();
    headLayout()->addWidget(new QLabel(QStringLiteral("Unit"), this), row, 0);
    headLayout()->addWidget(unit_, row, 1);
    headLayout()->addWidget(radiated_, nextHeadRow(), 0, 1, 2);
    headLayout()->addWidget(logarithmic_, nextHeadRow(), 0, 1, 2);
    connect(addButton("limNew", QStringLiteral("New / Copy...")), &QPushButton::clicked, this,
            &GrafikLimits::openNewDialog);
    connect(addButton("limDelete", QStringLiteral("Delete...")), &QPushButton::clicked, this,
            &GrafikLimits::openDeleteDialog);
    addCommonButtons();

    connect(unit_, &QComboBox::activated, this, [this] {
        chooseLimitUnit(ctx_, unit_->currentText());
        reload();
    });
    connect(radiated_, &QCheckBox::clicked, this, [this](bool on) {
        saveLimitHead(ctx_, QStringLiteral("Radiated"), on ? -1 : 0);
        text(3)->setEnabled(on);
    });
    connect(logarithmic_, &QCheckBox::clicked, this, [this](bool on) {
        saveLimitHead(ctx_, QStringLiteral("loga"), on ? -1 : 0);
        fill();
    });
}

void GrafikLimits::fillUnitCombo()
{
    DataView &units = catalogueViews(ctx_).limData3;
    unit_->clear();
    for (units.moveFirst(); units.hasCurrent(); units.moveNext())
        unit_->addItem(units.value(QStringLiteral("unitname")).toString());
}

bool GrafikLimits::reloadEditor()
{
    fillUnitCombo();
    const auto shown = reloadLimitEditor(ctx_);
    if (!shown)
        return false;
    showHead(shown->name, shown->distance, shown->memo, shown->dat, shown->tim);
    unit_->setCurrentIndex(unit_->findText(shown->unit));
    radiated_->setChecked(shown->radiated);
    logarithmic_->setChecked(shown->logarithmic);
    text(3)->setEnabled(shown->radiated);
    return true;
}

CurveGrid GrafikLimits::fillGrid() { return fillLimitGrid(ctx_); }

void GrafikLimits::drawPreview(const CurveGrid &grid)
{
    drawLimitPreview(ctx_, pictures(), grid, logarithmic_->isChecked());
}

void GrafikLimits::enterPoint(const QString &frequency, const QString &level)
{
    enterLimitPoint(ctx_, frequency, level);
}

std::optional<CurveGridRow> GrafikLimits::findPoint(const QString &frequency) { return findLimitPoint(ctx_, frequency); }

bool GrafikLimits::deletePoint(const QString &frequency) { return deleteLimitPoint(ctx_, frequency); }

bool GrafikLimits::choose(const QString &name) { return chooseLimit(ctx_, name); }

void GrafikLimits::saveHead(const QString &column, const QVariant &value) { saveLimitHead(ctx_, column, value); }

void GrafikLimits::openNewDialog()
{
    openDialog<NewCurveDialog>("newlim", [this] {
        return newlim(ctx_, window(), [this](const QString &name) { showDefinition(name); });
    });
}

void GrafikLimits::openDeleteDialog()
{
    openDialog<DeleteCurveDialog>("dellim", [this] {
        return dellim(ctx_, window(), [this](const QString &name) { showDefinition(name); });
    });
}

CsvOutcome GrafikLimits::importCsv(const QString &name, const QString &path)
{
    return importLimitCsv(workingDatabase(ctx_), name, path, true);
}

CsvOutcome GrafikLimits::exportCsv(const QString &name, const QString &path)
{
    return exportLimitCsv(workingDatabase(ctx_), name, path);
}
