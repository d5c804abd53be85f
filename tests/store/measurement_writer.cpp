// Saves the same .mes file over and over until it is killed; prints a line after each save.
// The measurement file test kills it at chosen moments and opens what is left.

#include "core/clock.h"
#include "core/context.h"
#include "core/scripted_prompts.h"
#include "store/measurement_file.h"
#include "support/no_port.h"

#include <QCoreApplication>
#include <cstdio>

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    if (argc < 2)
        return 2;
    Context ctx(Platform{std::make_unique<VirtualClock>(), std::make_unique<ScriptedPrompts>(), std::make_unique<NoPort>()});
    ctx.state.measurementFileName = QString::fromLocal8Bit(argv[1]);
    for (int i = 1; i <= ctx.state.pointCount; ++i)
        ctx.state.traces.sampleTrace[i] = qint16(-100 - i % 50);
    for (int n = 0;; ++n) {
        saveTraceMeasurement(ctx);
        std::printf("%d\n", n);
        std::fflush(stdout);
    }
}
