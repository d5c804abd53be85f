#include "emc/emc_test.h"

#include "core/context.h"
#include "store/catalogue_refresh.h"
#include "store/catalogue_views.h"
#include "store/configurations.h"
#include "store/database.h"
#include "store/criteria.h"

#include <QRegularExpression>

#include <cmath>

namespace {

const QString kNotSet = QStringLiteral("Not set");
// The bandwidths of rbw(0) to rbw(2), kHz: also the step width a choice of bandwidth sets.
constexpr int kBandwidths[] = {1000, 120, 9};

QVariant column(const DataView &view, const char *name) { return view.value(QLatin1String(name)); }
float singleOf(const DataView &view, const char *name) { return column(view, name).toFloat(); }
int intOf(const DataView &view, const char *name) { return column(view, name).toInt(); }
// Booleans are stored as -1 and 0.
qint16 flagOf(const DataView &view, const char *name) { return column(view, name).toInt() != 0 ? -1 : 0; }
QString trimmedText(const DataView &view, const char *name) { return column(view, name).toString().trimmed(); }

DataView &tests(Context &ctx) { return catalogueViews(ctx).testData1; }

// Edit, set, Update on the current test; nothing when there is none.
void writeColumn(Context &ctx, const char *name, const QVariant &value)
{
    DataView &view = tests(ctx);
    if (view.hasCurrent() && view.edit()) {
        view.setValue(QLatin1String(name), value);
        view.update();
    }
}

QString number(Context &ctx, double value, int decimals) { return fieldNumber(value, decimals, ctx.state.decimalChar); }

// Sets the button when the row's value names one; another value selects nothing new.
void showOption(TestControls &page, TestOption group, int index)
{
    if (index >= 0 && index < kTestOptionCounts[int(group)])
        page.setOption(group, index);
}

// The whole part of a typed number, clamped to [low, high] before it turns into an integer.
int wholeClamped(double v, int low, int high) { return int(std::clamp(std::floor(v), double(low), double(high))); }

// Start and stop must lie 0.5 MHz apart at least: the box, then the other end moves. The start
// field moves the start down when the stop is at or above the maximum; the stop field only when
// it stands exactly on it.
void keepMinimumSpan(Context &ctx, bool atMaximum)
{
    DataView &view = tests(ctx);
    const float start = singleOf(view, "startfreq");
    const float stop = singleOf(view, "stopfreq");
    // The fields hold whole kHz: the span is compared in kHz, so that the rounding of the stored
    // 32-bit values never moves the 499 kHz boundary.
    if (std::lround((double(stop) - double(start)) * 1000.0) > 499)
        return;
    ctx.prompts.messageBox(QStringLiteral("Testsettings"), QStringLiteral("(Stopfrequency - Startfrequency) < 500kHz"));
    if (atMaximum) {
        writeColumn(ctx, "startfreq", start - 0.5f);
        ctx.testPage().setFieldText(TestField::Start, number(ctx, start - 0.5f, 3));
    } else {
        writeColumn(ctx, "stopfreq", start + 0.5f);
        ctx.testPage().setFieldText(TestField::Stop, number(ctx, start + 0.5f, 3));
    }
}

void enterFrequency(Context &ctx, TestField field, double v)
{
    const float maximum = ctx.state.maxCenterFrequency;
    const float f = float(std::clamp(v, 0.0, double(maximum)));
    const bool start = field == TestField::Start;
    ctx.testPage().setFieldText(field, number(ctx, f, 3));
    writeColumn(ctx, start ? "startfreq" : "stopfreq", f);
    keepMinimumSpan(ctx, start ? singleOf(tests(ctx), "stopfreq") >= maximum : f == maximum);
}

// The step width in kHz for the bandwidth on the page: at most twice the bandwidth, in tens or
// hundreds of kHz for the two wider ones, never below one such unit.
int clampedStep(int kHz, int bandwidthIndex)
{
    kHz = std::max(kHz, 1);
    switch (bandwidthIndex) {
    case 0: return std::max(std::min(kHz, 2000) / 100 * 100, 100);
    case 1: return std::max(std::min(kHz, 240) / 10 * 10, 10);
    case 2: return std::min(kHz, 18);
    default: return kHz;
    }
}

// showTestRecord's lists of a limit: its name or "Not set", and whether it may be the reference.
void showLimit(Context &ctx, const char *columnName, TestList list, int referenceIndex)
{
    DataView &limits = catalogueViews(ctx).testData3;
    TestControls &page = ctx.testPage();
    const bool found = limits.findFirst(QStringLiteral("limitnr = ") + QString::number(intOf(tests(ctx), columnName)));
    page.setListText(list, found ? column(limits, "limitname").toString() : kNotSet);
    page.setLimitReferenceEnabled(referenceIndex, found && ctx.state.emcScanMode == 0);
}

// applyEmcTest's steps for one limit: what the chart and the distance term take from it.
struct LimitState {
    qint32 &number;
    qint16 &logarithmic;
    float &distance;
    quint8 &view;
    QString &name;
};
void applyLimit(Context &ctx, qint32 limitnr, LimitState out)
{
    DataView &limits = catalogueViews(ctx).emcData4;
    const bool found = limits.findFirst(QStringLiteral("limitnr = ") + QString::number(limitnr));
    out.number = found ? limitnr : 0;
    out.logarithmic = found ? flagOf(limits, "loga") : 0;
    out.distance = found ? singleOf(limits, "distance") : 0.0f;
    out.view = found ? 1 : 0;
    out.name = found ? column(limits, "limitname").toString() : kNotSet;
}

void applyConfiguration(Context &ctx, const QString &config)
{
    AppState &s = ctx.state;
    CatalogueViews &views = catalogueViews(ctx);
    if (views.emcData3.findFirst(textCriterion(QStringLiteral("configname"), QStringLiteral("like"), config))) {
        s.configName = column(views.emcData3, "configname").toString();
        s.correctionOn = 1;
        for (int k = 0; k < kChainSlots; ++k)
            s.componentNumber[k] = intOf(views.emcData3, kDeviceColumns[k]);
        DataView &heads = views.emcData5;
        heads.refresh();
        const bool antenna = heads.findFirst(QStringLiteral("losnr = ") + QString::number(s.componentNumber[0])) &&
                             singleOf(heads, "distance") > 0 && intOf(heads, "lostyp") == 0;
        s.distanceFromDut = antenna ? singleOf(heads, "distance") : 0.0f;
    } else {
        s.distanceFromDut = 0.0f;
        s.correctionOn = 0;
    }
    s.viewSample = 0;
}

// Step 10 of applyEmcTest: the chart's window and the trace views follow the test.
void applyView(Context &ctx, const DataView &test)
{
    AppState &s = ctx.state;
    TestControls &page = ctx.testPage();
    s.chart.stopFrequency = singleOf(test, "stopfreq");
    s.chart.startFrequency = singleOf(test, "startfreq");
    s.analyser.centerFrequency = s.chart.startFrequency;
    s.viewAverage = s.emcViewAverage == 1 ? 1 : 0;
    s.viewMaxhold = s.emcViewMaxhold == 1 ? 1 : 0;
    s.viewQPeak = s.emcViewQPeak == 1 ? 1 : 0;
    page.setEmcCheck(3, s.viewAverage == 1);
    page.setEmcCheck(1, s.viewMaxhold == 1);
    page.setEmcCheck(2, s.viewQPeak == 1);
    s.emcMode = s.emcScanMode == 0 ? 2 : 1;
    page.setEmcCheck(4, s.viewMemoryB != 0);
}

} // namespace


