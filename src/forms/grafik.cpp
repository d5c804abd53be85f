#include "forms/grafik.h"

#include "emc/ambient_view.h"
#include "emc/run_controller.h"

#include "chart/zoom_view.h"
#include "forms/grafik_equipment.h"
#include "forms/grafik_panel.h"
#include "forms/grafik_results.h"
#include "forms/grafik_tests.h"
#include "forms/number_keys.h"
#include "store/catalogue_views.h"
#include "core/context.h"

#include <QCheckBox>
#include <QFrame>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPainter>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QTabWidget>
#include <QVBoxLayout>

#include <utility>

namespace {

// Pixel measures of the measurement tab: the level labels' column, the frequency labels'
// row, the panel at the right of the plot, the margin above it.
constexpr int kLevelLabelWidth = 48;
constexpr int kFrequencyLabelHeight = 24;
constexpr int kPanelWidth = 160;
constexpr int kTopMargin = 8;
// The form is never smaller than 10215 x 8050 twips.
constexpr int kMinimumWidth = 681;
constexpr int kMinimumHeight = 537;
constexpr int kMeasurementTab = 0;

QColor screenColour(quint32 bgr) { return QColor(bgr & 0xFF, (bgr >> 8) & 0xFF, (bgr >> 16) & 0xFF); }

template <typename W> W *named(W *widget, const char *name)
{
    widget->setObjectName(QLatin1String(name));
    return widget;
}

QLabel *label(const char *name, const QString &caption, QWidget *parent)
{
    return named(new QLabel(caption, parent), name);
}

// The legend: index, caption in normal mode, caption in EMC mode, colour.
struct LegendEntry {
    const char *name;
    const char *normal;
    const char *emc;
    ColourRole colour;
};
const LegendEntry kLegend[] = {
    {"legend0", "Sample", "Sample", SampleColour},
    {"legend1", "Max. Hld", "Peak", MaxholdColour},
    {"legend2", "Mem B", "Sweep", MemoryColour},
    {"legend3", "QPeak", "QPeak", QPeakColour},
    {"legend4", "Ambient H", "Ambient H", AmbientHColour},
    {"legend5", "Ambient V", "Ambient V", AmbientVColour},
    {"legend6", "Average", "Average", AverageColour},
    {"legend7", "Limit Peak", "Limit Peak", LimitColour},
    {"legend8", "Limit Ave", "Limit Ave", LimitColour},
};
// Legend labels 3, 4, 5, 7 and 8 belong to EMC mode only.
bool legendInEmcOnly(int index) { return index == 3 || index == 4 || index == 5 || index == 7 || index == 8; }

// Lays the measurement tab out for its size: the plot between the level labels and the panel,
// the level labels reaching below the plot and the frequency labels reaching under the panel,
// so that the labels at the plot's corners have room. The analyser's front stands at the right.
class MeasurementPage : public QWidget {
public:
    MeasurementPage(QWidget *picture1, QWidget *picture2, QWidget *picture3, QWidget *panel, QScrollArea *front,
                    QWidget *parent)
        : QWidget(parent), p1_(picture1), p2_(picture2), p3_(picture3), panel_(panel), front_(front)
    {
        setObjectName(QStringLiteral("measurementTab"));
        for (QWidget *w : {p1_, p2_, p3_, panel_, static_cast<QWidget *>(front_)})
            w->setParent(this);
        front_->installEventFilter(this);
        setMinimumSize(480, 320);
    }

protected:
    void resizeEvent(QResizeEvent *) override { place(); }
    // The front is hidden in EMC mode: the chart takes its room.
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (watched == front_ && (event->type() == QEvent::ShowToParent || event->type() == QEvent::HideToParent))
            place();
        return false;
    }

private:
    // The front's width, with room for its scroll bar when the page is too low for it.
    int frontWidth() const
    {
        if (front_->isHidden())
            return 0;
        const QWidget *inner = front_->widget();
        const bool scrolls = inner->minimumSizeHint().height() > height();
        return inner->sizeHint().width() + (scrolls ? front_->verticalScrollBar()->sizeHint().width() : 0);
    }

