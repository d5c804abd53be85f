#include "forms/curve_page.h"

#include "core/context.h"
#include "forms/dialog_parts.h"
#include "store/criteria.h"
#include "store/data_view.h"

#include <QApplication>
#include <QComboBox>
#include <QGridLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

namespace {

// Pixel measures of the preview: the level labels' column and the frequency labels' row.
constexpr int kLevelLabelWidth = 48;
constexpr int kFrequencyLabelHeight = 24;

template <typename W> W *named(W *widget, const QString &name)
{
    widget->setObjectName(name);
    return widget;
}

// The plot with its level labels at the left, reaching below it so that the lowest label has room,
// and its frequency labels below.
class PreviewArea : public QWidget {
public:
    PreviewArea(const std::array<PreviewPicture *, 3> &pictures, QWidget *parent)
        : QWidget(parent), pictures_(pictures)
    {
        for (PreviewPicture *p : pictures_)
            p->setParent(this);
        setMinimumSize(320, 200);
    }

protected:
    void resizeEvent(QResizeEvent *) override
    {
        const int plotWidth = qMax(40, width() - kLevelLabelWidth - 24);
        const int plotHeight = qMax(40, height() - kFrequencyLabelHeight - 8);
        pictures_[0]->setGeometry(kLevelLabelWidth, 8, plotWidth, plotHeight);
        pictures_[1]->setGeometry(0, 8, kLevelLabelWidth, plotHeight + kFrequencyLabelHeight / 2);
        pictures_[2]->setGeometry(kLevelLabelWidth, 8 + plotHeight, plotWidth, kFrequencyLabelHeight);
    }

private:
    std::array<PreviewPicture *, 3> pictures_;
};

} // namespace

PreviewPicture::PreviewPicture(const QString &name, QWidget *parent) : QWidget(parent)
{
    setObjectName(name);
    setAttribute(Qt::WA_OpaquePaintEvent);
}

void PreviewPicture::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.drawImage(rect(), canvas_.image());
}

void PreviewPicture::resizeEvent(QResizeEvent *)
{
    canvas_.resize(qMax(1, width()), qMax(1, height()));
    if (resized)
        resized();
}

CurvePage::CurvePage(Context &ctx, const QString &prefix, DataView &heads, const char *nameColumn, QWidget *parent)
    : QWidget(parent), ctx_(ctx), prefix_(prefix), heads_(heads), nameColumn_(QLatin1String(nameColumn))
{
    buildControls(prefix);
}

