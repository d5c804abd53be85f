#include "sim/analyser.h"

#include <QtGlobal>

namespace {

const QByteArray kReady = QByteArrayLiteral("RD");

QByteArray decimal(double value, int decimals)
{
    return QByteArray::number(value, 'f', decimals); // always a point
}

bool isRate(qint32 rate)
{
    return rate == 4800 || rate == 9600 || rate == 19200 || rate == 38400 || rate == 115200;
}

} // namespace

Analyser::Analyser(QString model, QString firmware)
    : model(std::move(model)), versionReplies{std::move(firmware)}
{
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
            answer.reply = execute(command, answer.newRate);
            if (withholdReplies)
                answer.reply.clear();
        }
    } else if (buffer_.size() < 64) {
        buffer_.append(byte);
    }
    return answer;
}

QByteArray Analyser::execute(const QByteArray &command, qint32 &newRate)
{
    if (command.size() < 3 || command[0] != '#')
        return {};
    const QByteArray name = command.mid(1, 2);
    const QByteArray argument = command.mid(3);
    if (name == "QM")
        return model.toLatin1() + '\r';
    if (name == "VN") {
        const QString version = versionReplies.size() > 1 ? versionReplies.takeFirst() : versionReplies.value(0);
        return version.toLatin1() + '\r';
    }
    if (argument.isEmpty()) {
        const QByteArray value = query(name);
        if (!value.isNull())
            return name.toUpper() + value + '\r';
    }
    if (!applySetting(name, argument, newRate))
        return newRate ? QByteArray() : QByteArrayLiteral("ER\r");
    if (wrongReplies > 0) {
        --wrongReplies;
        return wrongReply + '\r';
    }
    return kReady + '\r';
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

// Takes a setting into the panel; false for a command the analyser does not know.
bool Analyser::applySetting(const QByteArray &name, const QByteArray &argument, qint32 &newRate)
{
    SimPanel &p = panel;
    bool ok = false;
    const double value = argument.toDouble(&ok);
    if (name == "sa")
        return argument.isEmpty();
    if (!ok)
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
    else if (name == "dm") p.calculation = whole;
    else if (name == "es") p.singleSweep = whole;
    else if (name == "kl") p.keyboardLocked = whole;
    else if (name == "sv" || name == "rc") p.settingsMemory = whole;
    else if (name == "tr") {
        p.triggerOn = whole != 0;
        if (whole != 0)
            p.triggerLevel = value;
    } else
        return false;
    return true;
}
