#include "sim/simulated_port.h"

#include <QStringList>
#include <algorithm>
#include <limits>

namespace {
// The analyser answers once its input has been quiet for this many byte times: long enough for
// the extra carriage returns of a repeated command to be echoed before the reply comes.
constexpr double kQuietBytes = 2.25;
constexpr std::size_t kTrafficKept = 1 << 20;

// The seconds of all pauses of a reply up to its byte `index`, that byte's own included.
double pausesUpTo(const QList<Analyser::Pause> &pauses, qsizetype index)
{
    double seconds = 0.0;
    for (const Analyser::Pause &pause : pauses)
        if (pause.at <= index)
            seconds += pause.seconds;
    return seconds;
}
} // namespace

SimulatedPort::SimulatedPort(Analyser &analyser, Clock &clock, double minimumReplyLatency)
    : analyser_(analyser), clock_(clock), minimumReplyLatency_(minimumReplyLatency)
{
}

double SimulatedPort::now() const
{
    return clock_.steadySeconds();
}

bool SimulatedPort::setSettings(const QString &settings)
{
    const QStringList parts = settings.split(QLatin1Char(','));
    bool ok = false;
    const int rate = parts.value(0).toInt(&ok);
    if (!ok || rate <= 0 || parts.size() != 4)
        return false;
    rate_ = rate;
    return true;
}

bool SimulatedPort::open()
{
    if (failOpen)
        return false;
    open_ = true;
    programLineFree_ = std::max(programLineFree_, now());
    return true;
}

void SimulatedPort::close()
{
    open_ = false;
    input_.clear();
}

void SimulatedPort::sendFromUnit(const QByteArray &bytes, double start, qint32 rate,
                                 const QList<Analyser::Pause> &pauses, Kind kind)
{
    // One byte on the analyser's line, after a pause; a lost byte never reaches the program.
    const auto transmit = [&](char byte, double pauseSeconds, bool lost) {
        const double begin = std::max(start, unitLineFree_) + pauseSeconds;
        const double done = begin + byteTime(rate);
        record(false, byte, begin);
        unitLineFree_ = done;
        start = done;
        if (!open_ || lost)
            return;
        if (rate == rate_)
            input_.push_back({done, byte});
        else if (wrongSpeed == WrongSpeed::Garbage)
            input_.push_back({done, char(~byte)}); // framing garbage: never the byte that was sent
    };
    auto pause = pauses.begin();
    for (qsizetype index = 0; index < bytes.size(); ++index) {
        double pauseSeconds = 0.0;
        for (; pause != pauses.end() && pause->at <= index; ++pause)
            pauseSeconds += pause->seconds;
        const bool lost = kind == Kind::Echo && lostEchoes.contains(++echoesSent_);
        transmit(bytes[index], pauseSeconds, lost);
        for (const char stray : strayAfter.value(++unitBytesSent_))
            transmit(stray, 0.0, false);
    }
}

void SimulatedPort::record(bool toUnit, char byte, double time)
{
    if (traffic.size() >= kTrafficKept)
        traffic.erase(traffic.begin(), traffic.begin() + kTrafficKept / 2);
    traffic.push_back({toUnit, byte, time});
}

void SimulatedPort::releasePendingReply(double until)
{
    if (!pendingReply_.isEmpty() && pendingFrom_ <= until) {
        sendFromUnit(pendingReply_, pendingFrom_, pendingRate_, pendingPauses_);
        pendingReply_.clear();
        pendingPauses_.clear();
    }
}

bool SimulatedPort::writeByte(char byte)
{
    if (!open_)
        return false;
    const double begin = std::max(now(), programLineFree_);
    const double arrival = begin + byteTime(rate_);
    programLineFree_ = arrival;
    record(true, byte, begin);
    if (rate_ != analyser_.rate) {
        // The analyser hears noise; in garbage mode it echoes it, and the program hears that garbled.
        if (wrongSpeed == WrongSpeed::Garbage)
            sendFromUnit(QByteArray(1, byte), arrival, analyser_.rate);
        return true;
    }
    releasePendingReply(arrival);
    const Analyser::Answer answer = analyser_.receive(byte);
    sendFromUnit(answer.echo, arrival, analyser_.rate, {}, Kind::Echo);
    if (answer.newRate)
        analyser_.rate = answer.newRate;
    for (const Analyser::Pause &pause : answer.pauses)
        pendingPauses_.append({pendingReply_.size() + pause.at, pause.seconds});
    pendingReply_ += answer.reply;
    if (!pendingReply_.isEmpty()) {
        // Every byte that comes in restarts the quiet time before the reply.
        pendingRate_ = analyser_.rate;
        pendingFrom_ = arrival + std::max(kQuietBytes * byteTime(analyser_.rate), minimumReplyLatency_);
    }
    return true;
}

int SimulatedPort::bytesWaiting()
{
    if (!open_)
        return 0;
    const double t = now();
    releasePendingReply(t);
    // The input is in time order: the line delivers one byte after the other.
    const auto due = std::partition_point(input_.begin(), input_.end(), [t](const Incoming &in) { return in.time <= t; });
    return int(due - input_.begin());
}

void SimulatedPort::discardInput()
{
    const double t = now();
    releasePendingReply(t);
    while (!input_.empty() && input_.front().time <= t)
        input_.pop_front();
}

QByteArray SimulatedPort::readByte()
{
    const double t = now();
    releasePendingReply(t);
    if (!open_ || input_.empty() || input_.front().time > t)
        return {};
    const char byte = input_.front().byte;
    input_.pop_front();
    return QByteArray(1, byte);
}

void SimulatedPort::waitForInput(int count, double seconds)
{
    const double t = now();
    releasePendingReply(t);
    double until = t + seconds;
    if (open_ && count >= 1) {
        if (int(input_.size()) >= count) {
            until = std::min(until, input_[count - 1].time);
        } else if (pendingRate_ == rate_ && int(input_.size() + pendingReply_.size()) >= count) {
            // The pending reply goes out as scheduled unless the program writes first, which it
            // cannot do while it waits here.
            const double begin = std::max(pendingFrom_, unitLineFree_);
            const qsizetype bytesOfReply = count - qsizetype(input_.size());
            const double arrival = begin + double(bytesOfReply) * byteTime(pendingRate_)
                                   + pausesUpTo(pendingPauses_, bytesOfReply - 1);
            until = std::min(until, arrival);
        }
    }
    clock_.sleep(until - t);
}

void SimulatedPort::sendUnsolicited(const QByteArray &bytes, double atTime)
{
    sendFromUnit(bytes, atTime < 0 ? now() : atTime, analyser_.rate);
}

QByteArray SimulatedPort::sentByProgram() const
{
    QByteArray out;
    for (const Traffic &t : traffic)
        if (t.toUnit)
            out.append(t.byte);
    return out;
}

QByteArray SimulatedPort::sentByUnit() const
{
    QByteArray out;
    for (const Traffic &t : traffic)
        if (!t.toUnit)
            out.append(t.byte);
    return out;
}