    void place()
    {
        const int front = frontWidth();
        // The side column is never narrower than its widest row (the cursor readouts).
        const int panelWidth = qMax(kPanelWidth, panel_->minimumSizeHint().width());
        const int panelLeft = width() - front - panelWidth;
        const int plotWidth = qMax(40, panelLeft - kLevelLabelWidth - 8);
        const int plotHeight = qMax(40, height() - kTopMargin - kFrequencyLabelHeight - 4);
        p2_->setGeometry(0, kTopMargin, kLevelLabelWidth, height() - kTopMargin);
        p1_->setGeometry(kLevelLabelWidth, kTopMargin, plotWidth, plotHeight);
        p3_->setGeometry(kLevelLabelWidth, kTopMargin + plotHeight, panelLeft + panelWidth - kLevelLabelWidth,
                         kFrequencyLabelHeight);
        panel_->setGeometry(panelLeft, kTopMargin, panelWidth, plotHeight);
        front_->setGeometry(width() - front, 0, front, height());
    }

    QWidget *p1_, *p2_, *p3_, *panel_;
    QScrollArea *front_;
};

int mouseButtons(Qt::MouseButtons buttons)
{
    return (buttons & Qt::LeftButton ? LeftButton : NoButton) | (buttons & Qt::RightButton ? RightButton : NoButton);
}

} // namespace

CanvasView::CanvasView(const char *name, Context &ctx, QWidget *parent) : QWidget(parent), ctx_(ctx)
{
    setObjectName(QLatin1String(name));
    setAttribute(Qt::WA_OpaquePaintEvent);
}

void CanvasView::paintEvent(QPaintEvent *)
{
    // On a screen of another pixel ratio the picture is drawn anew at that ratio.
    if (canvas_.pixelRatio() != devicePixelRatioF())
        fitCanvas();
    QPainter painter(this);
    painter.drawImage(rect(), canvas_.image());
}

void CanvasView::resizeEvent(QResizeEvent *) { fitCanvas(); }

void CanvasView::fitCanvas()
{
    canvas_.resize(qMax(1, width()), qMax(1, height()), devicePixelRatioF());
    ctx_.state.repaintRequest = 1;
}

void CanvasView::mouseMoveEvent(QMouseEvent *event) { emit mouseMoved(mouseButtons(event->buttons()), event->position()); }

void CanvasView::mousePressEvent(QMouseEvent *event)
{
    emit mousePressed(mouseButtons(event->button()), event->position());
}

void CanvasView::mouseDoubleClickEvent(QMouseEvent *) { emit doubleClicked(); }

GrafikForm::GrafikForm(Context &ctx, QWidget *parent)
    : QWidget(parent),
      ctx_(ctx),
      grtab_(named(new QTabWidget(this), "grtab")),
      picture1_(new CanvasView("Picture1", ctx, this)),
      picture2_(new CanvasView("Picture2", ctx, this)),
      picture3_(new CanvasView("Picture3", ctx, this)),
      painter_(ctx, picture1_->canvas(), picture2_->canvas(), picture3_->canvas(), *this)
{
    setObjectName(QStringLiteral("grafik"));
    setWindowTitle(QString());
    setMinimumSize(kMinimumWidth, kMinimumHeight);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(2, 2, 2, 2);
    panel_ = new GrafikPanel(ctx);
    grtab_->addTab(buildMeasurementTab(), QStringLiteral("Measurement"));
    connect(panel_, &GrafikPanel::distanceFromDutChanged, this, &GrafikForm::setDistanceLabel);
    equipment_ = new GrafikEquipment(ctx);
    grtab_->addTab(placeholderPage("fSetunit", "lNotvalid1", &lNotvalid1_, panel_), QStringLiteral("Settings"));
    tests_ = new GrafikTests(ctx);
    grtab_->addTab(placeholderPage("fTest", "lNotValid2", &lNotValid2_, tests_), QStringLiteral("EMC Test"));
    results_ = new GrafikResults(ctx, painter_.cursors());
    grtab_->addTab(results_, QStringLiteral("Results"));
    grtab_->addTab(equipment_, QStringLiteral("Equipment"));
    fSetunit_ = grtab_->widget(1)->findChild<QWidget *>(QStringLiteral("fSetunit"));
    fTest_ = grtab_->widget(2)->findChild<QWidget *>(QStringLiteral("fTest"));
    connect(grtab_, &QTabWidget::currentChanged, this, [this](int index) { tabChanged(index); });
    layout->addWidget(grtab_, 1);
    frame1_ = buildEmcFrame();
    layout->addWidget(frame1_);
    connectCursors();
    showLegendColours();
    applyMode(false);
}

