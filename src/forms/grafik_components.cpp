#include "forms/grafik_components.h"

#include "core/context.h"
#include "forms/dellos.h"
#include "forms/newlos.h"
#include "store/catalogue_views.h"
#include "store/database.h"
#include "store/loss_gain.h"

#include <QButtonGroup>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>

GrafikComponents::GrafikComponents(Context &ctx, QWidget *parent)
    : CurvePage(ctx, QStringLiteral("LG"), catalogueViews(ctx).lgData2, "losname", parent)
{
    setObjectName(QStringLiteral("componentsPage"));
    text(3)->setToolTip(QStringLiteral("Valid antenna distance for this correction values"));
    const char *captions[] = {"Antenna", "Loss component", "Gain component"};
    auto *group = new QButtonGroup(this);
    for (int i = 0; i < 3; ++i) {
        kind_[i] = new QRadioButton(QLatin1String(captions[i]), this);
        kind_[i]->setObjectName(QStringLiteral("lgOption1_%1").arg(i));
        group->addButton(kind_[i], i);
        headLayout()->addWidget(kind_[i], nextHeadRow(), 0, 1, 2);
    }
    connect(group, &QButtonGroup::idClicked, this, [this](int i) {
        showDistance(i);
        chooseLossGainKind(ctx_, i);
        reload();
    });
    connect(addButton("LGNew", QStringLiteral("New / Copy...")), &QPushButton::clicked, this,
            &GrafikComponents::openNewDialog);
    connect(addButton("LGDelete", QStringLiteral("Delete...")), &QPushButton::clicked, this,
            &GrafikComponents::openDeleteDialog);
    addCommonButtons();
}

void GrafikComponents::showDistance(int kind)
{
    text(3)->setVisible(kind == 0);
    distanceLabel()->setVisible(kind == 0);
}

bool GrafikComponents::reloadEditor()
{
    const auto shown = reloadLossGainEditor(ctx_);
    if (!shown)
        return false;
    showHead(shown->name, shown->distance, shown->memo, shown->dat, shown->tim);
    // A kind outside 0 to 2 leaves the options, the distance and the sign as they were.
    if (shown->kind) {
        kind_[*shown->kind]->setChecked(true);
        showDistance(*shown->kind);
    }
    return true;
}

CurveGrid GrafikComponents::fillGrid() { return fillLossGainGrid(ctx_); }

void GrafikComponents::drawPreview(const CurveGrid &grid) { drawLossGainPreview(ctx_, pictures(), grid); }

void GrafikComponents::enterPoint(const QString &frequency, const QString &level)
{
    enterLossGainPoint(ctx_, frequency, level);
}

std::optional<CurveGridRow> GrafikComponents::findPoint(const QString &frequency)
{
    return findLossGainPoint(ctx_, frequency);
}

bool GrafikComponents::deletePoint(const QString &frequency) { return deleteLossGainPoint(ctx_, frequency); }

bool GrafikComponents::choose(const QString &name) { return chooseLossGain(ctx_, name); }

void GrafikComponents::saveHead(const QString &column, const QVariant &value)
{
    saveLossGainHead(ctx_, column, value);
}

void GrafikComponents::openNewDialog()
{
    openDialog<NewCurveDialog>("newlos", [this] {
        return newlos(ctx_, window(), [this](const QString &name) { showDefinition(name); });
    });
}

void GrafikComponents::openDeleteDialog()
{
    openDialog<DeleteCurveDialog>("dellos", [this] {
        return dellos(ctx_, window(), [this](const QString &name) { showDefinition(name); });
    });
}

CsvOutcome GrafikComponents::importCsv(const QString &name, const QString &path)
{
    // The kind and distance stay those of the component shown.
    const DataView &head = catalogueViews(ctx_).lgData2;
    const auto kind = ComponentKind(qBound(0, head.value(QStringLiteral("lostyp")).toInt(), 2));
    return importComponentCsv(workingDatabase(ctx_), name, kind, head.value(QStringLiteral("Distance")).toFloat(),
                              path, true);
}

CsvOutcome GrafikComponents::exportCsv(const QString &name, const QString &path)
{
    return exportComponentCsv(workingDatabase(ctx_), name, path);
}
