// Trace blocks: their layout, the analyser's own calculation and memories, the trigger, faults
// inside a block, and the time a block takes on the simulated line and on the pseudo-terminal.

#include "sim/pty_server.h"
#include "sim/sim_exchange.h"
#include "support/sim_bench.h"

#include <QTest>

#include <chrono>
#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <thread>
#include <unistd.h>

namespace {

int sumOf(const QByteArray &block)
{
    int sum = 0;
    for (int i = 1; i <= kTracePoints; ++i)
        sum += sampleAt(block, i);
    return sum;
}

// Bytes 2045 to 2047, high byte first.
int checksumOf(const QByteArray &block)
{
    return uchar(block[2044]) << 16 | uchar(block[2045]) << 8 | uchar(block[2046]);
}

// Waits as the program does, until `count` bytes are in or `seconds` have passed.
int waitFor(SimBench &b, int count, double seconds)
{
    const double until = b.clock->steadySeconds() + seconds;
    while (b.port->bytesWaiting() < count && b.clock->steadySeconds() < until)
        b.port->waitForInput(count, until - b.clock->steadySeconds());
    return b.port->bytesWaiting();
}

// When the analyser's last byte so far has arrived.
double lastArrival(const SimBench &b)
{
    return b.port->traffic.back().time + 10.0 / b.analyser.rate;
}

} // namespace

class TraceBlockTest : public QObject {
    Q_OBJECT

private slots:
    void blockLayout_data();
    void blockLayout();
    void checksumIsBadOnTheChosenBlockOnly();
    void calculationKeepsAverageAndMaxHold();
    void memoryBAndTheDifference();
    void triggerAnswersWhenItsLevelIsPassed_data();
    void triggerAnswersWhenItsLevelIsPassed();
    void blockTimeOnTheLine_data();
    void blockTimeOnTheLine();
    void singleSweepSweepsThenEndsWithReady_data();
    void singleSweepSweepsThenEndsWithReady();
    void pseudoTerminalHoldsStallAndStop();
};

void TraceBlockTest::blockLayout_data()
{
    QTest::addColumn<QString>("model");
    QTest::addColumn<QList<QByteArray>>("commands");
    QTest::addColumn<QByteArray>("centre");
    QTest::newRow("as switched on") << "K320-A" << QList<QByteArray>{} << QByteArray("0500.000");
    QTest::newRow("FM band") << "K310-A" << QList<QByteArray>{"#cf0087.500"} << QByteArray("0087.500");
    QTest::newRow("top of the K550-B") << "K550-B" << QList<QByteArray>{"#cf2999.999"} << QByteArray("2999.999");
    QTest::newRow("zero span, 5 dB") << "K320-A" << QList<QByteArray>{"#cf0433.920", "#sp0", "#db5"}
                                     << QByteArray("0433.920");
}

void TraceBlockTest::blockLayout()
{
    QFETCH(QString, model);
    QFETCH(QList<QByteArray>, commands);
    QFETCH(QByteArray, centre);
    Analyser a(model);
    const QByteArray block = blockAfter(a, commands);
    QCOMPARE(block.size(), 2048);
    QCOMPARE(block.mid(kTracePoints + 17, 8), centre); // characters 18 to 25 of the text
    QVERIFY(!block.mid(kTracePoints, 43).contains('\r'));
    QCOMPARE(checksumOf(block), sumOf(block));
    QCOMPARE(block.back(), '\r');
    QCOMPARE(a.blocks(), qint64(1));
}

void TraceBlockTest::checksumIsBadOnTheChosenBlockOnly()
{
    Analyser a;
    a.corruptChecksumOf = {3};
    for (int n = 1; n <= 4; ++n) {
        const QByteArray block = blockAfter(a, {});
        QCOMPARE(checksumOf(block) == sumOf(block), n != 3);
    }
    QCOMPARE(a.blocks(), qint64(4));
}

