#include "forms/deltest.h"

#include "core/context.h"
#include "emc/emc_test.h"
#include "forms/catalogue_combo.h"
#include "forms/dialog_parts.h"
#include "store/catalogue_views.h"
#include "store/database.h"
#include "store/criteria.h"

#include <QHBoxLayout>
#include <QPushButton>

DeltestForm::DeltestForm(Context &ctx, QWidget *parent)
    : QDialog(parent), ctx_(ctx), combo_(catalogueCombo("DBCombo2", QStringLiteral("The test to delete"), this))
{
    setObjectName(QStringLiteral("deltest"));
    setWindowTitle(QStringLiteral("Delete EMC-Test"));
    setAttribute(Qt::WA_DeleteOnClose);
    QPushButton *remove = dialogButton("Command1", QStringLiteral("Delete"), QStringLiteral("Delete the selected test"), this);
    auto *layout = new QHBoxLayout(this);
    layout->addWidget(combo_, 1);
    layout->addWidget(remove);
    data2_.setDatabase(workingDatabase(ctx_));
    data2_.setSource(QStringLiteral("select * from test order by name"));
    fillCombo(combo_, ctx_, data2_, QStringLiteral("name"));
    combo_->setEditText(data2_.value(QStringLiteral("name")).toString());
    // The row deleted is the one the list's pick found.
    connect(combo_, &QComboBox::textActivated, this,
            [this](const QString &name) { data2_.findFirst(textCriterion(QStringLiteral("name"), QStringLiteral("="), name)); });
    connect(remove, &QPushButton::clicked, this, &DeltestForm::deleteClicked);
}

void DeltestForm::hideEvent(QHideEvent *event)
{
    catalogueViews(ctx_).testData1.refresh();
    applyEmcTest(ctx_);
    QDialog::hideEvent(event);
}

void DeltestForm::deleteClicked()
{
    combo_->setEditText(QString());
    deleteTest(data2_);
    fillCombo(combo_, ctx_, data2_, QStringLiteral("name"));
    // The dialog has always stopped here, reading a column the table lacks: the list stays blank
    // and the page is not brought up to date until the dialog closes.
}
