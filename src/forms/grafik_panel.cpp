#include "forms/grafik_panel.h"

#include "chart/measurement_panel.h"
#include "core/context.h"
#include "forms/catalogue_combo.h"
#include "forms/dialog_parts.h"
#include "store/catalogue_refresh.h"
#include "store/catalogue_views.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollArea>

namespace {

QCheckBox *checkBox(const char *name, const QString &caption, QWidget *parent)
{
    auto *box = new QCheckBox(caption, parent);
    box->setObjectName(QLatin1String(name));
    return box;
}

template <typename W> W *named(W *widget, const char *name)
{
    widget->setObjectName(QLatin1String(name));
    return widget;
}

QStringList captions(const auto &values, const QString &unit)
{
    QStringList list;
    for (const auto value : values)
        list << QString::number(value) + QLatin1Char(' ') + unit;
    return list;
}

QStringList spanCaptions()
{
    QStringList list = captions(kSpanOptions, QStringLiteral("MHz"));
    list[10] = QStringLiteral("Zero Span");
    return list;
}

} // namespace

GrafikPanel::GrafikPanel(Context &ctx, QWidget *parent)
    : QWidget(parent),
      ctx_(ctx),
      detecDBCombo1_(catalogueCombo("detecDBCombo1", QStringLiteral("Max. Hold limit"), this)),
      detecDBCombo2_(catalogueCombo("detecDBCombo2", QStringLiteral("Average limit"), this)),
      DBmeasur1_(catalogueCombo("DBmeasur1", QStringLiteral("Level unit"), this)),
      DBmeasur2_(catalogueCombo("DBmeasur2", QStringLiteral("Workplace configuration"), this)),
      detecCheck5_(checkBox("detecCheck5", QStringLiteral("View Max. Hold limit"), this)),
      detecCheck6_(checkBox("detecCheck6", QStringLiteral("View Average limit"), this)),
      measLabel3_(new QLabel(QStringLiteral("Distance"), this)),
      measLabel4_(new QLabel(this))
{
    setObjectName(QStringLiteral("fSetunitPanel"));
    measLabel3_->setObjectName(QStringLiteral("measLabel3"));
    measLabel4_->setObjectName(QStringLiteral("measLabel4"));
    auto *layout = new QFormLayout(this);
    layout->addRow(detecCheck5_, detecDBCombo1_);
    layout->addRow(detecCheck6_, detecDBCombo2_);
    layout->addRow(QStringLiteral("Unit"), DBmeasur1_);
    layout->addRow(QStringLiteral("Configuration"), DBmeasur2_);
    layout->addRow(measLabel3_, measLabel4_);
    measLabel3_->hide();
    measLabel4_->hide();
    front_ = buildFront();
    layout->addRow(frontCheck(PanelCheck::Correction, "cCorrection", QStringLiteral("Correction On")));

    connect(detecDBCombo1_, &QComboBox::textActivated, this,
            [this](const QString &name) { limitPicked(ctx_, PanelLimit::Maxhold, name); });
    connect(detecDBCombo2_, &QComboBox::textActivated, this,
            [this](const QString &name) { limitPicked(ctx_, PanelLimit::Average, name); });
    connect(DBmeasur1_, &QComboBox::textActivated, this, [this](const QString &name) { unitPicked(ctx_, name); });
    connect(DBmeasur2_, &QComboBox::textActivated, this,
            [this](const QString &name) { configurationPicked(ctx_, name); });
    connect(detecCheck5_, &QCheckBox::clicked, this,
            [this](bool on) { limitViewChecked(ctx_, PanelLimit::Maxhold, on); });
    connect(detecCheck6_, &QCheckBox::clicked, this,
            [this](bool on) { limitViewChecked(ctx_, PanelLimit::Average, on); });
    // The front lives on another tab and may go first when grafik closes: the logic then no
    // longer reaches this panel.
    connect(front_, &QObject::destroyed, this, [this] {
        front_ = nullptr;
        if (&ctx_.panel() == this)
            ctx_.attachPanel(nullptr);
    });
    ctx_.attachPanel(this);
    showPanelSettings(ctx_);
    refreshUnits(ctx_);
}

GrafikPanel::~GrafikPanel()
{
    if (&ctx_.panel() == this)
        ctx_.attachPanel(nullptr);
}

