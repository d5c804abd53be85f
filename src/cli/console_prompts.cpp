#include "cli/console_prompts.h"

#include <cstdio>

MsgAnswer ConsolePrompts::messageBox(const QString &title, const QString &text, MsgButtons buttons)
{
    // Carriage returns in a command text are shown, not obeyed.
    QString shown = text.trimmed();
    shown.replace(QLatin1Char('\r'), QLatin1String("\\r"));
    std::fprintf(stderr, "%s: %s\n", qPrintable(title), qPrintable(shown));
    switch (buttons) {
    case MsgButtons::Ok: return MsgAnswer::Ok;
    case MsgButtons::YesNo: return MsgAnswer::No;
    default: return MsgAnswer::Cancel;
    }
}
