#include "cli/export_command.h"

#include "cli/unit_commands.h"
#include "store/measurement_csv.h"

#include <cstdio>
#include <optional>

namespace {

const char kExportUsage[] =
    "usage: delfor-cli export FILE.mes|FILE.emc --csv OUT.csv|-\n"
    "Writes a stored measurement as CSV (- is standard output), replacing OUT only when complete.\n"
    "A .mes file gives Frequency_MHz,Sample_dBm,Average_dBm,Maxhold_dBm,Memory_dBm; an .emc file\n"
    "every column of its rows: Frequency_MHz, Selected_for_step (1 = measured by the detectors in a\n"
    "Sweep + Step run), then the levels from Average_dBm to V_QPeak_dBm. One line per row in frequency\n"
    "order, levels in dBm as stored. A cell is empty where the file holds no value, and in an .emc\n"
    "file where it holds -1000 (nothing measured).\n";

struct ExportOptions {
    QString file;
    QString csv;
    bool help = false;
};

std::optional<ExportOptions> parseExport(const QStringList &args, QString &error)
{
    ExportOptions o;
    for (int i = 1; i < args.size() && error.isEmpty(); ++i) {
        const QString &arg = args[i];
        if (arg == "--help" || arg == "-h")
            o.help = true;
        else if (arg == "--csv" && i + 1 < args.size())
            o.csv = args[++i];
        else if (arg == "--csv")
            error = "--csv needs a value";
        else if (o.file.isEmpty() && !arg.startsWith('-'))
            o.file = arg;
        else
            error = "unknown argument: " + arg;
    }
    if (error.isEmpty() && !o.help && o.file.isEmpty())
        error = "export needs a measurement file";
    if (error.isEmpty() && !o.help && o.csv.isEmpty())
        error = "export needs --csv OUT.csv or --csv -";
    if (!error.isEmpty())
        return std::nullopt;
    return o;
}

} // namespace

int exportCommand(const QStringList &args)
{
    QString error;
    const auto o = parseExport(args, error);
    if (!o)
        return refuseArguments(kExportUsage, error);
    if (o->help) {
        std::fputs(kExportUsage, stdout);
        return 0;
    }
    if (o->csv != "-") {
        const QString failure = exportMeasurementCsv(o->file, o->csv);
        return failure.isEmpty() ? 0 : fail(failure);
    }
    QString fault;
    const std::optional<QByteArray> csv = measurementCsv(o->file, &fault);
    if (!csv)
        return fail(fault);
    return writeOut("-", *csv) ? 0 : fail("cannot write to standard output");
}
