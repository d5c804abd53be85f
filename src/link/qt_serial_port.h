#pragma once
// A real RS-232 port: Com1..Com4 are device paths, which the user can change in boxcom.

#include "core/platform.h"

#include <QSerialPort>
#include <QStringList>

// /dev/ttyUSB0, /dev/ttyUSB1, /dev/ttyS0, /dev/ttyS1 for Com1..Com4.
QStringList defaultDevicePaths();
// The device paths of Com1..Com4 as the user last set them (four entries).
QStringList loadDevicePaths();
void saveDevicePaths(const QStringList &paths);

class QtSerialPort : public SerialPort {
public:
    QtSerialPort();

    // Device paths of Com1, Com2, ...
    void setDevicePaths(const QStringList &paths) { paths_ = paths; }
    QStringList devicePaths() const { return paths_; }

    void setPortNumber(int number) override { number_ = number; }
    int portNumber() const override { return number_; }
    bool setSettings(const QString &settings) override;
    bool open() override;
    void close() override;
    bool isOpen() const override { return port_.isOpen(); }
    int bytesWaiting() override;
    void discardInput() override;
    void discardOutput() override;
    bool writeByte(char byte) override;
    QByteArray readByte() override;
    void waitForInput(int count, double seconds) override;

private:
    QSerialPort port_;
    QStringList paths_;
    int number_ = 0;
};