QScrollArea *GrafikPanel::front() const { return front_; }

QScrollArea *GrafikPanel::buildFront()
{
    auto *area = new QScrollArea;
    area->setObjectName(QStringLiteral("measFront"));
    area->setFrameShape(QFrame::NoFrame);
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area->setWidgetResizable(true);
    auto *inner = new QWidget(area);
    area->setWidget(inner);
    auto *grid = new QGridLayout(inner);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setSpacing(3);
    const auto box = [&](const QString &title, QWidget *content = nullptr) {
        auto *group = new QGroupBox(title, inner);
        auto *layout = new QGridLayout(group);
        layout->setContentsMargins(4, 2, 4, 2);
        layout->setVerticalSpacing(0);
        if (content)
            layout->addWidget(content);
        return group;
    };
    const auto column = [&](QGroupBox *group, const QList<QWidget *> &widgets) {
        auto *layout = static_cast<QGridLayout *>(group->layout());
        for (QWidget *w : widgets)
            layout->addWidget(w, layout->rowCount(), 0, 1, 2);
        return group;
    };
    const auto button = [&](const char *name, const QString &caption, PanelCommand command) {
        auto *b = new QPushButton(caption, inner);
        b->setObjectName(QLatin1String(name));
        connect(b, &QPushButton::clicked, this, [this, command] { panelCommand(ctx_, command); });
        return b;
    };

    // Two columns: the span list beside trace, view and memory; bandwidth and attenuator beside
    // the calculation; then the levels across, the settings memories and the tracking generator.
    grid->addWidget(box(QStringLiteral("Span"), optionGroup(PanelOption::Span, "ospan", spanCaptions(), 1)),
                    0, 0, 3, 1);
    grid->addWidget(box(QStringLiteral("Trace"),
                        optionGroup(PanelOption::Detector, "odet",
                                    {QStringLiteral("Sample"), QStringLiteral("Memory B"),
                                     QStringLiteral("Memory A - B"), QStringLiteral("Average"),
                                     QStringLiteral("Max. Hold")},
                                    1)),
                    0, 1);
    grid->addWidget(column(box(QStringLiteral("View")),
                           {frontCheck(PanelCheck::Sample, "detecCheck1", QStringLiteral("Sample")),
                            frontCheck(PanelCheck::Average, "detecCheck2", QStringLiteral("Average")),
                            frontCheck(PanelCheck::Maxhold, "detecCheck3", QStringLiteral("Max. Hold"))}),
                    1, 1);
    grid->addWidget(box(QStringLiteral("Memory"), optionGroup(PanelOption::Memory, "omemb",
                                                              {QStringLiteral("Memory Off"), QStringLiteral("Memory B"),
                                                               QStringLiteral("Memory A-B")},
                                                              1)),
                    2, 1);
    grid->addWidget(box(QStringLiteral("Bandwidth"), optionGroup(PanelOption::Bandwidth, "obw",
                                                                 {QStringLiteral("1 MHz"), QStringLiteral("120 kHz"),
                                                                  QStringLiteral("9 kHz")},
                                                                 1)),
                    3, 0);
    grid->addWidget(box(QStringLiteral("Attenuator"), optionGroup(PanelOption::Attenuator, "oatt",
                                                                  captions(kAttenuatorOptions, QStringLiteral("dB")), 2)),
                    4, 0);
    grid->addWidget(column(box(QStringLiteral("Calculation")),
                           {frontCheck(PanelCheck::Calculation, "detecCheck7", QStringLiteral("Calculation On")),
                            button("detecCommand4", QStringLiteral("Reset Calculation"), PanelCommand::ResetCalculation),
                            button("detecCommand1", QStringLiteral("Save A -> B"), PanelCommand::StoreAtoB)}),
                    3, 1, 2, 1, Qt::AlignTop);

    auto *level = box(QStringLiteral("Level"));
    auto *levelGrid = static_cast<QGridLayout *>(level->layout());
    measText1_ = numberField("measText1", int(PanelField::CenterFrequency));
    measText2_ = numberField("measText2", int(PanelField::RefLevel));
    levelGrid->addWidget(new QLabel(QStringLiteral("Center MHz"), level), 0, 0);
    levelGrid->addWidget(measText1_, 0, 1);
    levelGrid->addWidget(new QLabel(QStringLiteral("Ref. level"), level), 1, 0);
    levelGrid->addWidget(measText2_, 1, 1);
    levelGrid->addWidget(frontCheck(PanelCheck::VideoFilter, "CVideo", QStringLiteral("Video Filter")), 2, 0);
    levelGrid->addWidget(frontCheck(PanelCheck::FivePerDivision, "db", QStringLiteral("5 dB/Div")), 2, 1);
    grid->addWidget(level, 5, 0, 1, 2);

    cset_ = new QListWidget(inner);
    cset_->setObjectName(QStringLiteral("cset"));
    for (int i = 0; i < kSettingsMemories; ++i)
        cset_->addItem(QStringLiteral("Memory %1").arg(i));
    cset_->setFixedHeight(3 * cset_->sizeHintForRow(0) + 4);
    // As wide as its column, which the span list sets.
    cset_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    cset_->installEventFilter(this);
    connect(cset_, &QListWidget::itemClicked, this,
            [this](QListWidgetItem *item) { settingsMemoryChosen(ctx_, cset_->row(item)); });
    grid->addWidget(column(box(QStringLiteral("Settings memory")),
                           {cset_, button("detecCommand2", QStringLiteral("Save"), PanelCommand::SaveMemory),
                            button("detecCommand3", QStringLiteral("Recall"), PanelCommand::RecallMemory)}),
                    6, 0);

    auto *tracking = box(QStringLiteral("Tracking gen."));
    auto *trackingGrid = static_cast<QGridLayout *>(tracking->layout());
    ctrack_ = named(new QCheckBox(QStringLiteral("On"), tracking), "ctrack");
    tgText1_ = numberField("tgText1", int(PanelField::TrackingLevel));
    tgLabel4_ = named(new QLabel(tracking), "tgLabel4");
    trackingGrid->addWidget(ctrack_, 0, 0, 1, 2);
    trackingGrid->addWidget(tgText1_, 1, 0);
    trackingGrid->addWidget(tgLabel4_, 1, 1);
    connect(ctrack_, &QCheckBox::clicked, this, [this](bool on) { ::trackingChecked(ctx_, on); });
    grid->addWidget(tracking, 6, 1);
    grid->setRowStretch(7, 1);
    return area;
}

