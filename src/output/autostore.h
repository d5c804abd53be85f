#pragma once
// Autostore: while reading is automatic, the live measurement is stored every `autostoreInterval`
// seconds into numbered measurement files (base name, base name + 1, + 2, ...), and printed after
// each store when asked. The form autost drives it; Timer1 stores when the time has come.

#include <QDateTime>
#include <QString>

class Context;

// What the logic changes on the form autost. The values are kept so that tests read them back.
class AutostoreControls {
public:
    virtual ~AutostoreControls() = default;
    virtual void setFileLabel(const QString &text) { fileLabel = text; }          // Label1
    virtual void setNextTimeLabel(const QString &text) { nextTimeLabel = text; }  // Label4
    virtual void setStartCaption(const QString &text) { startCaption = text; }    // Command2
    virtual void setIntervalText(const QString &text) { intervalText = text; }    // Text1

    QString fileLabel, nextTimeLabel, intervalText;
    QString startCaption = QStringLiteral("Start");
};

inline constexpr int kShortestAutostoreInterval = 5; // seconds
inline constexpr int kLongestAutostoreInterval = 3600;

// The file of number `counter`: the base, the number (none for 0) and ".mes".
QString autostoreFileName(const QString &base, qint32 counter);
// A time as Label4 shows it.
QString autostoreTimeText(const QDateTime &time);

// The form's load: the counter back to 0, the fields from the state.
void autostoreLoad(Context &ctx, AutostoreControls &controls);
// Text1 left or confirmed: the interval within 5 to 3600 seconds, shown again.
void autostoreIntervalEntered(Context &ctx, AutostoreControls &controls, const QString &text);
// Command1: the base name from the file dialog.
void autostoreSelectFile(Context &ctx, AutostoreControls &controls);
// Command2: Start, or Pause (the numbers run on after it).
void autostoreStartPause(Context &ctx, AutostoreControls &controls);
// Command4: Stop (the next series starts at the base name again).
void autostoreStop(Context &ctx, AutostoreControls &controls);
// Command3: the counter back to 0 and automatic reading off; true when the form may unload.
// The unload itself disarms (`autostoreOn` 0), however the form is closed.
bool autostoreExit(Context &ctx);

// Timer1's store: the next numbered file, "Bad Filename" when it cannot be written, the print.
void autostoreNow(Context &ctx, AutostoreControls &controls);
