// Cost of the two writes of a measurement file on disk: a whole .mes file (create and write),
// target below 20 ms; one row of an .emc file of 2001 rows (open, find by frequency, update
// one column, close), target below 3 ms. Medians of many runs.

#include "core/clock.h"
#include "core/context.h"
#include "core/scripted_prompts.h"
#include "link/qt_serial_port.h"
#include "store/data_view.h"
#include "store/measurement_file.h"
#include "store/sqlite_file.h"

#include <QCoreApplication>
#include <QDir>
#include <QTemporaryDir>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <vector>

namespace {

constexpr int kMesRuns = 41;
constexpr int kRowRuns = 201;
constexpr double kMesTargetMs = 20.0;
constexpr double kRowTargetMs = 3.0;

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

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
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
    std::printf("writing a .mes file (create + write, 2001 points): %.2f ms (target < %.0f ms), median of %d\n", mes,
                kMesTargetMs, kMesRuns);

    s.measurementFileName = dir.filePath(QStringLiteral("run.emc"));
    writeEmcFile(ctx);
    const double row = medianMilliseconds(kRowRuns, [&](int k) {
        updateEmcRow(s.measurementFileName, 0.5f * float((k * 37) % 2001), -40.0 - k % 10);
    });
    std::printf("one EMC row (open, find, update, close) in 2001 rows: %.2f ms (target < %.0f ms), median of %d\n",
                row, kRowTargetMs, kRowRuns);
    std::fflush(stdout);
    return mes < kMesTargetMs && row < kRowTargetMs ? 0 : 1;
}
