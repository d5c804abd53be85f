#include "sim/device_switch.h"

DeviceSwitchPrompts::DeviceSwitchPrompts(std::unique_ptr<Prompts> user, Scene &scene, QString offText, QString onText)
    : user_(std::move(user)), scene_(scene), offText_(std::move(offText)), onText_(std::move(onText))
{
}

MsgAnswer DeviceSwitchPrompts::messageBox(const QString &title, const QString &text, MsgButtons buttons)
{
    const MsgAnswer answer = user_->messageBox(title, text, buttons);
    if (text == offText_)
        scene_.setDeviceOn(false);
    else if (text == onText_)
        scene_.setDeviceOn(true);
    return answer;
}

QString DeviceSwitchPrompts::inputBox(const QString &title, const QString &prompt, const QString &defaultText)
{
    return user_->inputBox(title, prompt, defaultText);
}

std::optional<QString> DeviceSwitchPrompts::openFileDialog(const FileDialogRequest &request)
{
    return user_->openFileDialog(request);
}

std::optional<QString> DeviceSwitchPrompts::saveFileDialog(const FileDialogRequest &request)
{
    return user_->saveFileDialog(request);
}

std::optional<quint32> DeviceSwitchPrompts::colourDialog(quint32 initial) { return user_->colourDialog(initial); }

std::optional<QString> DeviceSwitchPrompts::printerSetup(const QString &printerName)
{
    return user_->printerSetup(printerName);
}

bool DeviceSwitchPrompts::openUrl(const QString &url) { return user_->openUrl(url); }
