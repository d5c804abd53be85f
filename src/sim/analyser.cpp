#include "sim/analyser.h"

#include <QtGlobal>

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <numeric>

namespace {

const QByteArray kReady = QByteArrayLiteral("RD\r");

QByteArray decimal(double value, int decimals)
{
    return QByteArray::number(value, 'f', decimals); // always a point
}

bool isRate(qint32 rate)
{
    return rate == 4800 || rate == 9600 || rate == 19200 || rate == 38400 || rate == 115200;
}

// Whether the panel takes `value` for a setting: the analyser refuses what it cannot show.
bool takes(const QByteArray &name, double value)
{
    const auto oneOf = [value](std::initializer_list<double> values) {
        return std::find(values.begin(), values.end(), value) != values.end();
    };
    if (name == "sp")
        return oneOf({1000, 500, 200, 100, 50, 30, 20, 10, 5, 2, 1, 0});
    if (name == "bw")
        return oneOf({1000, 120, 9});
    if (name == "at")
        return oneOf({0, 10, 20, 30, 40});
    if (name == "db")
        return oneOf({10, 5});
    if (name == "vm")
        return oneOf({0, 1, 2, 3, 4});
    if (name == "vf" || name == "tg" || name == "dm")
        return oneOf({0, 1});
    if (name == "sv" || name == "rc")
        return value >= 0 && value < kSimMemories && value == std::floor(value);
    return true;
}

QByteArray field(const QByteArray &text, int width)
{
    return text.leftJustified(width, ' ', true);
}

// The 43 text bytes of a block: the panel in short, with the centre frequency in MHz in
// characters 18 to 25.
QByteArray blockText(const SimPanel &p)
{
    const QByteArray digits = QByteArray::number(std::abs(p.centerFrequency), 'f', 3);
    const QByteArray centre = p.centerFrequency < 0 ? '-' + digits.rightJustified(7, '0') : digits.rightJustified(8, '0');
    return field("SP" + QByteArray::number(p.span) + " BW" + QByteArray::number(p.bandwidth), 14) + "CF:"
           + field(centre, 8)
           + field(" RL" + decimal(p.refLevel, 1) + " AT" + QByteArray::number(qRound(p.attenuator)) + " DB"
                       + QByteArray::number(p.dbPerDivision),
                   18);
}

} // namespace

Analyser::Analyser(QString model, QString firmware)
    : model(std::move(model)), versionReplies{std::move(firmware)}
{
}

bool Analyser::hasTrackingGenerator() const
{
    return model.contains(QLatin1String("K320"));
}

// The front as it was saved; the link, the trigger and the calculation are no part of it.
void Analyser::recall(const SimPanel &saved)
{
    SimPanel &p = panel;
    p.centerFrequency = saved.centerFrequency;
    p.refLevel = saved.refLevel;
    p.attenuator = saved.attenuator;
    p.span = saved.span;
    p.bandwidth = saved.bandwidth;
    p.videoFilter = saved.videoFilter;
    p.readMode = saved.readMode;
    p.tgOn = saved.tgOn;
    p.tgLevel = saved.tgLevel;
    p.dbPerDivision = saved.dbPerDivision;
}

void Analyser::sweep()
{
    // A unit without a generator keeps the setting, but nothing comes out.
    SimPanel seen = panel;
    if (!hasTrackingGenerator())
        seen.tgOn = 0;
    memory_.sweep(scene, seen, maxFrequency());
}

double Analyser::maxFrequency() const
{
    return model.contains(QLatin1String("K550")) ? 3050.0 : 1050.0;
}

Analyser::Answer Analyser::receive(char byte)
{
    Answer answer;
    const qint64 index = ++received_;
    if (silent || lostOnTheWay.contains(index))
        return answer;
    answer.echo = QByteArray(1, corruptEchoOf.contains(index) ? char(byte ^ 0x01) : byte);

    if (byte == '#') {
        buffer_ = "#"; // a new command starts; whatever came before it was line noise
    } else if (byte == '\r') {
        const QByteArray command = buffer_;
        buffer_.clear();
        if (!command.isEmpty()) {
            ++commands_;
            execute(command, answer);
            if (withholdReplies) {
                answer.reply.clear();
                answer.pauses.clear();
            }
        }
    } else if (buffer_.size() < 64) {
        buffer_.append(byte);
    }
    return answer;
}