double typedValue(const QString &text, quint8 decimalChar)
{
    QString plain = text.trimmed();
    if (decimalChar != 0)
        plain.replace(QChar(decimalChar), QLatin1Char('.'));
    static const QRegularExpression leading(QStringLiteral("^[-+]?(\\d+\\.?\\d*|\\.\\d+)"));
    const QRegularExpressionMatch match = leading.match(plain);
    return match.hasMatch() ? match.captured().toDouble() : 0.0;
}

void showTestRecord(Context &ctx)
{
    AppState &s = ctx.state;
    CatalogueViews &views = catalogueViews(ctx);
    DataView &test = views.testData1;
    TestControls &page = ctx.testPage();
    if (test.rowCount() == 0 || !test.hasCurrent())
        return;
    page.setListText(TestList::Test, column(test, "name").toString());

    // An unknown configuration shows "Not set", then the name on the view's current row.
    DataView &configs = views.testData2;
    if (configs.findFirst(textCriterion(QStringLiteral("configname"), QStringLiteral("like"), trimmedText(test, "config")))) {
        page.setListText(TestList::Configuration, column(configs, "configname").toString());
    } else {
        page.setListText(TestList::Configuration, kNotSet);
        if (configs.hasCurrent())
            page.setListText(TestList::Configuration, column(configs, "configname").toString());
    }

    s.emcScanMode = quint8(intOf(test, "mode"));
    const bool sweep = s.emcScanMode != 1;
    page.setLimitReferenceEnabled(0, sweep);
    page.setLimitReferenceEnabled(1, sweep);
    page.setSweepControlsEnabled(sweep);
    showLimit(ctx, "peak", TestList::PeakLimit, 0);
    showLimit(ctx, "average", TestList::AverageLimit, 1);
    showOption(page, TestOption::Detector, intOf(test, "peakdet"));
    showOption(page, TestOption::Bandwidth, intOf(test, "rbw"));

    DataView &units = views.testData4;
    const bool unitFound = units.findFirst(textCriterion(QStringLiteral("unitname"), QStringLiteral("like"), trimmedText(test, "unit")));
    page.setListText(TestList::Unit, unitFound ? column(units, "unitname").toString() : QStringLiteral("dBmW"));
    s.testUnitOffset = unitFound ? singleOf(units, "unitoffset") : 0.0f;

    s.testRefLevel = singleOf(test, "ref");
    s.testAttenuator = singleOf(test, "atten");
    showOption(page, TestOption::Attenuator, int(s.testAttenuator / 10));
    page.setFieldText(TestField::RefLevel, number(ctx, s.testRefLevel + s.testUnitOffset + s.testAttenuator, 1));
    page.setFieldText(TestField::Stop, number(ctx, singleOf(test, "stopfreq"), 3));
    page.setFieldText(TestField::Start, number(ctx, singleOf(test, "startfreq"), 3));

    s.testHorizontal = flagOf(test, "horizontal");
    s.testVertical = flagOf(test, "vertical");
    s.limitDistance = singleOf(test, "leveldist");
    s.sweepTime = qint16(intOf(test, "meastime"));
    s.limitReference = quint8(intOf(test, "limitbezug"));
    page.setFieldText(TestField::LimitDistance, number(ctx, s.limitDistance, 1));
    page.setFieldText(TestField::SweepTime, QString::number(s.sweepTime));
    showOption(page, TestOption::Mode, s.emcScanMode);
    showOption(page, TestOption::LimitReference, s.limitReference);
    page.setBoundValues({column(test, "memo").toString(), flagOf(test, "avdet") != 0, s.testHorizontal != 0,
                         s.testVertical != 0, flagOf(test, "ambient") != 0});
}

