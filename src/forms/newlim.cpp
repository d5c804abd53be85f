#include "forms/newlim.h"

#include "core/context.h"
#include "store/criteria.h"
#include "store/database.h"

#include <QComboBox>
#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

namespace {

constexpr int kNameLength = 80;

QComboBox *combo(const char *name, const QString &tip, const char *colour, QWidget *parent)
{
    auto *c = new QComboBox(parent);
    c->setObjectName(QLatin1String(name));
    c->setToolTip(tip);
    c->setStyleSheet(QStringLiteral("QComboBox { color: %1 }").arg(QLatin1String(colour)));
    return c;
}

} // namespace

NewCurveDialog *newlim(Context &ctx, QWidget *parent, DefinitionChanged changed)
{
    static const NewCurveForm form{
        "newlim",
        "New limit definition",
        kLimitTables,
        "select * from LimitHead order by limitname",
        "select * from LimitHead order by limitname",
        {QStringLiteral("radiated"), QStringLiteral("loga"), QStringLiteral("Distance"), QStringLiteral("memo"),
         QStringLiteral("limunit")},
        &AppState::limitSelectionName,
        true,
    };
    return new NewCurveDialog(ctx, form, std::move(changed), parent);
}

NewCurveDialog::NewCurveDialog(Context &ctx, const NewCurveForm &form, DefinitionChanged changed, QWidget *parent)
    : QDialog(parent),
      ctx_(ctx),
      form_(form),
      changed_(std::move(changed)),
      text1_(new QLineEdit(this)),
      source_(combo("DBCombo1", QStringLiteral("Source for the copy"), "green", this)),
      destination_(combo("DBCombo2", QStringLiteral("Destination for the copy"), "red", this))
{
    setObjectName(QLatin1String(form.formName));
    setWindowTitle(QLatin1String(form.title));
    setAttribute(Qt::WA_DeleteOnClose);
    text1_->setObjectName(QStringLiteral("Text1"));
    text1_->setToolTip(QStringLiteral("New definition"));
    text1_->installEventFilter(this);
    auto *add = new QPushButton(QStringLiteral("Add New"), this);
    add->setObjectName(QStringLiteral("Command1"));
    add->setAutoDefault(false);
    auto *copy = new QPushButton(QStringLiteral("Copy"), this);
    copy->setObjectName(QStringLiteral("Command2"));
    copy->setAutoDefault(false);
    copy->setToolTip(QStringLiteral("Copy the data from the source (green) to the destination (red) setting"));

    auto *layout = new QGridLayout(this);
    layout->addWidget(new QLabel(QStringLiteral("New definition"), this), 0, 0);
    layout->addWidget(text1_, 0, 1);
    layout->addWidget(add, 0, 2);
    layout->addWidget(new QLabel(QStringLiteral("Source"), this), 1, 0);
    layout->addWidget(source_, 1, 1);
    layout->addWidget(new QLabel(QStringLiteral("Destination"), this), 2, 0);
    layout->addWidget(destination_, 2, 1);
    layout->addWidget(copy, 2, 2);
    layout->setColumnStretch(1, 1);
    setMinimumWidth(480);

    // The dialog binds its views when it loads.
    for (DataView *view : {&data1_, &data2_, &data3_, &data4_, &data5_})
        view->setDatabase(workingDatabase(ctx));
    const QString points = QLatin1String(form.tables.pointTable);
    data1_.setSource(points);
    data5_.setSource(points);
    data2_.setSource(QLatin1String(form.destinationSource));
    data3_.setSource(QLatin1String(form.sourceSource));
    data4_.setSource(QStringLiteral("MeasureCount"));

    connect(add, &QPushButton::clicked, this, &NewCurveDialog::addNewClicked);
    connect(copy, &QPushButton::clicked, this, &NewCurveDialog::copyClicked);
    connect(source_, &QComboBox::activated, this, [this](int i) { moveToRow(data3_, i); });
    connect(destination_, &QComboBox::activated, this, [this](int i) {
        moveToRow(data2_, i);
        ctx_.state.*form_.selectionName = destination_->currentText();
    });
}

void NewCurveDialog::showCombos()
{
    const QString name = QLatin1String(form_.tables.nameColumn);
    for (auto [view, box] : {std::pair{&data3_, source_}, std::pair{&data2_, destination_}}) {
        const int current = view->position();
        box->clear();
        for (view->moveFirst(); view->hasCurrent(); view->moveNext())
            box->addItem(view->value(name).toString());
        moveToRow(*view, qMax(0, current));
        box->setCurrentIndex(view->hasCurrent() ? qMax(0, current) : -1);
    }
}

void NewCurveDialog::showEvent(QShowEvent *event)
{
    data3_.refresh();
    data2_.refresh();
    const QString selection = ctx_.state.*form_.selectionName;
    if (!selection.isEmpty())
        data2_.findFirst(textCriterion(QLatin1String(form_.tables.nameColumn), QStringLiteral("like"), selection));
    showCombos();
    QDialog::showEvent(event);
}

void NewCurveDialog::hideEvent(QHideEvent *event)
{
    changed_(QString());
    QDialog::hideEvent(event);
}

void NewCurveDialog::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::ActivationChange && isVisible() && !isActiveWindow())
        changed_(QString());
    QDialog::changeEvent(event);
}

bool NewCurveDialog::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == text1_ && form_.nameLimited && event->type() == QEvent::KeyPress) {
        const auto *key = static_cast<QKeyEvent *>(event);
        if (!key->text().isEmpty() && key->text()[0].unicode() >= 32 && text1_->text().trimmed().size() > kNameLength)
            return true;
    }
    return QDialog::eventFilter(watched, event);
}

void NewCurveDialog::addNewClicked()
{
    const QString name = text1_->text().trimmed();
    switch (addCurveDefinition(data2_, data4_, form_.tables, name)) {
    case AddOutcome::Nothing:
        return;
    case AddOutcome::Exists:
        ctx_.prompts.messageBox(QStringLiteral("Add new"), QLatin1String(form_.tables.existsText) + name +
                                                               QStringLiteral(" )"));
        changed_(QString());
        return;
    case AddOutcome::Added:
        data3_.refresh();
        ctx_.state.*form_.selectionName = name;
        showCombos();
        changed_(name);
        return;
    }
}

void NewCurveDialog::copyClicked()
{
    copyCurveDefinition(data3_, data2_, data5_, data1_, form_.tables, form_.copiedColumns);
    changed_(QString());
}
