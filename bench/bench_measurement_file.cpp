// Cost of the writes and reads of a measurement file on disk: a whole .mes file (create and
// write), target below 20 ms; one row of an .emc file of 2001 rows (open, find by frequency,
// update one column, close), target below 3 ms; opening an .emc file of 100,000 rows and its
// first paint at 1600 x 1000, target below 100 ms; describing a file of 1,000,000 rows as
// `delfor-cli info` does, target below 0.5 s, and the peak memory of `delfor-cli info` on it,
// target below 100 MB; exporting an .emc file of 100,000 rows with all sixteen columns filled as
// CSV, as `delfor-cli export` does, target below 300 ms. Medians of many runs.

#include "chart/chart_painter.h"
#include "chart/grafik_controls.h"
#include "chart/image_canvas.h"
#include "core/clock.h"
#include "core/context.h"
#include "core/scripted_prompts.h"
#include "link/qt_serial_port.h"
#include "store/data_view.h"
#include "store/measurement_csv.h"
#include "store/measurement_file.h"
#include "store/sqlite_file.h"

#include <QDir>
#include <QGuiApplication>
#include <QProcess>
#include <QSqlQuery>
#include <QTemporaryDir>

#include <algorithm>
#include <cmath>
#include <chrono>
#include <cstdio>
#include <vector>

#include <sys/resource.h>

namespace {

constexpr int kMesRuns = 41;
constexpr int kRowRuns = 201;
constexpr double kMesTargetMs = 20.0;
constexpr double kRowTargetMs = 3.0;
constexpr int kOpenRuns = 21;
constexpr int kInfoRuns = 7;
constexpr double kOpenTargetMs = 100.0;
constexpr double kInfoTargetMs = 500.0;
constexpr double kInfoTargetMb = 100.0;
constexpr int kExportRuns = 11;
constexpr double kExportTargetMs = 300.0;

template <typename Run>
double medianMilliseconds(int runs, Run run)
{
    std::vector<double> times;
    for (int k = 0; k < runs; ++k) {
        const auto t0 = std::chrono::steady_clock::now();
        run(k);
        times.push_back(std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - t0).count());
    }
    std::nth_element(times.begin(), times.begin() + runs / 2, times.end());
    return times[runs / 2];
}

QString frequencyText(float frequency) { return QString::number(frequency, 'f', 3); }

// An .emc file as a Step run leaves it: the header and one row per 0.5 MHz step.
void writeEmcFile(Context &ctx)
{
    createMeasurementFile(ctx);
    writeEmcHeader(ctx);
    SqliteFile file(ctx.state.measurementFileName);
    DataView rows(file.handle());
    rows.setSource(QStringLiteral("select * from measurement"));
    QList<QVariantList> values;
    for (int i = 0; i < 2001; ++i)
        values.append({0.5 * i, -1000.0, -1000.0, -1000.0, -1000.0});
    rows.appendRows({"Frequency", "Sample_dBmW", "H_Average_dBmW", "H_Maxhold_dBmW", "H_QPeak_dBmW"}, values);
}

// One detector result into its row, as a stepped scan stores it.
void updateEmcRow(const QString &path, float frequency, double level)
{
    SqliteFile file(path);
    DataView rows(file.handle());
    rows.setSource(QStringLiteral("select * from measurement order by frequency"));
    if (rows.findFirst(QStringLiteral("frequency = ") + frequencyText(frequency)) && rows.edit()) {
        rows.setValue(QStringLiteral("H_Maxhold_dBmW"), level);
        rows.update();
    }
}

// An .emc file of a Sweep + Step run with `count` rows from 30 MHz up, written in chunks.
void writeLongEmcFile(Context &ctx, int count)
{
    AppState &s = ctx.state;
    s.emcScanMode = 2;
    s.emcViewMaxhold = s.emcViewAverage = s.emcViewQPeak = s.emcViewAmbient = s.emcViewAmbientH = 1;
    createMeasurementFile(ctx);
    writeEmcHeader(ctx);
    SqliteFile file(s.measurementFileName);
    DataView rows(file.handle());
    rows.setSource(QStringLiteral("select * from measurement"));
    const QStringList columns{"Frequency", "Sample_dBmW", "Average_dBmW", "Maxhold_dBmW", "QPeak_dBmW",
                              "memory_dBmW", "Ambient_H_dBmW"};
    constexpr int kChunk = 100000;
    for (int first = 0; first < count; first += kChunk) {
        QList<QVariantList> values;
        for (int i = first; i < std::min(count, first + kChunk); ++i) {
            const double level = -80 + 20 * std::sin(i * 0.001) + i % 7;
            values.append({30 + i * (970.0 / count), i % 50 == 0 ? 1 : 0, level - 6, level, level - 3, level - 1, -90});
        }
        rows.appendRows(columns, values);
    }
}