void CurvePage::buildControls(const QString &prefix)
{
    name_ = named(new QComboBox(this), prefix + QStringLiteral("DBCombo1"));
    grid_ = named(new QTableWidget(0, 2, this), prefix + QStringLiteral("Grid1"));
    grid_->setHorizontalHeaderLabels({QStringLiteral("Frequency MHz"), QStringLiteral("Level")});
    grid_->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    grid_->verticalHeader()->hide();
    grid_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    grid_->setSelectionBehavior(QAbstractItemView::SelectRows);
    grid_->setSelectionMode(QAbstractItemView::SingleSelection);
    grid_->installEventFilter(this);
    for (int n = 1; n <= 6; ++n)
        texts_[n - 1] = named(new QLineEdit(this), prefix + QStringLiteral("Text%1").arg(n));
    for (int n : {1, 2, 3})
        text(n)->installEventFilter(this);

    auto *entry = new QGridLayout;
    entry->addWidget(new QLabel(QStringLiteral("Frequency MHz"), this), 0, 0);
    entry->addWidget(new QLabel(QStringLiteral("Level"), this), 0, 1);
    entry->addWidget(text(1), 1, 0);
    entry->addWidget(text(2), 1, 1);
    headLayout_ = new QGridLayout;
    // The page's own controls take the first rows; the head's fields follow.
    const char *captions[] = {"Distance m", "Memo", "Date", "Time"};
    const char *columns[] = {"Distance", "Memo", "dat", "tim"};
    for (int n = 3; n <= 6; ++n) {
        auto *caption = new QLabel(QLatin1String(captions[n - 3]), this);
        headLayout_->addWidget(caption, 10 + n, 0);
        headLayout_->addWidget(text(n), 10 + n, 1);
        const QString column = QLatin1String(columns[n - 3]);
        connect(text(n), &QLineEdit::editingFinished, this, [this, n, column] {
            const QString typed = text(n)->text();
            saveHead(column, n == 3 ? QVariant(pointValue(typed, ctx_.state.decimalChar)) : QVariant(typed));
        });
    }
    distanceLabel_ = named(qobject_cast<QLabel *>(headLayout_->itemAtPosition(13, 0)->widget()),
                           prefix + QStringLiteral("Label3"));
    buttons_ = new QGridLayout;
    auto *left = new QVBoxLayout;
    left->addWidget(name_);
    left->addWidget(grid_, 1);
    left->addLayout(entry);
    left->addLayout(headLayout_);
    left->addLayout(buttons_);

    for (int i = 0; i < 3; ++i) {
        pictures_[i] = new PreviewPicture(prefix + QStringLiteral("Picture%1").arg(i + 1), this);
        pictures_[i]->resized = [this] {
            if (!loading_ && heads_.hasCurrent())
                fill();
        };
    }
    auto *row = new QHBoxLayout(this);
    row->addLayout(left, 0);
    row->addWidget(new PreviewArea(pictures_, this), 1);

    connect(name_, &QComboBox::activated, this, [this] { nameChosen(name_->currentText()); });
    connect(grid_, &QTableWidget::cellClicked, this, [this] { showGridPoint(); });
    connect(grid_, &QTableWidget::currentCellChanged, this, [this] {
        if (!loading_)
            showGridPoint();
    });
    connect(text(1), &QLineEdit::returnPressed, this, [this] { text(2)->setFocus(); });
    connect(text(2), &QLineEdit::returnPressed, this, [this] {
        enterPoint(text(1)->text(), text(2)->text());
        text(1)->clear();
        text(2)->clear();
        text(1)->setFocus();
        fill();
        QApplication::beep();
    });
}

QPushButton *CurvePage::addButton(const char *name, const QString &caption)
{
    auto *button = named(new QPushButton(caption, this), QLatin1String(name));
    const int n = buttons_->count();
    buttons_->addWidget(button, n / 2, n % 2);
    return button;
}

void CurvePage::addCommonButtons()
{
    connect(addButton(qPrintable(prefix_ + QStringLiteral("Import")), QStringLiteral("Import CSV...")),
            &QPushButton::clicked, this, &CurvePage::importClicked);
    connect(addButton(qPrintable(prefix_ + QStringLiteral("Export")), QStringLiteral("Export CSV...")),
            &QPushButton::clicked, this, &CurvePage::exportClicked);
}

namespace {

FileDialogRequest csvDialog(const QString &title, const QString &fileName, int flags)
{
    return {title, QStringLiteral("CSV (*.csv) |*.csv"), QStringLiteral("csv"), fileName, flags, 1};
}

const QString kImportTitle = QStringLiteral("Import CSV");
const QString kExportTitle = QStringLiteral("Export CSV");

} // namespace

void CurvePage::importClicked()
{
    if (!heads_.hasCurrent())
        return;
    const QString name = heads_.value(nameColumn_).toString();
    // Path and file must exist, no read-only box.
    const auto path = ctx_.prompts.openFileDialog(csvDialog(kImportTitle, QStringLiteral("*.csv"), 6148));
    if (!path)
        return;
    if (ctx_.prompts.messageBox(kImportTitle,
                                QStringLiteral("Replace the points of ( %1 ) with those of %2 ?").arg(name, *path),
                                MsgButtons::YesNo) != MsgAnswer::Yes)
        return;
    const CsvOutcome outcome = importCsv(name, *path);
    if (!outcome.ok)
        ctx_.prompts.messageBox(kImportTitle, outcome.message);
    showDefinition(name);
}

