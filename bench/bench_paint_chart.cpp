// Medians of paintChart on the on-screen canvas: four live traces of 2001 points on a
// 1600 x 1000 plot with two delivered limit lines and the known bands, and a stored .emc file
// of 100,000 rows.

#include "support/measurement_fixture.h"
#include "support/no_port.h"
#include "chart/chart_painter.h"
#include "chart/grafik_controls.h"
#include "chart/image_canvas.h"
#include "core/clock.h"
#include "core/context.h"
#include "core/scripted_prompts.h"
#include "store/database.h"

#include <QDir>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <algorithm>
#include <cmath>
#include <cstdio>

namespace {

struct Chart {
    Chart()
        : ctx(Platform{std::make_unique<VirtualClock>(), std::make_unique<ScriptedPrompts>(), std::make_unique<NoPort>()}),
          picture1(1600, 1000), picture2(60, 1000), picture3(1600, 30),
          painter(ctx, picture1, picture2, picture3, controls)
    {
        ctx.state.chart.grafikMin = -300;
        ctx.state.chart.grafikMax = 0;
    }
    Context ctx;
    GrafikControls controls;
    ImageCanvas picture1, picture2, picture3;
    ChartPainter painter;
};

double medianMs(Chart &chart, int runs)
{
    std::vector<double> times;
    chart.painter.paintChart(); // warm up
    for (int i = 0; i < runs; ++i) {
        QElapsedTimer timer;
        timer.start();
        chart.painter.paintChart();
        times.push_back(timer.nsecsElapsed() / 1e6);
    }
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

void report(const char *what, double median, double target)
{
    std::printf("%-48s median %8.3f ms   target < %5.1f ms   %s\n", what, median, target,
                median < target ? "ok" : "MISSED");
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);

    Chart live;
    AppState &s = live.ctx.state;
    s.viewSample = s.viewAverage = s.viewMaxhold = s.viewMemoryB = 1;
    TraceArray *traces[] = {&s.traces.sampleTrace, &s.traces.averageTrace, &s.traces.maxholdTrace,
                            &s.traces.memoryTrace};
    for (int t = 0; t < 4; ++t)
        for (int i = 1; i <= 2001; ++i)
            (*traces[t])[i] = qint16(-250 + 40 * t + 30 * std::sin(i * 0.05 * (t + 1)) + (i * 7919 % 13));
    report("live: four traces of 2001 points, 1600 x 1000", medianMs(live, 201), 5.0);

    // The same with the delivered working database: two limit lines and the known bands.
    QTemporaryDir dir;
    live.ctx.dataFolder = dir.path();
    s.databasePath = dir.filePath(kWorkingDatabaseName);
    openWorkingDatabase(live.ctx);
    auto limitNr = [&live](const char *name) {
        QSqlQuery query(workingDatabase(live.ctx));
        query.prepare(QStringLiteral("select limitnr from LimitHead where limitname = ?"));
        query.addBindValue(QString::fromLatin1(name));
        return query.exec() && query.next() ? query.value(0).toInt() : 0;
    };
    s.maxholdLimitNr = limitNr("EN 55032 B 3m QP");
    s.averageLimitNr = limitNr("EN 55032 B 10m QP");
    s.viewLimitMax = s.viewLimitAverage = 1;
    s.chart.showKnownBands = -1;
    s.chart.startFrequency = 30;
    s.chart.stopFrequency = 1000;
    if (s.maxholdLimitNr == 0 || s.averageLimitNr == 0)
        std::printf("the delivered limits were not found\n");
    report("live: the same with two limits and the known bands", medianMs(live, 201), 5.0);
    closeWorkingDatabase(live.ctx);

    const QString path = dir.filePath(QStringLiteral("bench.emc"));
    const QStringList columns{"Frequency", "Sample_dBmW", "Average_dBmW", "Maxhold_dBmW", "QPeak_dBmW",
                              "memory_dBmW", "Ambient_H_dBmW"};
    writeMeasurementTable(path, columns, 100000, [](int i) {
        const double level = -80 + 20 * std::sin(i * 0.001) + i % 7;
        return QVariantList{30 + i * 0.0097, i % 50 == 0 ? 1 : 0, level - 6, level, level - 3, level - 1, -90};
    });
    Chart stored;
    AppState &e = stored.ctx.state;
    e.traceFrozen = 1;
    e.emcMode = 2;
    e.measurementFileName = path;
    e.viewAverage = e.viewMaxhold = e.viewQPeak = e.viewMemoryB = 1;
    e.emcViewAmbientH = e.emcViewAmbient = e.emcCalcAmbient = 1;
    e.analyser.span = 0;
    e.chart.startFrequency = 30;
    e.chart.stopFrequency = 1000;
    report("stored: .emc file of 100,000 rows", medianMs(stored, 31), 50.0);
    return 0;
}