QWidget *GrafikPanel::optionGroup(PanelOption group, const char *name, const QStringList &captions, int columns)
{
    auto *box = new QWidget;
    box->setObjectName(QLatin1String(name));
    auto *grid = new QGridLayout(box);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setVerticalSpacing(0);
    auto *buttons = new QButtonGroup(box);
    const int rows = (int(captions.size()) + columns - 1) / columns;
    for (int i = 0; i < captions.size(); ++i) {
        auto *radio = new QRadioButton(captions[i], box);
        radio->setObjectName(QStringLiteral("%1_%2").arg(QLatin1String(name)).arg(i));
        buttons->addButton(radio, i);
        grid->addWidget(radio, i % rows, i / rows);
        // Released on a button, also on the one already selected.
        connect(radio, &QRadioButton::clicked, this, [this, group, i] { optionChosen(ctx_, group, i); });
    }
    options_[int(group)] = buttons;
    return box;
}

QCheckBox *GrafikPanel::frontCheck(PanelCheck box, const char *name, const QString &caption)
{
    auto *check = checkBox(name, caption, this);
    connect(check, &QCheckBox::clicked, this, [this, box](bool on) { panelChecked(ctx_, box, on); });
    checks_[int(box)] = check;
    return check;
}

QLineEdit *GrafikPanel::numberField(const char *name, int field)
{
    auto *edit = named(new QLineEdit, name);
    edit->setMaximumWidth(80);
    edit->installEventFilter(this);
    connect(edit, &QLineEdit::returnPressed, this,
            [this, edit, field] { fieldEntered(ctx_, PanelField(field), edit->text()); });
    return edit;
}

bool GrafikPanel::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::KeyPress)
        return QWidget::eventFilter(watched, event);
    if (watched == cset_)
        return true; // the list is not editable, and no key moves it
    auto *field = qobject_cast<QLineEdit *>(watched);
    return field && takePointKey(field, *static_cast<QKeyEvent *>(event), true, ctx_.state.decimalChar, u'+');
}

