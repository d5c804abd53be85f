#pragma once
// The analyser served on a pseudo-terminal in real time, so that the program's real serial port
// code can talk to it: the program opens the slave device, the server works the master side.
// The analyser hears a byte only when the speed that the program set on the slave is its own.
// A pause inside a reply holds the rest of it back for that long.

#include "sim/analyser.h"

#include <QString>
#include <chrono>
#include <deque>

class PtyServer {
public:
    explicit PtyServer(Analyser &analyser);
    ~PtyServer();
    PtyServer(const PtyServer &) = delete;
    PtyServer &operator=(const PtyServer &) = delete;

    // Opens the pseudo-terminal pair in raw mode; false with `error` when the system refuses.
    bool open();
    // The device path that the program opens.
    QString slavePath() const { return slavePath_; }
    // A symbolic link at `path` to the slave, removed again when the server ends.
    bool addLink(const QString &path);
    // Answers the program until `stopFd` becomes readable (true), or the pseudo-terminal fails
    // (false, with `error`). Sleeps in poll() while nothing happens.
    bool serve(int stopFd);
    // Bytes the analyser sends by itself ("PR", "LO"), at once.
    void sendUnsolicited(const QByteArray &bytes) { send(bytes); }

    QString error;

private:
    using SteadyClock = std::chrono::steady_clock;
    // A piece of a reply, and the pause before it.
    struct Segment {
        std::chrono::duration<double> pause;
        QByteArray bytes;
    };

    qint32 programRate() const;
    void take(char byte);
    void queueReply(const Analyser::Answer &answer);
    void sendDue();
    void send(const QByteArray &bytes);
    bool fail(const QString &what);
    bool hungUp();

    Analyser &analyser_;
    int master_ = -1;
    int slave_ = -1; // kept open, so the line does not hang up between the program's opens
    QString slavePath_;
    QString linkPath_;
    std::deque<Segment> pending_;
    // The next segment goes out then, or its pause starts; every byte that comes in moves it to
    // no earlier than the end of the quiet time.
    SteadyClock::time_point dueAt_;
};
