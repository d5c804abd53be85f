#include "sim/trace_memory.h"

#include <algorithm>
#include <cmath>

void TraceMemory::sweep(Scene &scene, const SimPanel &panel, double maxFrequency)
{
    TraceLevels levels;
    scene.sweep(panel, maxFrequency, ++sweeps_, levels);
    peak_ = *std::max_element(levels.begin(), levels.end());
    const double bytesPerDb = 25.0 / panel.dbPerDivision;
    const double reference = panel.refLevel + panel.attenuator;
    for (int i = 0; i < kTracePoints; ++i)
        a_[i] = quint8(std::lround(std::clamp(227.0 + (levels[i] - reference) * bytesPerDb, 0.0, 255.0)));

    if (!panel.calculation)
        return;
    if (averaged_ == 0) {
        sum_.fill(0);
        max_ = a_;
    }
    ++averaged_;
    for (int i = 0; i < kTracePoints; ++i) {
        sum_[i] += a_[i];
        max_[i] = std::max(max_[i], a_[i]);
    }
}

TraceBytes TraceMemory::trace(int readMode) const
{
    TraceBytes t = a_;
    switch (readMode) {
    case 1:
        t = b_;
        break;
    case 2:
        for (int i = 0; i < kTracePoints; ++i)
            t[i] = quint8(std::clamp(227 + a_[i] - b_[i], 0, 255));
        break;
    case 3:
        for (int i = 0; i < kTracePoints && averaged_ > 0; ++i)
            t[i] = quint8((sum_[i] + averaged_ / 2) / averaged_);
        break;
    case 4:
        if (averaged_ > 0)
            t = max_;
        break;
    }
    return t;
}
