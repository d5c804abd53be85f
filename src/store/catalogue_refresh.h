#pragma once
// The normal-mode panel brought in line with the state: the two limits in force, the
// configuration and its measuring distance, the unit; and the picks in the panel's lists.
// They write only controls (through PanelControls) and the state fields of their catalogue.

#include <QString>

class Context;

// detecDBCombo1 and detecDBCombo2: the max hold and the average limit.
enum class PanelLimit { Maxhold, Average };

void refreshLimits(Context &ctx);
// Takes `componentNumber` and `distanceFromDut` from the configuration named `configName`,
// which turns into "Not set" when there is no such configuration.
void refreshConfiguration(Context &ctx);
void refreshUnits(Context &ctx);

// A pick in detecDBCombo1 or detecDBCombo2.
void limitPicked(Context &ctx, PanelLimit limit, const QString &name);
// detecCheck5 or detecCheck6 clicked: whether the limit is drawn, and whether its distance counts.
void limitViewChecked(Context &ctx, PanelLimit limit, bool ticked);
// A pick in DBmeasur2.
void configurationPicked(Context &ctx, const QString &name);
// A pick in DBmeasur1.
void unitPicked(Context &ctx, const QString &name);

// Lets the core's hooks refreshUnits, refreshLimits and refreshConfiguration run these.
void attachCatalogueRefresh(Context &ctx);

// A number as a text field shows it: `decimals` places after `decimalChar` (a point while it is 0).
QString fieldNumber(double value, int decimals, quint8 decimalChar);
// A number as the distance labels show it: up to seven significant digits.
QString plainFieldNumber(float value, quint8 decimalChar);
// The number typed in a field, read with either decimal character or `decimalChar`; none for
// text that is no number.
bool typedNumber(const QString &text, quint8 decimalChar, double &value);
