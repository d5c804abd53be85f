#include "output/logic_wiring.h"

#include "chart/measurement_panel.h"
#include "core/context.h"
#include "emc/emc_test.h"
#include "emc/stepped_scan.h"
#include "emc/sweep_scan.h"
#include "output/report_output.h"
#include "signal/trace_store.h"
#include "store/catalogue_refresh.h"
#include "store/database.h"
#include "store/loss_gain.h"

void attachLogic(Context &ctx)
{
    attachSignalProcessing(ctx);
    attachStore(ctx);
    attachCatalogueRefresh(ctx);
    attachMeasurementPanel(ctx);
    attachEmcTest(ctx);
    ctx.calls.openWorkingDatabase = [&ctx] { openWorkingDatabase(ctx); };
    ctx.calls.steppedScanStep = [&ctx] { stepTick(ctx); };
    ctx.calls.sweepRound = [&ctx] { sweepRound(ctx); };
    ctx.calls.printNow = [&ctx] { printChartCommand(ctx); };
}
