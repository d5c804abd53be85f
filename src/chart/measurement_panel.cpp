#include "chart/measurement_panel.h"

#include "core/context.h"
#include "link/commands.h"
#include "link/discovery.h"
#include "signal/trace_store.h"
#include "store/catalogue_refresh.h"
#include "store/catalogue_views.h"
#include "store/criteria.h"

#include <algorithm>

namespace {

// The index of `value` in an option group, or -1 when the analyser holds a value the group lacks.
template <typename T, std::size_t N> int indexOf(const std::array<T, N> &values, double value)
{
    const auto at = std::find(values.begin(), values.end(), value);
    return at == values.end() ? -1 : int(at - values.begin());
}

// refreshLimits as the panel runs it: with the read mode and the settings memory shown.
void refreshLimitsAndFront(Context &ctx)
{
    refreshLimits(ctx);
    showPanelSettings(ctx);
}

// odet: the read mode `mode` selected, with the trace it is read into and shown as.
void detectorChosen(Context &ctx, int mode)
{
    AppState &s = ctx.state;
    s.analyser.readMode = quint8(mode);
    switch (mode) {
    case 0:
        s.traceTarget = 0;
        s.viewSample = 1;
        sendReadMode(ctx);
        break;
    case 1:
        s.traceTarget = 1;
        s.viewMemoryB = 1;
        s.viewMemoryAB = 0;
        sendReadMode(ctx);
        break;
    case 2:
        // A - B does not go with the calculation: it is stopped first.
        if (s.analyser.calculationOn == 1) {
            calculationStop(ctx);
            s.analyser.calculationOn = 0;
        }
        s.traceTarget = 2;
        s.viewMemoryB = 0;
        s.viewMemoryAB = 1;
        sendReadMode(ctx);
        readAllSettings(ctx);
        break;
    case 3:
        // The average is read into the sample's target here; the read cycle has its own table.
        s.traceTarget = 0;
        s.viewAverage = 1;
        sendReadMode(ctx);
        break;
    case 4:
        s.traceTarget = 3;
        s.viewMaxhold = 1;
        sendReadMode(ctx);
        break;
    }
    refreshLimitsAndFront(ctx);
}

void calculationChecked(Context &ctx, bool ticked)
{
    AppState &s = ctx.state;
    if (ticked && ctx.panel().option(PanelOption::Detector) == 2) {
        ctx.panel().setChecked(PanelCheck::Calculation, false);
        return;
    }
    if (ticked) {
        calculationStart(ctx);
        s.analyser.calculationOn = 1;
    } else {
        calculationStop(ctx);
        s.analyser.readMode = 0;
        s.analyser.calculationOn = 0;
    }
    readReadMode(ctx);
    refreshLimitsAndFront(ctx);
}

// cCorrection: the configuration of DBmeasur2 in force, and the chain on or off.
void correctionChecked(Context &ctx, bool ticked)
{
    AppState &s = ctx.state;
    CatalogueViews &views = catalogueViews(ctx);
    views.detecData2.refresh();
    views.measData2.refresh();
    if (views.measData2.rowCount() == 0) {
        ticked = false;
    } else {
        const QString name = ctx.panel().configurationText;
        if (views.measData2.findFirst(textCriterion(QStringLiteral("configname"), QStringLiteral("="), name))) {
            s.configName = name;
            s.traceFrozen = 0;
        }
    }
    s.correctionOn = ticked ? 1 : 0;
    refreshConfiguration(ctx);
    s.repaintRequest = 1;
    showPanelSettings(ctx);
}

} // namespace

void restartCalculation(Context &ctx)
{
    if (ctx.state.analyser.calculationOn == 1)
        calculationStart(ctx);
}

void optionChosen(Context &ctx, PanelOption group, int index)
{
    AppState &s = ctx.state;
    AnalyserSettings &a = s.analyser;
    switch (group) {
    case PanelOption::Span:
        if (index < 0 || index >= int(kSpanOptions.size()))
            return;
        a.span = kSpanOptions[index];
        sendSpan(ctx);
        restartCalculation(ctx);
        clearTraces(ctx);
        break;
    case PanelOption::Bandwidth:
        if (index < 0 || index >= int(kBandwidthOptions.size()))
            return;
        a.bandwidth = kBandwidthOptions[index];
        sendBandwidth(ctx);
        restartCalculation(ctx);
        break;
    case PanelOption::Attenuator:
        if (index < 0 || index >= int(kAttenuatorOptions.size()))
            return;
        a.attenuator = kAttenuatorOptions[index];
        refreshConfiguration(ctx);
        sendAttenuator(ctx);
        restartCalculation(ctx);
        break;
    case PanelOption::Memory:
        if (index < 0 || index >= kMemoryOptions)
            return;
        s.viewMemoryB = index == 1 ? 1 : 0;
        s.viewMemoryAB = index == 2 ? 1 : 0;
        s.repaintRequest = 1;
        break;
    case PanelOption::Detector:
        if (index < 0 || index >= kDetectorOptions)
            return;
        detectorChosen(ctx, index);
        return;
    }
    showPanelSettings(ctx);
}

