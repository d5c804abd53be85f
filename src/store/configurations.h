#pragma once
// Workplace configurations: named chains of up to five loss/gain components, the first of which
// may be an antenna with its measuring distance. The logic of the configuration editor and of the
// dialogs newconf and delconf; the chain's arithmetic is the correction chain's.

#include "core/app_state.h"
#include "store/data_view.h"

#include <array>
#include <optional>

class Context;

// What the configuration editor shows of the current row of conData2.
struct ConfigurationEditor {
    QString name;                              // conDBCombo1
    std::array<QString, kChainSlots> components;    // slot 1 conDBCombo6 ... slot 5 conDBCombo2
    bool distanceVisible = false;              // conFrame2, conLabel3, conLabel4
    QString distance;                          // conLabel4
};

// Loads the editor from the current row of conData2; nothing while there are no configurations.
// A slot whose number has no component shows the name on its view's current row.
std::optional<ConfigurationEditor> reloadConfigurationEditor(Context &ctx);
// conDBCombo1: the configuration of this name becomes the current row.
void configurationChosen(Context &ctx, const QString &name);
// conDBCombo6 (slot 1) to conDBCombo2 (slot 5): the component of this name goes into the slot of
// the current configuration. False when there is no such candidate.
bool componentChosen(Context &ctx, int slot, const QString &name);

// The views of the dialog newconf: Data2 the destinations, Data3 the sources, both on config.
struct NewconfViews {
    DataView data2;
    DataView data3;
};
void bindNewconfViews(const Context &ctx, NewconfViews &views);
// "Add New": a configuration of this name with no components, current in Data2 and in conData2;
// an existing name gives the box "Add new". False when nothing was added.
bool addConfiguration(Context &ctx, NewconfViews &views, const QString &name);
// "Copy": the five components of the source (Data3) into the destination (Data2).
void copyConfiguration(Context &ctx, NewconfViews &views);

// The view of the dialog delconf on config.
void bindDelconfView(const Context &ctx, DataView &data2);
// Deletes the current row of Data2, with no question; true when rows remain.
bool deleteConfiguration(Context &ctx, DataView &data2);

// The device columns of table config, slot 1 to slot 5.
inline const std::array<const char *, kChainSlots> kDeviceColumns = {"devicea", "deviceb", "devicec", "deviced",
                                                                     "devicee"};
