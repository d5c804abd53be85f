#include "sim/scene.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

namespace {

constexpr double kNoiseDensity = -150.0;    // dBm in 1 Hz at 0 dB attenuation, at the bottom of the range
constexpr double kNoiseRisePerMHz = 0.0015; // the noise figure grows towards the top of the range
// An emission lies more than 130 dB down this many resolution bandwidths beyond its edge.
constexpr double kReach = 3.3;

double milliwatts(double dBm)
{
    return std::pow(10.0, dBm / 10.0);
}

// A well-mixed 64-bit value for every input (splitmix64).
quint64 mix(quint64 x)
{
    x += 0x9e3779b97f4a7c15ULL;
    x = (x ^ (x >> 30)) * 0xbf58476d1ce4e5b9ULL;
    x = (x ^ (x >> 27)) * 0x94d049bb133111ebULL;
    return x ^ (x >> 31);
}

// A unit normal deviate, near enough: the sum of the four 16-bit parts of one mixed value.
double normal(quint64 bits)
{
    double sum = 0.0;
    for (int part = 0; part < 4; ++part, bits >>= 16)
        sum += double(bits & 0xffff) / 65536.0;
    return (sum - 2.0) * std::numbers::sqrt3;
}

// The power in mW that passes the resolution filter, a Gaussian `rbw` MHz wide at -3 dB, tuned
// `offset` MHz away from the emission's centre.
double response(const Emitter &e, double offset, double rbw)
{
    const double a = 4.0 * std::numbers::ln2 / (rbw * rbw);
    const double power = milliwatts(e.level);
    if (e.bandwidth <= 0.0)
        return power * std::exp(-a * offset * offset);
    // A flat emission: the filter collects its density over the part of the band it covers.
    const double s = std::sqrt(a);
    const double half = e.bandwidth / 2.0;
    return power / e.bandwidth * 0.5 * std::sqrt(std::numbers::pi / a)
           * (std::erf(s * (offset + half)) - std::erf(s * (offset - half)));
}

// The emitter's power as a factor of its level, seen by the point that looks from time `t` (s)
// for `slice` seconds: a pulse that falls anywhere inside the slice shows in full.
double envelope(const Emitter &e, double t, double slice)
{
    switch (e.timing) {
    case Emitter::Timing::Pulsed: {
        const double phase = t * e.rate - std::floor(t * e.rate);
        return phase < e.shape || phase + slice * e.rate > 1.0 ? 1.0 : 0.0;
    }
    case Emitter::Timing::Modulated: {
        const double amplitude = 1.0 + e.shape * std::cos(2.0 * std::numbers::pi * e.rate * t);
        return amplitude * amplitude;
    }
    case Emitter::Timing::Continuous:
        break;
    }
    return 1.0;
}

} // namespace

Scene::Scene(std::vector<Emitter> emitters) : emitters_(std::move(emitters)) {}

std::vector<Emitter> Scene::standardEmitters()
{
    using Timing = Emitter::Timing;
    std::vector<Emitter> e;
    // The device under test: a square 48 MHz clock, so the odd harmonics are the strong ones; a
    // cable resonance lifts those around 250 MHz.
    for (int n = 1; 48.0 * n <= 3050.0; ++n) {
        const double f = 48.0 * n;
        const double resonance = 6.0 * std::exp(-std::pow((f - 250.0) / 60.0, 2));
        e.push_back({f, (n % 2 ? -35.0 : -47.0) - 20.0 * std::log10(n) + resonance});
    }
    // Its telemetry transmitter sends short bursts, a tenth of the time.
    e.push_back({433.92, -48.0, 0.0, Timing::Pulsed, 200.0, 0.1});
    // Its switching regulator and relay driver spike at three repetition rates, one in the lower band.
    e.push_back({20.0, -45.0, 0.0, Timing::Pulsed, 10.0, 0.005});
    e.push_back({160.0, -50.0, 0.0, Timing::Pulsed, 100.0, 0.02});
    e.push_back({850.0, -55.0, 0.0, Timing::Pulsed, 1000.0, 0.05});
    for (Emitter &emission : e)
        emission.device = true;
    // The ambient: an air band station, amplitude modulated, ...
    e.push_back({124.5, -52.0, 0.0, Timing::Modulated, 1000.0, 0.8});
    // ... FM broadcast, ...
    for (const auto &[f, level] : {std::pair{87.9, -52.0}, {88.6, -47.0}, {90.4, -41.0}, {91.6, -55.0},
                                   {93.3, -39.0}, {94.8, -46.0}, {96.3, -50.0}, {98.5, -37.0}, {99.7, -53.0},
                                   {101.3, -44.0}, {102.7, -48.0}, {104.4, -42.0}, {106.1, -56.0}, {107.5, -45.0}})
        e.push_back({f, level, 0.18});
    // ... DAB blocks 5C, 7D, 10B, 11D, 12C, ...
    for (const auto &[f, level] : {std::pair{178.352, -63.0}, {194.064, -60.0}, {211.648, -66.0}, {222.064, -61.0},
                                   {227.360, -64.0}})
        e.push_back({f, level, 1.536});
    // ... DVB-T multiplexes in UHF channels, ...
    for (const auto &[channel, level] : {std::pair{24, -55.0}, {29, -52.0}, {34, -60.0}, {40, -57.0}, {45, -64.0},
                                         {51, -53.0}, {56, -61.0}, {59, -58.0}})
        e.push_back({306.0 + 8.0 * channel, level, 7.61});
    // ... and GSM 900 base stations.
    for (const auto &[f, level] : {std::pair{935.4, -68.0}, {937.8, -62.0}, {941.2, -71.0}, {944.6, -65.0},
                                   {948.0, -59.0}, {951.4, -70.0}, {954.8, -63.0}, {958.2, -67.0}})
        e.push_back({f, level, 0.2});
    return e;
}

