#include "forms/loadset.h"

#include "core/context.h"
#include "forms/catalogue_combo.h"
#include "forms/dialog_parts.h"
#include "store/saved_settings.h"

#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>

LoadsetForm::LoadsetForm(Context &ctx, QWidget *parent)
    : QDialog(parent), ctx_(ctx), combo_(catalogueCombo("DBCombo1", QStringLiteral("The saved setting"), this))
{
    setObjectName(QStringLiteral("loadset"));
    setWindowTitle(QStringLiteral("Load settings"));
    setAttribute(Qt::WA_DeleteOnClose);
    setModal(true);
    QPushButton *load =
        dialogButton("Command1", QStringLiteral("Load"), QStringLiteral("Load the selected setting"), this);
    QPushButton *remove =
        dialogButton("Command2", QStringLiteral("Delete selected"), QStringLiteral("Delete the selected setting"), this);
    auto *layout = new QHBoxLayout(this);
    layout->addWidget(combo_, 1);
    layout->addWidget(load);
    layout->addWidget(remove);
    setMinimumWidth(460);

    bindLoadsetView(ctx_, data1_);
    showNames();
    // The combo's picks, by Return or by the mouse, make the row current: "Delete selected" takes it.
    connect(combo_, &QComboBox::textActivated, this, [this](const QString &name) { settingPicked(data1_, name); });
    connect(load, &QPushButton::clicked, this, &LoadsetForm::loadClicked);
    connect(remove, &QPushButton::clicked, this, &LoadsetForm::deleteClicked);
    connect(this, &QDialog::finished, this, [this] { settingsFormUnloaded(ctx_, SettingsForm::Loadset); });
}

// The list of names, and the current row's name in the combo.
void LoadsetForm::showNames()
{
    fillCombo(combo_, ctx_, data1_, QStringLiteral("name"));
    combo_->setEditText(data1_.value(QStringLiteral("name")).toString());
}

void LoadsetForm::loadClicked()
{
    if (loadSetting(ctx_, data1_, combo_->currentText()))
        accept();
}

void LoadsetForm::deleteClicked()
{
    combo_->setEditText(QString());
    deleteSetting(data1_);
    showNames();
}