QWidget *GrafikForm::buildMeasurementTab()
{
    auto *panel = new QWidget;
    panel->setObjectName(QStringLiteral("measurementPanel"));
    auto *column = new QVBoxLayout(panel);
    column->setContentsMargins(6, 0, 0, 0);
    column->addWidget(buildLegend());
    column->addWidget(buildChartControls());
    column->addWidget(buildCursorReadouts());
    column->addStretch(1);
    return new MeasurementPage(picture1_, picture2_, picture3_, panel, panel_->front(), grtab_);
}

QWidget *GrafikForm::buildLegend()
{
    auto *box = new QWidget;
    auto *grid = new QGridLayout(box);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setVerticalSpacing(1);
    for (int i = 0; i < int(legend_.size()); ++i) {
        legend_[i] = label(kLegend[i].name, QLatin1String(kLegend[i].normal), box);
        grid->addWidget(legend_[i], i / 2, i % 2);
    }
    return box;
}

QWidget *GrafikForm::buildChartControls()
{
    auto *box = new QWidget;
    auto *grid = new QGridLayout(box);
    grid->setContentsMargins(0, 8, 0, 0);
    label11_ = label("Label11", QStringLiteral("UNCAL"), box);
    label11_->setStyleSheet(QStringLiteral("color: red; font-weight: bold"));
    label11_->hide();
    label1_ = label("Label1", QString(), box);
    label5_ = label("Label5", QString(), box);
    label5_->setWordWrap(true);
    label5_->hide();
    label6_ = label("Label6", QString(), box);
    check1_ = named(new QCheckBox(QStringLiteral("Log"), box), "Check1");
    check5_ = named(new QCheckBox(QStringLiteral("Known signals"), box), "Check5");
    check6_ = named(new QCheckBox(QStringLiteral("Zoom"), box), "Check6");
    auto *allPoints = named(new QCheckBox(QStringLiteral("All points"), box), "checkAllPoints");
    allPoints->setToolTip(QStringLiteral("Draw every stored point, without thinning"));
    text2_ = named(new QLineEdit(box), "Text2");
    text4_ = named(new QLineEdit(box), "Text4");
    label4_ = label("Label4", QStringLiteral("Start"), box);
    label7_ = label("Label7", QStringLiteral("Span"), box);
    zoomLeft_ = named(new QPushButton(QStringLiteral("<"), box), "Command7_0");
    zoomRight_ = named(new QPushButton(QStringLiteral(">"), box), "Command7_1");
    const char *names[] = {"Command1", "Command2", "Command3"};
    const char *captions[] = {"CA -> PK", "CA = CF", "2 * CF"};
    int row = 0;
    grid->addWidget(label6_, row, 0);
    grid->addWidget(label11_, row++, 1);
    grid->addWidget(label5_, row++, 0, 1, 2);
    grid->addWidget(label1_, row++, 0, 1, 2);
    grid->addWidget(check1_, row++, 0, 1, 2);
    grid->addWidget(check5_, row++, 0, 1, 2);
    grid->addWidget(allPoints, row++, 0, 1, 2);
    grid->addWidget(check6_, row++, 0, 1, 2);
    grid->addWidget(label4_, row, 0);
    grid->addWidget(text2_, row++, 1);
    grid->addWidget(label7_, row, 0);
    grid->addWidget(text4_, row++, 1);
    grid->addWidget(zoomLeft_, row, 0);
    grid->addWidget(zoomRight_, row++, 1);
    for (int i = 0; i < 3; ++i) {
        cursorCommands_[i] = named(new QPushButton(QLatin1String(captions[i]), box), names[i]);
        grid->addWidget(cursorCommands_[i], row++, 0, 1, 2);
    }
    connect(check1_, &QCheckBox::clicked, this, [this](bool on) { logAxisChecked(ctx_, on); });
    connect(check5_, &QCheckBox::clicked, this, [this](bool on) { knownBandsChecked(ctx_, on); });
    connect(allPoints, &QCheckBox::clicked, this, [this](bool on) { allPointsChecked(ctx_, on); });
    connect(check6_, &QCheckBox::clicked, this, [this](bool on) {
        zoomChecked(ctx_, on);
        setZoomFieldsEnabled(on);
        showZoomWindow();
    });
    // Enter comes before the end of the edit; leaving the field ends it without Enter.
    connect(text2_, &QLineEdit::returnPressed, this, [this] { zoomStartByEnter_ = true; });
    connect(text2_, &QLineEdit::editingFinished, this, [this] {
        zoomStartEntered(ctx_, text2_->text(), std::exchange(zoomStartByEnter_, false));
        showZoomWindow();
    });
    connect(text4_, &QLineEdit::editingFinished, this, [this] {
        zoomSpanEntered(ctx_, text4_->text());
        showZoomWindow();
    });
    connect(zoomLeft_, &QPushButton::clicked, this, [this] {
        zoomMoved(ctx_, 0);
        showZoomWindow();
    });
    connect(zoomRight_, &QPushButton::clicked, this, [this] {
        zoomMoved(ctx_, 1);
        showZoomWindow();
    });
    setZoomFieldsEnabled(false);
    return box;
}

