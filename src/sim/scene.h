#pragma once
// What the analyser's input sees: a device under test and the ambient around it, as levels in dBm
// at the 2001 points of a sweep. Point i (1..2001) lies at centre - span/2 + i * span/2001. Each
// point shows the strongest response within its own slice of the span (a peak detector), so a
// carrier narrower than the point spacing is never lost between two points, and a pulse shorter
// than a point's share of the sweep time is never lost between two points either. In zero span
// all points look at the centre frequency, one after the other in time: a time signal.

#include "sim/panel.h"

#include <QtGlobal>

#include <array>
#include <vector>

constexpr int kTracePoints = 2001;
using TraceLevels = std::array<double, kTracePoints>; // element 0 is point 1

struct Emitter {
    enum class Timing { Continuous, Pulsed, Modulated };
    double frequency;       // MHz
    double level;           // dBm: the whole power, while on for a pulsed emitter, of the carrier for a modulated one
    double bandwidth = 0.0; // MHz occupied; 0 for a carrier
    Timing timing = Timing::Continuous;
    double rate = 0.0;      // Hz: pulse repetition, or the modulating tone
    double shape = 0.0;     // duty cycle of a pulsed emitter, modulation depth of a modulated one
    bool device = false;    // part of the device under test, silent while it is switched off
};

class Scene {
public:
    explicit Scene(std::vector<Emitter> emitters = standardEmitters());

    // A clocked device under test with its harmonics, a pulsed transmitter and switching spikes
    // at 10 Hz, 100 Hz and 1 kHz, in an ambient of FM, DAB, DVB-T and GSM 900 broadcasts and an
    // AM air band station.
    static std::vector<Emitter> standardEmitters();

    // The device under test switched on or off, as the operator does for an ambient round; the
    // ambient stays as it is. A scene starts with the device on.
    void setDeviceOn(bool on) { deviceOn_ = on; }
    bool deviceOn() const { return deviceOn_; }

    // The levels of sweep number `sweep` on `panel`: the same number gives the same noise. Only
    // emitters up to `maxFrequency` (MHz) reach the analyser; a tracking generator that is on
    // adds its level at every point.
    void sweep(const SimPanel &panel, double maxFrequency, quint64 sweep, TraceLevels &levels);

    // Seconds one sweep takes: longer for a wide span in a narrow bandwidth, 20 ms to 2 s; in
    // zero span 2001 times `zeroSpanSampleTime`.
    double sweepTime(const SimPanel &panel) const;
    // The displayed noise in dBm at `frequency`: it follows the bandwidth and the attenuator.
    static double noiseFloor(const SimPanel &panel, double frequency);

    double zeroSpanSampleTime = 0.0005; // s

private:
    struct Tuning {
        double centre;
        int span;
        int bandwidth;
        double maxFrequency;
        bool deviceOn;
        bool operator==(const Tuning &) const = default;
    };
    // The power of a pulsed or modulated emitter at one point, before its timing is applied.
    struct Varying {
        int point;
        std::size_t emitter;
        double power; // mW
    };
    void tune(const Tuning &tuning);

    std::vector<Emitter> emitters_;
    bool deviceOn_ = true;
    Tuning tuned_{-1.0, -1, -1, -1.0, true};
    std::array<double, kTracePoints> steady_{}; // mW of the continuous emitters at each point
    std::vector<Varying> varying_;
};
