#pragma once
// Prompts answered from a script, for tests and headless runs. Every prompt is recorded;
// one that the script does not expect is recorded as unexpected and gets the default answer.

#include "core/platform.h"

#include <QList>
#include <QStringList>

class ScriptedPrompts : public Prompts {
public:
    enum class Kind { Message, Input, OpenFile, SaveFile, Colour, PrinterSetup };

    struct Shown {
        Kind kind;
        QString title;
        QString text;
    };

    // Queue an answer for the next prompt of this kind whose title is `title`.
    void answerMessage(const QString &title, MsgAnswer answer);
    void answerInput(const QString &title, const QString &text);
    void answerFile(const QString &title, std::optional<QString> path);
    void answerColour(std::optional<quint32> colour);
    void answerPrinter(std::optional<QString> printerName);

    MsgAnswer messageBox(const QString &title, const QString &text, MsgButtons buttons) override;
    QString inputBox(const QString &title, const QString &prompt, const QString &defaultText) override;
    std::optional<QString> openFileDialog(const FileDialogRequest &request) override;
    std::optional<QString> saveFileDialog(const FileDialogRequest &request) override;
    std::optional<quint32> colourDialog(quint32 initial) override;
    std::optional<QString> printerSetup(const QString &printerName) override;
    bool openUrl(const QString &url) override;

    QList<Shown> shown;         // every prompt, in order
    QStringList unexpected;     // prompts the script had no answer for
    QStringList openedUrls;     // every URL handed to the desktop
    bool desktopTakesUrls = true; // false: as on a desktop without a mail program
    QStringList unused() const; // answers that were queued and never asked for
    // Boxes of one title, as "title|text".
    QStringList messages(const QString &title = {}) const;

private:
    struct Answer {
        Kind kind;
        QString title;
        MsgAnswer message = MsgAnswer::Ok;
        std::optional<QString> text;
        std::optional<quint32> colour;
    };
    std::optional<Answer> take(Kind kind, const QString &title);
    QList<Answer> script_;
};
