#pragma once
// The prompts of the program on screen: message boxes, input prompts and the common dialogs.

#include "core/platform.h"

#include <QColor>
#include <QStringList>

class QtPrompts : public Prompts {
public:
    MsgAnswer messageBox(const QString &title, const QString &text, MsgButtons buttons) override;
    QString inputBox(const QString &title, const QString &prompt, const QString &defaultText) override;
    std::optional<QString> openFileDialog(const FileDialogRequest &request) override;
    std::optional<QString> saveFileDialog(const FileDialogRequest &request) override;
    std::optional<quint32> colourDialog(quint32 initial) override;
    std::optional<QString> printerSetup(const QString &printerName) override;
    bool openUrl(const QString &url) override;

private:
    std::optional<QString> runFileDialog(const FileDialogRequest &request, bool save);

    // Where the next file dialog opens: the folder of the last file chosen in one.
    QString lastFolder_;
};

// "Measurement (*.MES) |*.MES|EMC (*.emc) |*.emc" as file dialog filters:
// "Measurement (*.MES *.mes)", "EMC (*.emc *.EMC)". Both cases of each pattern are offered,
// since file names on this system are case sensitive.
QStringList nameFilters(const QString &filter);

// Colours are kept as 0xBBGGRR.
QColor colourFromBgr(quint32 bgr);
quint32 bgrFromColour(const QColor &colour);