void CurvePage::exportClicked()
{
    if (!heads_.hasCurrent())
        return;
    const QString name = heads_.value(nameColumn_).toString();
    // Overwrite prompt, no read-only box, create prompt.
    const auto path = ctx_.prompts.saveFileDialog(csvDialog(kExportTitle, name.trimmed() + QStringLiteral(".csv"), 8198));
    if (!path)
        return;
    const CsvOutcome outcome = exportCsv(name, *path);
    if (!outcome.ok)
        ctx_.prompts.messageBox(kExportTitle, outcome.message);
}

void CurvePage::reload()
{
    loading_ = true;
    fillNameCombo();
    if (reloadEditor())
        fill();
    loading_ = false;
}

void CurvePage::showDefinition(const QString &name)
{
    heads_.refresh();
    if (!name.isEmpty())
        heads_.findFirst(textCriterion(nameColumn_, QStringLiteral("like"), name));
    reload();
}

void CurvePage::fillNameCombo()
{
    const int current = heads_.position();
    name_->clear();
    for (heads_.moveFirst(); heads_.hasCurrent(); heads_.moveNext())
        name_->addItem(heads_.value(nameColumn_).toString());
    moveToRow(heads_, qMax(0, current));
}

void CurvePage::fill()
{
    const bool wasLoading = std::exchange(loading_, true);
    const CurveGrid grid = fillGrid();
    grid_->setRowCount(int(grid.rows.size()));
    for (int r = 0; r < grid.rows.size(); ++r) {
        grid_->setItem(r, 0, new QTableWidgetItem(grid.rows[r].frequency));
        grid_->setItem(r, 1, new QTableWidgetItem(grid.rows[r].level));
    }
    drawPreview(grid);
    for (PreviewPicture *p : pictures_)
        p->update();
    loading_ = wasLoading;
}

void CurvePage::showHead(const QString &name, const QString &distance, const QString &memo, const QString &dat,
                         const QString &tim)
{
    name_->setCurrentIndex(name_->findText(name));
    const QString values[] = {distance, memo, dat, tim};
    for (int n = 3; n <= 6; ++n) {
        text(n)->setText(values[n - 3]);
        text(n)->setCursorPosition(0); // a long memo shows its beginning
    }
}

PreviewPictures CurvePage::pictures()
{
    return {pictures_[0]->canvas(), pictures_[1]->canvas(), pictures_[2]->canvas()};
}

void CurvePage::nameChosen(const QString &name)
{
    if (choose(name)) {
        text(1)->setText(QStringLiteral("0"));
        text(2)->setText(QStringLiteral("0"));
    }
    reload();
}

void CurvePage::showGridPoint()
{
    const QTableWidgetItem *item = grid_->item(grid_->currentRow(), 0);
    if (!item)
        return;
    if (const auto point = findPoint(item->text())) {
        text(1)->setText(point->frequency);
        text(2)->setText(point->level);
    }
}

void CurvePage::deleteGridPoint()
{
    const QTableWidgetItem *item = grid_->item(grid_->currentRow(), 0);
    if (!item || !deletePoint(item->text()))
        return;
    fill();
    QApplication::beep();
}

bool CurvePage::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::KeyPress)
        return QWidget::eventFilter(watched, event);
    auto *key = static_cast<QKeyEvent *>(event);
    if (watched == grid_) {
        if (key->key() == Qt::Key_Backspace || key->key() == Qt::Key_Delete) {
            deleteGridPoint();
            return true;
        }
        return false;
    }
    auto *field = qobject_cast<QLineEdit *>(watched);
    return field && takePointKey(field, *key, field == text(2), ctx_.state.decimalChar);
}
