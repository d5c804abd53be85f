#pragma once
// The operator of a session on the simulator. An EMC run with ambient asks the operator to switch
// the device under test off and on again; the simulator cannot hear that, so these prompts pass
// every box on to the user's prompts unchanged and, once a switching box is answered, switch the
// scene's device as the operator has just done.

#include "core/platform.h"
#include "sim/scene.h"

#include <memory>

class DeviceSwitchPrompts : public Prompts {
public:
    // `offText` and `onText` are the texts of the run's two switching boxes.
    DeviceSwitchPrompts(std::unique_ptr<Prompts> user, Scene &scene, QString offText, QString onText);

    MsgAnswer messageBox(const QString &title, const QString &text, MsgButtons buttons) override;
    QString inputBox(const QString &title, const QString &prompt, const QString &defaultText) override;
    std::optional<QString> openFileDialog(const FileDialogRequest &request) override;
    std::optional<QString> saveFileDialog(const FileDialogRequest &request) override;
    std::optional<quint32> colourDialog(quint32 initial) override;
    std::optional<QString> printerSetup(const QString &printerName) override;
    bool openUrl(const QString &url) override;

private:
    std::unique_ptr<Prompts> user_;
    Scene &scene_;
    QString offText_;
    QString onText_;
};
