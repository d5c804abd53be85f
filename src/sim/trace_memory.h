#pragma once
// The analyser's trace memory: trace A from the last sweep, memory B, and the average and max
// hold that the analyser's own calculation keeps over the sweeps since its reset. All traces are
// screen bytes: 227 is the reference line, one step is dB per division / 25 dB.

#include "sim/scene.h"

#include <QtGlobal>

using TraceBytes = std::array<quint8, kTracePoints>;

class TraceMemory {
public:
    // One sweep of `scene` into trace A; a running calculation takes it in.
    void sweep(Scene &scene, const SimPanel &panel, double maxFrequency);
    void restartCalculation() { averaged_ = 0; }
    void storeAtoB() { b_ = a_; }

    // The trace that a read mode selects: 0 trace A, 1 memory B, 2 A - B around the reference
    // line, 3 average, 4 max hold. Before the calculation has taken a sweep, 3 and 4 show A.
    TraceBytes trace(int readMode) const;
    // The highest level of the last sweep, dBm.
    double peakLevel() const { return peak_; }
    quint64 sweeps() const { return sweeps_; }

private:
    TraceBytes a_{}, b_{}, max_{};
    std::array<quint32, kTracePoints> sum_{};
    quint32 averaged_ = 0; // sweeps in the calculation
    quint64 sweeps_ = 0;
    double peak_ = -1000.0;
};