void panelChecked(Context &ctx, PanelCheck box, bool ticked)
{
    AppState &s = ctx.state;
    const quint8 value = ticked ? 1 : 0;
    switch (box) {
    case PanelCheck::Sample:
        s.viewSample = value;
        s.repaintRequest = 1;
        break;
    case PanelCheck::Average:
        s.viewAverage = value;
        s.repaintRequest = 1;
        break;
    case PanelCheck::Maxhold:
        s.viewMaxhold = value;
        s.repaintRequest = 1;
        break;
    case PanelCheck::Calculation:
        calculationChecked(ctx, ticked);
        return;
    case PanelCheck::VideoFilter:
        s.analyser.videoFilter = value;
        sendVideoFilter(ctx);
        restartCalculation(ctx);
        break;
    case PanelCheck::FivePerDivision:
        s.analyser.dbPerDivision = ticked ? 5 : 10;
        sendDbPerDivision(ctx);
        restartCalculation(ctx);
        break;
    case PanelCheck::Correction:
        correctionChecked(ctx, ticked);
        return;
    }
    showPanelSettings(ctx);
}

void trackingChecked(Context &ctx, bool ticked)
{
    ctx.state.analyser.tgOn = ticked ? 1 : 0;
    sendTrackingOn(ctx);
    refreshUnits(ctx);
}

void panelCommand(Context &ctx, PanelCommand command)
{
    AppState &s = ctx.state;
    switch (command) {
    case PanelCommand::StoreAtoB:
        storeAtoB(ctx);
        return;
    case PanelCommand::SaveMemory:
        saveSettingsMemory(ctx);
        return;
    case PanelCommand::RecallMemory:
        // Offline the recall is passed over, and the unit is only connected after it.
        recallSettingsMemory(ctx);
        if (s.online == 0)
            connectUnit(ctx);
        restartCalculation(ctx);
        readAllSettings(ctx);
        break;
    case PanelCommand::ResetCalculation:
        if (s.analyser.calculationOn == 0) {
            s.analyser.calculationOn = 1;
            refreshLimits(ctx);
        }
        calculationStart(ctx);
        break;
    }
    showPanelSettings(ctx);
}

void settingsMemoryChosen(Context &ctx, int index)
{
    if (index < 0 || index >= kSettingsMemories)
        return;
    ctx.state.analyser.settingsMemory = quint8(index);
    ctx.panel().setSettingsMemory(index);
}

void fieldEntered(Context &ctx, PanelField field, const QString &text)
{
    AppState &s = ctx.state;
    AnalyserSettings &a = s.analyser;
    double value = 0.0;
    if (!typedNumber(text, s.decimalChar, value)) {
        showPanelSettings(ctx);
        refreshUnits(ctx);
        return;
    }
    switch (field) {
    case PanelField::CenterFrequency:
        a.centerFrequency = float(std::clamp(value, 0.0, double(s.maxCenterFrequency)));
        ctx.panel().setCenterFrequencyText(fieldText(s, field));
        sendCenterFrequency(ctx);
        restartCalculation(ctx);
        clearTraces(ctx);
        break;
    case PanelField::RefLevel:
        // The field shows the level at the input: the reference plus the attenuator, in the unit.
        a.refLevel = float(std::clamp(value - a.attenuator - a.unitOffset, -99.8, -27.0));
        sendRefLevel(ctx);
        ctx.panel().setRefLevelText(fieldText(s, field));
        restartCalculation(ctx);
        break;
    case PanelField::TrackingLevel:
        a.tgLevel = float(std::clamp(value - a.unitOffset, -50.0, 1.0));
        sendTrackingLevel(ctx);
        ctx.panel().setTrackingLevelText(fieldText(s, field));
        break;
    }
}

QString fieldText(const AppState &s, PanelField field)
{
    const AnalyserSettings &a = s.analyser;
    switch (field) {
    case PanelField::CenterFrequency:
        return fieldNumber(a.centerFrequency, 3, s.decimalChar);
    case PanelField::RefLevel:
        return fieldNumber(double(a.refLevel) + a.unitOffset + a.attenuator, 1, s.decimalChar);
    case PanelField::TrackingLevel:
        return fieldNumber(double(a.tgLevel) + a.unitOffset, 1, s.decimalChar);
    }
    return {};
}

void showPanelSettings(Context &ctx)
{
    const AppState &s = ctx.state;
    const AnalyserSettings &a = s.analyser;
    PanelControls &panel = ctx.panel();
    panel.setOption(PanelOption::Span, indexOf(kSpanOptions, a.span));
    panel.setOption(PanelOption::Bandwidth, indexOf(kBandwidthOptions, a.bandwidth));
    panel.setOption(PanelOption::Attenuator, indexOf(kAttenuatorOptions, a.attenuator));
    panel.setOption(PanelOption::Memory, s.viewMemoryAB == 1 ? 2 : s.viewMemoryB == 1 ? 1 : 0);
    panel.setOption(PanelOption::Detector, a.readMode < kDetectorOptions ? a.readMode : -1);
    panel.setChecked(PanelCheck::Sample, s.viewSample == 1);
    panel.setChecked(PanelCheck::Average, s.viewAverage == 1);
    panel.setChecked(PanelCheck::Maxhold, s.viewMaxhold == 1);
    panel.setChecked(PanelCheck::Calculation, a.calculationOn == 1);
    panel.setChecked(PanelCheck::VideoFilter, a.videoFilter == 1);
    panel.setChecked(PanelCheck::FivePerDivision, a.dbPerDivision == 5);
    panel.setChecked(PanelCheck::Correction, s.correctionOn == 1);
    panel.setSettingsMemory(a.settingsMemory < kSettingsMemories ? a.settingsMemory : -1);
    panel.setCenterFrequencyText(fieldText(s, PanelField::CenterFrequency));
    panel.setRefLevelText(fieldText(s, PanelField::RefLevel));
    panel.setTrackingEnabled(s.hasTrackingGenerator == -1);
}

void attachMeasurementPanel(Context &ctx)
{
    ctx.calls.refreshLimits = [&ctx] { refreshLimitsAndFront(ctx); };
}
