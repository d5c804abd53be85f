#pragma once
// Saved settings: named snapshots of the analyser panel and the view flags in table settings of
// the working database. The logic of the dialogs saveset (store one) and loadset (bring one back
// or delete it), and of their unload when a mode switch opened them.

#include "store/data_view.h"

class Context;

// The views of saveset: Data1 all columns, Data2 the names for DBGrid1; both ordered by name.
struct SavesetViews {
    DataView data1;
    DataView data2;
};
void bindSavesetViews(const Context &ctx, SavesetViews &views);
// The view Data1 of loadset, ordered by name.
void bindLoadsetView(const Context &ctx, DataView &data1);

// saveset Command1: the state under the trimmed name, as a new row or, after the question, over
// the row the name finds. True when it was saved: the form unloads then.
bool saveSetting(Context &ctx, SavesetViews &views, const QString &name);
// loadset Command1: the row of the trimmed name into the state, then the panels redisplay it;
// nothing goes to the analyser. A name not found gets its box. True when the form unloads: after
// a load and after the box, not while there are no rows.
bool loadSetting(Context &ctx, DataView &data1, const QString &name);
// loadset: the row of this name becomes the current row (the combo's Return and mouse picks).
void settingPicked(DataView &data1, const QString &name);
// loadset Command2 "Delete selected": the current row goes, with no question; the first row of
// those that remain becomes current.
void deleteSetting(DataView &data1);

enum class SettingsForm { Saveset, Loadset };
// A settings form unloads. When a mode switch opened it, the mode asked for is entered now: EMC
// mode after saveset, normal mode after loadset.
void settingsFormUnloaded(Context &ctx, SettingsForm form);
