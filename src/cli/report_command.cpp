#include "cli/report_command.h"

#include "chart/comparison_trace.h"
#include "cli/unit_commands.h"
#include "output/report_output.h"
#include "store/measurement_file.h"

#include <QFileInfo>
#include <cstdio>
#include <optional>

namespace {

const char kReportUsage[] =
    "usage: delfor-cli report FILE.mes|FILE.emc --pdf OUT.pdf [--landscape] [--black] [--headline TEXT] [--notes]\n"
    "                         [--compare OTHER.mes|OTHER.emc]\n"
    "       delfor-cli report FILE.mes|FILE.emc --png OUT.png [--compare OTHER.mes|OTHER.emc]\n";

struct ReportOptions {
    QString file, pdf, png, headline, compare;
    bool landscape = false, black = false, notes = false, headlineGiven = false;
};

std::optional<ReportOptions> parseReport(const QStringList &args, QString &error)
{
    ReportOptions o;
    for (int i = 1; i < args.size() && error.isEmpty(); ++i) {
        const QString &arg = args[i];
        const auto value = [&](QString &into) {
            if (i + 1 < args.size())
                into = args[++i];
            else
                error = arg + " needs a value";
        };
        if (arg == "--pdf")
            value(o.pdf);
        else if (arg == "--png")
            value(o.png);
        else if (arg == "--compare")
            value(o.compare);
        else if (arg == "--headline") {
            value(o.headline);
            o.headlineGiven = true;
        } else if (arg == "--landscape")
            o.landscape = true;
        else if (arg == "--black")
            o.black = true;
        else if (arg == "--notes")
            o.notes = true;
        else if (o.file.isEmpty() && !arg.startsWith('-'))
            o.file = arg;
        else
            error = "unknown argument: " + arg;
    }
    if (error.isEmpty() && o.file.isEmpty())
        error = "report needs a measurement file";
    if (error.isEmpty() && o.pdf.isEmpty() && o.png.isEmpty())
        error = "report needs --pdf OUT.pdf or --png OUT.png";
    if (!error.isEmpty())
        return std::nullopt;
    return o;
}

} // namespace

int reportCommand(const QStringList &args)
{
    QString error;
    const auto o = parseReport(args, error);
    if (!o)
        return refuseArguments(kReportUsage, error);
    const auto owned = offlineContext();
    Context &ctx = *owned;
    AppState &s = ctx.state;
    s.measurementFileName = o->file;
    if (const QString fault = readMeasurementFile(ctx); !fault.isEmpty())
        return fail(fault);
    if (!o->compare.isEmpty())
        if (const QString fault = compareWith(s.chart, o->compare); !fault.isEmpty())
            return fail(fault);
    s.printVertical = o->landscape ? 0 : 1;
    s.printInColour = o->black ? 0 : 1;
    s.printNotes = o->notes ? 1 : 0;
    if (o->headlineGiven)
        s.headline = o->headline;
    // The chart is painted first, as on the screen, so that the limit lines settle the level window.
    const QImage chart = chartPicture(ctx, QSize(1600, 1000));
    if (!o->png.isEmpty() && !chart.save(o->png, "PNG"))
        return fail("cannot write " + o->png);
    if (!o->pdf.isEmpty() && !writeReportPdf(ctx, o->pdf))
        return fail("cannot write " + o->pdf);
    return 0;
}
