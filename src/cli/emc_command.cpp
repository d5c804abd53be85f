#include "cli/emc_command.h"

#include "cli/console_prompts.h"
#include "cli/unit_commands.h"
#include "emc/run_controller.h"
#include "link/discovery.h"
#include "store/database.h"
#include "store/measurement_file.h"

#include <QCoreApplication>
#include <QSocketNotifier>
#include <QSqlQuery>

#include <csignal>
#include <cstdio>
#include <sys/socket.h>
#include <unistd.h>

namespace {

// Ctrl-C reaches the event loop through a socket pair: the handler may only write a byte.
int interruptPipe[2] = {-1, -1};
bool interrupted = false;
// The first failure of the link during the run, which tells the reason; the prompts keep it
// here, since other prompts (the simulator's operator) may stand between them and the context.
std::optional<QString> linkFailure;

void onInterrupt(int)
{
    const char byte = 1;
    [[maybe_unused]] const auto written = ::write(interruptPipe[1], &byte, 1);
}

// The operator's boxes of a run wait on standard output; other boxes (a serial error) go to
// standard error as in every command. The file dialog takes the file of --out.
class RunPrompts : public ConsolePrompts {
public:
    explicit RunPrompts(const EmcRequest &request) : out_(request.out), yes_(request.yes) {}

    MsgAnswer messageBox(const QString &title, const QString &text, MsgButtons buttons) override
    {
        if (title != kSteppedTitle && title != kSweepStepTitle) {
            // Only the link's failures come as other boxes.
            if (!linkFailure)
                linkFailure = text.trimmed();
            return ConsolePrompts::messageBox(title, text, buttons);
        }
        std::printf("%s: %s%s\n", qPrintable(title), qPrintable(text), yes_ ? "" : " [Enter]");
        std::fflush(stdout);
        char line[256];
        // End of input, or Ctrl-C while waiting, stops the run after the box, as Stop would.
        if (!yes_ && !std::fgets(line, sizeof line, stdin))
            onInterrupt(0);
        return MsgAnswer::Ok;
    }
    std::optional<QString> saveFileDialog(const FileDialogRequest &) override { return out_; }

private:
    QString out_;
    bool yes_;
};

// Progress on standard error: a Step run at each caption of the scan (the frequency, time per
// step, ready at); a Sweep + Step run at each second of a segment's wait (its centre, the seconds
// left in it).
class ConsoleRunControls : public RunControls {
public:
    void setProgressCaption(const QString &text) override
    {
        RunControls::setProgressCaption(text);
        std::fprintf(stderr, "%s MHz - %s\n", qPrintable(frequencyLabel), qPrintable(text));
    }
    void setBlocksLabel(const QString &text) override
    {
        // The segment wait shows seconds ("9s"); the step passes count blocks.
        if (text != blocksLabel && text.endsWith(QLatin1Char('s')))
            std::fprintf(stderr, "segment %s MHz - %s left\n", qPrintable(frequencyLabel), qPrintable(text));
        RunControls::setBlocksLabel(text);
    }
};

void catchInterrupt(Context &ctx, QObject &owner)
{
    if (::socketpair(AF_UNIX, SOCK_STREAM, 0, interruptPipe) != 0)
        return;
    auto *notifier = new QSocketNotifier(interruptPipe[0], QSocketNotifier::Read, &owner);
    QObject::connect(notifier, &QSocketNotifier::activated, &owner, [&ctx] {
        char byte;
        [[maybe_unused]] const auto read = ::read(interruptPipe[0], &byte, 1);
        interrupted = true;
        stopEmcRun(ctx);
    });
    struct sigaction action = {};
    action.sa_handler = onInterrupt;
    sigemptyset(&action.sa_mask);
    sigaction(SIGINT, &action, nullptr); // no restart: a wait for Enter ends at once
}

bool testExists(Context &ctx, const QString &name)
{
    QSqlQuery query(workingDatabase(ctx));
    query.prepare(QStringLiteral("select name from test where trim(name) = ? collate nocase"));
    query.addBindValue(name.trimmed());
    return query.exec() && query.next();
}

// Timer2 without the main frame: one tick each 10 ms while it is on, the events in between.
void tickSteppedScan(Context &ctx)
{
    while (ctx.run().timer2Enabled) {
        QCoreApplication::processEvents();
        ctx.clock.sleep(0.01);
        ctx.run().setTimer2Enabled(false);
        call(ctx.calls.steppedScanStep);
    }
}

} // namespace

std::unique_ptr<Prompts> runPrompts(const EmcRequest &request)
{
    return std::make_unique<RunPrompts>(request);
}

int emcCommand(Context &ctx, const EmcRequest &request)
{
    if (!openCliDatabase(ctx, request.database))
        return 1;
    if (!testExists(ctx, request.test)) {
        fail("unknown test: " + request.test);
        return 2;
    }
    ConsoleRunControls controls;
    ctx.attachRunControls(&controls);
    QObject owner;
    catchInterrupt(ctx, owner);
    AppState &s = ctx.state;
    s.emcTestName = request.test.trimmed();
    s.emcMode = 1;
    startEmcRun(ctx);
    tickSteppedScan(ctx);
    // The ending of a Step run leaves the unit remote; the command gives it back, as every command does.
    if (!linkFailure && s.emcScanMode == 1)
        goLocal(ctx);
    ctx.attachRunControls(nullptr);
    const auto summary = describeMeasurementFile(request.out);
    std::printf("rows written: %d\n", summary ? summary->rowCount : 0);
    if (linkFailure)
        return fail(*linkFailure);
    return interrupted ? 130 : 0;
}