void TraceBlockTest::calculationKeepsAverageAndMaxHold()
{
    Analyser a;
    QCOMPARE(reply(a, "#dm1"), QByteArray("RD\r"));
    for (int sweep = 0; sweep < 8; ++sweep)
        blockAfter(a, {"#vm0"});
    reply(a, "#es1"); // holds the last sweep: the three blocks below show one state
    const QByteArray sample = blockAfter(a, {"#vm0"});
    const QByteArray average = blockAfter(a, {"#vm3"});
    const QByteArray maxhold = blockAfter(a, {"#vm4"});
    int excess = 0;
    for (int i = 1; i <= kTracePoints; ++i) {
        QVERIFY(sampleAt(average, i) <= sampleAt(maxhold, i));
        QVERIFY(sampleAt(sample, i) <= sampleAt(maxhold, i));
        excess += sampleAt(maxhold, i) - sampleAt(average, i);
    }
    QVERIFY2(excess > 3 * kTracePoints, "the noise should vary from sweep to sweep");

    // "#dm1" starts afresh: after one sweep all three traces agree.
    reply(a, "#dm1");
    reply(a, "#ss1");
    QCOMPARE(blockAfter(a, {"#vm3"}).left(kTracePoints), blockAfter(a, {"#vm0"}).left(kTracePoints));
    QCOMPARE(blockAfter(a, {"#vm4"}).left(kTracePoints), blockAfter(a, {"#vm0"}).left(kTracePoints));

    // "#dm0" stops it: new sweeps leave max hold alone.
    reply(a, "#dm0");
    reply(a, "#es0");
    const QByteArray held = blockAfter(a, {"#vm4"});
    blockAfter(a, {"#vm0"});
    QCOMPARE(blockAfter(a, {"#vm4"}).left(kTracePoints), held.left(kTracePoints));
}

void TraceBlockTest::memoryBAndTheDifference()
{
    Analyser a;
    std::vector<Emitter> steady = Scene::standardEmitters();
    std::erase_if(steady, [](const Emitter &e) { return e.timing != Emitter::Timing::Continuous; });
    a.scene = Scene(steady);
    reply(a, "#es1");
    reply(a, "#ss1");
    const QByteArray sample = blockAfter(a, {"#vm0"});
    QCOMPARE(reply(a, "#sa"), QByteArray("RD\r"));
    QCOMPARE(blockAfter(a, {"#vm1"}).left(kTracePoints), sample.left(kTracePoints));
    QCOMPARE(blockAfter(a, {"#vm2"}).left(kTracePoints), QByteArray(kTracePoints, char(227)));

    // A new sweep of a scene without pulsed or modulated emitters: strong signals sit on the
    // reference line, noise around it.
    reply(a, "#es0");
    const QByteArray difference = blockAfter(a, {"#vm2"});
    int spread = 0;
    for (int i = 1; i <= kTracePoints; ++i) {
        const int offset = sampleAt(difference, i) - 227;
        spread += std::abs(offset);
        if (sampleAt(sample, i) > 150)
            QVERIFY2(std::abs(offset) <= 1, qPrintable(QString("point %1: %2").arg(i).arg(offset)));
    }
    QVERIFY(spread < 6 * kTracePoints);
}

void TraceBlockTest::triggerAnswersWhenItsLevelIsPassed_data()
{
    QTest::addColumn<QList<QByteArray>>("commands");
    QTest::addColumn<QByteArray>("answer");
    // The strongest signal of the standard scene is the clock at -35 dBm; the trigger level is
    // taken like the reference level, before the attenuator.
    QTest::newRow("passed") << QList<QByteArray>{"#tr-50.0"} << QByteArray("RD\rRD\r");
    QTest::newRow("not passed") << QList<QByteArray>{"#tr-27.0"} << QByteArray("RD\r");
    QTest::newRow("not passed behind 20 dB") << QList<QByteArray>{"#at20", "#tr-50.0"} << QByteArray("RD\r");
    QTest::newRow("off") << QList<QByteArray>{"#tr-50.0", "#tr0"} << QByteArray("RD\r");
}

void TraceBlockTest::triggerAnswersWhenItsLevelIsPassed()
{
    QFETCH(QList<QByteArray>, commands);
    QFETCH(QByteArray, answer);
    Analyser a;
    QByteArray last;
    for (const QByteArray &command : commands)
        last = reply(a, command);
    QCOMPARE(last, answer);
}

void TraceBlockTest::blockTimeOnTheLine_data()
{
    QTest::addColumn<qint32>("rate");
    QTest::addColumn<qint64>("stallAfter");
    QTest::addColumn<double>("stallSeconds");
    QTest::addColumn<qint64>("stopAfter");
    QTest::addColumn<int>("bytes");
    QTest::newRow("4800") << 4800 << qint64(-1) << 0.0 << qint64(-1) << 2048;
    QTest::newRow("115200") << 115200 << qint64(-1) << 0.0 << qint64(-1) << 2048;
    QTest::newRow("stall in the middle") << 19200 << qint64(1000) << 1.5 << qint64(-1) << 2048;
    QTest::newRow("stall before the first byte") << 4800 << qint64(0) << 0.25 << qint64(-1) << 2048;
    QTest::newRow("stop in the middle") << 19200 << qint64(-1) << 0.0 << qint64(1000) << 1000;
    QTest::newRow("stall, then stop") << 9600 << qint64(500) << 2.0 << qint64(1500) << 1500;
}

