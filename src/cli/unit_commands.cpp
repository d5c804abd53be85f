#include "cli/unit_commands.h"

#include "cli/console_prompts.h"
#include "core/clock.h"
#include "link/qt_serial_port.h"
#include "output/logic_wiring.h"

#include "link/commands.h"
#include "link/discovery.h"
#include "signal/trace_store.h"
#include "store/database.h"
#include "store/measurement_csv.h"
#include "store/measurement_file.h"

#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

namespace {

bool connected(Context &ctx)
{
    if (ctx.state.online == 0)
        connectUnit(ctx);
    return ctx.state.online == 1; // otherwise the error box has told why
}

// The traces as CSV in the columns of a .mes file's export, with the same numbers as the .mes
// file written from them; a trace that was not read has empty cells.
QByteArray traceCsv(const AppState &s, const QStringList &traces)
{
    const TraceStore &t = s.traces;
    const auto level = [&](const TraceArray &trace, int i, const char *name) -> std::optional<float> {
        return traces.contains(QLatin1String(name)) ? std::optional<float>(float(trace[i] / 2.5)) : std::nullopt;
    };
    LevelCsv csv(traceCsvColumns());
    for (int i = 1; i <= s.pointCount && i < kTraceSize; ++i) {
        const std::optional<float> row[] = {traceFrequency(s, i), level(t.sampleTrace, i, "sample"),
                                            level(t.averageTrace, i, "average"), level(t.maxholdTrace, i, "maxhold"),
                                            level(t.memoryTrace, i, "memory")};
        csv.addRow(row);
    }
    return csv.text();
}

// The traces just read as a .mes file, in the program's format.
int writeMes(Context &ctx, const QString &path)
{
    ctx.state.measurementFileName = path;
    if (!createMeasurementFile(ctx))
        return fail("cannot create " + path);
    writeTraceMeasurement(ctx);
    // Checked where the writer put it: the name without its trailing blanks.
    const auto written = describeMeasurementFile(measurementFilePath(ctx.state));
    if (!written || written->rowCount != ctx.state.pointCount || written->settings.isEmpty())
        return fail("cannot write " + path);
    return 0;
}

} // namespace

int fail(const QString &message)
{
    std::fprintf(stderr, "delfor-cli: %s\n", qPrintable(message));
    return 1;
}

int refuseArguments(const char *usage, const QString &message)
{
    std::fputs(usage, stderr);
    fail(message);
    return 2;
}

bool openCliDatabase(Context &ctx, const std::optional<QString> &database)
{
    ctx.dataFolder = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
    if (database) {
        if (!QFileInfo(*database).isFile()) {
            fail(*database + " does not exist");
            return false;
        }
        ctx.state.databasePath = *database;
    }
    openWorkingDatabase(ctx);
    if (!workingDatabase(ctx).isOpen()) {
        fail(ctx.state.databasePath + " is no working database");
        return false;
    }
    return true;
}

std::unique_ptr<Context> offlineContext()
{
    auto ctx = std::make_unique<Context>(Platform{std::make_unique<SystemClock>(), std::make_unique<ConsolePrompts>(),
                                                  std::make_unique<QtSerialPort>()});
    attachLogic(*ctx);
    return ctx;
}

bool writeOut(const QString &path, const QByteArray &bytes)
{
    if (path != "-")
        return saveWhole(path, bytes).isEmpty();
    QFile file;
    return file.open(stdout, QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.flush();
}

int identifyUnit(Context &ctx, std::FILE *out)
{
    if (!connected(ctx) || !goLocal(ctx))
        return 1;
    std::fprintf(out, "model: %s\nfirmware: %s\n", qPrintable(ctx.state.unitModel),
                 qPrintable(ctx.state.firmwareVersion));
    std::fflush(out);
    return 0;
}

int readUnit(Context &ctx, const ReadRequest &request)
{
    if (!connected(ctx))
        return 1;
    AppState &s = ctx.state;
    readAllSettings(ctx);
    s.viewSample = request.traces.contains("sample");
    s.viewAverage = request.traces.contains("average");
    s.viewMaxhold = request.traces.contains("maxhold");
    s.viewMemoryB = request.traces.contains("memory");
    s.viewMemoryAB = 0;
    if (s.viewAverage || s.viewMaxhold) {
        s.analyser.calculationOn = 1; // the analyser calculates average and max hold itself
        calculationStart(ctx);
    }
    readTraces(ctx);
    if (s.online != 1 || !goLocal(ctx))
        return 1;
    if (!writeOut(request.csv, traceCsv(s, request.traces)))
        return fail("cannot write " + request.csv);
    return request.mes ? writeMes(ctx, *request.mes) : 0;
}
