// A Read under line faults ends in a right trace or in the one error box, never in a trace taken
// with a wrong setting; a silent unit is given up within the bound at any time of day.

#include "link/commands.h"
#include "link/discovery.h"
#include "signal/trace_store.h"
#include "support/sim_bench.h"

#include <QRandomGenerator>
#include <QTest>

#include <numeric>

namespace {

enum class Fault { LostEcho, StrayLocal, NoiseByte };

// A connected bench whose panel differs from the program's defaults in every field a Read takes.
struct FaultBench : SimBench {
    FaultBench()
    {
        SimPanel &p = analyser.panel;
        p.centerFrequency = 300.0;
        p.span = 200;
        p.refLevel = -50.0;
        p.attenuator = 20.0;
        p.bandwidth = 120;
        p.videoFilter = 1;
        p.tgOn = 1;
        p.tgLevel = -20.0;
        p.dbPerDivision = 5;
        p.uncal = 1;
        attachSignalProcessing(*ctx);
        state().viewSample = 1;
        state().viewMemoryB = 0;
        connectUnit(*ctx);
    }

    void inject(Fault fault, qint64 at)
    {
        switch (fault) {
        case Fault::LostEcho: port->lostEchoes.insert(at); break;
        case Fault::StrayLocal: port->strayAfter.insert(at, "LO\r"); break;
        case Fault::NoiseByte: port->strayAfter.insert(at, "\xff"); break;
        }
    }

    // The panel and the trace's window as the program took them.
    QString taken()
    {
        const AnalyserSettings &a = state().analyser;
        return QStringLiteral("cf %1 sp %2 rl %3 at %4 bw %5 vf %6 tg %7 tl %8 db %9 uc %10 window %11-%12")
            .arg(a.centerFrequency).arg(a.span).arg(a.refLevel).arg(a.attenuator).arg(a.bandwidth)
            .arg(a.videoFilter).arg(a.tgOn).arg(a.tgLevel).arg(a.dbPerDivision).arg(state().uncalibratedFlag)
            .arg(state().chart.startFrequency).arg(state().chart.stopFrequency);
    }

    // The same as the analyser really has it.
    QString truth() const
    {
        const SimPanel &p = analyser.panel;
        return QStringLiteral("cf %1 sp %2 rl %3 at %4 bw %5 vf %6 tg %7 tl %8 db %9 uc %10 window %11-%12")
            .arg(p.centerFrequency).arg(p.span).arg(p.refLevel).arg(p.attenuator).arg(p.bandwidth)
            .arg(p.videoFilter).arg(p.tgOn).arg(p.tgLevel).arg(p.dbPerDivision).arg(p.uncal)
            .arg(p.centerFrequency - p.span / 2).arg(p.centerFrequency + p.span / 2);
    }

    // The mean level of the sample trace in dB (0 while none was taken): the noise differs from
    // sweep to sweep, the mean hardly.
    double meanLevel()
    {
        const auto &t = state().traces.sampleTrace;
        return std::accumulate(t.begin() + 1, t.begin() + 1 + state().pointCount, 0.0) / state().pointCount / 2.5;
    }
};

// A clean Read on a fresh bench: where its analyser bytes and echoes lie, and its mean level.
struct CleanRead {
    qint64 firstByte, lastByte, firstEcho, lastEcho, blockStart;
    double meanLevel;
};

CleanRead cleanRead()
{
    FaultBench b;
    CleanRead r;
    r.firstByte = b.port->unitBytesSent() + 1;
    r.firstEcho = b.port->echoesSent() + 1;
    b.port->clearTraffic();
    readAllSettings(*b.ctx);
    readTraces(*b.ctx);
    r.lastByte = b.port->unitBytesSent();
    r.lastEcho = b.port->echoesSent();
    r.blockStart = r.firstByte + b.port->sentByUnit().indexOf("#bm1\r") + 5;
    r.meanLevel = b.meanLevel();
    if (!b.prompts->shown.isEmpty() || b.taken() != b.truth())
        qFatal("the clean Read is not right: %s", qPrintable(b.taken()));
    return r;
}

// How Reads under faults ended.
struct Tally {
    int runs = 0, boxes = 0;
    QStringList wrong;

