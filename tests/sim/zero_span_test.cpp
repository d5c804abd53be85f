// Zero span in single sweeps, as the stepped scan uses it: the block comes a sweep time after
// "#ss1", reports its centre frequency, and its time signal sets the detectors apart.

#include "support/sim_bench.h"
#include "emc/block_detector.h"
#include "link/commands.h"
#include "link/serial_link.h"
#include "link/trace_transfer.h"

#include <QTest>

#include <cmath>

class ZeroSpanTest : public QObject {
    Q_OBJECT

private slots:
    void singleSweepBlock_data();
    void singleSweepBlock();
};

void ZeroSpanTest::singleSweepBlock_data()
{
    QTest::addColumn<QByteArray>("centre");
    QTest::addColumn<float>("reported");
    QTest::addColumn<bool>("pulsed");
    QTest::newRow("carrier at 1000.120 MHz") << QByteArray("#cf1000.120") << 1000.12f << false;
    QTest::newRow("clock harmonic at 48 MHz") << QByteArray("#cf0048.000") << 48.0f << false;
    QTest::newRow("spikes at 10 Hz, lower band") << QByteArray("#cf0020.000") << 20.0f << true;
    QTest::newRow("spikes at 100 Hz") << QByteArray("#cf0160.000") << 160.0f << true;
    QTest::newRow("spikes at 1 kHz") << QByteArray("#cf0850.000") << 850.0f << true;
    QTest::newRow("bursts at 200 Hz") << QByteArray("#cf0433.920") << 433.92f << true;
}

void ZeroSpanTest::singleSweepBlock()
{
    QFETCH(QByteArray, centre);
    QFETCH(float, reported);
    QFETCH(bool, pulsed);
    SimBench b;
    std::vector<Emitter> emitters = Scene::standardEmitters();
    emitters.push_back({1000.12, -40.0});
    b.analyser.scene = Scene(emitters);
    b.online();
    for (const char *command : {"#sp0", "#bw120", "#es1"})
        QVERIFY(sendCommand(*b.ctx, command));
    QVERIFY(sendCommand(*b.ctx, centre));
    AppState &s = b.state();
    s.emcViewAverage = s.emcViewQPeak = 1;

    QVERIFY(sendWithEcho(*b.ctx, "#ss1"));
    const double started = b.clock->steadySeconds();
    const double sweep = b.analyser.scene.sweepTime(b.analyser.panel);
    QVERIFY(std::abs(sweep - 1.0005) < 1e-9);
    b.clock->sleep(sweep * 0.99);
    QCOMPARE(b.port->bytesWaiting(), 0);
    // Asked for while the analyser still sweeps, the block is waited for byte by byte.
    receiveTraceBlock(*b.ctx);
    QCOMPARE(int(s.serialError), 0);
    const double took = b.clock->steadySeconds() - started;
    const double lineTime = (2048 + 3) * 10.0 / b.analyser.rate;
    QVERIFY2(took > sweep + lineTime && took < sweep + lineTime + 0.01, qPrintable(QString::number(took)));
    QCOMPARE(s.analyser.centerFrequency, reported);

    const BlockLevels levels = detectBlock(*b.ctx, stepDivisors(s));
    const QString seen = QString("peak %1, quasi-peak %2, average %3").arg(levels.peak).arg(levels.qpeak).arg(levels.average);
    if (pulsed)
        QVERIFY2(levels.peak > levels.qpeak && levels.qpeak > levels.average + 3.0, qPrintable(seen));
    else
        QVERIFY2(levels.peak - levels.average < 1.0 && std::abs(levels.qpeak - levels.average) < 1.0, qPrintable(seen));
}

QTEST_GUILESS_MAIN(ZeroSpanTest)
#include "zero_span_test.moc"
