#include "support/measurement_fixture.h"
#include "support/sim_bench.h"
#include "emc/run_controller.h"
#include "emc/sweep_scan.h"
#include "signal/trace_store.h"
#include "store/measurement_file.h"
#include "store/sqlite_file.h"

#include <QSet>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>

namespace {

using Points = QList<QPointF>; // frequency in MHz, level in dB

// A Sweep + Step context against the simulated K320-A on the virtual clock, with the run's file.
struct SweepBench : SimBench {
    SweepBench(double start, double stop, double step, quint16 bandwidth,
               std::optional<DeviceBoxes> deviceBoxes = std::nullopt)
        : SimBench(QStringLiteral("K320-A"), QStringLiteral("1.40"), QTime(10, 0), deviceBoxes)
    {
        attachSignalProcessing(*ctx);
        online();
        AppState &s = state();
        s.chart.startFrequency = float(start);
        s.chart.stopFrequency = float(stop);
        s.stepWidth = float(step);
        s.analyser.bandwidth = bandwidth;
        s.sweepTime = 1;
        s.horizontalRound = -1;
        s.measurementFileName = file();
        // Each segment's ends as the block read reports them.
        const auto convert = ctx->calls.convertBlock;
        ctx->calls.convertBlock = [this, convert] {
            segments << QPointF(state().chart.startFrequency, state().chart.stopFrequency);
            convert();
        };
    }
    QString file() const { return dir.filePath("run.emc"); }

    // The peak limit line of the file.
    void writeLimit(const Points &points) const
    {
        SqliteFile db(file());
        QSqlQuery q(db.handle());
        for (const QPointF &p : points)
            q.exec(QString("insert into Limitlines (maxfreq, Maxhold_dBmW) values (%1, %2)").arg(p.x()).arg(p.y()));
    }

    // One column of the rows in frequency order; Frequency as the file keys it.
    QStringList column(const QString &name) const
    {
        SqliteFile db(file());
        QSqlQuery q(db.handle());
        q.exec("select " + name + " from Measurement order by Frequency");
        QStringList out;
        while (q.next())
            out << QString::number(q.value(0).toDouble(), 'f', 3);
        return out;
    }

    // A whole run of the test in hand against `limit`, each round noted as it begins.
    void runAgainst(const Points &limit)
    {
        prompts->answerFile("Select Measurement", file());
        ctx->calls.sweepRound = [this, limit] {
            // The line the header would have written from the limit in force.
            if (rounds.isEmpty())
                writeLimit(limit);
            const AppState &s = state();
            rounds << Round{s.ambientRound, s.horizontalRound == -1, analyser.scene.deviceOn(),
                            int(column("Frequency").size())};
            sweepRound(*ctx);
        };
        startEmcRun(*ctx);
    }

    // What a round found when it began: its kind, its polarisation, the device and the rows.
    struct Round {
        quint8 ambient;
        bool horizontal;
        bool deviceOn;
        int rowsBefore;
        bool operator==(const Round &) const = default;
    };

    QTemporaryDir dir;
    QList<QPointF> segments;
    QList<Round> rounds;
};

// The highest level of `levels` within 0.3 MHz of `frequency`.
double peakNear(const QStringList &frequencies, const QStringList &levels, double frequency)
{
    double peak = -10000;
    for (qsizetype i = 0; i < frequencies.size(); ++i)
        if (std::abs(frequencies[i].toDouble() - frequency) <= 0.3)
            peak = std::max(peak, levels[i].toDouble());
    return peak;
}

// `part` lies in `all` as one unbroken run.
bool containsRun(const QStringList &all, const QStringList &part)
{
    const qsizetype at = all.indexOf(part.value(0));
    return at >= 0 && all.mid(at, part.size()) == part;
}

} // namespace

