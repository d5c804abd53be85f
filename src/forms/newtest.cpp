#include "forms/newtest.h"

#include "core/context.h"
#include "forms/catalogue_combo.h"
#include "forms/dialog_parts.h"
#include "store/catalogue_views.h"

#include <QGridLayout>
#include <QLineEdit>
#include <QPushButton>

NewtestForm::NewtestForm(Context &ctx, QWidget *parent)
    : QDialog(parent),
      ctx_(ctx),
      text1_(new QLineEdit(this)),
      source_(catalogueCombo("DBCombo1", QStringLiteral("Source for the copy"), this)),
      destination_(catalogueCombo("DBCombo2", QStringLiteral("Destination for the copy"), this))
{
    setObjectName(QStringLiteral("newtest"));
    setWindowTitle(QStringLiteral("New / Copy Test"));
    setAttribute(Qt::WA_DeleteOnClose);
    text1_->setObjectName(QStringLiteral("Text1"));
    text1_->setToolTip(QStringLiteral("New test"));
    limitNameKeys(text1_);
    source_->setStyleSheet(QStringLiteral("QComboBox { color: green; }"));
    destination_->setStyleSheet(QStringLiteral("QComboBox { color: red; }"));
    QPushButton *addNew = dialogButton("Command1", QStringLiteral("Add New"), QStringLiteral("Add a new test"), this);
    QPushButton *copy = dialogButton("Command2", QStringLiteral("Copy"),
                                     QStringLiteral("Copy the data from the source (green) to the destination (red) test"),
                                     this);
    auto *layout = new QGridLayout(this);
    layout->addWidget(text1_, 0, 0);
    layout->addWidget(addNew, 0, 1);
    layout->addWidget(source_, 1, 0);
    layout->addWidget(destination_, 2, 0);
    layout->addWidget(copy, 2, 1);
    connect(addNew, &QPushButton::clicked, this, &NewtestForm::addNewClicked);
    connect(copy, &QPushButton::clicked, this, [this] { copyTest(ctx_, views_); });
    connect(source_, &QComboBox::textActivated, this,
            [this](const QString &name) { views_.data3.findFirst(testCriterion("name", "like", name)); });
    connect(destination_, &QComboBox::textActivated, this,
            [this](const QString &name) { views_.data2.findFirst(testCriterion("name", "like", name)); });
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
