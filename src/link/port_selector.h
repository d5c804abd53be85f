#pragma once
// The port the program talks through: port number 0 is the built-in simulator, any other
// number a real port (Com1..Com4).

#include "core/platform.h"
#include "link/qt_serial_port.h"

#include <memory>

class PortSelector : public SerialPort {
public:
    PortSelector(std::unique_ptr<SerialPort> simulated, std::unique_ptr<QtSerialPort> real);

    QtSerialPort &real() { return *real_; }

    // Moving between the simulator and a real port closes the one left behind.
    void setPortNumber(int number) override;
    int portNumber() const override { return number_; }
    // The line settings go to both, as one port's property, whichever number is chosen later.
    bool setSettings(const QString &settings) override;
    bool open() override { return active().open(); }
    void close() override { active().close(); }
    bool isOpen() const override { return active().isOpen(); }
    int bytesWaiting() override { return active().bytesWaiting(); }
    void discardInput() override { active().discardInput(); }
    void discardOutput() override { active().discardOutput(); }
    bool writeByte(char byte) override { return active().writeByte(byte); }
    QByteArray readByte() override { return active().readByte(); }
    void waitForInput(int count, double seconds) override { active().waitForInput(count, seconds); }

private:
    SerialPort &active() const { return number_ == 0 ? *simulated_ : *real_; }

    std::unique_ptr<SerialPort> simulated_;
    std::unique_ptr<QtSerialPort> real_;
    int number_ = 0;
};
