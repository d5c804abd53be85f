#include "sim/pty_server.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

namespace {

// The analyser answers once its input has been quiet this long, so the extra carriage returns
// of a repeated command are all echoed before the reply.
constexpr std::chrono::milliseconds kQuietGap{20};
// How long a reply may wait for room when the program does not read; the rest is then lost.
constexpr int kSendLimitMs = 1000;

qint32 rateOf(speed_t speed)
{
    static const std::pair<speed_t, qint32> rates[] = {
        {B300, 300},     {B600, 600},     {B1200, 1200},   {B2400, 2400},     {B4800, 4800},    {B9600, 9600},
        {B19200, 19200}, {B38400, 38400}, {B57600, 57600}, {B115200, 115200}, {B230400, 230400}};
    for (const auto &[code, rate] : rates)
        if (code == speed)
            return rate;
    return 0;
}

} // namespace

PtyServer::PtyServer(Analyser &analyser) : analyser_(analyser) {}

PtyServer::~PtyServer()
{
    if (!linkPath_.isEmpty())
        QFile::remove(linkPath_);
    if (slave_ >= 0)
        ::close(slave_);
    if (master_ >= 0)
        ::close(master_);
}

bool PtyServer::fail(const QString &what)
{
    error = what + QStringLiteral(": ") + QString::fromLocal8Bit(std::strerror(errno));
    return false;
}

bool PtyServer::hungUp()
{
    error = QStringLiteral("the pseudo-terminal hung up");
    return false;
}

bool PtyServer::open()
{
    master_ = ::posix_openpt(O_RDWR | O_NOCTTY);
    if (master_ < 0)
        return fail(QStringLiteral("posix_openpt"));
    if (::grantpt(master_) != 0 || ::unlockpt(master_) != 0)
        return fail(QStringLiteral("grantpt"));
    char name[256];
    if (::ptsname_r(master_, name, sizeof name) != 0)
        return fail(QStringLiteral("ptsname"));
    slavePath_ = QFile::decodeName(name);
    slave_ = ::open(name, O_RDWR | O_NOCTTY);
    if (slave_ < 0)
        return fail(slavePath_);
    termios line{};
    if (::tcgetattr(slave_, &line) != 0)
        return fail(QStringLiteral("tcgetattr"));
    ::cfmakeraw(&line);
    if (::tcsetattr(slave_, TCSANOW, &line) != 0)
        return fail(QStringLiteral("tcsetattr"));
    // Non-blocking, so that a program that does not read cannot stop the server.
    const int flags = ::fcntl(master_, F_GETFL);
    if (flags < 0 || ::fcntl(master_, F_SETFL, flags | O_NONBLOCK) != 0)
        return fail(QStringLiteral("fcntl"));
    return true;
}

bool PtyServer::addLink(const QString &path)
{
    if (QFileInfo(path).isSymLink())
        QFile::remove(path); // left behind by an earlier run
    if (!QFile::link(slavePath_, path)) {
        error = QStringLiteral("cannot create the link ") + path;
        return false;
    }
    linkPath_ = path;
    return true;
}

bool PtyServer::serve(int stopFd)
{
    for (;;) {
        pollfd fds[] = {{master_, POLLIN, 0}, {stopFd, POLLIN, 0}};
        int timeout = -1;
        if (!pending_.empty()) {
            const auto left = std::chrono::ceil<std::chrono::milliseconds>(dueAt_ - SteadyClock::now());
            timeout = int(std::max<qint64>(0, left.count()));
        }
        if (::poll(fds, 2, timeout) < 0) {
            if (errno == EINTR)
                continue;
            return fail(QStringLiteral("poll"));
        }
        if (fds[1].revents != 0)
            return true;
        if (fds[0].revents & POLLIN) {
            char bytes[256];
            const ssize_t count = ::read(master_, bytes, sizeof bytes);
            if (count < 0 && errno != EAGAIN && errno != EINTR)
                return fail(QStringLiteral("read"));
            if (count == 0)
                return hungUp();
            for (ssize_t i = 0; i < count; ++i)
                take(bytes[i]);
            if (count > 0)
                dueAt_ = std::max(dueAt_, SteadyClock::now() + kQuietGap);
        } else if (fds[0].revents != 0) {
            return hungUp();
        } else if (!pending_.empty() && SteadyClock::now() >= dueAt_) {
            sendDue();
        }
    }
}

qint32 PtyServer::programRate() const
{
    termios line{};
    if (::tcgetattr(slave_, &line) != 0)
        return 0;
    return rateOf(::cfgetospeed(&line));
}

void PtyServer::take(char byte)
{
    if (programRate() != analyser_.rate)
        return; // at another speed the analyser hears nothing, and answers nothing
    const Analyser::Answer answer = analyser_.receive(byte);
    send(answer.echo);
    if (answer.newRate != 0)
        analyser_.rate = answer.newRate; // after the echo, which still went out at the old speed
    queueReply(answer);
}

void PtyServer::queueReply(const Analyser::Answer &answer)
{
    qsizetype from = 0;
    std::chrono::duration<double> pause{0};
    for (const Analyser::Pause &p : answer.pauses) {
        if (p.at > from) {
            pending_.push_back({pause, answer.reply.mid(from, p.at - from)});
            from = p.at;
            pause = pause.zero();
        }
        pause += std::chrono::duration<double>(p.seconds);
    }
    if (from < answer.reply.size())
        pending_.push_back({pause, answer.reply.mid(from)});
}

void PtyServer::sendDue()
{
    Segment &next = pending_.front();
    if (next.pause > next.pause.zero()) {
        dueAt_ = SteadyClock::now() + std::chrono::duration_cast<SteadyClock::duration>(next.pause);
        next.pause = next.pause.zero();
        return;
    }
    send(next.bytes);
    pending_.pop_front();
}

void PtyServer::send(const QByteArray &bytes)
{
    qsizetype done = 0;
    while (done < bytes.size()) {
        const ssize_t count = ::write(master_, bytes.constData() + done, size_t(bytes.size() - done));
        if (count > 0) {
            done += count;
            continue;
        }
        pollfd room{master_, POLLOUT, 0};
        if (count < 0 && errno == EAGAIN && ::poll(&room, 1, kSendLimitMs) > 0)
            continue;
        return; // nobody reads: the rest is lost, as on a real line
    }
}