void GrafikPanel::reload()
{
    CatalogueViews &views = catalogueViews(ctx_);
    fillCombo(detecDBCombo1_, ctx_, views.detecData1, QStringLiteral("limitname"));
    fillCombo(detecDBCombo2_, ctx_, views.detecData2, QStringLiteral("limitname"));
    fillCombo(DBmeasur1_, ctx_, views.measData1, QStringLiteral("unitname"));
    fillCombo(DBmeasur2_, ctx_, views.measData2, QStringLiteral("configname"));
    refreshLimits(ctx_);
    refreshConfiguration(ctx_);
    refreshUnits(ctx_);
}

void GrafikPanel::setMaxholdLimitText(const QString &text)
{
    PanelControls::setMaxholdLimitText(text);
    detecDBCombo1_->setEditText(text);
}

void GrafikPanel::setAverageLimitText(const QString &text)
{
    PanelControls::setAverageLimitText(text);
    detecDBCombo2_->setEditText(text);
}

void GrafikPanel::setUnitText(const QString &text)
{
    PanelControls::setUnitText(text);
    DBmeasur1_->setEditText(text);
}

void GrafikPanel::setConfigurationText(const QString &text)
{
    PanelControls::setConfigurationText(text);
    DBmeasur2_->setEditText(text);
}

void GrafikPanel::setDistanceLabels(bool visible, const QString &number)
{
    PanelControls::setDistanceLabels(visible, number);
    measLabel4_->setText(number);
    measLabel3_->setVisible(visible);
    measLabel4_->setVisible(visible);
}

void GrafikPanel::setDistanceFromDutLabel(bool visible, const QString &text)
{
    PanelControls::setDistanceFromDutLabel(visible, text);
    emit distanceFromDutChanged(visible, text);
}

void GrafikPanel::setMaxholdLimitTicked(bool on)
{
    PanelControls::setMaxholdLimitTicked(on);
    detecCheck5_->setChecked(on);
}

void GrafikPanel::setAverageLimitTicked(bool on)
{
    PanelControls::setAverageLimitTicked(on);
    detecCheck6_->setChecked(on);
}

void GrafikPanel::setUnitLabel(const QString &text)
{
    PanelControls::setUnitLabel(text);
    if (front_)
        tgLabel4_->setText(text);
}

void GrafikPanel::setTrackingLevelText(const QString &text)
{
    PanelControls::setTrackingLevelText(text);
    if (front_)
        tgText1_->setText(text);
}

void GrafikPanel::setTrackingChecked(bool on)
{
    PanelControls::setTrackingChecked(on);
    if (front_)
        ctrack_->setChecked(on);
}

void GrafikPanel::setOption(PanelOption group, int index)
{
    PanelControls::setOption(group, index);
    if (!front_)
        return;
    QButtonGroup *buttons = options_[int(group)];
    if (QAbstractButton *button = buttons->button(index)) {
        button->setChecked(true);
        return;
    }
    // A value the group lacks: no button stays selected.
    buttons->setExclusive(false);
    for (QAbstractButton *button : buttons->buttons())
        button->setChecked(false);
    buttons->setExclusive(true);
}

void GrafikPanel::setChecked(PanelCheck box, bool on)
{
    PanelControls::setChecked(box, on);
    // cCorrection stays with the lists; the others go with the front.
    if (front_ || box == PanelCheck::Correction)
        checks_[int(box)]->setChecked(on);
}

void GrafikPanel::setSettingsMemory(int index)
{
    PanelControls::setSettingsMemory(index);
    if (front_)
        cset_->setCurrentRow(index);
}

void GrafikPanel::setCenterFrequencyText(const QString &text)
{
    PanelControls::setCenterFrequencyText(text);
    if (front_)
        measText1_->setText(text);
}

void GrafikPanel::setRefLevelText(const QString &text)
{
    PanelControls::setRefLevelText(text);
    if (front_)
        measText2_->setText(text);
}

void GrafikPanel::setTrackingEnabled(bool on)
{
    PanelControls::setTrackingEnabled(on);
    if (!front_)
        return;
    for (QWidget *w : {static_cast<QWidget *>(ctrack_), static_cast<QWidget *>(tgText1_),
                       static_cast<QWidget *>(tgLabel4_)})
        w->setEnabled(on);
}