double Scene::sweepTime(const SimPanel &panel) const
{
    if (panel.span <= 0)
        return kTracePoints * zeroSpanSampleTime;
    const double rbw = panel.bandwidth * 1e3;
    return std::clamp(2.5 * panel.span * 1e6 / (rbw * rbw), 0.02, 2.0);
}

double Scene::noiseFloor(const SimPanel &panel, double frequency)
{
    return kNoiseDensity + panel.attenuator + 10.0 * std::log10(panel.bandwidth * 1e3)
           + kNoiseRisePerMHz * std::max(0.0, frequency);
}

void Scene::tune(const Tuning &t)
{
    tuned_ = t;
    steady_.fill(0.0);
    varying_.clear();
    const double rbw = t.bandwidth / 1e3;
    const double step = t.span / double(kTracePoints);
    const double start = t.centre - t.span / 2.0;
    for (std::size_t k = 0; k < emitters_.size(); ++k) {
        const Emitter &e = emitters_[k];
        if (e.frequency < 0.0 || e.frequency > t.maxFrequency || (e.device && !t.deviceOn))
            continue;
        const double reach = e.bandwidth / 2.0 + kReach * rbw + step / 2.0;
        double first = 1.0, last = kTracePoints;
        if (step > 0.0) {
            first = std::max(first, std::ceil((e.frequency - reach - start) / step));
            last = std::min(last, std::floor((e.frequency + reach - start) / step));
        } else if (std::abs(e.frequency - t.centre) > reach) {
            continue;
        }
        if (first > last)
            continue;
        for (int i = int(first); i <= int(last); ++i) {
            const double offset = std::max(0.0, std::abs(start + i * step - e.frequency) - step / 2.0);
            const double power = response(e, offset, rbw);
            if (e.timing == Emitter::Timing::Continuous)
                steady_[i - 1] += power;
            else
                varying_.push_back({i, k, power});
        }
    }
}

void Scene::sweep(const SimPanel &panel, double maxFrequency, quint64 sweep, TraceLevels &levels)
{
    const Tuning tuning{panel.centerFrequency, panel.span, panel.bandwidth, maxFrequency, deviceOn_};
    if (!(tuning == tuned_))
        tune(tuning);

    // Point i looks from (i-1)/2001 to i/2001 of the sweep; sweeps begin at uneven moments.
    const quint64 seed = mix(sweep);
    const double duration = sweepTime(panel);
    const double begin = double(sweep) * duration + double(seed & 0xffff) / 65536.0;
    const double slice = duration / kTracePoints;
    std::array<double, kTracePoints> power = steady_;
    for (const Varying &v : varying_)
        power[v.point - 1] += v.power * envelope(emitters_[v.emitter], begin + (v.point - 1) * slice, slice);
    // The tracking generator, led back to the input through a cable, follows the sweep: a flat
    // line at its level.
    if (panel.tgOn)
        for (double &p : power)
            p += milliwatts(panel.tgLevel);

    const double spread = panel.videoFilter ? 0.6 : 2.5; // dB; the video filter smooths the noise
    const double step = panel.span / double(kTracePoints);
    const double start = panel.centerFrequency - panel.span / 2.0;
    const double floorAtZero = noiseFloor(panel, 0.0);
    for (int i = 0; i < kTracePoints; ++i) {
        const double f = std::max(0.0, start + (i + 1) * step);
        const double noise = floorAtZero + kNoiseRisePerMHz * f + spread * normal(mix(seed + quint64(i)));
        levels[i] = 10.0 * std::log10(power[i] + milliwatts(noise));
    }
}
