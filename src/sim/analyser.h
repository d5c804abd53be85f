#pragma once
// The analyser's side of the protocol: what one received byte makes it send back.
// Time is not its business: SimulatedPort and the pseudo-terminal server schedule the answer.

#include <QByteArray>
#include <QSet>
#include <QString>
#include <QStringList>

// The panel as the analyser holds it.
struct SimPanel {
    double centerFrequency = 500.0;
    double refLevel = -30.0;
    double attenuator = 10.0;
    int span = 1000;
    int bandwidth = 1000;
    int videoFilter = 0;
    int readMode = 0;
    int tgOn = 0;
    double tgLevel = -50.0;
    int calculation = 0;
    int dbPerDivision = 10;
    int uncal = 0;
    int singleSweep = 0;
    int keyboardLocked = 0;
    int triggerOn = 0;
    double triggerLevel = -30.0;
    int settingsMemory = 1;
};

class Analyser {
public:
    explicit Analyser(QString model = QStringLiteral("K320-A"), QString firmware = QStringLiteral("1.40"));

    // The answer to one received byte: the echo at once, a reply once the line is quiet,
    // and the rate the analyser moves to after the echo (0: it stays).
    struct Answer {
        QByteArray echo;
        QByteArray reply;
        qint32 newRate = 0;
    };
    Answer receive(char byte);

    QString model;
    // Replies to "#VN", one per query; the last one stays.
    QStringList versionReplies;
    qint32 rate = 19200; // the analyser's own line speed
    SimPanel panel;

    // Fault injection. Bytes and commands are counted from 1 since the analyser was made;
    // `received()` and `commands()` tell how far the count is.
    QSet<qint64> lostOnTheWay;  // these bytes never reach the analyser: no echo, no effect
    QSet<qint64> corruptEchoOf; // these are taken, but echoed wrong
    int wrongReplies = 0;       // the next n settings answer `wrongReply` instead of "RD"
    QByteArray wrongReply = QByteArrayLiteral("ER");
    bool silent = false;        // answers nothing at all, not even the echo
    bool withholdReplies = false; // echoes, but sends no reply

    qint64 received() const { return received_; }
    qint64 commands() const { return commands_; }

private:
    QByteArray execute(const QByteArray &command, qint32 &newRate);
    QByteArray query(const QByteArray &name) const;
    bool applySetting(const QByteArray &name, const QByteArray &argument, qint32 &newRate);

    QByteArray buffer_;
    qint64 received_ = 0;
    qint64 commands_ = 0;
};