void Analyser::execute(const QByteArray &command, Answer &answer)
{
    if (command.size() < 3 || command[0] != '#')
        return;
    const QByteArray name = command.mid(1, 2);
    const QByteArray argument = command.mid(3);
    QByteArray &reply = answer.reply;
    if (name == "QM") {
        reply = model.toLatin1() + '\r';
        return;
    }
    if (name == "VN") {
        const QString version = versionReplies.size() > 1 ? versionReplies.takeFirst() : versionReplies.value(0);
        reply = version.toLatin1() + '\r';
        return;
    }
    if (argument.isEmpty()) {
        const QByteArray value = query(name);
        if (!value.isNull()) {
            reply = name.toUpper() + value + '\r';
            return;
        }
    }
    if ((name == "bm" || name == "ss") && argument == "1") {
        sendBlock(name == "ss", answer);
        return;
    }
    if (!applySetting(name, argument, answer.newRate)) {
        if (!answer.newRate)
            reply = QByteArrayLiteral("ER\r");
        return;
    }
    if (wrongReplies > 0) {
        --wrongReplies;
        reply = wrongReply + '\r';
        return;
    }
    reply = kReady;
    // An armed trigger sweeps, and answers "RD" once more when the sweep passes its level.
    if (name == "tr" && panel.triggerOn) {
        sweep();
        if (memory_.peakLevel() > panel.triggerLevel + panel.attenuator)
            reply += kReady;
    }
}

// A block: the 2001 samples of the trace that the read mode selects, 43 bytes of text, the sum of
// the samples in three bytes, high byte first, and a carriage return. "#bm1" sends it at once, of
// a fresh sweep unless single sweep mode holds the last one; "#ss1" sweeps first and adds "RD".
void Analyser::sendBlock(bool singleSweep, Answer &answer)
{
    if (singleSweep || !panel.singleSweep)
        sweep();
    const TraceBytes samples = memory_.trace(panel.readMode);
    quint32 sum = std::accumulate(samples.begin(), samples.end(), quint32(0));
    if (corruptChecksumOf.contains(++blocks_))
        ++sum;
    QByteArray &block = answer.reply;
    block = QByteArray(reinterpret_cast<const char *>(samples.data()), kTracePoints) + blockText(panel);
    block += char(sum >> 16);
    block += char(sum >> 8);
    block += char(sum);
    block += '\r';
    if (singleSweep) {
        answer.pauses.append({0, scene.sweepTime(panel)});
        block += kReady;
    }
    if (stallAfterByte >= 0) {
        answer.pauses.append({stallAfterByte, stallSeconds});
        stallAfterByte = -1;
    }
    if (stopAfterByte >= 0) {
        block.truncate(stopAfterByte);
        answer.pauses.removeIf([&](const Pause &p) { return p.at >= block.size(); });
        stopAfterByte = -1;
    }
}

QByteArray Analyser::query(const QByteArray &name) const
{
    const SimPanel &p = panel;
    if (name == "cf") return decimal(p.centerFrequency, 3);
    if (name == "rl") return decimal(p.refLevel, 1);
    if (name == "at") return QByteArray::number(int(p.attenuator));
    if (name == "sp") return QByteArray::number(p.span);
    if (name == "bw") return QByteArray::number(p.bandwidth);
    if (name == "vf") return QByteArray::number(p.videoFilter);
    if (name == "vm") return QByteArray::number(p.readMode);
    if (name == "tg") return QByteArray::number(p.tgOn);
    if (name == "tl") return decimal(p.tgLevel, 1);
    if (name == "dm") return QByteArray::number(p.calculation);
    if (name == "db") return QByteArray::number(p.dbPerDivision);
    if (name == "uc") return QByteArray::number(p.uncal);
    return {};
}

// Takes a setting into the panel; false for a command the analyser does not know or a value it refuses.
bool Analyser::applySetting(const QByteArray &name, const QByteArray &argument, qint32 &newRate)
{
    SimPanel &p = panel;
    if (name == "sa") {
        if (!argument.isEmpty())
            return false;
        memory_.storeAtoB();
        return true;
    }
    bool ok = false;
    const double value = argument.toDouble(&ok);
    if (!ok || !(std::abs(value) < 1e6) || !takes(name, value))
        return false;
    const int whole = qRound(value);
    if (name == "br") {
        if (isRate(whole))
            newRate = whole; // no reply: the analyser is at the new speed right after the echo
        return false;
    }
    if (name == "cf") p.centerFrequency = value;
    else if (name == "rl") p.refLevel = value;
    else if (name == "at") p.attenuator = value;
    else if (name == "sp") p.span = whole;
    else if (name == "bw") p.bandwidth = whole;
    else if (name == "vf") p.videoFilter = whole;
    else if (name == "vm") p.readMode = whole;
    else if (name == "tg") p.tgOn = whole;
    else if (name == "tl") p.tgLevel = value;
    else if (name == "db") p.dbPerDivision = whole;
    else if (name == "es") p.singleSweep = whole;
    else if (name == "kl") p.keyboardLocked = whole;
    else if (name == "sv") {
        p.settingsMemory = whole;
        memories_[whole] = p;
    } else if (name == "rc") {
        recall(memories_[whole]);
        p.settingsMemory = whole;
    }
    else if (name == "dm") {
        p.calculation = whole;
        if (whole)
            memory_.restartCalculation(); // "#dm1" also starts the calculation afresh
    } else if (name == "tr") {
        p.triggerOn = whole != 0;
        if (whole != 0)
            p.triggerLevel = value;
    } else
        return false;
    return true;
}
