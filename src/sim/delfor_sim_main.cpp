// delfor-sim: the simulated analyser on a pseudo-terminal. Prints the device path as its first
// line and answers on it until SIGTERM or SIGINT. SIGUSR1 makes it send "PR" (its print key),
// SIGUSR2 "LO" (its local key).

#include "sim/pty_server.h"

#include <QStringList>

#include <csignal>
#include <cstdio>
#include <optional>
#include <sys/signalfd.h>
#include <unistd.h>

namespace {

const char kUsage[] =
    "usage: delfor-sim [--model K310-A|K320-A|K550-B] [--firmware TEXT] [--baud RATE] [--link PATH]\n";

struct Options {
    QString model = QStringLiteral("K320-A");
    QString firmware = QStringLiteral("1.40");
    qint32 baud = 19200;
    QString link;
};

std::optional<Options> parseOptions(const QStringList &args)
{
    static const QStringList models = {QStringLiteral("K310-A"), QStringLiteral("K320-A"), QStringLiteral("K550-B")};
    static const QList<qint32> rates = {4800, 9600, 19200, 38400, 115200};
    Options o;
    for (int i = 1; i < args.size(); ++i) {
        if (i + 1 >= args.size())
            return std::nullopt; // every option takes a value
        const QString &name = args[i];
        const QString value = args[++i];
        if (name == QLatin1String("--model") && models.contains(value))
            o.model = value;
        else if (name == QLatin1String("--firmware"))
            o.firmware = value;
        else if (name == QLatin1String("--baud") && rates.contains(value.toInt()))
            o.baud = value.toInt();
        else if (name == QLatin1String("--link") && !value.isEmpty())
            o.link = value;
        else
            return std::nullopt;
    }
    return o;
}

int fail(const QString &message)
{
    std::fprintf(stderr, "delfor-sim: %s\n", qPrintable(message));
    return 1;
}

} // namespace

int main(int argc, char **argv)
{
    QStringList args;
    for (int i = 0; i < argc; ++i)
        args.append(QString::fromLocal8Bit(argv[i]));
    const auto options = parseOptions(args);
    if (!options) {
        std::fputs(kUsage, stderr);
        return 2;
    }

    // Signals arrive as input on a descriptor, so the server acts on them between two bytes.
    sigset_t handled;
    sigemptyset(&handled);
    for (int number : {SIGTERM, SIGINT, SIGUSR1, SIGUSR2})
        sigaddset(&handled, number);
    sigprocmask(SIG_BLOCK, &handled, nullptr);
    const int signalFd = signalfd(-1, &handled, SFD_CLOEXEC);
    if (signalFd < 0)
        return fail(QStringLiteral("signalfd failed"));

    Analyser analyser(options->model, options->firmware);
    analyser.rate = options->baud;
    PtyServer server(analyser);
    if (!server.open() || (!options->link.isEmpty() && !server.addLink(options->link)))
        return fail(server.error);
    std::printf("%s\n", qPrintable(server.slavePath()));
    std::fflush(stdout);
    for (;;) {
        if (!server.serve(signalFd))
            return fail(server.error);
        signalfd_siginfo info{};
        if (::read(signalFd, &info, sizeof info) != ssize_t(sizeof info))
            continue;
        if (info.ssi_signo == SIGUSR1)
            server.sendUnsolicited("PR");
        else if (info.ssi_signo == SIGUSR2)
            server.sendUnsolicited("LO");
        else
            return 0;
    }
}
