// delfor [--simulate[=MODEL]]: the program on its configured port, or with --simulate on the
// built-in analyser simulator (MODEL K310-A, K320-A or K550-B; K320-A when not given).

#include "forms/app.h"
#include "forms/main_frame.h"
#include "link/discovery.h"

#include <QApplication>
#include <QTextStream>

namespace {

struct CommandLine {
    bool valid = true;
    bool simulate = false;
    QString model = QStringLiteral("K320-A");
};

CommandLine parseCommandLine(const QStringList &arguments)
{
    CommandLine line;
    if (arguments.isEmpty())
        return line;
    const QString switchText = QStringLiteral("--simulate");
    const QString argument = arguments.first();
    line.simulate = argument == switchText || argument.startsWith(switchText + QLatin1Char('='));
    if (argument.startsWith(switchText + QLatin1Char('=')))
        line.model = argument.mid(switchText.size() + 1);
    line.valid = arguments.size() == 1 && line.simulate && findUnitModel(line.model);
    return line;
}

} // namespace

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("delfor"));
    const CommandLine line = parseCommandLine(QCoreApplication::arguments().mid(1));
    if (!line.valid) {
        QTextStream(stderr) << "usage: delfor [--simulate[=K310-A|K320-A|K550-B]]\n";
        return 2;
    }

    auto program = assembleProgram(line.model);
    Context &ctx = *program->ctx;
    MainFrame frame(ctx);
    frame.show();
    loadMainFrame(ctx);
    if (line.simulate)
        startOnSimulator(ctx);
    return app.exec();
}
