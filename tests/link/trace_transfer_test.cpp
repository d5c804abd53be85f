#include "link/commands.h"
#include "link/discovery.h"
#include "link/trace_transfer.h"
#include "signal/trace_store.h"
#include "support/sim_bench.h"

#include <QTest>

namespace {
// A connected bench whose blocks are converted as in the program.
struct ReadBench : SimBench {
    ReadBench()
    {
        attachSignalProcessing(*ctx);
        connectUnit(*ctx);
        port->clearTraffic();
    }
};

// The "#vm" and "#bm1" commands the program sent, in order.
QStringList blockCommands(const SimulatedPort &port)
{
    QStringList list;
    for (const QString &c : QString::fromLatin1(port.sentByProgram()).split('\r', Qt::SkipEmptyParts))
        if (c.startsWith("#vm") || c == "#bm1")
            list.append(c);
    return list;
}
} // namespace

class TraceTransferTest : public QObject {
    Q_OBJECT

private slots:
    void blockIsReadAndConverted();
    void badChecksumIsAskedAgain_data();
    void badChecksumIsAskedAgain();
    void thirdBadChecksumIsFatal();
    void blockStoppingHalfWayKeepsOldTrace();
    void stallShorterThanTimeoutIsWaitedOut();
    void byteAfterChecksumIsLeftForNextExchange();
    void singleSweepBlockBringsItsCentre();
    void singleSweepWithBadChecksumIsNotRepeated();
    void readTracesAsksForWantedTracesInOrder_data();
    void readTracesAsksForWantedTracesInOrder();
    void readTracesAfterFailureShowsOneBox();
};

void TraceTransferTest::blockIsReadAndConverted()
{
    ReadBench b;
    b.state().traces.sampleTrace.fill(0);
    readTraceBlock(*b.ctx);
    QCOMPARE(b.port->sentByProgram(), QByteArray("#rl\r#at\r#bm1\r"));
    const QByteArray block = b.port->sentByUnit().right(2048);
    qint32 sum = 0;
    for (int i = 0; i < 2001; ++i)
        sum += uchar(block[i]);
    QCOMPARE(sum, (uchar(block[2044]) << 16) + (uchar(block[2045]) << 8) + uchar(block[2046]));
    // The levels are the bytes by the analyser's scale: -20 dB at the reference line, 0.4 dB a step.
    for (int i : {1, 500, 2001})
        QCOMPARE(int(b.state().traces.sampleTrace[i]), -50 + (uchar(block[i - 1]) - 227));
    QCOMPARE(b.state().chart.startFrequency, 0.0f);
    QCOMPARE(b.state().chart.stopFrequency, 1000.0f);
    QVERIFY(b.state().traces.sampleTime.isValid());
    QVERIFY(b.ctx->frame().timer4Enabled);
}

void TraceTransferTest::badChecksumIsAskedAgain_data()
{
    QTest::addColumn<int>("badBlocks");
    QTest::newRow("first bad") << 1;
    QTest::newRow("first two bad") << 2;
}

void TraceTransferTest::badChecksumIsAskedAgain()
{
    QFETCH(int, badBlocks);
    ReadBench b;
    for (int i = 1; i <= badBlocks; ++i)
        b.analyser.corruptChecksumOf.insert(b.analyser.blocks() + i);
    readTraceBlock(*b.ctx);
    QCOMPARE(b.port->sentByProgram().count("#bm1\r"), badBlocks + 1);
    QVERIFY(b.prompts->shown.isEmpty());
    QCOMPARE(b.state().online, qint16(1));
    QVERIFY(b.state().chart.grafikMin < b.state().chart.grafikMax); // the good block was converted
}

void TraceTransferTest::thirdBadChecksumIsFatal()
{
    ReadBench b;
    const qint64 next = b.analyser.blocks();
    b.analyser.corruptChecksumOf = {next + 1, next + 2, next + 3};
    readTraceBlock(*b.ctx);
    QCOMPARE(b.port->sentByProgram().count("#bm1\r"), 3);
    const QStringList boxes = b.prompts->messages();
    QCOMPARE(boxes.size(), 1);
    const QRegularExpression text(R"(^Serial - Error\| Sample read checksum error       QM: (\d+)    WIN: (\d+)$)");
    const auto match = text.match(boxes.first());
    QVERIFY2(match.hasMatch(), qPrintable(boxes.first()));
    QCOMPARE(match.captured(1).toInt(), match.captured(2).toInt() + 1);
    QCOMPARE(b.state().online, qint16(0));
    QCOMPARE(b.state().chart.grafikMax, qint16(-1000)); // nothing was converted
}

