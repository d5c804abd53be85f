#include "support/measurement_fixture.h"
#include "support/sim_bench.h"
#include "emc/run_controller.h"
#include "emc/sweep_scan.h"
#include "signal/trace_store.h"
#include "store/measurement_file.h"
#include "store/sqlite_file.h"

#include <QSqlQuery>
#include <QTemporaryDir>
#include <QTest>

namespace {

using Points = QList<QPointF>; // frequency in MHz, level in dB

// A Sweep + Step context against the simulated K320-A on the virtual clock, with the run's file.
struct SweepBench : SimBench {
    SweepBench(double start, double stop, double step, quint16 bandwidth)
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

    QTemporaryDir dir;
    QList<QPointF> segments;
};

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

    // A whole run, both polarisations, no ambient, against a carrier at 50 MHz: the rows are made
    // in the first round, every row is marked, and only the marked rows are measured again.
    void wholeRun()
    {
        SweepBench b(30, 70, 0.12, 120);
        b.analyser.scene = Scene({Emitter{50.0, -40.0}});
        AppState &s = b.state();
        s.emcScanMode = 0;
        s.testHorizontal = s.testVertical = -1;
        s.limitDistance = -6.0f;
        b.prompts->answerFile("Select Measurement", b.file());
        int rounds = 0;
        QList<int> rowsAtRound;
        b.ctx->calls.sweepRound = [&] {
            // The line the header would have written from the limit in force.
            if (rounds++ == 0)
                b.writeLimit({{30, -60}, {100, -60}});
            sweepRound(*b.ctx);
            rowsAtRound << int(b.column("Frequency").size());
        };
        startEmcRun(*b.ctx);
        QCOMPARE(rowsAtRound, (QList<int>{334, 334}));
        const QStringList marks = b.column("Sample_dBmW"), hMemory = b.column("H_memory_dBmW"),
                          vMemory = b.column("V_memory_dBmW"), hMaxhold = b.column("H_Maxhold_dBmW"),
                          vMaxhold = b.column("V_Maxhold_dBmW"), frequencies = b.column("Frequency");
        // The marks are those of the last round; each round stepped its own selection.
        QStringList selected[2];
        for (qsizetype i = 0; i < marks.size(); ++i) {
            QVERIFY(marks[i] == "1.000" || marks[i] == "0.000");
            QVERIFY(hMemory[i].toDouble() > -200 && vMemory[i].toDouble() > -200);
            QCOMPARE(vMaxhold[i].toDouble() > -1000, marks[i] == "1.000");
            if (hMaxhold[i].toDouble() > -1000)
                selected[0] << frequencies[i];
            if (vMaxhold[i].toDouble() > -1000)
                selected[1] << frequencies[i];
        }
        for (const QStringList &round : selected) {
            QVERIFY2(!round.isEmpty() && round.size() < 6, qPrintable(round.join(' ')));
            QVERIFY(std::abs(round.first().toDouble() - 50.0) < 0.3);
        }
        QCOMPARE(s.emcRunActive, qint16(0));
        QVERIFY(!s.busy);
    }

    // Without a limit line a run measures nothing and says nothing.
    void runWithoutLimitMeasuresNothing()
    {
        SweepBench b(30, 70, 0.12, 120);
        AppState &s = b.state();
        s.emcScanMode = 0;
        s.testHorizontal = -1;
        s.testVertical = 0;
        b.prompts->answerFile("Select Measurement", b.file());
        b.ctx->calls.sweepRound = [&] { sweepRound(*b.ctx); };
        startEmcRun(*b.ctx);
        QVERIFY(b.column("Frequency").isEmpty());
        QVERIFY(b.segments.isEmpty());
        QVERIFY(!b.port->sentByProgram().contains("#vm4"));
        QCOMPARE(b.prompts->messages(), QStringList{kSweepStepTitle + "|" + kHorizontalText});
    }
};

QTEST_GUILESS_MAIN(SweepScanTest)
#include "sweep_scan_test.moc"
