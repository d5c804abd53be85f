// delfor-cli: the headless companion over the same link code as the program.

#include "cli/catalogue_commands.h"
#include "cli/console_prompts.h"
#include "cli/emc_command.h"
#include "cli/export_command.h"
#include "cli/report_command.h"
#include "cli/results_command.h"
#include "cli/unit_commands.h"
#include "core/clock.h"
#include "emc/run_controller.h"
#include "link/discovery.h"
#include "link/qt_serial_port.h"
#include "output/logic_wiring.h"
#include "sim/device_switch.h"
#include "sim/simulated_port.h"
#include "store/measurement_file.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <optional>

namespace {

const char kUsage[] =
    "usage: delfor-cli identify [--port DEVICE | --simulate[=MODEL]] [--baud RATE] [--timeout SECONDS]\n"
    "       delfor-cli read [connection options] [--traces sample,average,maxhold,memory] [--csv FILE|-]\n"
    "                       [--mes FILE]\n"
    "       delfor-cli info FILE\n"
    "       delfor-cli export FILE.mes|FILE.emc --csv OUT.csv|- (--help for more)\n"
    "       delfor-cli emc --test NAME --out FILE.emc [--database FILE] [connection options] [--yes]\n"
    "       delfor-cli limits list|import|export ... (--help for more)\n"
    "       delfor-cli components list|import|export ... (--help for more)\n"
    "       delfor-cli tests [--database FILE]\n"
    "       delfor-cli report FILE.mes|FILE.emc --pdf OUT.pdf [--landscape] [--black] [--headline TEXT] [--notes]\n"
    "                         [--png OUT.png]\n"
    "       delfor-cli results FILE.emc [--all] [--csv OUT|-] [--compare OTHER.emc|OTHER.mes] [--database FILE]\n";

const QStringList kTraceNames{"sample", "average", "maxhold", "memory"};

struct Options {
    QString command;
    QString device;
    std::optional<QString> simulatedModel;
    qint32 baud = 19200;
    int timeout = 4;
    ReadRequest request;
    QString file; // of info
    EmcRequest emc;
};

// Reads the command line; an error text when it cannot be used.
std::optional<Options> parseOptions(const QStringList &args, QString &error)
{
    Options o;
    for (int i = 1; i < args.size(); ++i) {
        const QString &arg = args[i];
        const auto value = [&]() -> QString { return i + 1 < args.size() ? args[++i] : QString(); };
        if (arg == "--port")
            o.device = value();
        else if (arg == "--simulate")
            o.simulatedModel = QStringLiteral("K320-A");
        else if (arg.startsWith("--simulate="))
            o.simulatedModel = arg.mid(11);
        else if (arg == "--baud")
            o.baud = value().toInt();
        else if (arg == "--timeout")
            o.timeout = value().toInt();
        else if (arg == "--traces")
            o.request.traces = value().split(',', Qt::SkipEmptyParts);
        else if (arg == "--csv")
            o.request.csv = value();
        else if (arg == "--mes")
            o.request.mes = value();
        else if (arg == "--test")
            o.emc.test = value();
        else if (arg == "--out")
            o.emc.out = value();
        else if (arg == "--database")
            o.emc.database = value();
        else if (arg == "--yes")
            o.emc.yes = true;
        else if (o.command.isEmpty() && !arg.startsWith('-'))
            o.command = arg;
        else if (o.command == "info" && o.file.isEmpty() && !arg.startsWith('-'))
            o.file = arg;
        else
            error = "unknown argument: " + arg;
    }
    if (error.isEmpty() && !QStringList{"identify", "read", "info", "emc"}.contains(o.command))
        error = o.command.isEmpty() ? "no command given" : "unknown command: " + o.command;
    for (const QString &trace : o.request.traces)
        if (error.isEmpty() && !kTraceNames.contains(trace))
            error = "unknown trace: " + trace + " (sample, average, maxhold or memory)";
    const ReadRequest &r = o.request;
    if (error.isEmpty() && (r.traces.isEmpty() || r.csv.isEmpty() || (r.mes && r.mes->isEmpty())))
        error = "--traces, --csv and --mes need a value";
    if (error.isEmpty() && o.command == "info" && o.file.isEmpty())
        error = "info needs a file";
    if (error.isEmpty() && o.command == "emc" && (o.emc.test.trimmed().isEmpty() || o.emc.out.isEmpty()))
        error = "emc needs --test NAME and --out FILE.emc";
    if (error.isEmpty() && o.emc.database && o.emc.database->isEmpty())
        error = "--database needs a file";
    if (error.isEmpty() && std::find(std::begin(kBaudRates), std::end(kBaudRates), o.baud) == std::end(kBaudRates))
        error = "baud rate must be 4800, 9600, 19200, 38400 or 115200";
    if (error.isEmpty() && (o.timeout < 1 || o.timeout > 255))
        error = "timeout must be 1 to 255 seconds";
    if (error.isEmpty() && o.simulatedModel && !findUnitModel(*o.simulatedModel))
        error = "unknown model: " + *o.simulatedModel + " (K310-A, K320-A or K550-B)";
    if (error.isEmpty() && o.simulatedModel && !o.device.isEmpty())
        error = "--port and --simulate exclude each other";
    if (!error.isEmpty())
        return std::nullopt;
    return o;
}

// A context on the chosen port: the built-in simulator runs on virtual time, a real port on the clock.
std::unique_ptr<Context> openContext(const Options &o, Analyser &analyser)
{
    Platform platform;
    platform.prompts = o.command == "emc" ? runPrompts(o.emc) : std::make_unique<ConsolePrompts>();
    if (o.simulatedModel) {
        analyser.model = *o.simulatedModel;
        // The operator's "Switch DUT Off" and "Switch DUT ON" switch the simulated device.
        platform.prompts = std::make_unique<DeviceSwitchPrompts>(std::move(platform.prompts), analyser.scene,
                                                                 kDutOffText, kDutOnText);
        auto clock = std::make_unique<VirtualClock>(QDateTime::currentDateTime());
        platform.port = std::make_unique<SimulatedPort>(analyser, *clock);
        platform.clock = std::move(clock);
    } else {
        auto port = std::make_unique<QtSerialPort>();
        QStringList paths = loadDevicePaths();
        if (!o.device.isEmpty())
            paths[0] = o.device;
        port->setDevicePaths(paths);
        platform.port = std::move(port);
        platform.clock = std::make_unique<SystemClock>();
    }
    auto ctx = std::make_unique<Context>(std::move(platform));
    attachLogic(*ctx);
    ctx->state.comPort = o.simulatedModel ? 0 : 1;
    ctx->state.baudRate = o.baud;
    ctx->state.serialTimeoutSeconds = quint8(o.timeout);
    return ctx;
}

// A column's value as text; 32-bit floats in their shortest form.
QString valueText(const QVariant &value)
{
    if (value.typeId() != QMetaType::Float)
        return value.toString();
    char text[32];
    const auto end = std::to_chars(text, text + sizeof text, value.toFloat()).ptr;
    return QString::fromLatin1(text, end - text);
}

int info(const QString &path)
{
    QString fault;
    const auto summary = describeMeasurementFile(path, &fault);
    if (!summary)
        return fail(fault);
    QByteArray out;
    for (const auto &[column, value] : summary->settings)
        out += (column + ": " + valueText(value) + '\n').toUtf8();
    out += "rows: " + QByteArray::number(summary->rowCount) + '\n';
    if (summary->startFrequency && summary->stopFrequency)
        out += ("frequency range: " + valueText(*summary->startFrequency) + " - " + valueText(*summary->stopFrequency)
                + " MHz\n").toUtf8();
    else
        out += "frequency range: none\n";
    return writeOut("-", out) ? 0 : 1;
}

} // namespace

