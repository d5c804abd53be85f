#include "cli/results_command.h"

#include "chart/comparison_trace.h"
#include "cli/unit_commands.h"
#include "output/result_table.h"

#include <cstdio>
#include <optional>

namespace {

const char kResultsUsage[] =
    "usage: delfor-cli results FILE.emc [--all] [--csv OUT|-] [--compare OTHER.emc|OTHER.mes] [--database FILE]\n"
    "The rows the detectors measured (--all: every row), worst margin first: per detector the level in\n"
    "the file's unit, the limit there, the margin (level - limit), the verdict and the polarisation.\n"
    "--compare adds the difference of the peak to the other file's level at the same frequency.\n"
    "Without --csv an aligned table on standard output. Without --database: the working database of\n"
    "the user's data folder, which gives the unit's offset.\n";

struct ResultsOptions {
    QString file;
    std::optional<QString> csv, compare, database;
    bool all = false, help = false;
};

std::optional<ResultsOptions> parseResults(const QStringList &args, QString &error)
{
    ResultsOptions o;
    for (int i = 1; i < args.size() && error.isEmpty(); ++i) {
        const QString &arg = args[i];
        const auto value = [&](std::optional<QString> &into) {
            if (i + 1 < args.size() && !args[i + 1].isEmpty())
                into = args[++i];
            else
                error = arg + " needs a value";
        };
        if (arg == "--csv")
            value(o.csv);
        else if (arg == "--compare")
            value(o.compare);
        else if (arg == "--database")
            value(o.database);
        else if (arg == "--all")
            o.all = true;
        else if (arg == "--help" || arg == "-h")
            o.help = true;
        else if (o.file.isEmpty() && !arg.startsWith('-'))
            o.file = arg;
        else
            error = "unknown argument: " + arg;
    }
    if (error.isEmpty() && o.file.isEmpty() && !o.help)
        error = "results needs an .emc file";
    if (!error.isEmpty())
        return std::nullopt;
    return o;
}

QByteArray csvText(const ResultTable &table)
{
    QByteArray out = resultColumns(table).join(',').toUtf8() + '\n';
    for (const ResultRow &row : table.rows)
        out += resultCells(table, row).join(',').toUtf8() + '\n';
    return out;
}

// Every column as wide as its widest cell, numbers and texts to the right, two blanks between.
QByteArray alignedText(const ResultTable &table)
{
    QList<QStringList> lines{resultColumns(table)};
    for (const ResultRow &row : table.rows)
        lines << resultCells(table, row);
    QList<qsizetype> widths(lines[0].size(), 0);
    for (const QStringList &line : lines)
        for (qsizetype c = 0; c < line.size(); ++c)
            widths[c] = std::max(widths[c], line[c].size());
    QByteArray out;
    for (const QStringList &line : lines) {
        QStringList padded;
        for (qsizetype c = 0; c < line.size(); ++c)
            padded << line[c].rightJustified(widths[c]);
        out += padded.join(QStringLiteral("  ")).toUtf8() + '\n';
    }
    return out;
}

} // namespace

int resultsCommand(const QStringList &args)
{
    QString error;
    const auto o = parseResults(args, error);
    if (!o)
        return refuseArguments(kResultsUsage, error);
    if (o->help) {
        std::fputs(kResultsUsage, stdout);
        return 0;
    }
    const auto owned = offlineContext();
    Context &ctx = *owned;
    if (!openCliDatabase(ctx, o->database))
        return 1;
    std::optional<std::vector<ComparisonPoint>> compared;
    if (o->compare) {
        compared = readComparisonTrace(*o->compare, &error);
        if (!compared)
            return fail(error);
    }
    const auto table = readResultTable(ctx, o->file, {o->all, compared ? &*compared : nullptr}, &error);
    if (!table)
        return fail(error);
    const QString out = o->csv.value_or(QStringLiteral("-"));
    if (!writeOut(out, o->csv ? csvText(*table) : alignedText(*table)))
        return fail("cannot write " + out);
    return 0;
}
