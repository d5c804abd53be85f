#include "forms/grafik_tests.h"

#include "core/context.h"
#include "emc/emc_test.h"
#include "forms/catalogue_combo.h"
#include "forms/deltest.h"
#include "forms/newtest.h"
#include "forms/number_keys.h"
#include "store/catalogue_views.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>

namespace {

template <typename W> W *named(W *widget, const char *name)
{
    widget->setObjectName(QLatin1String(name));
    return widget;
}

QPushButton *button(const char *name, const QString &caption, const QString &toolTip)
{
    auto *b = named(new QPushButton(caption), name);
    b->setToolTip(toolTip);
    b->setAutoDefault(false);
    return b;
}

QGroupBox *group(const QString &title, QWidget *content)
{
    auto *box = new QGroupBox(title);
    auto *layout = new QVBoxLayout(box);
    layout->setContentsMargins(6, 4, 6, 4);
    layout->addWidget(content);
    return box;
}

} // namespace

GrafikTests::GrafikTests(Context &ctx, QWidget *parent) : QWidget(parent), ctx_(ctx)
{
    setObjectName(QStringLiteral("testPage"));
    auto *grid = new QGridLayout(this);
    grid->addWidget(group(QStringLiteral("Test"), buildLists()), 0, 0, 2, 1);
    grid->addWidget(group(QStringLiteral("Range"), buildRange()), 0, 1);
    grid->addWidget(group(QStringLiteral("Analyser"), buildAnalyser()), 1, 1);
    grid->addWidget(group(QStringLiteral("Run"), buildRun()), 2, 0, 1, 2);
    grid->setRowStretch(3, 1);
    ctx_.attachTestPage(this);
}

GrafikTests::~GrafikTests() { ctx_.attachTestPage(nullptr); }

QWidget *GrafikTests::buildLists()
{
    auto *box = new QWidget;
    auto *grid = new QGridLayout(box);
    grid->setContentsMargins(0, 0, 0, 0);
    const char *names[] = {"testDBCombo1", "testDBCombo2", "testDBCombo3", "testDBCombo4", "testDBCombo5"};
    const char *captions[] = {"Test", "Configuration", "Peak limit", "Average limit", "Unit"};
    for (int i = 0; i < kTestLists; ++i) {
        lists_[i] = catalogueCombo(names[i], QLatin1String(captions[i]), box);
        grid->addWidget(new QLabel(QLatin1String(captions[i]), box), i, 0);
        grid->addWidget(lists_[i], i, 1);
        // A pick in the list, or Return in its box.
        connect(lists_[i], &QComboBox::textActivated, this,
                [this, i](const QString &text) { testListPicked(ctx_, TestList(i), text); });
    }
    // Clearing buttons beside the configuration and the two limits.
    const struct {
        const char *name;
        TestClear entry;
        int row;
    } clears[] = {{"testCommand3", TestClear::Configuration, 1},
                  {"testCommand2", TestClear::PeakLimit, 2},
                  {"testCommand1", TestClear::AverageLimit, 3}};
    for (const auto &c : clears) {
        QPushButton *clear = button(c.name, QStringLiteral("Clear"), QStringLiteral("No entry"));
        grid->addWidget(clear, c.row, 2);
        connect(clear, &QPushButton::clicked, this, [this, entry = c.entry] { testEntryCleared(ctx_, entry); });
    }
    // The two buttons stand beside their limits.
    grid->addWidget(optionGroup(TestOption::LimitReference, "oactive", {QStringLiteral("Active"), QStringLiteral("Active")},
                                Qt::Vertical),
                    2, 3, 2, 1);
    auto *note = named(new QLabel(QStringLiteral("Only necessary for the Sweep+Step mode"), box), "testLabel1");
    grid->addWidget(note, 4, 2, 1, 2);

    QPushButton *add = button("New", QStringLiteral("New"), QStringLiteral("New / Copy Test"));
    QPushButton *remove = button("Delete", QStringLiteral("Delete"), QStringLiteral("Delete EMC-Test"));
    grid->addWidget(add, 0, 2);
    grid->addWidget(remove, 0, 3);
    connect(add, &QPushButton::clicked, this, [this] { openDialog(new NewtestForm(ctx_, this)); });
    connect(remove, &QPushButton::clicked, this, [this] { openDialog(new DeltestForm(ctx_, this)); });

    text1_ = named(new QLineEdit(box), "Text1");
    text1_->setToolTip(QStringLiteral("User defined Text"));
    grid->addWidget(new QLabel(QStringLiteral("User defined Text"), box), 5, 0);
    grid->addWidget(text1_, 5, 1, 1, 3);
    connect(text1_, &QLineEdit::editingFinished, this, &GrafikTests::boundChanged);
    return box;
}

