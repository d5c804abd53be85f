#pragma once
// The analyser without a line: what it sends back, byte by byte, and the program's level rule.

#include "sim/analyser.h"

#include <QList>

// Echo and reply for every byte of `text`.
inline QByteArray exchange(Analyser &a, const QByteArray &text)
{
    QByteArray out;
    for (char c : text) {
        const Analyser::Answer answer = a.receive(c);
        out += answer.echo + answer.reply;
    }
    return out;
}

// The reply alone to one command, which gets its carriage return here.
inline QByteArray reply(Analyser &a, const QByteArray &command)
{
    QByteArray out;
    for (char c : command + '\r')
        out += a.receive(c).reply;
    return out;
}

// The block that "#bm1" brings after the given commands.
inline QByteArray blockAfter(Analyser &a, const QList<QByteArray> &commands)
{
    for (const QByteArray &command : commands)
        reply(a, command);
    return reply(a, "#bm1");
}

inline int sampleAt(const QByteArray &block, int point)
{
    return uchar(block[point - 1]);
}

// The level in dBm that the program reads from a sample byte.
inline double levelOf(const SimPanel &p, int byte)
{
    return p.refLevel + p.attenuator + p.dbPerDivision / 25.0 * (byte - 227);
}