void applyEmcTest(Context &ctx)
{
    AppState &s = ctx.state;
    CatalogueViews &views = catalogueViews(ctx);
    DataView &test = views.testData1;
    TestControls &page = ctx.testPage();
    test.refresh();
    views.testData2.refresh();
    views.emcData3.refresh();
    if (test.rowCount() == 0)
        return;
    if (!test.findFirst(textCriterion(QStringLiteral("name"), QStringLiteral("like"), s.emcTestName.trimmed())))
        test.moveFirst();
    s.emcTestName = column(test, "name").toString();
    page.setListText(TestList::Test, s.emcTestName);

    applyConfiguration(ctx, trimmedText(test, "config"));
    views.emcData4.refresh();
    applyLimit(ctx, intOf(test, "peak"),
               {s.maxholdLimitNr, s.maxholdLimitLog, s.maxholdLimitDistance, s.viewLimitMax, s.maxholdLimitName});
    applyLimit(ctx, intOf(test, "average"),
               {s.averageLimitNr, s.averageLimitLog, s.averageLimitDistance, s.viewLimitAverage, s.averageLimitName});

    // 1 is quasi-peak with peak, 0 peak alone; another value leaves the flags as they are.
    const int peakdet = intOf(test, "peakdet");
    if (peakdet == 0 || peakdet == 1) {
        s.emcViewMaxhold = 1;
        s.emcViewQPeak = quint8(peakdet);
    }
    if (flagOf(test, "avdet") != 0)
        s.emcViewAverage = 1;
    const int rbw = intOf(test, "rbw");
    if (rbw >= 0 && rbw <= 2)
        s.analyser.bandwidth = quint16(kBandwidths[rbw]);

    DataView &units = views.emcData2;
    units.refresh();
    const bool unitFound = units.findFirst(textCriterion(QStringLiteral("unitname"), QStringLiteral("like"), trimmedText(test, "unit")));
    s.unitName = unitFound ? column(units, "unitname").toString() : QStringLiteral("dBmW");
    s.analyser.unitOffset = unitFound ? singleOf(units, "unitoffset") : 0.0f;

    s.analyser.refLevel = singleOf(test, "ref");
    s.analyser.attenuator = singleOf(test, "atten");
    s.emcScanMode = quint8(intOf(test, "mode"));
    s.stepWidth = singleOf(test, "step") / 1000.0f;
    s.stepBlocks = quint8(intOf(test, "steptime"));
    page.setFieldText(TestField::StepWidth, QString::number(std::lround(s.stepWidth * 1000.0f)));
    page.setFieldText(TestField::StepBlocks, QString::number(s.stepBlocks));

    if (s.testApplyView == 1) {
        s.testApplyView = 0;
        applyView(ctx, test);
    }

    s.analyser.span = 1000;
    s.sweepTime = qint16(intOf(test, "meastime"));
    s.limitReference = quint8(intOf(test, "limitbezug"));
    s.limitDistance = singleOf(test, "leveldist");
    s.testHorizontal = flagOf(test, "horizontal");
    s.testVertical = flagOf(test, "vertical");
    s.ambientOn = flagOf(test, "ambient") != 0 ? 1 : 0;

    page.setEmcText1(QString::number(s.emcAmbientDistance));
    page.setEmcCheck(7, s.emcCalcAmbient != 0);
    page.setEmcCheck(5, s.emcViewAmbientH != 0);
    page.setEmcCheck(6, s.emcViewAmbientV != 0);
    page.setEmcCheck(8, s.emcViewAmbient != 0);
    page.setEmcCheck(4, s.viewMemoryB != 0);
}

