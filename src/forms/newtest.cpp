#include "forms/newtest.h"

#include "core/context.h"
#include "forms/catalogue_combo.h"
#include "forms/dialog_parts.h"
#include "store/catalogue_views.h"
#include "store/criteria.h"

#include <QLineEdit>
#include <QPushButton>

NewtestForm::NewtestForm(Context &ctx, QWidget *parent) : QDialog(parent), ctx_(ctx)
{
    setObjectName(QStringLiteral("newtest"));
    setWindowTitle(QStringLiteral("New / Copy Test"));
    const NewCopyRows rows = newCopyRows(
        this, QStringLiteral("New test"), QStringLiteral("Add a new test"),
        QStringLiteral("Copy the data from the source (green) to the destination (red) test"));
    text1_ = rows.text1;
    source_ = rows.source;
    destination_ = rows.destination;
    QPushButton *addNew = rows.addNew;
    QPushButton *copy = rows.copy;
    connect(addNew, &QPushButton::clicked, this, &NewtestForm::addNewClicked);
    connect(copy, &QPushButton::clicked, this, [this] { copyTest(ctx_, views_); });
    connect(source_, &QComboBox::textActivated, this,
            [this](const QString &name) { views_.data3.findFirst(textCriterion(QStringLiteral("name"), QStringLiteral("like"), name)); });
    connect(destination_, &QComboBox::textActivated, this,
            [this](const QString &name) { views_.data2.findFirst(textCriterion(QStringLiteral("name"), QStringLiteral("like"), name)); });
    bindTestViews(ctx_, views_);
    showCombos();
}

void NewtestForm::hideEvent(QHideEvent *event)
{
    catalogueViews(ctx_).testData1.refresh();
    applyEmcTest(ctx_);
    QDialog::hideEvent(event);
}

void NewtestForm::showCombos()
{
    fillCombo(source_, ctx_, views_.data3, QStringLiteral("name"));
    fillCombo(destination_, ctx_, views_.data2, QStringLiteral("name"));
    source_->setEditText(views_.data3.value(QStringLiteral("name")).toString());
    destination_->setEditText(views_.data2.value(QStringLiteral("name")).toString());
}

void NewtestForm::addNewClicked()
{
    if (addTest(ctx_, views_, text1_->text()))
        showCombos();
}
