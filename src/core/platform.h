#pragma once
// The platform parts the logic runs on. Each has a real backend and a test backend,
// so that tests run headless, on virtual time and with scripted answers.

#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <optional>

// Seconds since midnight (what the serial waits measure) and the date and time now.
class Clock {
public:
    virtual ~Clock() = default;
    virtual float secondsSinceMidnight() = 0;
    virtual QDateTime now() = 0;
    // Seconds on a steady scale at full precision, for timing the line.
    virtual double steadySeconds() = 0;
    // Lets the given time pass: the system clock sleeps, the virtual clock advances.
    virtual void sleep(double seconds) = 0;
};

enum class MsgButtons { Ok, OkCancel, YesNo, YesNoCancel };
enum class MsgAnswer { Ok, Cancel, Yes, No };

struct FileDialogRequest {
    QString title;
    QString filter;           // "Measurement (*.mes) |*.mes"
    QString defaultExtension; // "MES"
    QString fileName;         // proposed name
    int flags = 0;
    int filterIndex = 1;
};

// Message boxes, input prompts and the common dialogs.
class Prompts {
public:
    virtual ~Prompts() = default;
    virtual MsgAnswer messageBox(const QString &title, const QString &text,
                                 MsgButtons buttons = MsgButtons::Ok) = 0;
    // The typed text; an empty text when the user cancels.
    virtual QString inputBox(const QString &title, const QString &prompt, const QString &defaultText) = 0;
    virtual std::optional<QString> openFileDialog(const FileDialogRequest &request) = 0;
    virtual std::optional<QString> saveFileDialog(const FileDialogRequest &request) = 0;
    virtual std::optional<quint32> colourDialog(quint32 initial) = 0;
    // The system's printer dialog, opened on `printerName` (empty: the default printer); the name of
    // the printer chosen, nothing when the user cancels.
    virtual std::optional<QString> printerSetup(const QString &printerName) = 0;
    // Hands a URL to the desktop (a mailto: URL opens the user's mail program); false when
    // nothing on the desktop takes it.
    virtual bool openUrl(const QString &url)
    {
        Q_UNUSED(url);
        return false;
    }
};

// One RS-232 port as the link uses it: polled, one byte per read.
class SerialPort {
public:
    virtual ~SerialPort() = default;
    virtual void setPortNumber(int number) = 0; // 1..4; 0 is the built-in simulator
    virtual int portNumber() const = 0;
    // Line parameters as "19200,N,8,1"; false when the text is not a valid setting.
    virtual bool setSettings(const QString &settings) = 0;
    virtual bool open() = 0; // false when the port cannot be opened
    virtual void close() = 0;
    virtual bool isOpen() const = 0;
    virtual int bytesWaiting() = 0;
    virtual void discardInput() = 0;
    virtual void discardOutput() = 0;
    virtual bool writeByte(char byte) = 0;
    // Takes one waiting byte; empty when none is waiting.
    virtual QByteArray readByte() = 0;
    // Blocks until at least `count` bytes are waiting or `seconds` have passed on the clock.
    // Never spins: a real port sleeps in the system, a simulated one lets its clock run.
    virtual void waitForInput(int count, double seconds) = 0;
};