void attachEmcTest(Context &ctx)
{
    ctx.calls.applyEmcTest = [&ctx] { applyEmcTest(ctx); };
}

void testFieldEntered(Context &ctx, TestField field, const QString &text)
{
    AppState &s = ctx.state;
    TestControls &page = ctx.testPage();
    const double v = typedValue(text, s.decimalChar);
    switch (field) {
    case TestField::Start:
    case TestField::Stop:
        enterFrequency(ctx, field, v);
        break;
    case TestField::RefLevel: {
        // Typed in the test's unit with the attenuator; stored as the analyser's own level.
        const double level = v - s.testAttenuator - s.testUnitOffset;
        s.testRefLevel = float(std::clamp(level, -99.8, -27.0));
        page.setFieldText(field, number(ctx, s.testRefLevel + s.testUnitOffset + s.testAttenuator, 1));
        writeColumn(ctx, "ref", s.testRefLevel);
        showTestRecord(ctx);
        break;
    }
    case TestField::LimitDistance: {
        const float distance = float(std::clamp(v, -100.0, 100.0));
        page.setFieldText(field, number(ctx, distance, 1));
        writeColumn(ctx, "leveldist", distance);
        break;
    }
    case TestField::SweepTime: {
        const int seconds = wholeClamped(v, 1, 10000);
        page.setFieldText(field, QString::number(seconds));
        writeColumn(ctx, "meastime", seconds);
        break;
    }
    case TestField::StepBlocks: {
        const int blocks = wholeClamped(v, 1, 100);
        page.setFieldText(field, QString::number(blocks));
        writeColumn(ctx, "steptime", blocks);
        break;
    }
    case TestField::StepWidth: {
        const int kHz = clampedStep(wholeClamped(v, 1, 32767), page.option(TestOption::Bandwidth));
        page.setFieldText(field, QString::number(kHz));
        writeColumn(ctx, "step", kHz);
        break;
    }
    }
}

void testOptionChosen(Context &ctx, TestOption group, int index)
{
    TestControls &page = ctx.testPage();
    if (index < 0 || index >= kTestOptionCounts[int(group)])
        return;
    page.setOption(group, index);
    switch (group) {
    case TestOption::Bandwidth:
        writeColumn(ctx, "rbw", index);
        writeColumn(ctx, "step", kBandwidths[index]);
        page.setFieldText(TestField::StepWidth, QString::number(kBandwidths[index]));
        break;
    case TestOption::Attenuator:
        ctx.state.testAttenuator = 10.0f * index;
        writeColumn(ctx, "atten", ctx.state.testAttenuator);
        showTestRecord(ctx);
        break;
    case TestOption::Detector:
        writeColumn(ctx, "peakdet", index);
        break;
    case TestOption::Mode:
        writeColumn(ctx, "mode", index);
        showTestRecord(ctx);
        break;
    case TestOption::LimitReference:
        writeColumn(ctx, "limitbezug", index);
        break;
    }
}

