#include "forms/delconf.h"

#include "core/context.h"
#include "forms/catalogue_combo.h"
#include "store/configurations.h"
#include "store/criteria.h"

#include <QHBoxLayout>
#include <QPushButton>

DelconfForm::DelconfForm(Context &ctx, std::function<void()> reloadEditor, QWidget *parent)
    : QDialog(parent),
      ctx_(ctx),
      reloadEditor_(std::move(reloadEditor)),
      combo_(catalogueCombo("DBCombo2", QStringLiteral("The configuration to delete"), this))
{
    setObjectName(QStringLiteral("delconf"));
    setWindowTitle(QStringLiteral("Delete configuration"));
    setAttribute(Qt::WA_DeleteOnClose);
    auto *remove = new QPushButton(QStringLiteral("Delete"), this);
    remove->setObjectName(QStringLiteral("Command1"));
    remove->setToolTip(QStringLiteral("Delete the selected configuration"));
    remove->setAutoDefault(false);
    auto *layout = new QHBoxLayout(this);
    layout->addWidget(combo_, 1);
    layout->addWidget(remove);
    bindDelconfView(ctx_, data2_);
    fillCombo(combo_, ctx_, data2_, QStringLiteral("configname"));
    combo_->setEditText(data2_.value(QStringLiteral("configname")).toString());
    // The row deleted is the one the list's pick found.
    connect(combo_, &QComboBox::textActivated, this, [this](const QString &name) {
        data2_.findFirst(textCriterion(QStringLiteral("configname"), QStringLiteral("like"), name));
    });
    connect(remove, &QPushButton::clicked, this, &DelconfForm::deleteClicked);
}

void DelconfForm::deleteClicked()
{
    combo_->setEditText(QString());
    const bool rowsRemain = deleteConfiguration(ctx_, data2_);
    fillCombo(combo_, ctx_, data2_, QStringLiteral("configname"));
    if (!rowsRemain)
        return;
    combo_->setEditText(data2_.value(QStringLiteral("configname")).toString());
    reloadEditor_();
}
