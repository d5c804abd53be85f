#include "forms/saveset.h"

#include "core/context.h"
#include "forms/dialog_parts.h"

#include <QGridLayout>
#include <QHeaderView>
#include <QLineEdit>
#include <QPushButton>
#include <QTableWidget>

SavesetForm::SavesetForm(Context &ctx, QWidget *parent)
    : QDialog(parent), ctx_(ctx), text1_(new QLineEdit(this)), grid_(new QTableWidget(0, 1, this))
{
    setObjectName(QStringLiteral("saveset"));
    setWindowTitle(QStringLiteral("Save settings"));
    setAttribute(Qt::WA_DeleteOnClose);
    setModal(true);
    text1_->setObjectName(QStringLiteral("Text1"));
    text1_->setToolTip(QStringLiteral("Name of the setting"));
    limitNameKeys(text1_);
    grid_->setObjectName(QStringLiteral("DBGrid1"));
    grid_->setHorizontalHeaderLabels({QStringLiteral("name")});
    grid_->horizontalHeader()->setStretchLastSection(true);
    grid_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    grid_->setSelectionBehavior(QAbstractItemView::SelectRows);
    QPushButton *save =
        dialogButton("Command1", QStringLiteral("Save"), QStringLiteral("Save the settings under this name"), this);
    auto *layout = new QGridLayout(this);
    layout->addWidget(text1_, 0, 0);
    layout->addWidget(save, 0, 1);
    layout->addWidget(grid_, 1, 0, 1, 2);
    setMinimumSize(360, 300);

    bindSavesetViews(ctx_, views_);
    showNames();
    connect(save, &QPushButton::clicked, this, &SavesetForm::saveClicked);
    connect(grid_, &QTableWidget::cellClicked, this, [this](int row) { text1_->setText(grid_->item(row, 0)->text()); });
    connect(this, &QDialog::finished, this, [this] { settingsFormUnloaded(ctx_, SettingsForm::Saveset); });
}

void SavesetForm::showNames()
{
    DataView &names = views_.data2;
    grid_->setRowCount(names.rowCount());
    int row = 0;
    for (names.moveFirst(); names.hasCurrent(); names.moveNext())
        grid_->setItem(row++, 0, new QTableWidgetItem(names.value(QStringLiteral("name")).toString()));
}

void SavesetForm::saveClicked()
{
    if (saveSetting(ctx_, views_, text1_->text()))
        accept();
}
