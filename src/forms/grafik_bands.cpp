#include "forms/grafik_bands.h"

#include "core/context.h"
#include "store/catalogue_views.h"
#include "store/database.h"
#include "store/known_signals.h"

#include <QApplication>
#include <QCheckBox>
#include <QGridLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableWidget>

namespace {

struct BoxCaption {
    const char *caption;
    const char *toolTip;
};
const BoxCaption kBoxes[6] = {
    {"Name", "Input frequency band name"},
    {"Start (MHz)", "Input bottom frequency"},
    {"Stop (MHz)", "Input top frequency"},
    {"Max. level", "Input the maximum level of the signal"},
    {"Min. level", "Input the minimum level of the signal"},
    {"Memo", ""},
};
// The grid's columns: name, band edges, the two levels as stored.
const char *const kGridColumns[] = {"signal", "startfreq", "stopfreq", "max-level", "min-level", "memo"};

QPushButton *button(const char *name, const QString &caption, QWidget *parent)
{
    auto *b = new QPushButton(caption, parent);
    b->setObjectName(QLatin1String(name));
    b->setAutoDefault(false);
    return b;
}

QString colourSheet(quint32 bgr)
{
    return QStringLiteral("background-color: rgb(%1, %2, %3)").arg(bgr & 0xFF).arg((bgr >> 8) & 0xFF).arg((bgr >> 16) & 0xFF);
}

} // namespace

GrafikBands::GrafikBands(Context &ctx, QWidget *parent)
    : QWidget(parent),
      ctx_(ctx),
      grid_(new QTableWidget(this)),
      check3_(new QCheckBox(QStringLiteral("Hor."), this)),
      check4_(new QCheckBox(QStringLiteral("Ver."), this)),
      label18_(new QLabel(this))
{
    setObjectName(QStringLiteral("bandsPage"));
    grid_->setObjectName(QStringLiteral("DBGrid1"));
    grid_->setColumnCount(6);
    grid_->setHorizontalHeaderLabels({QStringLiteral("Name"), QStringLiteral("Start"), QStringLiteral("Stop"),
                                      QStringLiteral("Max."), QStringLiteral("Min."), QStringLiteral("Memo")});
    grid_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    grid_->setSelectionBehavior(QAbstractItemView::SelectRows);
    grid_->setSelectionMode(QAbstractItemView::SingleSelection);
    grid_->verticalHeader()->hide();
    check3_->setObjectName(QStringLiteral("Check3"));
    check3_->setToolTip(QStringLiteral("Tick measurement conditions (horizontal)"));
    check4_->setObjectName(QStringLiteral("Check4"));
    check4_->setToolTip(QStringLiteral("Tick measurement conditions (vertical)"));
    label18_->setObjectName(QStringLiteral("Label18"));
    label18_->setMinimumWidth(40);
    label18_->setAutoFillBackground(true);

    auto *layout = new QGridLayout(this);
    layout->addWidget(grid_, 0, 0, 1, 4);
    for (int box = 0; box < 6; ++box) {
        auto *text = new QLineEdit(this);
        text->setObjectName(QStringLiteral("Text3_%1").arg(box));
        text->setToolTip(QLatin1String(kBoxes[box].toolTip));
        text->installEventFilter(this);
        text3_[box] = text;
        layout->addWidget(new QLabel(QLatin1String(kBoxes[box].caption), this), 1 + box, 0);
        layout->addWidget(text, 1 + box, 1);
    }
    for (int i = 0; i < 2; ++i) {
        unitLabels_[i] = new QLabel(this);
        unitLabels_[i]->setObjectName(QStringLiteral("unitLabel%1").arg(i + 1));
        layout->addWidget(unitLabels_[i], 4 + i, 2);
    }
    layout->addWidget(check3_, 7, 2);
    layout->addWidget(check4_, 7, 3);
    layout->addWidget(label18_, 8, 2);
    QPushButton *changeColour = button("Command6", QStringLiteral("Change color"), this);
    layout->addWidget(changeColour, 8, 3);
    QPushButton *newEntry = button("Command4_0", QStringLiteral("New entry"), this);
    QPushButton *deleteEntry = button("Command4_1", QStringLiteral("Delete entry"), this);
    QPushButton *byFrequency = button("Command5_0", QStringLiteral("Sort by freq."), this);
    QPushButton *byName = button("Command5_1", QStringLiteral("Sort by name"), this);
    layout->addWidget(newEntry, 1, 2);
    layout->addWidget(deleteEntry, 1, 3);
    layout->addWidget(byFrequency, 2, 2);
    layout->addWidget(byName, 2, 3);

    connect(grid_, &QTableWidget::currentCellChanged, this, [this](int row) {
        DataView &known = catalogueViews(ctx_).known;
        known.moveFirst();
        for (int i = 0; i < row && !known.isEof(); ++i)
            known.moveNext();
        showCurrent();
    });
    connect(newEntry, &QPushButton::clicked, this, [this] {
        newKnownSignal(ctx_);
        showRows();
        showCurrent();
        text3_[SignalBox]->setFocus();
    });
    connect(deleteEntry, &QPushButton::clicked, this, [this] {
        deleteKnownSignal(ctx_);
        showRows();
        showCurrent();
    });
    connect(byFrequency, &QPushButton::clicked, this, [this] {
        sortKnownSignals(ctx_, true);
        showRows();
        showCurrent();
    });
    connect(byName, &QPushButton::clicked, this, [this] {
        sortKnownSignals(ctx_, false);
        showRows();
        showCurrent();
    });
    connect(changeColour, &QPushButton::clicked, this, [this] {
        if (changeKnownSignalColour(ctx_))
            showCurrent();
    });
    connect(check3_, &QCheckBox::clicked, this, [this](bool on) { knownSignalChecked(ctx_, false, on); });
    connect(check4_, &QCheckBox::clicked, this, [this](bool on) { knownSignalChecked(ctx_, true, on); });
    // The form starts sorted by name; a sort order lasts until it is loaded again.
    sortKnownSignals(ctx_, false);
}

