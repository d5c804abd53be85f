#include "chart/comparison_command.h"

#include "chart/comparison_trace.h"
#include "core/context.h"

namespace {

const QString kCompareTitle = QStringLiteral("Compare with");
constexpr int kOpenFlags = 6148; // path and file must exist, hide read-only

// The chart shows the change at the next tick; the result table holds against the new trace.
void comparisonChanged(Context &ctx)
{
    ctx.state.repaintRequest = 1;
    if (ctx.calls.refreshResults)
        ctx.calls.refreshResults();
}

} // namespace

void compareWithCommand(Context &ctx)
{
    FileDialogRequest request;
    request.title = kCompareTitle;
    request.filter = QStringLiteral("Stored measurement (*.emc;*.mes) |*.emc;*.mes|EMC (*.emc) |*.emc|"
                                    "Measurement (*.mes) |*.mes");
    request.flags = kOpenFlags;
    const std::optional<QString> chosen = ctx.prompts.openFileDialog(request);
    if (!chosen)
        return;
    if (const QString fault = compareWith(ctx.state.chart, *chosen); !fault.isEmpty()) {
        ctx.prompts.messageBox(kCompareTitle, fault);
        return;
    }
    comparisonChanged(ctx);
}

void endComparisonCommand(Context &ctx)
{
    if (ctx.state.chart.comparePath.isEmpty())
        return;
    clearComparison(ctx.state.chart);
    comparisonChanged(ctx);
}
