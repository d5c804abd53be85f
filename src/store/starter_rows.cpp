#include "store/starter_rows.h"

#include <array>

namespace {

// dBuV and dBuV/m lie this far above dBm, as the unit row "dBuV" says; limit points are stored in dBm.
constexpr double kDbuvOffset = 107.0;

struct Point {
    double frequency; // MHz
    double level;     // as published or entered
};

// A limit line as published. A step is written as two points at the same frequency, in the
// order in which the line is traced; since a line's frequencies are unique, the first of the two
// is stored 1 kHz lower (see storedPoints).
struct LimitLine {
    const char *name;
    bool radiated;
    bool logarithmic; // levels between points follow log frequency
    double distance;  // measuring distance, metres; 0 for a conducted limit
    const char *memo;
    QList<Point> points; // dBuV or dBuV/m
};

// lostyp of table loshead.
enum ComponentType { Antenna = 0, Loss = 1, Gain = 2 };

// A component with its points as the user types them: an antenna factor and a loss positive,
// a gain positive too; the sign of the stored correction follows from the type.
struct Component {
    const char *name;
    ComponentType type;
    double distance; // only for an antenna: the distance its factors hold for
    const char *memo;
    QList<Point> points; // dB or dB/m
};

struct Configuration {
    const char *name;
    QList<const char *> components; // slot 1 (an antenna may stand here) to slot 5
};

// Values of the test columns as the test page's options write them.
enum Detector { PeakDetector = 0, QuasiPeakDetector = 1 };
enum Bandwidth { Rbw1000kHz = 0, Rbw120kHz = 1, Rbw9kHz = 2 };
// The page's option index: 1 is Step; a run takes every other value for Sweep + Step.
enum ScanMode { SweepAndStep = 0, Step = 1 };
enum LimitReference { PeakLimit = 0, AverageLimit = 1 };

struct EmcTestRow {
    const char *name;
    const char *config;
    const char *peakLimit;
    const char *averageLimit; // nullptr: none
    double startFrequency;    // MHz
    double stopFrequency;
    Detector peakDetector;
    bool averageDetector;
    Bandwidth bandwidth;
    double refLevel; // dBm, without attenuator and unit offset
    const char *unit;
    double attenuator; // dB
    bool horizontal;   // antenna horizontal, or line L of the LISN
    bool vertical;     // antenna vertical, or line N
    ScanMode mode;
    double levelDistance; // dB; negative selects what comes that close to the limit
    int sweepTime;        // seconds per sweep
    LimitReference limitReference;
    bool ambient;
    double stepWidth; // kHz
    int stepBlocks;   // blocks measured at each step
    const char *memo;
};

struct KnownBand {
    const char *name;
    double startFrequency; // MHz
    double stopFrequency;
    double maxLevel; // dBm
    double minLevel;
    const char *memo;
    qint32 colour; // 0x00BBGGRR
    bool horizontal;
    bool vertical;
};

const char *const kDbuv = "dBuV";
const char *const kDbuvPerMetre = "dBuV/m"; // a radiated level, with the antenna factor in the chain
constexpr double kStepWidth = 0.001;       // MHz between the two points of a step

const QList<LimitLine> kLimitLines = {
    {"EN 55032 B 10m QP", true, false, 10,
     "CISPR 32 / EN 55032 class B radiated emission, quasi-peak, 10 m, 30-1000 MHz; published in dBuV/m",
     {{30, 30}, {230, 30}, {230, 37}, {1000, 37}}},
    {"EN 55032 A 10m QP", true, false, 10,
     "CISPR 32 / EN 55032 class A radiated emission, quasi-peak, 10 m, 30-1000 MHz; published in dBuV/m",
     {{30, 40}, {230, 40}, {230, 47}, {1000, 47}}},
    {"EN 55032 B 3m QP", true, false, 3,
     "CISPR 32 / EN 55032 class B radiated emission, quasi-peak, 3 m, 30-1000 MHz; published in dBuV/m",
     {{30, 40}, {230, 40}, {230, 47}, {1000, 47}}},
    {"EN 55032 A 3m QP", true, false, 3,
     "CISPR 32 / EN 55032 class A radiated emission, quasi-peak, 3 m, 30-1000 MHz; published in dBuV/m",
     {{30, 50}, {230, 50}, {230, 57}, {1000, 57}}},
    {"EN 55032 B mains QP", false, true, 0,
     "CISPR 32 / EN 55032 class B conducted emission on AC mains, quasi-peak, 0.15-30 MHz; "
     "falls with log frequency from 0.15 to 0.5 MHz; published in dBuV",
     {{0.15, 66}, {0.5, 56}, {5, 56}, {5, 60}, {30, 60}}},
    {"EN 55032 B mains AV", false, true, 0,
     "CISPR 32 / EN 55032 class B conducted emission on AC mains, average, 0.15-30 MHz; "
     "falls with log frequency from 0.15 to 0.5 MHz; published in dBuV",
     {{0.15, 56}, {0.5, 46}, {5, 46}, {5, 50}, {30, 50}}},
    {"EN 55032 A mains QP", false, false, 0,
     "CISPR 32 / EN 55032 class A conducted emission on AC mains, quasi-peak, 0.15-30 MHz; published in dBuV",
     {{0.15, 79}, {0.5, 79}, {0.5, 73}, {30, 73}}},
    {"EN 55032 A mains AV", false, false, 0,
     "CISPR 32 / EN 55032 class A conducted emission on AC mains, average, 0.15-30 MHz; published in dBuV",
     {{0.15, 66}, {0.5, 66}, {0.5, 60}, {30, 60}}},
    {"FCC 15 B 3m QP", true, false, 3,
     "FCC 47 CFR 15.109 class B radiated emission, quasi-peak, 3 m, 30-1000 MHz; published in dBuV/m",
     {{30, 40}, {88, 40}, {88, 43.5}, {216, 43.5}, {216, 46}, {960, 46}, {960, 54}, {1000, 54}}},
};

const QList<Component> kComponents = {
    {"BiLog antenna 30-1000 MHz", Antenna, 3, "Broadband antenna, antenna factor in dB/m at 3 m",
     {{30, 18.0}, {40, 14.0}, {50, 10.5}, {60, 8.5}, {80, 7.5}, {100, 9.5}, {150, 11.5}, {200, 11.0},
      {250, 12.5}, {300, 14.0}, {400, 16.0}, {500, 17.8}, {600, 19.2}, {700, 20.5}, {800, 21.5},
      {900, 22.5}, {1000, 23.5}}},
    {"Cable RG214 10 m", Loss, 0, "Coaxial cable, 10 m, N connectors; loss in dB",
     {{0.15, 0.05}, {1, 0.1}, {10, 0.2}, {30, 0.4}, {100, 0.7}, {200, 1.0}, {300, 1.25}, {500, 1.7},
      {700, 2.1}, {1000, 2.6}}},
    {"Preamplifier 22 dB", Gain, 0, "Low-noise preamplifier 9 kHz - 1 GHz; gain in dB",
     {{0.009, 22.0}, {30, 22.5}, {100, 22.3}, {300, 22.0}, {500, 21.8}, {700, 21.5}, {1000, 21.0}}},
    {"Transient limiter 10 dB", Loss, 0, "Pulse limiter between LISN and analyser input; loss in dB",
     {{0.009, 10.0}, {30, 10.0}}},
};

const QList<Configuration> kConfigurations = {
    {"Radiated 3m", {"BiLog antenna 30-1000 MHz", "Cable RG214 10 m", "Preamplifier 22 dB"}},
    {"Conducted mains", {"Transient limiter 10 dB", "Cable RG214 10 m"}},
};

const QList<EmcTestRow> kTests = {
    {"EN 55032 B radiated 3m", "Radiated 3m", "EN 55032 B 3m QP", nullptr, 30, 1000, QuasiPeakDetector, false,
     Rbw120kHz, -40, kDbuvPerMetre, 10, true, true, SweepAndStep, -6, 10, PeakLimit, false, 120, 5,
     "Pre-scan with max hold in both antenna positions, quasi-peak at the frequencies within 6 dB of the limit"},
    {"EN 55032 B conducted", "Conducted mains", "EN 55032 B mains QP", "EN 55032 B mains AV", 0.15, 30,
     QuasiPeakDetector, true, Rbw9kHz, -40, kDbuv, 10, true, true, Step, -6, 10, PeakLimit, false, 9, 3,
     "AC mains through the LISN, lines L and N, quasi-peak and average at every step"},
};

const QList<KnownBand> kKnownBands = {
    {"FM broadcast", 87.5, 108, -20, -90, "VHF band II sound broadcasting", 0x80FFFF, true, true},
    {"DAB (Band III)", 174, 240, -40, -95, "Digital audio broadcasting, VHF band III", 0x80FF80, false, true},
    {"DVB-T", 470, 694, -40, -95, "Digital terrestrial television, UHF", 0xFFC080, true, false},
    {"TETRA", 380, 400, -40, -100, "Public safety trunked radio", 0x80C0FF, false, true},
    {"GSM 900 downlink", 925, 960, -30, -100, "Base station transmit, GSM 900", 0xC080FF, true, true},
    {"GSM 1800 downlink", 1805, 1880, -40, -100, "Base station transmit, GSM 1800", 0xC080FF, true, true},
    {"LTE 800 downlink", 791, 821, -40, -100, "Base station transmit, LTE band 20", 0xFF80C0, true, true},
    {"ISM 433 MHz", 433.05, 434.79, -50, -100, "ISM band, short range devices", 0xFFFF80, false, true},
    {"SRD 868 MHz", 863, 870, -50, -100, "Short range devices, 868 MHz band", 0xC0C0C0, false, true},
};

// Columns declared SINGLE hold the 32-bit value widened, as the program writes them.
QVariant single(double value) { return double(float(value)); }
// Booleans are stored as -1 and 0.
QVariant boolean(bool value) { return value ? -1 : 0; }
QVariant text(const char *value) { return QString::fromUtf8(value); }
// The free date and time fields start blank, not null.
const QVariant kBlank = QStringLiteral("");

// Numbers are given out from 1 in list order; 0 for a name that is not in the list.
template <typename Row>
qint32 numberOf(const QList<Row> &rows, const char *name)
{
    for (qsizetype i = 0; name && i < rows.size(); ++i) {
        if (qstrcmp(rows[i].name, name) == 0)
            return qint32(i + 1);
    }
    return 0;
}

// The points as stored: of two points at one frequency, the first moves to 1 kHz below it, so
// that the level before the step ends there and the level after it holds from the frequency on.
QList<Point> storedPoints(const QList<Point> &published)
{
    QList<Point> points = published;
    for (qsizetype i = 1; i < points.size(); ++i) {
        if (points[i].frequency == points[i - 1].frequency)
            points[i - 1].frequency -= kStepWidth;
    }
    return points;
}

void appendLimitLines(QList<StarterStatement> &out)
{
    for (qsizetype i = 0; i < kLimitLines.size(); ++i) {
        const LimitLine &line = kLimitLines[i];
        const qint32 limitnr = qint32(i + 1);
        out.append({QStringLiteral("insert into LimitHead (limitnr, limitname, Radiated, loga, Distance, Memo, "
                                   "limunit, dat, tim) values (?, ?, ?, ?, ?, ?, ?, ?, ?)"),
                    {limitnr, text(line.name), boolean(line.radiated), boolean(line.logarithmic),
                     single(line.distance), text(line.memo), text(line.radiated ? kDbuvPerMetre : kDbuv), kBlank,
                     kBlank}});
        for (const Point &p : storedPoints(line.points))
            out.append({QStringLiteral("insert into LimitDef (limitnr, frequency, level_dbmw) values (?, ?, ?)"),
                        {limitnr, single(p.frequency), single(p.level - kDbuvOffset)}});
    }
}

void appendComponents(QList<StarterStatement> &out)
{
    for (qsizetype i = 0; i < kComponents.size(); ++i) {
        const Component &c = kComponents[i];
        const qint32 losnr = qint32(i + 1);
        // What must be added to a reading: a gain is stored negated.
        const double sign = c.type == Gain ? -1.0 : 1.0;
        out.append({QStringLiteral("insert into loshead (losnr, losname, lostyp, Distance, Memo, dat, tim) "
                                   "values (?, ?, ?, ?, ?, ?, ?)"),
                    {losnr, text(c.name), int(c.type), single(c.distance), text(c.memo), kBlank, kBlank}});
        for (const Point &p : c.points)
            out.append({QStringLiteral("insert into losdef (losnr, frequency, level_dbmw) values (?, ?, ?)"),
                        {losnr, single(p.frequency), single(sign * p.level)}});
    }
}

void appendConfigurations(QList<StarterStatement> &out)
{
    for (const Configuration &c : kConfigurations) {
        QVariantList values{text(c.name)};
        for (int slot = 0; slot < 5; ++slot)
            values << numberOf(kComponents, slot < c.components.size() ? c.components[slot] : nullptr);
        out.append({QStringLiteral("insert into config (ConfigName, devicea, deviceb, devicec, deviced, devicee) "
                                   "values (?, ?, ?, ?, ?, ?)"),
                    values});
    }
}

void appendTests(QList<StarterStatement> &out)
{
    for (const EmcTestRow &t : kTests) {
        out.append({QStringLiteral("insert into test (name, config, peak, average, startfreq, stopfreq, peakdet, "
                                   "AVdet, rbw, ref, unit, atten, horizontal, vertical, mode, leveldist, meastime, "
                                   "limitbezug, Ambient, step, steptime, tgon, memo) "
                                   "values (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)"),
                    {text(t.name), text(t.config), numberOf(kLimitLines, t.peakLimit),
                     numberOf(kLimitLines, t.averageLimit), single(t.startFrequency), single(t.stopFrequency),
                     int(t.peakDetector), boolean(t.averageDetector), int(t.bandwidth), single(t.refLevel),
                     text(t.unit), single(t.attenuator), boolean(t.horizontal), boolean(t.vertical), int(t.mode),
                     single(t.levelDistance), t.sweepTime, int(t.limitReference), boolean(t.ambient),
                     single(t.stepWidth), t.stepBlocks, boolean(false), text(t.memo)}});
    }
}

void appendKnownBands(QList<StarterStatement> &out)
{
    for (const KnownBand &b : kKnownBands) {
        out.append({QStringLiteral("insert into knownsignals (signal, startfreq, stopfreq, \"max-level\", "
                                   "\"min-level\", memo, screenColor, hor, ver) values (?, ?, ?, ?, ?, ?, ?, ?, ?)"),
                    {text(b.name), b.startFrequency, b.stopFrequency, b.maxLevel, b.minLevel, text(b.memo), b.colour,
                     boolean(b.horizontal), boolean(b.vertical)}});
    }
}

} // namespace

QList<StarterStatement> deliveredRows()
{
    QList<StarterStatement> out;
    appendLimitLines(out);
    appendComponents(out);
    // The counters hold the last numbers given out, so that "Add New" continues above them.
    out.append({QStringLiteral("update MeasureCount set limitnr = ?, losnr = ?"),
                {qint32(kLimitLines.size()), qint32(kComponents.size())}});
    appendConfigurations(out);
    appendTests(out);
    appendKnownBands(out);
    return out;
}
