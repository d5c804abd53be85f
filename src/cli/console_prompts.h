#pragma once
// Prompts for the headless companion: boxes go to stderr, questions get their cautious answer.

#include "core/platform.h"

class ConsolePrompts : public Prompts {
public:
    MsgAnswer messageBox(const QString &title, const QString &text, MsgButtons buttons) override;
    QString inputBox(const QString &, const QString &, const QString &defaultText) override { return defaultText; }
    std::optional<QString> openFileDialog(const FileDialogRequest &) override { return std::nullopt; }
    std::optional<QString> saveFileDialog(const FileDialogRequest &) override { return std::nullopt; }
    std::optional<quint32> colourDialog(quint32) override { return std::nullopt; }
    std::optional<QString> printerSetup(const QString &) override { return std::nullopt; }
};
