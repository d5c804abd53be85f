#pragma once
// The analyser served on a pseudo-terminal in real time, so that the program's real serial port
// code can talk to it: the program opens the slave device, the server works the master side.
// The analyser hears a byte only when the speed that the program set on the slave is its own.

#include "sim/analyser.h"

#include <QString>
#include <chrono>

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

    QString error;

private:
    using SteadyClock = std::chrono::steady_clock;

    qint32 programRate() const;
    void take(char byte);
    void send(const QByteArray &bytes);
    bool fail(const QString &what);
    bool hungUp();

    Analyser &analyser_;
    int master_ = -1;
    int slave_ = -1; // kept open, so the line does not hang up between the program's opens
    QString slavePath_;
    QString linkPath_;
    QByteArray pendingReply_;
    SteadyClock::time_point quietFrom_; // the reply goes out once no byte has come until then
};