class SweepScanTest : public QObject {
    Q_OBJECT

private slots:
    // The grid of one round: segments of the bandwidth's span, abutting, the last reaching past
    // the stop; a row each step width, the first above the stop still written.
    void roundGrid_data()
    {
        QTest::addColumn<double>("start");
        QTest::addColumn<double>("stop");
        QTest::addColumn<double>("step");
        QTest::addColumn<int>("bandwidth");
        QTest::addColumn<double>("limitStart");
        QTest::addColumn<int>("segments");
        QTest::addColumn<QPointF>("lastSegment");
        QTest::addColumn<int>("rows");
        QTest::addColumn<QStringList>("run"); // consecutive rows somewhere in the file
        QTest::addColumn<QString>("lastRow");
        // A limit from the start: no row of its own.
        QTest::newRow("30-1000 MHz at 120 kHz") << 30.0 << 1000.0 << 0.12 << 120 << 30.0 << 49
                                                << QPointF(990, 1010) << 8085
                                                << QStringList{"30.000", "30.120", "30.240"} << "1000.080";
        // Samples lie 1 kHz apart in a 2 MHz segment: each one gets a row.
        QTest::newRow("step below the sample spacing") << 10.0 << 11.0 << 0.0005 << 9 << 5.0 << 1 << QPointF(10, 12)
                                                       << 1002 << QStringList{"10.000", "10.001", "10.002"}
                                                       << "11.001";
        // The limit starts off the grid: it gets its row, and the grid goes on from there.
        QTest::newRow("limit starts inside the range") << 30.0 << 70.0 << 0.12 << 120 << 50.05 << 2
                                                       << QPointF(50, 70) << 335
                                                       << QStringList{"49.920", "50.040", "50.050", "50.170"}
                                                       << "69.970";
    }
    void roundGrid()
    {
        QFETCH(double, start);
        QFETCH(double, stop);
        QFETCH(double, step);
        QFETCH(int, bandwidth);
        QFETCH(double, limitStart);
        QFETCH(int, segments);
        QFETCH(QPointF, lastSegment);
        QFETCH(int, rows);
        QFETCH(QStringList, run);
        QFETCH(QString, lastRow);
        SweepBench b(start, stop, step, quint16(bandwidth));
        QVERIFY(createMeasurementFile(*b.ctx));
        b.writeLimit({{limitStart, -50}, {1100, -50}});
        b.state().ambientRound = 1; // no selection and step pass after the sweep
        const double began = b.clock->steadySeconds();
        sweepRound(*b.ctx);
        QCOMPARE(b.segments.size(), segments);
        QCOMPARE(b.segments.first(), QPointF(start, start + b.state().analyser.span));
        QCOMPARE(b.segments.last(), lastSegment);
        const QStringList frequencies = b.column("Frequency");
        QCOMPARE(frequencies.size(), rows);
        QVERIFY2(containsRun(frequencies, run), qPrintable(run.join(' ')));
        QCOMPARE(frequencies.last(), lastRow);
        // Each segment waits out the sweep time before it is read.
        QVERIFY(b.clock->steadySeconds() - began > segments * 1.0);
        QCOMPARE(b.state().chart.startFrequency, float(start));
        QCOMPARE(b.state().chart.stopFrequency, float(stop));
        QVERIFY(!b.state().busy);
    }