QWidget *GrafikTests::buildRange()
{
    auto *box = new QWidget;
    auto *grid = new QGridLayout(box);
    grid->setContentsMargins(0, 0, 0, 0);
    const struct {
        TestField field;
        const char *name;
        const char *caption;
    } rows[] = {{TestField::Start, "testText1", "Start (MHz)"},
                {TestField::Stop, "testText2", "Stop (MHz)"},
                {TestField::StepWidth, "incwidth", "Step width (kHz)"},
                {TestField::StepBlocks, "steptime", "Meas.time (blocks)"}};
    int row = 0;
    for (const auto &r : rows) {
        grid->addWidget(new QLabel(QLatin1String(r.caption), box), row, 0);
        grid->addWidget(numberField(r.field, r.name), row++, 1);
    }
    return box;
}

QWidget *GrafikTests::buildAnalyser()
{
    auto *box = new QWidget;
    auto *grid = new QGridLayout(box);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->addWidget(new QLabel(QStringLiteral("Bandwidth"), box), 0, 0);
    grid->addWidget(optionGroup(TestOption::Bandwidth, "rbw",
                                {QStringLiteral("1000 kHz"), QStringLiteral("120 kHz"), QStringLiteral("9 kHz")}),
                    0, 1);
    grid->addWidget(new QLabel(QStringLiteral("Attenuator"), box), 1, 0);
    QWidget *att = optionGroup(TestOption::Attenuator, "att",
                               {QStringLiteral("0 dB"), QStringLiteral("10 dB"), QStringLiteral("20 dB"),
                                QStringLiteral("30 dB"), QStringLiteral("40 dB")});
    att->findChild<QWidget *>(QStringLiteral("att_0"))->setToolTip(QStringLiteral(">>>>> 0dB be careful <<<<"));
    grid->addWidget(att, 1, 1);
    grid->addWidget(new QLabel(QStringLiteral("Ref. level"), box), 2, 0);
    grid->addWidget(numberField(TestField::RefLevel, "testText3"), 2, 1);
    grid->addWidget(new QLabel(QStringLiteral("Detector"), box), 3, 0);
    auto *detectors = new QWidget(box);
    auto *row = new QHBoxLayout(detectors);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(optionGroup(TestOption::Detector, "detect", {QStringLiteral("Peak"), QStringLiteral("Quasipeak")}));
    row->addWidget(boundCheck("testCheck1", QStringLiteral("Average")));
    row->addStretch(1);
    grid->addWidget(detectors, 3, 1);
    return box;
}

QWidget *GrafikTests::buildRun()
{
    auto *box = new QWidget;
    auto *grid = new QGridLayout(box);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->addWidget(optionGroup(TestOption::Mode, "omode", {QStringLiteral("Sweep + Step"), QStringLiteral("Step")}),
                    0, 0, 1, 2);
    grid->addWidget(boundCheck("testCheck2", QStringLiteral("Horizontal / L")), 1, 0);
    grid->addWidget(boundCheck("testCheck3", QStringLiteral("Vertical / N")), 1, 1);
    grid->addWidget(boundCheck("testCheck4", QStringLiteral("Ambient")), 0, 2);
    grid->addWidget(new QLabel(QStringLiteral("Lim. distance"), box), 1, 2);
    grid->addWidget(numberField(TestField::LimitDistance, "testText4"), 1, 3);
    grid->addWidget(new QLabel(QStringLiteral("Meas.time (s)"), box), 0, 4);
    grid->addWidget(numberField(TestField::SweepTime, "testText5"), 0, 5);
    grid->setColumnStretch(6, 1);
    return box;
}