void TraceBlockTest::blockTimeOnTheLine()
{
    QFETCH(qint32, rate);
    QFETCH(qint64, stallAfter);
    QFETCH(double, stallSeconds);
    QFETCH(qint64, stopAfter);
    QFETCH(int, bytes);
    SimBench b;
    b.analyser.rate = rate;
    b.online();
    b.analyser.stallAfterByte = stallAfter;
    b.analyser.stallSeconds = stallSeconds;
    b.analyser.stopAfterByte = stopAfter;
    const double start = b.clock->steadySeconds();
    QVERIFY(sendWithEcho(*b.ctx, "#bm1"));
    QCOMPARE(waitFor(b, 2048, 30.0), bytes);
    // Five characters echoed, the quiet time from the carriage return's arrival while its echo
    // goes back, then the block, and the stall on top.
    const double expected = (2 * 5 - 1 + 2.25 + bytes) * 10.0 / rate + stallSeconds;
    QVERIFY2(qAbs(lastArrival(b) - start - expected) < 1e-9,
             qPrintable(QString("%1 s instead of %2 s").arg(lastArrival(b) - start).arg(expected)));
    b.clock->sleep(60.0);
    QCOMPARE(b.port->bytesWaiting(), bytes); // after a stop nothing more comes
    // The faults were for that block only.
    QVERIFY(sendWithEcho(*b.ctx, "#bm1"));
    b.port->discardInput();
    QCOMPARE(waitFor(b, 2048, 30.0), 2048);
}

void TraceBlockTest::singleSweepSweepsThenEndsWithReady_data()
{
    QTest::addColumn<QByteArray>("bandwidth");
    QTest::addColumn<double>("shortest");
    QTest::newRow("1000 MHz at 1000 kHz") << QByteArray("#bw1000") << 0.02;
    QTest::newRow("1000 MHz at 9 kHz") << QByteArray("#bw9") << 1.0;
}

void TraceBlockTest::singleSweepSweepsThenEndsWithReady()
{
    QFETCH(QByteArray, bandwidth);
    QFETCH(double, shortest);
    SimBench b;
    b.online();
    QVERIFY(sendCommand(*b.ctx, bandwidth));
    b.port->clearTraffic();
    QVERIFY(sendWithEcho(*b.ctx, "#ss1"));
    const double echoed = b.clock->steadySeconds();
    QCOMPARE(waitFor(b, 2048 + 3, 10.0), 2048 + 3);
    QVERIFY(b.port->sentByUnit().endsWith("\rRD\r"));
    // The sweep runs between the echo and the block, well inside the program's 4 s per byte.
    const double firstOfBlock = lastArrival(b) - (2048 + 3) * 10.0 / b.analyser.rate;
    QVERIFY2(firstOfBlock - echoed >= shortest && firstOfBlock - echoed < 2.5,
             qPrintable(QString::number(firstOfBlock - echoed)));
}

void TraceBlockTest::pseudoTerminalHoldsStallAndStop()
{
    Analyser a;
    a.stallAfterByte = 100;
    a.stallSeconds = 0.4;
    a.stopAfterByte = 300;
    PtyServer server(a);
    QVERIFY2(server.open(), qPrintable(server.error));
    int stop[2];
    QCOMPARE(::pipe(stop), 0);
    std::thread serving([&] { server.serve(stop[0]); });
    const int line = ::open(qPrintable(server.slavePath()), O_RDWR | O_NOCTTY);
    termios settings{};
    ::tcgetattr(line, &settings);
    ::cfmakeraw(&settings);
    ::cfsetspeed(&settings, B19200);
    ::tcsetattr(line, TCSANOW, &settings);

    // Reads until `count` bytes are in, or nothing has come for a second; gives the seconds taken.
    QByteArray got;
    const auto readUntil = [&](int count) {
        const auto start = std::chrono::steady_clock::now();
        pollfd in{line, POLLIN, 0};
        char bytes[4096];
        while (got.size() < count && ::poll(&in, 1, 1000) > 0) {
            const ssize_t n = ::read(line, bytes, size_t(std::min<qsizetype>(sizeof bytes, count - got.size())));
            got.append(bytes, int(std::max<ssize_t>(n, 0)));
        }
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    };
    QCOMPARE(::write(line, "#bm1\r", 5), ssize_t(5));
    readUntil(5 + 100);
    QCOMPARE(got.size(), 5 + 100);
    const double stalled = readUntil(5 + 101);
    QVERIFY2(stalled > 0.3, qPrintable(QString::number(stalled)));
    readUntil(5 + 2048);
    QCOMPARE(got.size(), 5 + 300);

    QCOMPARE(::write(stop[1], "x", 1), ssize_t(1));
    serving.join();
    ::close(line);
    ::close(stop[0]);
    ::close(stop[1]);
}

QTEST_GUILESS_MAIN(TraceBlockTest)
#include "trace_block_test.moc"