    // The marks of one selection pass. Rows carry their level in the round's column; the other
    // polarisation's column holds a level that would select every row.
    void selectionMarks_data()
    {
        QTest::addColumn<Points>("limit");
        QTest::addColumn<bool>("logarithmic");
        QTest::addColumn<double>("distance");
        QTest::addColumn<bool>("vertical");
        QTest::addColumn<Points>("rows");
        QTest::addColumn<QList<double>>("marks");
        const Points flat{{30, -50}, {100, -50}};
        QTest::newRow("on a flat limit") << flat << false << 0.0 << false
                                         << Points{{40, -50}, {50, -50.1}, {60, -20}} << QList<double>{1, 0, 1};
        QTest::newRow("within the distance") << flat << false << -6.0 << false
                                             << Points{{40, -56}, {50, -56.5}} << QList<double>{1, 0};
        QTest::newRow("vertical round") << flat << false << 0.0 << true << Points{{40, -49}, {50, -51}}
                                        << QList<double>{1, 0};
        // Below the first point nothing is selected; above the last nothing is classified.
        QTest::newRow("outside the line") << flat << false << 0.0 << false
                                          << Points{{20, 0}, {30, -50}, {100, -50}, {100.5, 0}}
                                          << QList<double>{0, 1, 1, -1000};
        // The linear form as the line is compared: l2 at f1, running away towards f2 (-30 at
        // 65 MHz, where an interpolation would give -45).
        const Points sloping{{30, -50}, {100, -40}, {200, -40}};
        QTest::newRow("sloping, linear") << sloping << false << 0.0 << false
                                         << Points{{30, -41}, {30.1, -39.9}, {65, -35}, {65.1, -29.9}}
                                         << QList<double>{0, 1, 0, 1};
        // At the end point of a sloping segment the form divides by zero: the pass ends there,
        // unless the row lies below both levels of the segment.
        QTest::newRow("division by zero") << sloping << false << 0.0 << false
                                          << Points{{40, 0}, {100, -45}, {150, 0}} << QList<double>{1, -1000, -1000};
        QTest::newRow("below at the end point") << sloping << false << 0.0 << false
                                                << Points{{100, -60}, {150, 0}} << QList<double>{0, 1};
        // Logarithmic: the level halfway at the geometric middle of 30..300 MHz.
        QTest::newRow("sloping, logarithmic") << Points{{30, -40}, {300, -50}} << true << 0.0 << false
                                              << Points{{30, -40}, {94.868, -44.9}, {94.869, -45.1}}
                                              << QList<double>{1, 1, 0};
    }
    void selectionMarks()
    {
        QFETCH(Points, limit);
        QFETCH(bool, logarithmic);
        QFETCH(double, distance);
        QFETCH(bool, vertical);
        QFETCH(Points, rows);
        QFETCH(QList<double>, marks);
        SweepBench b(30, 300, 0.12, 120);
        AppState &s = b.state();
        s.limitDistance = float(distance);
        s.maxholdLimitLog = logarithmic ? -1 : 0;
        s.horizontalRound = vertical ? 0 : -1;
        QVERIFY(writeMeasurementTable(b.file(), {"Frequency", "Sample_dBmW", "H_memory_dBmW", "V_memory_dBmW"},
                                      int(rows.size()), [&](int i) {
                                          const double level = rows[i].y();
                                          return QVariantList{rows[i].x(), -1000.0, vertical ? 100.0 : level,
                                                              vertical ? level : 100.0};
                                      }));
        {
            SqliteFile db(b.file());
            QVERIFY(QSqlQuery(db.handle()).exec("create table Limitlines (avefreq REAL, Average_dBmW REAL, "
                                                "maxfreq REAL, Maxhold_dBmW REAL)"));
        }
        b.writeLimit(limit);
        selectCriticalFrequencies(*b.ctx);
        QList<double> seen;
        for (const QString &mark : b.column("Sample_dBmW"))
            seen << mark.toDouble();
        QCOMPARE(seen, marks);
    }