void testListPicked(Context &ctx, TestList list, const QString &text)
{
    CatalogueViews &views = catalogueViews(ctx);
    if (list == TestList::Test) {
        if (views.testData1.rowCount() == 0)
            return;
        views.testData1.findFirst(textCriterion(QStringLiteral("name"), QStringLiteral("like"), text));
        showTestRecord(ctx);
        ctx.state.emcTestName = text;
        ctx.state.testApplyView = 1;
        applyEmcTest(ctx);
        return;
    }
    struct Pick {
        DataView &view;
        const char *searched;
        const char *taken;
        const char *written;
    };
    const Pick pick = list == TestList::Configuration ? Pick{views.testData2, "configname", "configname", "config"}
                      : list == TestList::PeakLimit   ? Pick{views.testData3, "limitname", "limitnr", "peak"}
                      : list == TestList::AverageLimit ? Pick{views.testData3, "limitname", "limitnr", "average"}
                                                       : Pick{views.testData4, "unitname", "unitname", "unit"};
    if (pick.view.rowCount() == 0)
        return;
    if (pick.view.findFirst(textCriterion(QLatin1String(pick.searched), QStringLiteral("like"), text)))
        writeColumn(ctx, pick.written, column(pick.view, pick.taken));
    showTestRecord(ctx);
}

void testEntryCleared(Context &ctx, TestClear entry)
{
    switch (entry) {
    case TestClear::AverageLimit: writeColumn(ctx, "average", 0); break;
    case TestClear::PeakLimit: writeColumn(ctx, "peak", 0); break;
    case TestClear::Configuration: writeColumn(ctx, "config", QStringLiteral(" ")); break;
    }
    showTestRecord(ctx);
}

void testBoundChanged(Context &ctx, const TestBoundValues &values)
{
    DataView &view = tests(ctx);
    if (!view.hasCurrent() || !view.edit())
        return;
    view.setValue(QStringLiteral("memo"), values.memo);
    view.setValue(QStringLiteral("avdet"), values.average ? -1 : 0);
    view.setValue(QStringLiteral("horizontal"), values.horizontal ? -1 : 0);
    view.setValue(QStringLiteral("vertical"), values.vertical ? -1 : 0);
    view.setValue(QStringLiteral("ambient"), values.ambient ? -1 : 0);
    view.update();
    ctx.testPage().bound = values;
}

void bindTestViews(const Context &ctx, NewtestViews &views)
{
    for (DataView *view : {&views.data2, &views.data3}) {
        view->setDatabase(workingDatabase(ctx));
        view->setSource(QStringLiteral("select * from test order by name"));
    }
}

bool addTest(Context &ctx, NewtestViews &views, const QString &name)
{
    const QString trimmed = name.trimmed();
    if (trimmed.isEmpty())
        return false;
    const QString criterion = textCriterion(QStringLiteral("name"), QStringLiteral("like"), trimmed);
    bool added = false;
    if (views.data2.findFirst(criterion)) {
        // A test is a configuration here too, as the box has always said.
        ctx.prompts.messageBox(QStringLiteral("Add new"),
                               QStringLiteral("Configuration exist ( ") + trimmed + QStringLiteral(" )"));
    } else {
        views.data2.addNew();
        views.data2.setValue(QStringLiteral("name"), trimmed);
        added = views.data2.update();
        views.data3.refresh();
        views.data2.refresh();
        views.data2.findFirst(criterion);
    }
    showTestRecord(ctx);
    return added;
}

void copyTest(Context &ctx, NewtestViews &views)
{
    static const char *const kCopied[] = {"config", "peak", "average", "startfreq", "stopfreq", "peakdet", "avdet",
                                          "rbw", "ref", "unit", "atten", "horizontal", "vertical", "mode",
                                          "leveldist", "meastime", "limitbezug", "ambient", "step", "steptime",
                                          "tgon"};
    DataView &destination = views.data2;
    const DataView &source = views.data3;
    if (destination.rowCount() == 0 || source.rowCount() == 0 || !destination.edit())
        return;
    for (const char *name : kCopied)
        destination.setValue(QLatin1String(name), column(source, name));
    destination.update();
    showTestRecord(ctx);
}

void deleteTest(DataView &data2)
{
    if (data2.rowCount() > 0)
        data2.deleteRow();
    data2.refresh();
}