void GrafikBands::reload()
{
    catalogueViews(ctx_).known.refresh();
    showRows();
    showCurrent();
}

void GrafikBands::showRows()
{
    const DataView &known = catalogueViews(ctx_).known;
    const QSignalBlocker quiet(grid_);
    Recordset rows(workingDatabase(ctx_), known.source());
    grid_->setRowCount(rows.rowCount());
    int row = 0;
    for (rows.moveFirst(); !rows.isEof(); rows.moveNext(), ++row)
        for (int column = 0; column < 6; ++column)
            grid_->setItem(row, column, new QTableWidgetItem(rows.value(QLatin1String(kGridColumns[column])).toString()));
    grid_->setCurrentCell(known.hasCurrent() ? known.position() : -1, 0);
}

void GrafikBands::showCurrent()
{
    const KnownSignalEditor shown = reloadKnownSignalEditor(ctx_);
    for (int box = 0; box < 6; ++box)
        text3_[box]->setText(shown.texts[box]);
    for (QLabel *unit : unitLabels_)
        unit->setText(shown.unitName);
    check3_->setChecked(shown.horizontal);
    check4_->setChecked(shown.vertical);
    label18_->setStyleSheet(colourSheet(shown.colour));
    label18_->setProperty("colour", shown.colour);
}

bool GrafikBands::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::KeyPress)
        for (int box = 0; box < 6; ++box)
            if (watched == text3_[box])
                return textKey(box, static_cast<QKeyEvent *>(event));
    return QWidget::eventFilter(watched, event);
}

bool GrafikBands::textKey(int box, QKeyEvent *key)
{
    QLineEdit *text = text3_[box];
    if (key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter) {
        const QString committed = commitKnownSignalText(ctx_, box, text->text());
        showRows();
        text->setText(committed);
        if (box < MemoBox)
            text3_[box + 1]->setFocus();
        return true;
    }
    bool handled = false;
    const QString typed = key->text();
    if (typed.size() == 1) {
        const std::optional<QChar> kept = knownSignalKey(ctx_, typed.front());
        if (!kept || *kept != typed.front()) {
            if (kept)
                text->insert(QString(*kept));
            handled = true;
        }
    }
    if (box == SignalBox && knownSignalNameKey(ctx_, text->text()))
        QApplication::beep();
    return handled;
}
