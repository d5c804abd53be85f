#pragma once
// A port that is never there: for tests of parts that must not touch the line.

#include "core/platform.h"

class NoPort : public SerialPort {
public:
    void setPortNumber(int) override {}
    int portNumber() const override { return 0; }
    bool setSettings(const QString &) override { return true; }
    bool open() override { return false; }
    void close() override {}
    bool isOpen() const override { return false; }
    int bytesWaiting() override { return 0; }
    void discardInput() override {}
    void discardOutput() override {}
    bool writeByte(char) override { return false; }
    QByteArray readByte() override { return {}; }
    void waitForInput(int, double) override {}
};
