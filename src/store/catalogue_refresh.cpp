#include "store/catalogue_refresh.h"

#include "core/context.h"
#include "store/catalogue_views.h"
#include "store/configurations.h"
#include "store/criteria.h"

namespace {

const QString kNotSet = QStringLiteral("Not set");


// Fields of the two panel limits; the average limit differs in its view, combo and check box.
struct LimitSide {
    DataView &view;
    qint32 &number;
    QString &name;
    qint16 &logarithmic;
};

LimitSide limitSide(Context &ctx, PanelLimit limit)
{
    AppState &s = ctx.state;
    CatalogueViews &views = catalogueViews(ctx);
    if (limit == PanelLimit::Maxhold)
        return {views.detecData1, s.maxholdLimitNr, s.maxholdLimitName, s.maxholdLimitLog};
    return {views.detecData2, s.averageLimitNr, s.averageLimitName, s.averageLimitLog};
}

void showLimitText(Context &ctx, PanelLimit limit, const QString &text)
{
    if (limit == PanelLimit::Maxhold)
        ctx.panel().setMaxholdLimitText(text);
    else
        ctx.panel().setAverageLimitText(text);
}

// The distance columns of the limit and the configuration views, read as Single.
float distanceOf(const DataView &view) { return view.value(QStringLiteral("distance")).toFloat(); }

// One limit of refreshLimits; the distance rules of the two sides follow it.
bool refreshLimit(Context &ctx, PanelLimit limit)
{
    LimitSide side = limitSide(ctx, limit);
    side.view.refresh();
    const bool found = side.view.findFirst(QStringLiteral("limitnr = ") + QString::number(side.number));
    if (ctx.state.traceFrozen != 0) {
        // What is shown came from a file: its names stay.
        showLimitText(ctx, limit, side.name.trimmed());
        return false;
    }
    if (found) {
        side.name = side.view.value(QStringLiteral("limitname")).toString();
        side.logarithmic = qint16(side.view.value(QStringLiteral("loga")).toInt());
    } else {
        side.name = kNotSet;
    }
    showLimitText(ctx, limit, found ? side.name : side.view.value(QStringLiteral("limitname")).toString());
    return found;
}

// measLabel3, measLabel4 and Label5 for the measuring distance in force, or hidden for none.
void showDistance(Context &ctx)
{
    const AppState &s = ctx.state;
    const bool shown = s.distanceFromDut > 0;
    const QString number = shown ? plainFieldNumber(s.distanceFromDut, s.decimalChar) : QString();
    ctx.panel().setDistanceLabels(shown, number);
    ctx.panel().setDistanceFromDutLabel(shown && s.correctionOn == 1,
                                        shown ? QStringLiteral("Distance from DUT: ") + number + QLatin1Char('m')
                                              : QString());
}

// The limit number of the name picked in a list, with the file's state let go.
void takeLimit(Context &ctx, PanelLimit limit, const QString &name)
{
    LimitSide side = limitSide(ctx, limit);
    if (side.view.findFirst(textCriterion(QStringLiteral("limitname"), QStringLiteral("="), name))) {
        side.number = side.view.value(QStringLiteral("limitnr")).toInt();
        side.name = name;
        ctx.state.traceFrozen = 0;
    }
}

} // namespace

void refreshLimits(Context &ctx)
{
    AppState &s = ctx.state;
    const PanelControls &panel = ctx.panel();
    CatalogueViews &views = catalogueViews(ctx);
    if (refreshLimit(ctx, PanelLimit::Maxhold))
        s.maxholdLimitDistance = panel.maxholdLimitTicked ? distanceOf(views.detecData1) : 0.0f;
    else if (s.traceFrozen == 0)
        s.maxholdLimitDistance = 0.0f;
    // The average side writes the max hold distance when its box is ticked, and clears the
    // average distance only when the max hold box is off: both are kept as they always were.
    if (refreshLimit(ctx, PanelLimit::Average)) {
        if (panel.averageLimitTicked)
            s.maxholdLimitDistance = distanceOf(views.detecData2);
        else if (!panel.maxholdLimitTicked)
            s.maxholdLimitDistance = 0.0f;
    } else if (s.traceFrozen == 0 && !panel.maxholdLimitTicked) {
        s.averageLimitDistance = 0.0f;
    }
}

