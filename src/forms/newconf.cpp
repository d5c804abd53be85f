#include "forms/newconf.h"

#include "core/context.h"
#include "forms/catalogue_combo.h"
#include "forms/dialog_parts.h"
#include "store/catalogue_views.h"
#include "store/criteria.h"

#include <QLineEdit>
#include <QPushButton>

namespace {

QString criterion(const QString &name) { return textCriterion(QStringLiteral("configname"), QStringLiteral("like"), name); }

} // namespace

NewconfForm::NewconfForm(Context &ctx, std::function<void()> reloadEditor, QWidget *parent)
    : QDialog(parent), ctx_(ctx), reloadEditor_(std::move(reloadEditor))
{
    setObjectName(QStringLiteral("newconf"));
    setWindowTitle(QStringLiteral("New configuration"));
    const NewCopyRows rows = newCopyRows(
        this, QStringLiteral("New configuration"), QStringLiteral("Add a new configuration"),
        QStringLiteral("Copy the data from the source (green) to the destination (red) setting"));
    text1_ = rows.text1;
    source_ = rows.source;
    destination_ = rows.destination;
    QPushButton *addNew = rows.addNew;
    QPushButton *copy = rows.copy;
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
