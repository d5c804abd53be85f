#include "core/scripted_prompts.h"

void ScriptedPrompts::answerMessage(const QString &title, MsgAnswer answer)
{
    script_.append({Kind::Message, title, answer, {}, {}});
}

void ScriptedPrompts::answerInput(const QString &title, const QString &text)
{
    script_.append({Kind::Input, title, MsgAnswer::Ok, text, {}});
}

void ScriptedPrompts::answerFile(const QString &title, std::optional<QString> path)
{
    script_.append({Kind::OpenFile, title, MsgAnswer::Ok, std::move(path), {}});
}

void ScriptedPrompts::answerColour(std::optional<quint32> colour)
{
    script_.append({Kind::Colour, {}, MsgAnswer::Ok, {}, colour});
}

void ScriptedPrompts::answerPrinter(std::optional<QString> printerName)
{
    script_.append({Kind::PrinterSetup, {}, MsgAnswer::Ok, std::move(printerName), {}});
}

std::optional<ScriptedPrompts::Answer> ScriptedPrompts::take(Kind kind, const QString &title)
{
    // File dialogs of both directions share one queue.
    const auto sameKind = [kind](Kind k) {
        const auto file = [](Kind x) { return x == Kind::OpenFile || x == Kind::SaveFile; };
        return k == kind || (file(k) && file(kind));
    };
    for (int i = 0; i < script_.size(); ++i) {
        if (sameKind(script_[i].kind) && (kind == Kind::Colour || kind == Kind::PrinterSetup || script_[i].title == title))
            return script_.takeAt(i);
    }
    unexpected.append(title);
    return std::nullopt;
}

MsgAnswer ScriptedPrompts::messageBox(const QString &title, const QString &text, MsgButtons buttons)
{
    shown.append({Kind::Message, title, text});
    if (buttons == MsgButtons::Ok)
        return MsgAnswer::Ok; // a plain box needs no answer
    const auto answer = take(Kind::Message, title);
    if (answer)
        return answer->message;
    return buttons == MsgButtons::YesNo ? MsgAnswer::No : MsgAnswer::Cancel;
}

QString ScriptedPrompts::inputBox(const QString &title, const QString &prompt, const QString &)
{
    shown.append({Kind::Input, title, prompt});
    const auto answer = take(Kind::Input, title);
    return answer ? answer->text.value_or(QString()) : QString();
}

std::optional<QString> ScriptedPrompts::openFileDialog(const FileDialogRequest &request)
{
    shown.append({Kind::OpenFile, request.title, request.filter});
    const auto answer = take(Kind::OpenFile, request.title);
    return answer ? answer->text : std::nullopt;
}

std::optional<QString> ScriptedPrompts::saveFileDialog(const FileDialogRequest &request)
{
    shown.append({Kind::SaveFile, request.title, request.filter});
    const auto answer = take(Kind::SaveFile, request.title);
    return answer ? answer->text : std::nullopt;
}

std::optional<quint32> ScriptedPrompts::colourDialog(quint32)
{
    shown.append({Kind::Colour, {}, {}});
    const auto answer = take(Kind::Colour, {});
    return answer ? answer->colour : std::nullopt;
}

std::optional<QString> ScriptedPrompts::printerSetup(const QString &printerName)
{
    shown.append({Kind::PrinterSetup, {}, printerName});
    const auto answer = take(Kind::PrinterSetup, {});
    return answer ? answer->text : std::nullopt;
}

QStringList ScriptedPrompts::unused() const
{
    QStringList titles;
    for (const auto &a : script_)
        titles.append(a.title);
    return titles;
}

QStringList ScriptedPrompts::messages(const QString &title) const
{
    QStringList out;
    for (const auto &s : shown)
        if (s.kind == Kind::Message && (title.isEmpty() || s.title == title))
            out.append(s.title + QLatin1Char('|') + s.text);
    return out;
}

bool ScriptedPrompts::openUrl(const QString &url)
{
    openedUrls.append(url);
    return desktopTakesUrls;
}