    // One Read with faults put in by `arm`: either no box and the truth, or the one box and no
    // trace at all or a right one.
    template <typename Arm>
    void run(const CleanRead &clean, const QString &what, Arm arm)
    {
        FaultBench b;
        arm(b);
        readAllSettings(*b.ctx);
        readTraces(*b.ctx);
        ++runs;
        const double mean = b.meanLevel();
        const bool rightLevels = qAbs(mean - clean.meanLevel) < 1.0;
        const QStringList boxes_ = b.prompts->messages();
        if (!boxes_.isEmpty())
            ++boxes;
        if (boxes_.size() > 1 || (boxes_.size() == 1 && !boxes_.first().startsWith("Serial - Error|")))
            wrong << what + ": boxes " + boxes_.join(" / ");
        else if (boxes_.isEmpty() && (b.taken() != b.truth() || !rightLevels))
            wrong << what + ": " + b.taken() + " mean " + QString::number(mean);
        else if (!boxes_.isEmpty() && mean != 0.0 && !rightLevels)
            wrong << what + " after the box: mean " + QString::number(mean);
    }

    void report(const char *name)
    {
        qInfo("%s: %d runs, %d ended in the error box, %d wrong", name, runs, boxes, int(wrong.size()));
    }
};

} // namespace
Q_DECLARE_METATYPE(Fault)

class LineFaultsTest : public QObject {
    Q_OBJECT

private slots:
    void readUnderOneFaultAnywhere_data();
    void readUnderOneFaultAnywhere();
    void readUnderSeededFaults();
    void silentUnitBeforeMidnightIsNotFoundWithinBound();
};

void LineFaultsTest::readUnderOneFaultAnywhere_data()
{
    QTest::addColumn<Fault>("fault");
    QTest::newRow("an echo lost") << Fault::LostEcho;
    QTest::newRow("a stray LO") << Fault::StrayLocal;
    QTest::newRow("a noise byte") << Fault::NoiseByte;
}

// The fault in turn on every echo, or behind every byte the analyser sends during a Read; inside
// the trace block only at its edges and every 128th byte.
void LineFaultsTest::readUnderOneFaultAnywhere()
{
    QFETCH(Fault, fault);
    const CleanRead clean = cleanRead();
    const bool onEchoes = fault == Fault::LostEcho;
    const qint64 first = onEchoes ? clean.firstEcho : clean.firstByte;
    const qint64 last = onEchoes ? clean.lastEcho : clean.lastByte;
    Tally tally;
    for (qint64 n = first; n <= last; ++n) {
        const qint64 inBlock = n - clean.blockStart;
        if (!onEchoes && inBlock > 2 && inBlock < 2042 && inBlock % 128 != 0)
            continue;
        tally.run(clean, QString("fault at %1").arg(n - first + 1), [&](FaultBench &b) { b.inject(fault, n); });
    }
    tally.report(QTest::currentDataTag());
    QVERIFY2(tally.wrong.isEmpty(), qPrintable(tally.wrong.join('\n')));
}

// Seeded runs with one to three faults of any kind anywhere in the Read, the block included.
void LineFaultsTest::readUnderSeededFaults()
{
    const CleanRead clean = cleanRead();
    QRandomGenerator random(20260105);
    Tally tally;
    for (int run = 0; run < 100; ++run) {
        QList<QPair<Fault, qint64>> faults;
        for (int count = 1 + random.bounded(3); count > 0; --count) {
            const auto fault = Fault(random.bounded(3));
            faults.append({fault, fault == Fault::LostEcho ? random.bounded(clean.firstEcho, clean.lastEcho + 1)
                                                            : random.bounded(clean.firstByte, clean.lastByte + 1)});
        }
        tally.run(clean, QString("run %1").arg(run), [&](FaultBench &b) {
            for (const auto &[fault, at] : faults)
                b.inject(fault, at);
        });
    }
    tally.report("seeded");
    QVERIFY2(tally.wrong.isEmpty(), qPrintable(tally.wrong.join('\n')));
}

void LineFaultsTest::silentUnitBeforeMidnightIsNotFoundWithinBound()
{
    SimBench b("K320-A", "1.40", QTime(23, 59, 55));
    b.analyser.silent = true;
    connectUnit(*b.ctx);
    // Six rates, each with two tries of the first character of four seconds each.
    QVERIFY2(b.clock->steadySeconds() < 6 * 2 * 4.1, qPrintable(QString::number(b.clock->steadySeconds())));
    QCOMPARE(b.prompts->messages(), QStringList{"Serial - Error|Unit not found"});
    // The state still shows the start of the last wait as seconds since midnight: after midnight.
    QVERIFY2(b.state().commTimerStart < 60.0f, qPrintable(QString::number(b.state().commTimerStart)));
}

QTEST_GUILESS_MAIN(LineFaultsTest)
#include "line_faults_test.moc"