void refreshConfiguration(Context &ctx)
{
    AppState &s = ctx.state;
    CatalogueViews &views = catalogueViews(ctx);
    views.measData2.refresh();
    const bool found = views.measData2.findFirst(
        textCriterion(QStringLiteral("configname"), QStringLiteral("like"), s.configName.trimmed()));
    views.measData3.refresh();
    if (s.traceFrozen != 0) {
        // The state came from a file: its name and distance stay, and so do the components.
        ctx.panel().setConfigurationText(s.configName.trimmed());
        if (!(s.distanceFromDut > 0))
            s.distanceFromDut = 0.0f;
    } else if (found) {
        ctx.panel().setConfigurationText(views.measData2.value(QStringLiteral("configname")).toString().trimmed());
        for (int k = 0; k < kChainSlots; ++k)
            s.componentNumber[k] = views.measData2.value(QLatin1String(kDeviceColumns[k])).toInt();
        DataView &heads = views.measData3;
        const bool antenna = heads.findFirst(QStringLiteral("losnr = ") + QString::number(s.componentNumber[0])) &&
                             distanceOf(heads) > 0 && heads.value(QStringLiteral("lostyp")).toInt() == 0;
        s.distanceFromDut = antenna ? distanceOf(heads) : 0.0f;
    } else {
        s.configName = kNotSet;
        ctx.panel().setConfigurationText(views.measData2.value(QStringLiteral("configname")).toString());
        s.distanceFromDut = 0.0f;
        // No configuration in force: a deleted one's components no longer correct the reads.
        s.componentNumber.fill(0);
    }
    showDistance(ctx);
}

void refreshUnits(Context &ctx)
{
    const AppState &s = ctx.state;
    ctx.panel().setUnitText(s.unitName.trimmed());
    ctx.panel().setUnitLabel(s.unitName.trimmed());
    ctx.panel().setTrackingLevelText(
        fieldNumber(double(s.analyser.tgLevel) + s.analyser.unitOffset, 1, s.decimalChar));
    ctx.panel().setTrackingChecked(s.analyser.tgOn == 1);
}

void limitPicked(Context &ctx, PanelLimit limit, const QString &name)
{
    DataView &view = limitSide(ctx, limit).view;
    view.refresh();
    if (view.rowCount() == 0)
        return;
    takeLimit(ctx, limit, name);
    refreshLimits(ctx);
    ctx.state.repaintRequest = 1;
}

void limitViewChecked(Context &ctx, PanelLimit limit, bool ticked)
{
    PanelControls &panel = ctx.panel();
    const bool maxhold = limit == PanelLimit::Maxhold;
    DataView &view = limitSide(ctx, limit).view;
    view.refresh();
    if (view.rowCount() == 0)
        ticked = false;
    if (maxhold)
        panel.setMaxholdLimitTicked(ticked);
    else
        panel.setAverageLimitTicked(ticked);
    if (view.rowCount() == 0)
        return;
    takeLimit(ctx, limit, maxhold ? panel.maxholdLimitText : panel.averageLimitText);
    (maxhold ? ctx.state.viewLimitMax : ctx.state.viewLimitAverage) = ticked ? 1 : 0;
    ctx.state.traceFrozen = 0;
    refreshLimits(ctx);
    ctx.state.repaintRequest = 1;
}

void configurationPicked(Context &ctx, const QString &name)
{
    DataView &view = catalogueViews(ctx).measData2;
    view.refresh();
    if (view.rowCount() == 0)
        return;
    if (view.findFirst(textCriterion(QStringLiteral("configname"), QStringLiteral("="), name))) {
        ctx.state.configName = name;
        ctx.state.traceFrozen = 0;
        ctx.state.correctionOn = ctx.panel().checked(PanelCheck::Correction) ? 1 : 0;
    }
    refreshConfiguration(ctx);
    ctx.state.repaintRequest = 1;
}

void unitPicked(Context &ctx, const QString &name)
{
    AppState &s = ctx.state;
    DataView &units = catalogueViews(ctx).measData1;
    units.refresh();
    if (units.findFirst(textCriterion(QStringLiteral("unitname"), QStringLiteral("="), name.trimmed()))) {
        s.unitName = name;
        s.analyser.unitOffset = units.value(QStringLiteral("unitoffset")).toFloat();
    }
    s.repaintRequest = 1;
    refreshConfiguration(ctx);
    refreshUnits(ctx);
}

void attachCatalogueRefresh(Context &ctx)
{
    ctx.calls.refreshUnits = [&ctx] { refreshUnits(ctx); };
    ctx.calls.refreshLimits = [&ctx] { refreshLimits(ctx); };
    ctx.calls.refreshConfiguration = [&ctx] { refreshConfiguration(ctx); };
}

QString fieldNumber(double value, int decimals, quint8 decimalChar)
{
    const QString text = QString::number(value, 'f', decimals);
    return decimalChar == 0 ? text : QString(text).replace(QLatin1Char('.'), QChar(decimalChar));
}

QString plainFieldNumber(float value, quint8 decimalChar)
{
    const QString text = QString::number(double(value), 'g', 7);
    return decimalChar == 0 ? text : QString(text).replace(QLatin1Char('.'), QChar(decimalChar));
}

bool typedNumber(const QString &text, quint8 decimalChar, double &value)
{
    QString plain = text.trimmed();
    if (decimalChar != 0)
        plain.replace(QChar(decimalChar), QLatin1Char('.'));
    plain.replace(QLatin1Char(','), QLatin1Char('.'));
    bool ok = false;
    const double number = plain.toDouble(&ok);
    if (ok)
        value = number;
    return ok;
}
