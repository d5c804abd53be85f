// CPU use while the link waits for input on a real port (a pseudo-terminal nobody writes to):
// the wait must sleep in the system, not spin.

#include "core/clock.h"
#include "core/scripted_prompts.h"
#include "link/qt_serial_port.h"
#include "link/serial_link.h"

#include <QCoreApplication>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr int kRuns = 5;
constexpr double kTargetPercent = 5.0;

double cpuSeconds()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    const auto seconds = [](const timeval &t) { return double(t.tv_sec) + double(t.tv_usec) / 1e6; };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

double wallSeconds()
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    const int master = posix_openpt(O_RDWR | O_NOCTTY);
    if (master < 0 || grantpt(master) != 0 || unlockpt(master) != 0) {
        std::perror("bench_serial_wait: pseudo-terminal");
        return 1;
    }
    auto port = std::make_unique<QtSerialPort>();
    port->setDevicePaths({QString::fromLocal8Bit(ptsname(master))});
    Context ctx(Platform{std::make_unique<SystemClock>(), std::make_unique<ScriptedPrompts>(), std::move(port)});
    ctx.state.comPort = 1;
    ctx.state.serialTimeoutSeconds = 3;
    if (!openConfiguredPort(ctx)) {
        std::fprintf(stderr, "bench_serial_wait: cannot open %s\n", ptsname(master));
        return 1;
    }

    std::vector<double> percents;
    for (int run = 1; run <= kRuns; ++run) {
        const double cpu0 = cpuSeconds(), wall0 = wallSeconds();
        const bool arrived = waitForBytes(ctx, 1);
        const double cpu = cpuSeconds() - cpu0, wall = wallSeconds() - wall0;
        percents.push_back(100.0 * cpu / wall);
        std::printf("run %d: waited %.2f s (%s), CPU %.3f s = %.2f %% of one core\n", run, wall,
                    arrived ? "input came" : "timed out", cpu, percents.back());
    }
    std::sort(percents.begin(), percents.end());
    const double median = percents[percents.size() / 2];
    std::printf("serial wait CPU: %.2f %% of one core (target < %.0f %%), median of %d waits of %d s\n", median,
                kTargetPercent, kRuns, int(ctx.state.serialTimeoutSeconds));
    close(master);
    return median < kTargetPercent ? 0 : 1;
}