QWidget *GrafikForm::buildCursorReadouts()
{
    auto *box = new QWidget;
    auto *grid = new QGridLayout(box);
    grid->setContentsMargins(0, 8, 4, 0);
    grid->setVerticalSpacing(1);
    const char *names[] = {"freqa", "leva", "freqb", "levb", "freqab", "levab"};
    const char *rows[] = {"A", "B", "A-B"};
    for (int row = 0; row < 3; ++row) {
        grid->addWidget(new QLabel(QLatin1String(rows[row]), box), row, 0);
        for (int column = 0; column < 2; ++column) {
            QLabel *&readout = readouts_[row * 2 + column];
            readout = label(names[row * 2 + column], QString(), box);
            readout->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
            // Room for the widest readout, so that a longer value never runs out of the column.
            readout->setMinimumWidth(readout->fontMetrics().horizontalAdvance(
                QLatin1String(column == 0 ? "0000.000M" : "-000.0")));
            grid->addWidget(readout, row, column + 1);
        }
    }
    grid->setColumnStretch(1, 1);
    grid->setColumnStretch(2, 1);
    return box;
}

void GrafikForm::connectCursors()
{
    ChartCursors &cursors = painter_.cursors();
    picture1_->setMouseTracking(true);
    picture1_->setCursor(Qt::CrossCursor);
    connect(picture1_, &CanvasView::mouseMoved, this, [this, &cursors](int buttons, QPointF position) {
        const QPointF at = plotPoint(position);
        const MousePointer pointer = cursors.mouseMove(buttons, at.x(), at.y());
        if (pointer != MousePointer::Keep)
            picture1_->setCursor(pointer == MousePointer::Grip ? Qt::SizeAllCursor : Qt::CrossCursor);
        picture1_->update();
    });
    connect(picture1_, &CanvasView::mousePressed, this,
            [this, &cursors](int button, QPointF position) { cursors.mouseDown(button, plotPoint(position).x()); });
    connect(picture1_, &CanvasView::doubleClicked, this, [&cursors] { cursors.doubleClicked(); });
    const std::array<void (ChartCursors::*)(), 3> commands = {&ChartCursors::peakClicked, &ChartCursors::centreClicked,
                                                              &ChartCursors::doubleCentreClicked};
    for (int i = 0; i < 3; ++i)
        connect(cursorCommands_[i], &QPushButton::clicked, this, [this, &cursors, command = commands[i]] {
            (cursors.*command)();
            picture1_->update();
        });
}

// A position on Picture1 in its user coordinates: x 0..1000000, y in level counts.
QPointF GrafikForm::plotPoint(QPointF position) const
{
    const ChartView &v = ctx_.state.chart;
    return {position.x() * 1000000.0 / qMax(1, picture1_->width()),
            v.grafikMax + position.y() * (double(v.grafikMin) - v.grafikMax) / qMax(1, picture1_->height())};
}

