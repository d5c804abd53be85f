#pragma once
// The analyser's side of the protocol: what one received byte makes it send back.
// Time is not its business: SimulatedPort and the pseudo-terminal server schedule the answer.

#include "sim/panel.h"
#include "sim/scene.h"
#include "sim/trace_memory.h"

#include <QByteArray>
#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>

#include <array>

class Analyser {
public:
    explicit Analyser(QString model = QStringLiteral("K320-A"), QString firmware = QStringLiteral("1.40"));

    // The line stays idle for `seconds` before byte `at` (from 0) of a reply.
    struct Pause {
        qsizetype at;
        double seconds;
    };
    // The answer to one received byte: the echo at once, a reply once the line is quiet, with its
    // pauses in offset order, and the rate the analyser moves to after the echo (0: it stays).
    struct Answer {
        QByteArray echo;
        QByteArray reply;
        QList<Pause> pauses;
        qint32 newRate = 0;
    };
    Answer receive(char byte);

    QString model;
    // Replies to "#VN", one per query; the last one stays.
    QStringList versionReplies;
    qint32 rate = 19200; // the analyser's own line speed
    SimPanel panel;
    Scene scene;

    // The top of the input range in MHz, by model.
    double maxFrequency() const;
    // Only the K320-A has a tracking generator; the others take its commands without effect.
    bool hasTrackingGenerator() const;

    // Fault injection. Bytes, commands and blocks are counted from 1 since the analyser was made;
    // `received()`, `commands()` and `blocks()` tell how far the count is.
    QSet<qint64> lostOnTheWay;  // these bytes never reach the analyser: no echo, no effect
    QSet<qint64> corruptEchoOf; // these are taken, but echoed wrong
    int wrongReplies = 0;       // the next n settings answer `wrongReply` instead of "RD"
    QByteArray wrongReply = QByteArrayLiteral("ER");
    bool silent = false;        // answers nothing at all, not even the echo
    bool withholdReplies = false; // echoes, but sends no reply
    QSet<qint64> corruptChecksumOf; // these blocks carry a checksum one off the sum
    // The next block halts for `stallSeconds` after this many of its bytes (-1: it does not).
    qint64 stallAfterByte = -1;
    double stallSeconds = 0.0;
    // The next block ends after this many of its bytes, and the rest never comes (-1: it is whole).
    qint64 stopAfterByte = -1;

    qint64 received() const { return received_; }
    qint64 commands() const { return commands_; }
    qint64 blocks() const { return blocks_; }

private:
    void execute(const QByteArray &command, Answer &answer);
    QByteArray query(const QByteArray &name) const;
    bool applySetting(const QByteArray &name, const QByteArray &argument, qint32 &newRate);
    void sendBlock(bool singleSweep, Answer &answer);
    void sweep();
    void recall(const SimPanel &saved);

    QByteArray buffer_;
    TraceMemory memory_;
    // "#sv" saves the front into one of these, "#rc" takes it back; all start as at power-on.
    std::array<SimPanel, kSimMemories> memories_{};
    qint64 received_ = 0;
    qint64 commands_ = 0;
    qint64 blocks_ = 0;
};