    // Whole runs of both polarisations against a limit at -60 dB, 6 dB off: the rows are made in
    // the first round, every row is marked, and only the marked rows are measured again. The
    // device's comb lies at 36, 48 and 60 MHz, broadcast carriers at 42.36 and 55.8 MHz. With
    // ambient, each polarisation first sweeps with the device switched off, into its own column
    // and without selection or step pass; the ambient plays no part in the choice of frequencies.
    void wholeRun_data()
    {
        using R = SweepBench::Round;
        QTest::addColumn<bool>("ambient");
        QTest::addColumn<QList<R>>("rounds");
        QTest::addColumn<QStringList>("boxes");
        const QString box = kSweepStepTitle + "|";
        QTest::newRow("without ambient") << false << QList<R>{{0, true, true, 0}, {0, false, true, 334}}
                                         << QStringList{box + kHorizontalText, box + kVerticalText};
        QTest::newRow("with ambient")
            << true << QList<R>{{1, true, false, 0}, {0, true, true, 334}, {2, false, false, 334}, {0, false, true, 334}}
            << QStringList{box + kHorizontalText, box + kDutOffText, box + kDutOnText,
                           box + kVerticalText,   box + kDutOffText, box + kDutOnText};
    }
    void wholeRun()
    {
        QFETCH(bool, ambient);
        QFETCH(QList<SweepBench::Round>, rounds);
        QFETCH(QStringList, boxes);
        SweepBench b(30, 70, 0.12, 120, SweepBench::DeviceBoxes{kDutOffText, kDutOnText});
        std::vector<Emitter> scene;
        for (const double f : {36.0, 48.0, 60.0})
            scene.push_back({f, -40.0, 0.0, Emitter::Timing::Continuous, 0.0, 0.0, true});
        for (const double f : {42.36, 55.8})
            scene.push_back({f, -45.0});
        b.analyser.scene = Scene(scene);
        AppState &s = b.state();
        s.emcScanMode = 0;
        s.testHorizontal = s.testVertical = -1;
        s.ambientOn = ambient ? 1 : 0;
        s.limitDistance = -6.0f;
        b.runAgainst({{30, -60}, {100, -60}});
        QCOMPARE(b.rounds, rounds);
        QCOMPARE(b.prompts->messages(), boxes);
        QVERIFY(b.analyser.scene.deviceOn());

        const QStringList frequencies = b.column("Frequency"), marks = b.column("Sample_dBmW");
        QCOMPARE(frequencies.size(), 334);
        const QList<double> emitters{36.0, 48.0, 60.0, 42.36, 55.8};
        // Each polarisation's sweep fills every row and holds comb and carriers; its ambient the
        // carriers only.
        for (const QString polarisation : {"H", "V"}) {
            const QStringList memory = b.column(polarisation + "_memory_dBmW"),
                              background = b.column("ambient_" + polarisation + "_dBmW");
            QVERIFY(std::all_of(memory.begin(), memory.end(), [](const QString &v) { return v.toDouble() > -200; }));
            for (const double f : emitters)
                QVERIFY2(peakNear(frequencies, memory, f) > -50, qPrintable(QString::number(f)));
            for (const double f : {36.0, 48.0, 60.0})
                QVERIFY2(ambient ? peakNear(frequencies, background, f) < -80
                                 : peakNear(frequencies, background, f) == -1000,
                         qPrintable(QString::number(f)));
            for (const double f : {42.36, 55.8})
                QVERIFY2(ambient ? std::abs(peakNear(frequencies, background, f) - peakNear(frequencies, memory, f)) < 3
                                 : peakNear(frequencies, background, f) == -1000,
                         qPrintable(QString::number(f)));
        }
        // The marks are those of the last round; each round stepped its own selection, which
        // holds the carriers as well as the comb.
        const QStringList hMaxhold = b.column("H_Maxhold_dBmW"), vMaxhold = b.column("V_Maxhold_dBmW");
        QStringList selected[2];
        for (qsizetype i = 0; i < marks.size(); ++i) {
            QVERIFY(marks[i] == "1.000" || marks[i] == "0.000");
            QCOMPARE(vMaxhold[i].toDouble() > -1000, marks[i] == "1.000");
            if (hMaxhold[i].toDouble() > -1000)
                selected[0] << frequencies[i];
            if (vMaxhold[i].toDouble() > -1000)
                selected[1] << frequencies[i];
        }
        for (const QStringList &round : selected) {
            QSet<int> found;
            for (const QString &row : round) {
                const auto near = std::find_if(emitters.begin(), emitters.end(),
                                               [&](double f) { return std::abs(row.toDouble() - f) < 0.3; });
                QVERIFY2(near != emitters.end(), qPrintable(round.join(' ')));
                found << int(near - emitters.begin());
            }
            QCOMPARE(found.size(), emitters.size());
        }
        QCOMPARE(s.emcRunActive, qint16(0));
        QVERIFY(!s.busy);
    }

    // A segment is stored while the analyser measures the next one. A Stop in that wait keeps every
    // segment read so far and none of the one in hand.
    void stopKeepsTheSegmentsRead_data()
    {
        QTest::addColumn<int>("stopAtPaint");
        QTest::addColumn<QString>("lastRow");
        QTest::newRow("in the second segment") << 1 << "49.920";
        QTest::newRow("in the third segment") << 2 << "69.960";
    }
    void stopKeepsTheSegmentsRead()
    {
        QFETCH(int, stopAtPaint);
        QFETCH(QString, lastRow);
        SweepBench b(30, 90, 0.12, 120);
        AppState &s = b.state();
        s.emcScanMode = 0;
        s.testHorizontal = -1;
        s.testVertical = 0;
        int paints = 0;
        b.ctx->calls.paintChart = [&] {
            if (++paints == stopAtPaint)
                s.emcStopRequest = 1;
        };
        b.runAgainst({{30, -60}, {100, -60}});
        QCOMPARE(b.segments.size(), stopAtPaint);
        QCOMPARE(b.column("Frequency").constLast(), lastRow);
        QVERIFY(!b.port->sentByProgram().contains("#ss1"));
    }

    // Without a limit line a run measures nothing and says nothing.
    void runWithoutLimitMeasuresNothing()
    {
        SweepBench b(30, 70, 0.12, 120);
        AppState &s = b.state();
        s.emcScanMode = 0;
        s.testHorizontal = -1;
        s.testVertical = 0;
        b.runAgainst({});
        QVERIFY(b.column("Frequency").isEmpty());
        QVERIFY(b.segments.isEmpty());
        QVERIFY(!b.port->sentByProgram().contains("#vm4"));
        QCOMPARE(b.prompts->messages(), QStringList{kSweepStepTitle + "|" + kHorizontalText});
    }
};

QTEST_GUILESS_MAIN(SweepScanTest)
#include "sweep_scan_test.moc"
