#pragma once
// The trigger toolbox: the analyser reports when its signal passes a level ("#tr"), and the
// program then reads the trace, and with print after trigger prints it and waits for the next
// trigger. Besides, the centre frequency is stepped by a fixed amount. The form setsingle
// drives it.

#include <QString>

class Context;

// What the logic changes on the form setsingle. The values are kept so that tests read them back.
class TriggerControls {
public:
    virtual ~TriggerControls() = default;
    // Label3, drawn at once: the watch may be in its wait loop.
    virtual void setStateText(const QString &text) { stateText = text; }
    virtual void setLevelText(const QString &text) { levelText = text; } // Text1

    QString stateText = QStringLiteral("Not activ");
    QString levelText;
};

inline constexpr float kLowestTriggerLevel = -99.8f; // dBm, as the reference level
inline constexpr float kHighestTriggerLevel = -27.0f;

// The texts the form shows on every paint: the state, and the level with the unit's offset but
// without the attenuator (every other place adds it too; this one never did).
QString triggerStateText(const Context &ctx);
QString triggerPaintedLevel(const Context &ctx);

// Text1 confirmed: `triggerLevel` from the level shown, the field written anew.
void triggerLevelEntered(Context &ctx, TriggerControls &controls, const QString &text);
// Command1: the level of cursor A without the chain's correction at A's frequency.
void triggerLevelFromCursor(Context &ctx, TriggerControls &controls);
// Command2: automatic reading off, the level taken from `levelText`, then the watch.
void startTrigger(Context &ctx, TriggerControls &controls, const QString &levelText);
// The watch: arms the trigger, waits for "RD" (yielding to the event queue, without a time
// limit), reads; with print after trigger prints and arms again. Ends on Stop (`triggerOn` 0) or
// any other reply, with "#tr0".
void runTriggerWatch(Context &ctx, TriggerControls &controls);
// Command4 (direction -1) and Command5 (+1): the centre frequency stepped by the typed MHz.
void stepCenterFrequency(Context &ctx, const QString &stepText, int direction);
