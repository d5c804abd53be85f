#include "forms/newconf.h"

#include "core/context.h"
#include "forms/catalogue_combo.h"
#include "forms/dialog_parts.h"
#include "store/catalogue_views.h"

#include <QGridLayout>
#include <QLineEdit>
#include <QPushButton>

namespace {

QString criterion(const QString &name) { return QStringLiteral("configname like '") + name + QLatin1Char('\''); }

} // namespace

NewconfForm::NewconfForm(Context &ctx, std::function<void()> reloadEditor, QWidget *parent)
    : QDialog(parent),
      ctx_(ctx),
      reloadEditor_(std::move(reloadEditor)),
      text1_(new QLineEdit(this)),
      source_(catalogueCombo("DBCombo1", QStringLiteral("Source for the copy"), this)),
      destination_(catalogueCombo("DBCombo2", QStringLiteral("Destination for the copy"), this))
{
    setObjectName(QStringLiteral("newconf"));
    setWindowTitle(QStringLiteral("New configuration"));
    setAttribute(Qt::WA_DeleteOnClose);
    text1_->setObjectName(QStringLiteral("Text1"));
    text1_->setToolTip(QStringLiteral("New configuration"));
    limitNameKeys(text1_);
    source_->setStyleSheet(QStringLiteral("QComboBox { color: green; }"));
    destination_->setStyleSheet(QStringLiteral("QComboBox { color: red; }"));
    QPushButton *addNew = dialogButton("Command1", QStringLiteral("Add New"), QStringLiteral("Add a new configuration"), this);
    QPushButton *copy = dialogButton("Command2", QStringLiteral("Copy"),
                               QStringLiteral("Copy the data from the source (green) to the destination (red) setting"),
                               this);
    auto *layout = new QGridLayout(this);
    layout->addWidget(text1_, 0, 0);
    layout->addWidget(addNew, 0, 1);
    layout->addWidget(source_, 1, 0);
    layout->addWidget(destination_, 2, 0);
    layout->addWidget(copy, 2, 1);
    connect(addNew, &QPushButton::clicked, this, &NewconfForm::addNewClicked);
    connect(copy, &QPushButton::clicked, this, &NewconfForm::copyClicked);
    connect(source_, &QComboBox::textActivated, this, [this](const QString &name) {
        views_.data3.findFirst(criterion(name));
    });
    connect(destination_, &QComboBox::textActivated, this, [this](const QString &name) {
        if (views_.data2.findFirst(criterion(name)))
            ctx_.state.configSelectionName = name;
    });
    bindNewconfViews(ctx_, views_);
}

void NewconfForm::showEvent(QShowEvent *event)
{
    views_.data3.refresh();
    views_.data2.findFirst(criterion(ctx_.state.configSelectionName));
    showCombos();
    QDialog::showEvent(event);
}

void NewconfForm::hideEvent(QHideEvent *event)
{
    catalogueViews(ctx_).conData2.refresh();
    reloadEditor_();
    QDialog::hideEvent(event);
}

void NewconfForm::showCombos()
{
    fillCombo(source_, ctx_, views_.data3, QStringLiteral("configname"));
    fillCombo(destination_, ctx_, views_.data2, QStringLiteral("configname"));
    source_->setEditText(views_.data3.value(QStringLiteral("configname")).toString());
    destination_->setEditText(views_.data2.value(QStringLiteral("configname")).toString());
}

void NewconfForm::addNewClicked()
{
    addConfiguration(ctx_, views_, text1_->text());
    showCombos();
    reloadEditor_();
}

void NewconfForm::copyClicked()
{
    copyConfiguration(ctx_, views_);
    reloadEditor_();
}