QFrame *GrafikForm::buildEmcFrame()
{
    auto *frame = named(new QFrame(this), "Frame1");
    frame->setFrameShape(QFrame::StyledPanel);
    auto *column = new QVBoxLayout(frame);
    auto *row = new QHBoxLayout;
    auto *viewRow = new QHBoxLayout;
    column->addLayout(row);
    column->addLayout(viewRow);
    auto *start = named(new QPushButton(QStringLiteral("Start the selected EMC-Ttest"), frame), "emcCommand1");
    auto *stop = named(new QPushButton(QStringLiteral("Stop"), frame), "emcCommand2");
    connect(start, &QPushButton::clicked, this, [this] { startEmcRun(ctx_); });
    connect(stop, &QPushButton::clicked, this, [this] { stopEmcRun(ctx_); });
    row->addWidget(start);
    row->addWidget(stop);
    row->addWidget(label("emcLabel1", QString(), frame));
    row->addWidget(label("emcLabel3", QString(), frame));
    row->addStretch(1);
    // The view boxes: the detectors' results and the sweep, the ambient and its use.
    const char *captions[] = {"Max. Hold", "Quasipeak", "Average", "Sweep", "Calc/View Horizontal",
                              "Calc/View Vertical", "Calc On", "View Ambient"};
    for (int number = 1; number <= 8; ++number) {
        auto *check = named(new QCheckBox(QLatin1String(captions[number - 1]), frame),
                            QByteArray("emcCheck" + QByteArray::number(number)).constData());
        check->setChecked(*emcViewFlag(ctx_.state, number) == 1);
        connect(check, &QCheckBox::clicked, this, [this, number](bool on) { emcViewChecked(ctx_, number, on); });
        viewRow->addWidget(check);
    }
    auto *distance = named(new QLineEdit(QString::number(ctx_.state.emcAmbientDistance), frame), "emcText1");
    distance->setToolTip(QStringLiteral("Difference between signals and ambient"));
    distance->setMaximumWidth(50);
    // Leaving the field keeps what was typed without taking it.
    numberKeys(distance, ctx_, [this, distance] { ambientDistanceEntered(ctx_, distance->text()); },
               NumberTaken::OnReturnOnly);
    viewRow->addWidget(distance);
    viewRow->addStretch(1);
    const char *modes[] = {"Hor/L+Ver/N", "Hor/L", "Ver/N"};
    for (int i = 0; i < 3; ++i) {
        auto *mode = new QRadioButton(QLatin1String(modes[i]), frame);
        mode->setObjectName(QStringLiteral("paintmode_%1").arg(i));
        mode->setChecked(ctx_.state.chart.paintSelection == i);
        connect(mode, &QRadioButton::clicked, this, [this, i] { paintModeChosen(ctx_, i); });
        row->addWidget(mode);
    }
    return frame;
}

QFrame *GrafikForm::placeholderPage(const char *frameName, const char *labelName, QWidget **notValid,
                                    QWidget *content)
{
    auto *page = new QFrame;
    auto *layout = new QVBoxLayout(page);
    *notValid = label(labelName, QStringLiteral("Not valid in this mode"), page);
    layout->addWidget(*notValid);
    auto *frame = named(new QFrame(page), frameName);
    if (content) {
        auto *inner = new QVBoxLayout(frame);
        inner->setContentsMargins(0, 0, 0, 0);
        inner->addWidget(content);
    }
    layout->addWidget(frame, 1);
    return page;
}

void GrafikForm::tabChanged(int index)
{
    AppState &s = ctx_.state;
    // A running EMC test keeps the chart in front.
    if (s.emcRunActive != 0 && index != kMeasurementTab) {
        grtab_->setCurrentIndex(kMeasurementTab);
        return;
    }
    CatalogueViews &views = catalogueViews(ctx_);
    if (index == kMeasurementTab) {
        s.repaintRequest = 1;
        if (s.emcMode == 0)
            for (DataView *view : {&views.detecData1, &views.detecData2, &views.measData2})
                view->refresh();
        call(ctx_.calls.refreshLimits);
        call(ctx_.calls.refreshConfiguration);
        call(ctx_.calls.refreshUnits);
    } else if (index == 1 && s.emcMode == 0) {
        for (DataView *view : {&views.detecData1, &views.detecData2, &views.measData2})
            view->refresh();
        panel_->reload();
    } else if (index == 2 && s.emcMode != 0) {
        tests_->reload();
    } else if (grtab_->widget(index) == results_) {
        results_->refresh();
    } else if (grtab_->widget(index) == equipment_) {
        for (DataView *view : {&views.LGData1, &views.lgData2, &views.limData1, &views.limData2, &views.limData3,
                               &views.conData1, &views.conData2, &views.conData3, &views.known})
            view->refresh();
        equipment_->reloadEditors();
    }
}