int main(int argc, char **argv)
{
    // A report draws text, which needs the fonts of a GUI application; it runs without a screen.
    if (argc > 1 && std::strcmp(argv[1], "report") == 0) {
        if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
            qputenv("QT_QPA_PLATFORM", "offscreen");
        QGuiApplication app(argc, argv);
        QCoreApplication::setApplicationName(QStringLiteral("delfor"));
        return reportCommand(app.arguments().mid(1));
    }
    QCoreApplication app(argc, argv);
    // As the program names itself, so that the data folder is the program's.
    QCoreApplication::setApplicationName(QStringLiteral("delfor"));
    const QStringList arguments = app.arguments();
    if (arguments.size() == 2 && (arguments[1] == "--help" || arguments[1] == "-h" || arguments[1] == "help")) {
        std::fputs(kUsage, stdout);
        return 0;
    }
    if (arguments.size() > 1 && arguments[1] == "results")
        return resultsCommand(arguments.mid(1));
    if (arguments.size() > 1 && (arguments[1] == "limits" || arguments[1] == "components" || arguments[1] == "tests"))
        return catalogueCommand(arguments.mid(1));
    if (arguments.size() > 1 && arguments[1] == "export")
        return exportCommand(arguments.mid(1));
    QString error;
    const auto options = parseOptions(app.arguments(), error);
    if (!options)
        return refuseArguments(kUsage, error);
    if (options->command == "info")
        return info(options->file);
    Analyser analyser;
    const auto ctx = openContext(*options, analyser);
    if (options->command == "emc")
        return emcCommand(*ctx, options->emc);
    return options->command == "read" ? readUnit(*ctx, options->request) : identifyUnit(*ctx);
}