QWidget *GrafikTests::optionGroup(TestOption group, const char *name, const QStringList &captions,
                                  Qt::Orientation orientation)
{
    auto *box = named(new QWidget, name);
    auto *grid = new QGridLayout(box);
    grid->setContentsMargins(0, 0, 0, 0);
    auto *buttons = new QButtonGroup(box);
    for (int i = 0; i < captions.size(); ++i) {
        auto *radio = new QRadioButton(captions[i], box);
        radio->setObjectName(QStringLiteral("%1_%2").arg(QLatin1String(name)).arg(i));
        buttons->addButton(radio, i);
        grid->addWidget(radio, orientation == Qt::Vertical ? i : 0, orientation == Qt::Vertical ? 0 : i);
        connect(radio, &QRadioButton::clicked, this, [this, group, i] { testOptionChosen(ctx_, group, i); });
    }
    options_[int(group)] = buttons;
    return box;
}

QLineEdit *GrafikTests::numberField(TestField field, const char *name)
{
    auto *edit = named(new QLineEdit, name);
    edit->setMaximumWidth(90);
    fields_[int(field)] = edit;
    numberKeys(edit, ctx_, [this, edit, field] { testFieldEntered(ctx_, field, edit->text()); });
    return edit;
}

QCheckBox *GrafikTests::boundCheck(const char *name, const QString &caption)
{
    auto *check = named(new QCheckBox(caption), name);
    checks_[QByteArray(name).back() - '1'] = check;
    connect(check, &QCheckBox::clicked, this, &GrafikTests::boundChanged);
    return check;
}

void GrafikTests::boundChanged()
{
    testBoundChanged(ctx_, {text1_->text(), checks_[0]->isChecked(), checks_[1]->isChecked(),
                            checks_[2]->isChecked(), checks_[3]->isChecked()});
}

void GrafikTests::openDialog(QDialog *dialog)
{
    connect(dialog, &QDialog::finished, this, &GrafikTests::reloadLists);
    dialog->setWindowModality(Qt::ApplicationModal);
    dialog->show();
}

void GrafikTests::reloadLists()
{
    CatalogueViews &views = catalogueViews(ctx_);
    const DataView *sources[] = {&views.testData1, &views.testData2, &views.testData3, &views.testData3,
                                 &views.testData4};
    const char *columns[] = {"name", "configname", "limitname", "limitname", "unitname"};
    for (int i = 0; i < kTestLists; ++i)
        fillCombo(lists_[i], ctx_, *sources[i], QLatin1String(columns[i]));
}

void GrafikTests::reload()
{
    CatalogueViews &views = catalogueViews(ctx_);
    for (DataView *view : {&views.testData1, &views.testData2, &views.testData3, &views.testData4})
        view->refresh();
    reloadLists();
    showTestRecord(ctx_);
}

void GrafikTests::setFieldText(TestField field, const QString &text)
{
    TestControls::setFieldText(field, text);
    fields_[int(field)]->setText(text);
}

void GrafikTests::setListText(TestList list, const QString &text)
{
    TestControls::setListText(list, text);
    lists_[int(list)]->setEditText(text);
}

void GrafikTests::setOption(TestOption group, int index)
{
    TestControls::setOption(group, index);
    options_[int(group)]->button(index)->setChecked(true);
}

void GrafikTests::setLimitReferenceEnabled(int index, bool on)
{
    TestControls::setLimitReferenceEnabled(index, on);
    options_[int(TestOption::LimitReference)]->button(index)->setEnabled(on);
}

void GrafikTests::setSweepControlsEnabled(bool on)
{
    TestControls::setSweepControlsEnabled(on);
    fields_[int(TestField::LimitDistance)]->setEnabled(on);
    fields_[int(TestField::SweepTime)]->setEnabled(on);
    checks_[3]->setEnabled(on);
}

void GrafikTests::setBoundValues(const TestBoundValues &values)
{
    TestControls::setBoundValues(values);
    text1_->setText(values.memo);
    const bool ticked[] = {values.average, values.horizontal, values.vertical, values.ambient};
    for (int i = 0; i < 4; ++i)
        checks_[i]->setChecked(ticked[i]);
}

// The view boxes belong to the EMC frame of grafik.
void GrafikTests::setEmcCheck(int number, bool on)
{
    TestControls::setEmcCheck(number, on);
    if (auto *box = window()->findChild<QCheckBox *>(QStringLiteral("emcCheck%1").arg(number)))
        box->setChecked(on);
}

void GrafikTests::setEmcText1(const QString &text)
{
    TestControls::setEmcText1(text);
    if (auto *field = window()->findChild<QLineEdit *>(QStringLiteral("emcText1")))
        field->setText(text);
}