void GrafikForm::showLegendColours()
{
    for (int i = 0; i < int(legend_.size()); ++i)
        legend_[i]->setStyleSheet(QStringLiteral("color: %1").arg(
            screenColour(ctx_.state.screenColours[kLegend[i].colour]).name()));
    // The readouts of A and of B in their cursor's colour.
    for (int i = 0; i < 4; ++i)
        readouts_[i]->setStyleSheet(QStringLiteral("color: %1").arg(
            screenColour(ctx_.state.screenColours[i < 2 ? CursorAColour : CursorBColour]).name()));
}

void GrafikForm::paintChart()
{
    painter_.paintChart();
    ++paintCount_;
    picture1_->update();
    picture2_->update();
    picture3_->update();
}

void GrafikForm::applyMode(bool emc)
{
    grtab_->setCurrentIndex(kMeasurementTab);
    for (QPushButton *command : cursorCommands_)
        command->setVisible(!emc);
    label1_->setVisible(!emc);
    panel_->front()->setVisible(!emc);
    for (int i = 0; i < int(legend_.size()); ++i) {
        legend_[i]->setText(QLatin1String(emc ? kLegend[i].emc : kLegend[i].normal));
        if (legendInEmcOnly(i))
            legend_[i]->setVisible(emc);
    }
    fTest_->setVisible(emc);
    lNotvalid1_->setVisible(emc);
    fSetunit_->setVisible(!emc);
    lNotValid2_->setVisible(!emc);
    frame1_->setVisible(emc);
    for (const char *name : {"emcCommand1", "emcLabel1", "emcLabel3"})
        findChild<QWidget *>(QLatin1String(name))->setEnabled(emc);
    findChild<QWidget *>(QStringLiteral("emcCommand2"))->setEnabled(false);
    showLegendColours();
}

void GrafikForm::setUncalVisible(bool on) { label11_->setVisible(on); }

void GrafikForm::setCaption(const QString &text)
{
    GrafikControls::setCaption(text);
    setWindowTitle(text);
}

void GrafikForm::setLogAxisCheck(bool enabled, bool ticked)
{
    GrafikControls::setLogAxisCheck(enabled, ticked);
    check1_->setEnabled(enabled);
    check1_->setChecked(ticked);
}

void GrafikForm::setDistanceLabel(bool visible, const QString &text)
{
    GrafikControls::setDistanceLabel(visible, text);
    label5_->setText(text);
    label5_->setVisible(visible);
}

void GrafikForm::setUnitLabel(const QString &text)
{
    GrafikControls::setUnitLabel(text);
    label6_->setText(text);
}

void GrafikForm::setLiveButtonsEnabled(bool on)
{
    GrafikControls::setLiveButtonsEnabled(on);
    cursorCommands_[0]->setEnabled(on);
    cursorCommands_[2]->setEnabled(on);
}

void GrafikForm::setZoomControls(bool ticked, const QString &start, const QString &span)
{
    GrafikControls::setZoomControls(ticked, start, span);
    check6_->setChecked(ticked);
    setZoomFieldsEnabled(ticked);
    text2_->setText(start);
    text4_->setText(span);
}

void GrafikForm::setZoomFieldsEnabled(bool on)
{
    for (QWidget *w : {static_cast<QWidget *>(zoomLeft_), static_cast<QWidget *>(zoomRight_),
                       static_cast<QWidget *>(text2_), static_cast<QWidget *>(text4_),
                       static_cast<QWidget *>(label4_), static_cast<QWidget *>(label7_)})
        w->setEnabled(on);
}

void GrafikForm::showZoomWindow()
{
    text2_->setText(zoomFieldText(ctx_.state, ctx_.state.chart.zoomStart));
    text4_->setText(zoomFieldText(ctx_.state, ctx_.state.chart.zoomSpan));
}

void GrafikForm::setKnownBandsCheck(bool ticked)
{
    GrafikControls::setKnownBandsCheck(ticked);
    check5_->setChecked(ticked);
}

void GrafikForm::setCursorReadouts(const CursorReadouts &texts)
{
    GrafikControls::setCursorReadouts(texts);
    const QString values[] = {texts.freqa, texts.leva, texts.freqb, texts.levb, texts.freqab, texts.levab};
    for (int i = 0; i < int(readouts_.size()); ++i)
        readouts_[i]->setText(values[i]);
}

void GrafikForm::setMemoryTraceCaption(const QString &text)
{
    GrafikControls::setMemoryTraceCaption(text);
    legend_[2]->setText(text);
}
