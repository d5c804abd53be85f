#include "store/saved_settings.h"

#include "core/context.h"
#include "store/database.h"
#include "store/criteria.h"

#include <type_traits>

namespace {

// Data2 of saveset reads only the names; a view holds whole rows, and the grid shows the name.
const QString kSettingsSource = QStringLiteral("select * from settings order by name");
const QString kName = QStringLiteral("name");

// The name goes between the quotes as it stands: an apostrophe breaks the search, and "*" and
// "?" are wildcards.
QString nameLike(const QString &name) { return textCriterion(QStringLiteral("name"), QStringLiteral("like"), name); }

// The columns after `name`, in the order they are written and read, with their fields.
// averagename holds the max hold limit's number and maxholdname the average limit's: the save
// crosses them and the load crosses them back, so the pair comes back as it was.
template <typename Visit> void eachColumn(AppState &s, Visit visit)
{
    AnalyserSettings &a = s.analyser;
    visit("centerfreq", a.centerFrequency);
    visit("reflevel", a.refLevel);
    visit("attenuator", a.attenuator);
    visit("bandwith", a.bandwidth);
    visit("videofilter", a.videoFilter);
    visit("span", a.span);
    visit("unit", s.unitName);
    visit("correctionon", s.correctionOn);
    visit("configname", s.configName);
    visit("readmode", a.readMode);
    visit("viewsample", s.viewSample);
    visit("viewaverage", s.viewAverage);
    visit("viewmaxhold", s.viewMaxhold);
    visit("viewb", s.viewMemoryB);
    visit("viewab", s.viewMemoryAB);
    visit("viewlimitmax", s.viewLimitMax);
    visit("viewlimitave", s.viewLimitAverage);
    visit("averagename", s.maxholdLimitNr);
    visit("maxholdname", s.averageLimitNr);
    visit("tgon", a.tgOn);
    visit("tglevel", a.tgLevel);
    visit("calc", a.calculationOn);
}

void bind(const Context &ctx, DataView &view)
{
    view.setDatabase(workingDatabase(ctx));
    view.setSource(kSettingsSource);
}

} // namespace

void bindSavesetViews(const Context &ctx, SavesetViews &views)
{
    bind(ctx, views.data1);
    bind(ctx, views.data2);
}

void bindLoadsetView(const Context &ctx, DataView &data1) { bind(ctx, data1); }

bool saveSetting(Context &ctx, SavesetViews &views, const QString &text)
{
    const QString name = text.trimmed();
    // The box asks for more than three characters; three pass all the same.
    if (name.size() < 3) {
        ctx.prompts.messageBox(kTitle, QStringLiteral("The name should be longer than 3 characters"));
        return false;
    }
    DataView &rows = views.data1;
    if (!rows.findFirst(nameLike(name))) {
        rows.addNew();
    } else {
        const QString question = QStringLiteral("Setting exist ( ") + name + QStringLiteral(" )\r\rOverwrite?\r\r");
        if (ctx.prompts.messageBox(QStringLiteral("Save setting"), question, MsgButtons::YesNo) != MsgAnswer::Yes)
            return false;
        rows.edit();
    }
    rows.setValue(kName, name);
    eachColumn(ctx.state, [&rows](const char *column, auto &field) {
        rows.setValue(QLatin1String(column), QVariant::fromValue(field));
    });
    if (!rows.update()) {
        ctx.prompts.messageBox(QStringLiteral("Save setting"), QStringLiteral("The setting ( ") + name
                                                                   + QStringLiteral(" ) was not saved: ")
                                                                   + rows.lastError());
        return false;
    }
    views.data2.refresh();
    return true;
}

bool loadSetting(Context &ctx, DataView &data1, const QString &text)
{
    if (data1.rowCount() == 0)
        return false;
    const QString name = text.trimmed();
    if (!data1.findFirst(nameLike(name))) {
        ctx.prompts.messageBox(QStringLiteral("load setting"), QStringLiteral("Setting not exist ( ") + name
                                                                   + QStringLiteral(" )"));
        return true;
    }
    AppState &s = ctx.state;
    eachColumn(s, [&data1](const char *column, auto &field) {
        field = qvariant_cast<std::remove_reference_t<decltype(field)>>(data1.value(QLatin1String(column)));
    });
    s.chart.startFrequency = s.analyser.centerFrequency - s.analyser.span / 2.0f;
    s.chart.stopFrequency = s.analyser.centerFrequency + s.analyser.span / 2.0f;
    refreshPanel(ctx);
    return true;
}

void settingPicked(DataView &data1, const QString &name) { data1.findFirst(nameLike(name)); }

void deleteSetting(DataView &data1)
{
    if (data1.rowCount() > 0)
        data1.deleteRow();
    data1.refresh();
    data1.moveFirst();
}

void settingsFormUnloaded(Context &ctx, SettingsForm form)
{
    if (ctx.state.modeSwitchSettingsPrompt != -1)
        return;
    ctx.state.modeSwitchSettingsPrompt = 0;
    call(form == SettingsForm::Saveset ? ctx.calls.enterEmcMode : ctx.calls.enterNormalMode);
}
