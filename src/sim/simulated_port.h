#pragma once
// The analyser in-process behind the SerialPort interface, with the line's time on a clock:
// every byte takes 10 bits at the rate of its sender, a reply starts once the analyser's input
// has been quiet for a short while, and a pause inside a reply leaves the line idle that long.
// At a rate other than the analyser's the program sees nothing (or garbage, if asked), and the
// analyser hears nothing.

#include "core/platform.h"
#include "sim/analyser.h"

#include <QHash>
#include <QSet>

#include <deque>
#include <vector>

class SimulatedPort : public SerialPort {
public:
    // `minimumReplyLatency` keeps replies behind the program's own pace on a real clock.
    SimulatedPort(Analyser &analyser, Clock &clock, double minimumReplyLatency = 0.0);

    void setPortNumber(int number) override { portNumber_ = number; }
    int portNumber() const override { return portNumber_; }
    bool setSettings(const QString &settings) override;
    bool open() override;
    void close() override;
    bool isOpen() const override { return open_; }
    int bytesWaiting() override;
    void discardInput() override;
    void discardOutput() override {}
    bool writeByte(char byte) override;
    QByteArray readByte() override;
    void waitForInput(int count, double seconds) override;

    enum class WrongSpeed { Silent, Garbage };
    WrongSpeed wrongSpeed = WrongSpeed::Silent;
    bool failOpen = false; // the port cannot be opened (busy or missing)

    // Bytes the analyser sends by itself ("PR", "LO", noise), arriving from the given steady time of the clock (now by default).
    void sendUnsolicited(const QByteArray &bytes, double atTime = -1);

    // Line faults on the way to the program. The analyser's bytes are counted from 1, its echoes
    // among them from 1 as well (stray bytes are not counted; `unitBytesSent()` and `echoesSent()`
    // tell how far the counts are): the echoes in `lostEchoes` never arrive, and the bytes in
    // `strayAfter` ("LO\r", noise) arrive right behind the analyser's byte of that count.
    QSet<qint64> lostEchoes;
    QHash<qint64, QByteArray> strayAfter;
    qint64 unitBytesSent() const { return unitBytesSent_; }
    qint64 echoesSent() const { return echoesSent_; }

    struct Traffic {
        bool toUnit;
        char byte;
        double time; // seconds on the line's time axis
    };
    // Both ways; a long session keeps about its last million bytes.
    std::vector<Traffic> traffic;
    QByteArray sentByProgram() const;
    QByteArray sentByUnit() const;
    void clearTraffic() { traffic.clear(); }

    qint32 rate() const { return rate_; }
    double lineTime() const { return now(); }

private:
    struct Incoming {
        double time;
        char byte;
    };
    double now() const;
    double byteTime(qint32 rate) const { return 10.0 / rate; }
    enum class Kind { Reply, Echo };
    void sendFromUnit(const QByteArray &bytes, double start, qint32 rate, const QList<Analyser::Pause> &pauses = {},
                      Kind kind = Kind::Reply);
    void releasePendingReply(double until);
    void record(bool toUnit, char byte, double time);

    Analyser &analyser_;
    Clock &clock_;
    double minimumReplyLatency_;
    int portNumber_ = 0;
    qint32 rate_ = 4800;
    bool open_ = false;
    double programLineFree_ = 0; // when the program's transmitter is free
    double unitLineFree_ = 0;    // when the analyser's transmitter is free
    qint64 unitBytesSent_ = 0;
    qint64 echoesSent_ = 0;
    std::deque<Incoming> input_; // bytes towards the program, in time order
    QByteArray pendingReply_;
    QList<Analyser::Pause> pendingPauses_; // offsets into the pending reply
    double pendingFrom_ = 0;     // earliest start of the pending reply
    qint32 pendingRate_ = 0;
};
