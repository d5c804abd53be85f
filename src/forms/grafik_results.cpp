#include "forms/grafik_results.h"

#include "chart/cursors.h"
#include "core/context.h"
#include "output/result_table.h"
#include "store/measurement_file.h"

#include <QCheckBox>
#include <QHeaderView>
#include <QLabel>
#include <QTableWidget>
#include <QVBoxLayout>
#include <cmath>

namespace {

const QString kNoRun = QStringLiteral("The table lists a stored EMC run: show an .emc file "
                                      "(Data > Load > Measurements) or run an EMC test.");

// A cell that sorts by its number where both cells hold one, otherwise by its text.
class ResultItem : public QTableWidgetItem {
public:
    explicit ResultItem(const QString &text) : QTableWidgetItem(text)
    {
        bool isNumber = false;
        const double value = text.toDouble(&isNumber);
        if (isNumber)
            setData(Qt::UserRole, value);
        setFlags(Qt::ItemIsSelectable | Qt::ItemIsEnabled);
    }
    bool operator<(const QTableWidgetItem &other) const override
    {
        const QVariant mine = data(Qt::UserRole), theirs = other.data(Qt::UserRole);
        if (mine.isValid() && theirs.isValid())
            return mine.toDouble() < theirs.toDouble();
        return QTableWidgetItem::operator<(other);
    }
};

// The frequency cell also keeps the row's peak, where cursor A is to stand.
constexpr int kPeakRole = Qt::UserRole + 1;

} // namespace

GrafikResults::GrafikResults(Context &ctx, ChartCursors &cursors, QWidget *parent)
    : QWidget(parent),
      ctx_(ctx),
      cursors_(cursors),
      note_(new QLabel(kNoRun, this)),
      all_(new QCheckBox(QStringLiteral("All rows"), this)),
      table_(new QTableWidget(this))
{
    setObjectName(QStringLiteral("fResults"));
    note_->setObjectName(QStringLiteral("resultNote"));
    note_->setWordWrap(true);
    all_->setObjectName(QStringLiteral("resultAll"));
    table_->setObjectName(QStringLiteral("resultTable"));
    table_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table_->setSelectionBehavior(QAbstractItemView::SelectRows);
    table_->verticalHeader()->setVisible(false);
    auto *layout = new QVBoxLayout(this);
    auto *top = new QHBoxLayout;
    top->addWidget(note_, 1);
    top->addWidget(all_);
    layout->addLayout(top);
    layout->addWidget(table_, 1);
    connect(all_, &QCheckBox::toggled, this, &GrafikResults::refresh);
    connect(table_->horizontalHeader(), &QHeaderView::sectionClicked, this, &GrafikResults::sortByColumn);
    connect(table_, &QTableWidget::cellDoubleClicked, this, [this](int row, int) { rowDoubleClicked(row); });
    // Filling reads the whole file: a load or a comparison fills the table only while it is shown,
    // and the tab fills it when it comes to the front.
    ctx_.calls.refreshResults = [this] {
        if (isVisible())
            refresh();
    };
}

GrafikResults::~GrafikResults() { ctx_.calls.refreshResults = nullptr; }

void GrafikResults::refresh()
{
    const AppState &s = ctx_.state;
    const QString path = measurementFilePath(s);
    if (s.traceFrozen == 0 || s.emcMode == 0 || path.isEmpty()) {
        showNote(kNoRun);
        return;
    }
    const ChartView &v = s.chart;
    QString fault;
    const auto table = readResultTable(ctx_, path, {all_->isChecked(), v.comparePath.isEmpty() ? nullptr : &v.compareTrace},
                                       &fault);
    if (!table) {
        showNote(fault);
        return;
    }
    note_->setText(path + QStringLiteral(": levels and limits in ") + table->unit + QStringLiteral(", worst margin first"));
    table_->clear();
    const QStringList columns = resultColumns(*table);
    table_->setColumnCount(int(columns.size()));
    table_->setHorizontalHeaderLabels(columns);
    table_->setRowCount(int(table->rows.size()));
    for (int r = 0; r < int(table->rows.size()); ++r) {
        const ResultRow &row = table->rows[size_t(r)];
        const QStringList cells = resultCells(*table, row);
        for (int c = 0; c < int(cells.size()); ++c) {
            auto *item = new ResultItem(cells[c]);
            if (cells[c] == QLatin1String("FAIL"))
                item->setForeground(Qt::red);
            table_->setItem(r, c, item);
        }
        table_->item(r, 0)->setData(kPeakRole, row.peak ? QVariant(double(*row.peak)) : QVariant());
    }
    table_->resizeColumnsToContents();
    table_->horizontalHeader()->setSortIndicatorShown(false); // worst first until a header is clicked
}

// A click on a header sorts by that column, a second one the other way round.
void GrafikResults::sortByColumn(int column)
{
    QHeaderView *header = table_->horizontalHeader();
    const bool again = header->isSortIndicatorShown() && header->sortIndicatorSection() == column;
    const Qt::SortOrder order =
        again && header->sortIndicatorOrder() == Qt::AscendingOrder ? Qt::DescendingOrder : Qt::AscendingOrder;
    header->setSortIndicator(column, order);
    header->setSortIndicatorShown(true);
    table_->sortItems(column, order);
}

void GrafikResults::showNote(const QString &text)
{
    note_->setText(text);
    table_->clear();
    table_->setRowCount(0);
    table_->setColumnCount(0);
}

// Cursor A to the row's frequency, at its peak where a detector measured one, as "CA -> PK" puts it.
void GrafikResults::rowDoubleClicked(int row)
{
    const QTableWidgetItem *frequency = table_->item(row, 0);
    if (!frequency)
        return;
    const QVariant peak = frequency->data(kPeakRole);
    const qint32 level = peak.isValid() ? qint32(std::nearbyint(peak.toDouble() * 2.5)) : ctx_.state.chart.cursorAY;
    cursors_.moveCursorA(frequency->data(Qt::UserRole).toFloat(), level);
    call(ctx_.calls.paintChart);
}
