#include "link/trace_transfer.h"

#include "link/commands.h"
#include "link/serial_link.h"

#include <QCoreApplication>

namespace {

// The command text goes out with its echo checked byte by byte; a byte is tried three times.
bool sendBlockRequest(Context &ctx)
{
    for (const char byte : ctx.state.lastCommand.toLatin1()) {
        bool echoed = false;
        for (int attempt = 0; attempt < 3 && !echoed; ++attempt) {
            if (attempt > 0)
                settleLine(ctx); // the rest of a broken block may still be coming
            ctx.port.discardInput();
            ctx.port.writeByte(byte);
            echoed = waitForBytes(ctx) && readByte(ctx) == uchar(byte);
        }
        if (!echoed) {
            raiseSerialError(ctx);
            return false; // Timer4 stays off on this way out
        }
    }
    return true;
}

void failBlock(Context &ctx)
{
    raiseSerialError(ctx);
    ctx.frame().setTimer4Enabled(true);
}

// Bytes 1..2044 into `rawSamples`; the sum of the samples, and the text behind them.
bool receiveBlockBytes(Context &ctx, qint32 &sum, QString *text)
{
    AppState &s = ctx.state;
    sum = 0;
    for (int i = 1; i <= kBlockBytes; ++i) {
        if (!waitForBytes(ctx)) {
            failBlock(ctx);
            return false;
        }
        const int byte = readByte(ctx);
        s.traces.rawSamples[i] = qint16(byte);
        if (i <= s.pointCount)
            sum += byte;
        else if (text)
            text->append(QChar(byte));
    }
    return true;
}

// The three checksum bytes, high byte first; a fourth byte must be waiting as well.
bool receiveChecksum(Context &ctx, qint32 &checksum)
{
    if (!waitForBytes(ctx, 4)) {
        failBlock(ctx);
        return false;
    }
    checksum = 0;
    for (int i = 0; i < 3; ++i)
        checksum = checksum * 256 + readByte(ctx);
    return true;
}

QString checksumMessage(qint32 received, qint32 computed)
{
    return QStringLiteral(" Sample read checksum error       QM:") + QLatin1Char(' ') + QString::number(received)
           + QStringLiteral("    WIN:") + QLatin1Char(' ') + QString::number(computed);
}

} // namespace

void readTraceBlock(Context &ctx)
{
    AppState &s = ctx.state;
    s.repaintRequest = 0;
    // The conversion needs the levels the analyser really has.
    readRefLevelRaw(ctx);
    readAttenuator(ctx);
    ctx.frame().setTimer4Enabled(false);
    QCoreApplication::processEvents();
    for (int attempt = 0;; ++attempt) {
        s.chart.startFrequency = s.analyser.centerFrequency - float(s.analyser.span) / 2.0f;
        s.chart.stopFrequency = s.chart.startFrequency + float(s.analyser.span);
        s.errorText = QStringLiteral(" Sample read error (#bm1)");
        ctx.port.discardOutput();
        s.lastCommand = QStringLiteral("#bm1\r");
        qint32 sum = 0, checksum = 0;
        if (!sendBlockRequest(ctx) || !receiveBlockBytes(ctx, sum, nullptr) || !receiveChecksum(ctx, checksum))
            return;
        // The fourth byte, a carriage return, stays in the input: the next exchange discards it.
        if (checksum == sum) {
            ctx.frame().setTimer4Enabled(true);
            if (ctx.calls.convertBlock)
                ctx.calls.convertBlock();
            return;
        }
        s.errorText = checksumMessage(checksum, sum);
        if (attempt >= 2) {
            failBlock(ctx);
            return;
        }
    }
}

void receiveTraceBlock(Context &ctx)
{
    AppState &s = ctx.state;
    s.repaintRequest = 0;
    QString text;
    ctx.frame().setTimer4Enabled(false);
    s.serialError = 0;
    ctx.port.discardOutput();
    // The input is not discarded: the block may be arriving already.
    QCoreApplication::processEvents();
    qint32 sum = 0, checksum = 0;
    if (!receiveBlockBytes(ctx, sum, &text) || !receiveChecksum(ctx, checksum))
        return;
    readByte(ctx); // the fourth byte is dropped
    if (checksum != sum) {
        s.errorText = checksumMessage(checksum, sum);
        ctx.frame().setCaption(s.errorText);
        failBlock(ctx);
        return;
    }
    readReply(ctx);
    if (s.lastReply != QLatin1String("RD")) {
        s.errorText = QStringLiteral("Wait for RD");
        failBlock(ctx);
        return;
    }
    s.analyser.centerFrequency = float(numberValue(text.mid(17, 8)));
    ctx.frame().setTimer4Enabled(true);
}