void TraceTransferTest::blockStoppingHalfWayKeepsOldTrace()
{
    ReadBench b;
    b.state().traces.sampleTrace.fill(-77);
    b.analyser.stopAfterByte = 1000;
    const double start = b.clock->steadySeconds();
    readTraceBlock(*b.ctx);
    QCOMPARE(b.prompts->messages(), QStringList{"Serial - Error| Sample read error (#bm1)"});
    QCOMPARE(b.state().traces.sampleTrace[1], qint16(-77));
    QCOMPARE(b.state().traces.sampleTrace[2001], qint16(-77));
    QVERIFY(b.clock->steadySeconds() - start > 4.0);
    QVERIFY(b.ctx->frame().timer4Enabled);
}

void TraceTransferTest::stallShorterThanTimeoutIsWaitedOut()
{
    ReadBench b;
    b.analyser.stallAfterByte = 1500;
    b.analyser.stallSeconds = 3.5;
    const double start = b.clock->steadySeconds();
    readTraceBlock(*b.ctx);
    QVERIFY(b.prompts->shown.isEmpty());
    QVERIFY(b.clock->steadySeconds() - start > 3.5);
    QVERIFY(b.state().chart.grafikMin < b.state().chart.grafikMax);
}

void TraceTransferTest::byteAfterChecksumIsLeftForNextExchange()
{
    ReadBench b;
    readTraceBlock(*b.ctx);
    QCOMPARE(b.port->bytesWaiting(), 1);
    QVERIFY(sendCommand(*b.ctx, "#vm0"));
    QCOMPARE(b.port->bytesWaiting(), 0);
    QCOMPARE(b.state().lastReply, QString("RD"));
}

void TraceTransferTest::singleSweepBlockBringsItsCentre()
{
    ReadBench b;
    b.state().analyser.centerFrequency = 433.5f;
    sendCenterFrequency(*b.ctx);
    b.state().analyser.centerFrequency = 0.0f;
    b.state().traces.sampleTrace.fill(-5);
    startSingleSweep(*b.ctx);
    receiveTrace(*b.ctx);
    QVERIFY(b.prompts->shown.isEmpty());
    QCOMPARE(b.state().analyser.centerFrequency, 433.5f);
    QCOMPARE(b.state().lastReply, QString("RD"));
    QCOMPARE(b.state().traceFrozen, quint8(1));
    QCOMPARE(b.state().traces.sampleTrace[10], qint16(-5)); // raw: the caller converts
    QCOMPARE(b.port->bytesWaiting(), 0);
}

void TraceTransferTest::singleSweepWithBadChecksumIsNotRepeated()
{
    ReadBench b;
    b.analyser.corruptChecksumOf.insert(b.analyser.blocks() + 1);
    startSingleSweep(*b.ctx);
    receiveTrace(*b.ctx);
    QCOMPARE(b.prompts->messages().size(), 1);
    QVERIFY(b.ctx->frame().caption.startsWith(" Sample read checksum error       QM: "));
    QCOMPARE(b.port->sentByProgram().count("#ss1"), 1);
    QCOMPARE(b.state().online, qint16(0));
}

void TraceTransferTest::readTracesAsksForWantedTracesInOrder_data()
{
    QTest::addColumn<quint8>("calculation");
    QTest::addColumn<QStringList>("sent");
    // The user's screen mode, then the panel read: its "#vm" query and the selection around "#rl".
    const QStringList tail{"#vm0", "#vm", "#vm0", "#vm0"};
    QTest::newRow("calculation off") << quint8(0)
                                     << QStringList{"#vm0", "#bm1", "#vm1", "#bm1", "#vm2", "#bm1"} + tail;
    QTest::newRow("calculation on") << quint8(1)
                                    << QStringList{"#vm0", "#bm1", "#vm3", "#bm1", "#vm4", "#bm1", "#vm1", "#bm1",
                                                   "#vm2", "#bm1"} + tail;
}

void TraceTransferTest::readTracesAsksForWantedTracesInOrder()
{
    QFETCH(quint8, calculation);
    QFETCH(QStringList, sent);
    ReadBench b;
    AppState &s = b.state();
    s.viewSample = s.viewAverage = s.viewMaxhold = s.viewMemoryB = s.viewMemoryAB = 1;
    s.analyser.calculationOn = calculation;
    readTraces(*b.ctx);
    QCOMPARE(blockCommands(*b.port), sent);
    QCOMPARE(s.repaintRequest, quint8(1));
    QCOMPARE(s.busy, quint8(0));
    QVERIFY(b.prompts->shown.isEmpty());
}

void TraceTransferTest::readTracesAfterFailureShowsOneBox()
{
    ReadBench b;
    AppState &s = b.state();
    s.viewSample = s.viewMemoryB = 1;
    b.analyser.stopAfterByte = 100;
    readTraces(*b.ctx);
    QCOMPARE(b.prompts->messages().size(), 1);
    QCOMPARE(s.online, qint16(0));
    QCOMPARE(s.repaintRequest, quint8(1)); // the repaint is still asked for
    QCOMPARE(s.busy, quint8(0));
}

QTEST_GUILESS_MAIN(TraceTransferTest)
#include "trace_transfer_test.moc"
