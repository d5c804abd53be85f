#include "forms/dellim.h"

#include "core/context.h"
#include "store/database.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QPushButton>

DeleteCurveDialog *dellim(Context &ctx, QWidget *parent, DefinitionChanged changed)
{
    static const DeleteCurveForm form{"dellim", "Delete limit definition", kLimitTables,
                                      "select * from LimitHead order by limitname",
                                      "Delete the selected limitdefinition"};
    return new DeleteCurveDialog(ctx, form, std::move(changed), parent);
}

DeleteCurveDialog::DeleteCurveDialog(Context &ctx, const DeleteCurveForm &form, DefinitionChanged changed,
                                     QWidget *parent)
    : QDialog(parent), ctx_(ctx), form_(form), changed_(std::move(changed)), combo_(new QComboBox(this))
{
    setObjectName(QLatin1String(form.formName));
    setWindowTitle(QLatin1String(form.title));
    setAttribute(Qt::WA_DeleteOnClose);
    combo_->setObjectName(QStringLiteral("DBCombo2"));
    auto *command = new QPushButton(QStringLiteral("Delete"), this);
    command->setObjectName(QStringLiteral("Command1"));
    command->setAutoDefault(false);
    command->setToolTip(QLatin1String(form.tip));
    auto *layout = new QHBoxLayout(this);
    layout->addWidget(combo_, 1);
    layout->addWidget(command);
    setMinimumWidth(420);

    data1_.setDatabase(workingDatabase(ctx));
    data2_.setDatabase(workingDatabase(ctx));
    data1_.setSource(QLatin1String(form.tables.pointTable));
    data2_.setSource(QLatin1String(form.headSource));
    connect(command, &QPushButton::clicked, this, &DeleteCurveDialog::deleteClicked);
    connect(combo_, &QComboBox::activated, this, [this](int i) { moveToRow(data2_, i); });
}

void DeleteCurveDialog::showCombo()
{
    combo_->clear();
    for (data2_.moveFirst(); data2_.hasCurrent(); data2_.moveNext())
        combo_->addItem(data2_.value(QLatin1String(form_.tables.nameColumn)).toString());
    data2_.moveFirst();
    combo_->setCurrentIndex(data2_.hasCurrent() ? 0 : -1);
}

void DeleteCurveDialog::showEvent(QShowEvent *event)
{
    data2_.refresh();
    showCombo();
    QDialog::showEvent(event);
}

void DeleteCurveDialog::hideEvent(QHideEvent *event)
{
    changed_(QString());
    QDialog::hideEvent(event);
}

void DeleteCurveDialog::deleteClicked()
{
    const QString name = combo_->currentText();
    combo_->setCurrentIndex(-1);
    deleteCurveDefinition(data2_, data1_, form_.tables, name);
    showCombo();
    changed_(QString());
}