// The chart form's three pictures and its painter on a context of their own.
struct Chart {
    Chart()
        : ctx(Platform{std::make_unique<SystemClock>(), std::make_unique<ScriptedPrompts>(),
                       std::make_unique<QtSerialPort>()}),
          picture1(1600, 1000), picture2(60, 1000), picture3(1600, 30),
          painter(ctx, picture1, picture2, picture3, controls)
    {
    }
    Context ctx;
    GrafikControls controls;
    ImageCanvas picture1, picture2, picture3;
    ChartPainter painter;
};

// Peak memory of `delfor-cli info` on `path`, MB; negative when it did not run to its end.
double infoPeakMegabytes(const QString &path)
{
    QProcess info;
    info.start(QCoreApplication::applicationDirPath() + QStringLiteral("/../src/delfor-cli"), {"info", path});
    if (!info.waitForFinished(60000) || info.exitCode() != 0)
        return -1.0;
    rusage usage{};
    getrusage(RUSAGE_CHILDREN, &usage); // the largest child so far: this is the only one
    return usage.ru_maxrss / 1024.0;
}

void report(const char *what, double value, const char *unit, double target, int runs)
{
    std::printf("%-62s %9.2f %s (target < %.0f %s)%s, median of %d\n", what, value, unit, target, unit,
                value >= 0 && value < target ? "" : " MISSED", runs);
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    QTemporaryDir dir(QDir::currentPath() + QStringLiteral("/bench-mes-XXXXXX"));
    Context ctx(Platform{std::make_unique<SystemClock>(), std::make_unique<ScriptedPrompts>(),
                         std::make_unique<QtSerialPort>()});
    AppState &s = ctx.state;
    for (int i = 1; i <= s.pointCount; ++i) {
        s.traces.sampleTrace[i] = qint16(-200 + i % 97);
        s.traces.averageTrace[i] = qint16(-210 + i % 53);
        s.traces.maxholdTrace[i] = qint16(-190 + i % 71);
        s.traces.memoryTrace[i] = qint16(-220 + i % 31);
    }

    const double mes = medianMilliseconds(kMesRuns, [&](int k) {
        s.measurementFileName = dir.filePath(QStringLiteral("trace%1.mes").arg(k % 4));
        createMeasurementFile(ctx);
        writeTraceMeasurement(ctx);
    });
    report("writing a .mes file (create + write, 2001 points)", mes, "ms", kMesTargetMs, kMesRuns);

    s.measurementFileName = dir.filePath(QStringLiteral("run.emc"));
    writeEmcFile(ctx);
    const double row = medianMilliseconds(kRowRuns, [&](int k) {
        updateEmcRow(s.measurementFileName, 0.5f * float((k * 37) % 2001), -40.0 - k % 10);
    });
    report("one EMC row (open, find, update, close) in 2001 rows", row, "ms", kRowTargetMs, kRowRuns);

    s.measurementFileName = dir.filePath(QStringLiteral("long.emc"));
    writeLongEmcFile(ctx, 100000);
    const double open = medianMilliseconds(kOpenRuns, [&](int) {
        Chart chart;
        chart.ctx.state.measurementFileName = s.measurementFileName;
        readMeasurementFile(chart.ctx);
        chart.painter.paintChart();
    });
    report("opening an .emc file of 100,000 rows and its first paint", open, "ms", kOpenTargetMs, kOpenRuns);

    {
        // Every column filled: levels in the horizontal round's columns, nothing measured in the vertical's.
        SqliteFile file(s.measurementFileName);
        QSqlQuery(file.handle())
            .exec(QStringLiteral("update measurement set Ambient_V_dBmW = -1000, V_memory_dBmW = -1000, "
                                 "H_memory_dBmW = memory_dBmW, H_Average_dBmW = Average_dBmW, "
                                 "H_Maxhold_dBmW = Maxhold_dBmW, H_QPeak_dBmW = QPeak_dBmW, V_Average_dBmW = -1000, "
                                 "V_Maxhold_dBmW = -1000, V_QPeak_dBmW = -1000"));
    }
    const double csv = medianMilliseconds(kExportRuns, [&](int) {
        exportMeasurementCsv(s.measurementFileName, dir.filePath(QStringLiteral("long.csv")));
    });
    report("exporting an .emc file of 100,000 rows as CSV", csv, "ms", kExportTargetMs, kExportRuns);

    s.measurementFileName = dir.filePath(QStringLiteral("huge.emc"));
    writeLongEmcFile(ctx, 1000000);
    const double info = medianMilliseconds(kInfoRuns, [&](int) { describeMeasurementFile(s.measurementFileName); });
    report("describing a file of 1,000,000 rows (info)", info, "ms", kInfoTargetMs, kInfoRuns);
    const double peak = infoPeakMegabytes(s.measurementFileName);
    report("peak memory of delfor-cli info on it", peak, "MB", kInfoTargetMb, 1);
    std::fflush(stdout);
    return mes < kMesTargetMs && row < kRowTargetMs && open < kOpenTargetMs && csv < kExportTargetMs
                   && info < kInfoTargetMs && peak >= 0
                   && peak < kInfoTargetMb
               ? 0
               : 1;
}
