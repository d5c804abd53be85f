#include "chart/chart_painter.h"

#include "chart/canvas.h"
#include "chart/grafik_controls.h"
#include "core/context.h"
#include "link/commands.h"
#include "signal/level_math.h"
#include "chart/zoom_view.h"
#include "store/measurement_file.h"

#include <QFile>
#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <sqlite3.h>
#include <vector>

namespace {

constexpr double kPlotWidth = 1000000.0;
constexpr quint32 kLabelColour = 5;          // ticks and label texts
constexpr quint32 kZeroSpanColour = 0x800080; // palette entry 5
constexpr quint32 kBlack = 0;
// A limit line widens the window once; a third pass would mean the hook never settles.
constexpr int kMaxPaintPasses = 3;
// Decades of the log axis searched from 1 kHz up; beyond them the window is not a number.
constexpr int kMaxDecades = 20;

// The traces of the trace table, in their drawing order, and the two ambient columns.
enum Slot { Sample, Average, Maxhold, QPeak, Memory, AmbientH, AmbientV, SlotCount };
using Levels = std::array<int, SlotCount>;
using Slots = std::array<bool, SlotCount>;

const std::array<ColourRole, SlotCount> kSlotColour = {SampleColour, AverageColour, MaxholdColour, QPeakColour,
                                                       MemoryColour, AmbientHColour, AmbientVColour};

// The stored column of a slot for the paint selection: 1 horizontal, 2 vertical, else plain.
QString storedColumn(Slot slot, int selection)
{
    static const char *const plain[SlotCount] = {"sample_dbmw", "average_dbmw", "maxhold_dbmw", "qpeak_dbmw",
                                                 "memory_dbmw", "ambient_h_dbmw", "ambient_v_dbmw"};
    const QString name = QLatin1String(plain[slot]);
    if (slot == Sample || slot >= AmbientH || (selection != 1 && selection != 2))
        return name;
    return (selection == 1 ? QStringLiteral("h_") : QStringLiteral("v_")) + name;
}

Slots visibleSlots(const AppState &s)
{
    return {s.viewSample != 0, s.viewAverage != 0, s.viewMaxhold != 0, s.viewQPeak != 0,
            s.viewMemoryB != 0 || s.viewMemoryAB != 0, s.emcViewAmbientH != 0, s.emcViewAmbientV != 0};
}

// logTen of a value, leaving the caller's variable alone.
double logTenOf(double v) { return logTen(v); }

// Fix: the fraction dropped towards zero; a value that is not finite stays so, and is skipped later.
double fix(double v) { return std::isfinite(v) ? std::trunc(v) : v; }

// The level rows of the measurement table in frequency order, with just the columns in use;
// column names are matched without regard to case against the file's table. The file is read
// in one pass through SQLite itself into a compact array of counts: a file of 100,000 rows must
// paint in a few tens of milliseconds, which rules out a value object per cell. A table already
// in frequency order (as the writer leaves it) needs no sort.
class StoredRows {
public:
    StoredRows(const QString &path, int selection, const Slots &wanted)
    {
        field_.fill(-1);
        Connection db = openCopy(path);
        const QStringList names = tableColumns(db.get());
        const QString frequency = columnOf(names, QStringLiteral("frequency"));
        if (frequency.isEmpty())
            return;
        QStringList columns{quoted(frequency)};
        for (int slot = 0; slot < SlotCount; ++slot) {
            const QString name = wanted[slot] ? columnOf(names, storedColumn(Slot(slot), selection)) : QString();
            if (name.isEmpty())
                continue;
            field_[slot] = int(columns.size());
            columns.append(quoted(name));
        }
        load(db.get(), QStringLiteral("select %1 from measurement order by rowid").arg(columns.join(QLatin1Char(','))));
    }

    qint64 recordCount() const { return qint64(rows_.size()); }
    // At the end it stays at the end.
    bool next()
    {
        const auto count = std::ptrdiff_t(rows_.size());
        if (at_ < count)
            ++at_;
        return at_ < count;
    }
    // Whether the row lies beyond the stop frequency; a row without a frequency never does.
    bool beyond(float stop) const { return rows_[at_].frequency > stop; }
    // The row's frequency; a NULL keeps the old value.
    void readFrequency(float &into) const
    {
        if (rows_[at_].frequency != kNoFrequency)
            into = rows_[at_].frequency;
    }

    // The row's levels as counts; a NULL, a missing column or a value out of range keeps the old value.
    void read(Levels &into) const
    {
        for (int slot = 0; slot < SlotCount; ++slot)
            if (const qint16 level = rows_[at_].levels[slot]; level != kNoLevel)
                into[slot] = level;
    }
    // The row's levels where they are higher.
    void raise(Levels &into) const
    {
        for (int slot = 0; slot < SlotCount; ++slot)
            if (const qint16 level = rows_[at_].levels[slot]; level != kNoLevel && level > into[slot])
                into[slot] = level;
    }

private:
    // Counts are 16 bits; the lowest is kept for "no value" (it lies 13,107 dB down).
    static constexpr qint16 kNoLevel = std::numeric_limits<qint16>::min();
    // A NULL frequency; it sorts first, as NULLs do in "order by frequency".
    static constexpr float kNoFrequency = -std::numeric_limits<float>::infinity();
    struct Row {
        float frequency;
        std::array<qint16, SlotCount> levels;
    };

    // All rows in stored order, then sorted by frequency unless they are in order already
    // (a NULL frequency sorts first, rows of equal frequency keep their stored order).
    void load(sqlite3 *sqlite, const QString &sql)
    {
        sqlite3_stmt *statement = nullptr;
        if (sqlite3_prepare_v2(sqlite, "select count(*) from measurement", -1, &statement, nullptr) == SQLITE_OK
            && sqlite3_step(statement) == SQLITE_ROW)
            rows_.reserve(size_t(std::max<sqlite3_int64>(0, sqlite3_column_int64(statement, 0))));
        sqlite3_finalize(statement);
        statement = nullptr;
        if (sqlite3_prepare_v2(sqlite, sql.toUtf8().constData(), -1, &statement, nullptr) == SQLITE_OK) {
            while (sqlite3_step(statement) == SQLITE_ROW)
                rows_.push_back(rowOf(statement));
        }
        sqlite3_finalize(statement);
        const auto byFrequency = [](const Row &a, const Row &b) { return a.frequency < b.frequency; };
        if (!std::is_sorted(rows_.begin(), rows_.end(), byFrequency))
            std::stable_sort(rows_.begin(), rows_.end(), byFrequency);
    }

    Row rowOf(sqlite3_stmt *statement) const
    {
        Row row;
        row.frequency = sqlite3_column_type(statement, 0) == SQLITE_NULL ? kNoFrequency
                                                                          : float(sqlite3_column_double(statement, 0));
        for (int slot = 0; slot < SlotCount; ++slot)
            row.levels[slot] = levelAt(statement, field_[slot]);
        return row;
    }

    // dB x 2.5, halves to even, as a 16-bit count; kNoLevel for a NULL, text or a value out of range.
    // The level columns are singles: the value is taken as one before it is multiplied.
    static qint16 levelAt(sqlite3_stmt *statement, int field)
    {
        if (field < 0)
            return kNoLevel;
        const int type = sqlite3_column_type(statement, field);
        if (type != SQLITE_FLOAT && type != SQLITE_INTEGER)
            return kNoLevel;
        const double counts = std::nearbyint(double(float(sqlite3_column_double(statement, field))) * 2.5);
        if (!(counts > kNoLevel && counts <= std::numeric_limits<qint16>::max()))
            return kNoLevel;
        return qint16(counts);
    }

    struct Close {
        void operator()(sqlite3 *db) const { sqlite3_close(db); }
    };
    using Connection = std::unique_ptr<sqlite3, Close>;

    // The file read whole into memory and opened there: one read of the disk instead of one per
    // page, and nothing another program does to the file meanwhile can reach this paint. A file
    // too large for that is read where it lies.
    static Connection openCopy(const QString &path)
    {
        constexpr qint64 kLargestCopy = 256 * 1024 * 1024;
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly))
            return {};
        sqlite3 *db = nullptr;
        if (file.size() > kLargestCopy) {
            sqlite3_open_v2(QFile::encodeName(path).constData(), &db, SQLITE_OPEN_READONLY, nullptr);
            return Connection(db);
        }
        const QByteArray bytes = file.readAll();
        auto *copy = static_cast<unsigned char *>(sqlite3_malloc64(sqlite3_uint64(qMax<qsizetype>(1, bytes.size()))));
        if (sqlite3_open(":memory:", &db) != SQLITE_OK || !copy) {
            sqlite3_free(copy);
            return Connection(db);
        }
        std::memcpy(copy, bytes.constData(), size_t(bytes.size()));
        sqlite3_deserialize(db, "main", copy, bytes.size(), bytes.size(),
                            SQLITE_DESERIALIZE_FREEONCLOSE | SQLITE_DESERIALIZE_READONLY);
        return Connection(db);
    }

    static QStringList tableColumns(sqlite3 *db)
    {
        QStringList names;
        sqlite3_stmt *statement = nullptr;
        if (db && sqlite3_prepare_v2(db, "pragma table_info(measurement)", -1, &statement, nullptr) == SQLITE_OK)
            while (sqlite3_step(statement) == SQLITE_ROW)
                names << QString::fromUtf8(reinterpret_cast<const char *>(sqlite3_column_text(statement, 1)));
        sqlite3_finalize(statement);
        return names;
    }

    static QString columnOf(const QStringList &names, const QString &name)
    {
        for (const QString &column : names)
            if (column.compare(name, Qt::CaseInsensitive) == 0)
                return column;
        return {};
    }

    static QString quoted(const QString &name)
    {
        return QLatin1Char('"') + QString(name).replace(QLatin1Char('"'), QStringLiteral("\"\"")) + QLatin1Char('"');
    }

    std::vector<Row> rows_;
    std::ptrdiff_t at_ = -1; // before the first row
    std::array<int, SlotCount> field_;
};

using StoredStep = std::function<void(float f1, const Levels &previous, float f2, const Levels &current)>;

// Walks the rows as the stored lines and bars do, handing each stretch to `step`. With `thin`
// a point stands for itself and the next `thinFactor` rows: the highest value of each column, at
// the frequency of the group's last row. The walk ends at the first row beyond `stop`.
void walkStored(StoredRows &rows, bool thin, int thinFactor, float stop, const StoredStep &step)
{
    Levels current{};
    if (!rows.next())
        return;
    rows.read(current);
    Levels previous = current;
    float f1 = 0;
    rows.readFrequency(f1);
    float f2 = f1;
    while (rows.next() && !rows.beyond(stop)) {
        rows.read(current);
        rows.readFrequency(f2);
        bool beyond = false;
        for (int k = 0; thin && k < thinFactor; ++k) {
            if (!rows.next())
                break;
            if (rows.beyond(stop)) {
                beyond = true;
                break;
            }
            rows.raise(current);
            rows.readFrequency(f2);
        }
        step(f1, previous, f2, current);
        if (beyond)
            return;
        previous = current;
        f1 = f2;
    }
}

// A single as the system joins it to text: shortest digits, no trailing zeros.
QString plainNumber(float value, quint8 decimalChar)
{
    return QString::number(double(value), 'g', 7).replace(QLatin1Char('.'), QChar(decimalChar));
}

} // namespace

QString formatPicture(double value, const QString &picture)
{
    const int point = picture.indexOf(QLatin1Char('.'));
    const QString whole = point < 0 ? picture : picture.left(point);
    const QString rest = point < 0 ? QString() : picture.mid(point + 1);
    int decimals = 0;
    while (decimals < rest.size() && (rest[decimals] == QLatin1Char('0') || rest[decimals] == QLatin1Char('#')))
        ++decimals;
    int digits = 0;
    while (digits < whole.size() && (whole[digits] == QLatin1Char('0') || whole[digits] == QLatin1Char('#')))
        ++digits;
    const QString suffix = (point < 0 ? whole.mid(digits) : rest.mid(decimals));
    return numberPicture(value, int(whole.left(digits).count(QLatin1Char('0'))), decimals) + suffix;
}

QString frequencyLabelText(float f, bool zeroSpan)
{
    if (f < 1.0f)
        return formatPicture(double(f) * 1000.0, QStringLiteral("###0.0K"));
    if (f < 1000.0f)
        return formatPicture(f, QStringLiteral("###0.00M"));
    // The zero-span line shows gigahertz with two decimals, the axis with three.
    return formatPicture(double(f) / 1000.0, zeroSpan ? QStringLiteral("###0.00G") : QStringLiteral("###0.000G"));
}

ChartPainter::ChartPainter(Context &ctx, Canvas &picture1, Canvas &picture2, Canvas &picture3,
                           GrafikControls &controls)
    : ctx_(ctx), picture1_(picture1), picture2_(picture2), picture3_(picture3), controls_(controls)
{
}

AppState &ChartPainter::state() { return ctx_.state; }
ChartView &ChartPainter::view() { return ctx_.state.chart; }

void ChartPainter::paintChart()
{
    ChartView &v = view();
    if (v.paintBusy == 1)
        return;
    v.paintBusy = 1;
    setBusy(ctx_);

    // The zoom window stands in for the real one during the paint.
    const float realStart = v.startFrequency, realStop = v.stopFrequency;
    if (v.zoomOn) {
        if (v.zoomStart > v.startFrequency)
            v.startFrequency = v.zoomStart;
        else
            v.zoomStart = v.startFrequency;
        if (v.zoomStart + v.zoomSpan < v.stopFrequency) {
            v.stopFrequency = v.zoomStart + v.zoomSpan;
        } else {
            v.zoomStart = v.stopFrequency - v.zoomSpan;
            v.startFrequency = v.zoomStart;
        }
    }

    for (int pass = 1;; ++pass) {
        paintFrame();
        picture1_.setDrawMode(Canvas::CopyPen);
        picture1_.setDrawWidth(2);
        if (!hooks.paintLimitLines || !hooks.paintLimitLines() || pass == kMaxPaintPasses)
            break;
    }
    picture1_.setDrawWidth(1);
    controls_.setCaption(QString());
    paintTraces();
    call(hooks.paintCursors);
    call(hooks.refreshLevelmeter);
    call(hooks.refreshPreview);
    v.paintBusy = 0;

    if (v.zoomOn) {
        v.startFrequency = realStart;
        v.stopFrequency = realStop;
    }
    controls_.setZoomControls(v.zoomOn, zoomFieldText(state(), v.zoomStart), zoomFieldText(state(), v.zoomSpan));
    controls_.setKnownBandsCheck(v.showKnownBands != 0);
    clearBusy(ctx_);
}

// The clean frame: scales, grids, labels and the text lines around the chart.
void ChartPainter::paintFrame()
{
    ChartView &v = view();
    v.peakLevel = -1000;
    picture1_.clear();
    picture3_.clear();
    picture2_.clear();
    picture1_.setDrawMode(Canvas::CopyPen);
    const double levelHeight = double(v.grafikMin) - v.grafikMax;
    const double p1Width = std::max(1, picture1_.pixelWidth());
    const double p1Height = std::max(1, picture1_.pixelHeight());
    picture1_.setScale(0, v.grafikMax, kPlotWidth, levelHeight);
    // One count is as high on Picture2 as on Picture1, one x unit as wide on Picture3.
    picture2_.setScale(0, v.grafikMax, 10, levelHeight * picture2_.pixelHeight() / p1Height);
    picture3_.setScale(0, 10, kPlotWidth * picture3_.pixelWidth() / p1Width, -11);
    picture1_.setDrawWidth(1);
    checkLogAxis();
    picture1_.setDrawWidth(1);
    showDistance();
    if (v.showKnownBands != 0)
        call(hooks.paintKnownBands);
    paintFrequencyGrid();
    controls_.setUnitLabel(state().unitName.trimmed());
    paintLevelGrid();
}

void ChartPainter::checkLogAxis()
{
    ChartView &v = view();
    if (v.startFrequency * 10 > v.stopFrequency) {
        v.logAxis = 0;
        controls_.setLogAxisCheck(false, false);
    } else {
        controls_.setLogAxisCheck(true, v.logAxis == 1);
    }
}

void ChartPainter::showDistance()
{
    const AppState &s = state();
    if (!(s.distanceFromDut > 0)) {
        controls_.setDistanceLabel(false, controls_.distanceText);
        return;
    }
    QString text = QStringLiteral("Distance from DUT: ") + plainNumber(s.distanceFromDut, s.decimalChar) +
                   QStringLiteral("m");
    if (s.distanceFromDut != s.maxholdLimitDistance && s.maxholdLimitDistance > 0) {
        const double offset = -20.0 * logTenOf(double(s.maxholdLimitDistance) / s.distanceFromDut);
        text += QStringLiteral(" offset ") + formatPicture(offset, QStringLiteral("0.0")) + QStringLiteral("dB");
    }
    controls_.setDistanceLabel(true, text);
}

double ChartPainter::frequencyToX(float f) const
{
    const ChartView &v = ctx_.state.chart;
    if (v.logAxis == 0)
        return fix((double(f) - v.startFrequency) * kPlotWidth / (double(v.stopFrequency) - v.startFrequency));
    if (f == 0)
        return 0;
    const double low = logTenOf(double(v.logStart) * 1000.0);
    return (logTenOf(double(f) * 1000.0) - low) / (logTenOf(double(v.logStop) * 1000.0) - low) * kPlotWidth;
}

void ChartPainter::drawSegment(float f1, double y1, float f2, double y2, quint32 colour)
{
    if (f1 < 0 || f2 < 0)
        return;
    const double x1 = frequencyToX(f1), x2 = frequencyToX(f2);
    // No clipping at the left edge: a stretch that begins left of the window is not drawn.
    if (!(x1 >= 0 && x2 >= 0) || !std::isfinite(x1) || !std::isfinite(x2))
        return;
    picture1_.line(x1, y1, x2, y2, colour);
}

void ChartPainter::drawBar(float f, double y1, double y2, quint32 colour)
{
    drawSegment(f, y1, f, y2, colour);
}

void ChartPainter::drawBox(float f1, float f2, double y1, double y2, quint32 colour)
{
    if (f2 < 0)
        return;
    const double x1 = frequencyToX(f1), x2 = frequencyToX(f2);
    if (!(x1 >= 0 && x2 >= 0) || !std::isfinite(x1) || !std::isfinite(x2))
        return;
    picture1_.box(x1, y1, x2, y2, colour);
}

void ChartPainter::drawFrequencyLabel(float f, quint32 colour)
{
    const double x = frequencyToX(f);
    if (!(x >= 0) || !std::isfinite(x))
        return;
    picture3_.line(x, 10, x, 7, colour);
    picture3_.setForeColour(colour);
    picture3_.setTextPosition(x, 8);
    picture3_.print(frequencyLabelText(f, false));
}

void ChartPainter::drawLevelLabel(double y, quint32 colour)
{
    picture2_.line(8, y, 10, y, colour);
    picture2_.setForeColour(colour);
    picture2_.setTextPosition(0, y);
    picture2_.print(formatPicture(y / 2.5 + state().analyser.unitOffset, QStringLiteral("###0.0")));
}

void ChartPainter::computeLogBounds()
{
    ChartView &v = view();
    v.logStart = 0;
    v.logStop = 0;
    v.logDecade = 0.001f;
    // Decades are exact powers of ten, so that 5 x 100 is 500 and not a hair above it.
    int decade = -3;
    auto d = [&decade] { return std::pow(10.0, decade); };
    if (v.startFrequency <= 0.002f)
        v.logStart = 0.001f;
    else
        for (bool found = false; !found && decade < kMaxDecades;) {
            for (int i = 1; i <= 9 && !found; ++i) {
                if (d() * i > v.startFrequency) {
                    // A start just below a decade goes up to it; any other down to its step.
                    v.logStart = float(i == 1 ? d() : d() * (i - 1));
                    v.logDecade = float(d());
                    found = true;
                }
            }
            if (!found)
                ++decade;
        }
    for (; decade < kMaxDecades; ++decade)
        for (int i = 1; i <= 9; ++i)
            if (d() * i > v.stopFrequency) {
                v.logStop = float(d() * i);
                return;
            }
}

void ChartPainter::paintFrequencyGrid()
{
    const AppState &s = state();
    if (s.emcMode == 0 && s.analyser.span <= 0)
        paintZeroSpanLine();
    else if (view().logAxis == 0)
        paintLinearGrid();
    else
        paintLogGrid();
}

void ChartPainter::paintLinearGrid()
{
    const ChartView &v = view();
    const quint32 grid = state().screenColours[GridColour];
    if (v.startFrequency < 0) {
        // The zero line of a window reaching below 0 MHz stands in for the left label.
        picture1_.setDrawWidth(2);
        drawSegment(0, v.grafikMin, 0, v.grafikMax, kBlack);
        picture1_.setDrawWidth(1);
    } else {
        drawFrequencyLabel(v.startFrequency, kLabelColour);
    }
    for (int i = 1; i <= 9; ++i) {
        const float f = (v.stopFrequency - v.startFrequency) * i / 10 + v.startFrequency;
        drawSegment(f, v.grafikMin, f, v.grafikMax, grid);
        drawFrequencyLabel(f, kLabelColour);
    }
    drawFrequencyLabel(v.stopFrequency, kLabelColour);
}

void ChartPainter::paintLogGrid()
{
    computeLogBounds();
    const ChartView &v = view();
    const quint32 grid = state().screenColours[GridColour];
    const quint32 decadeColour = state().screenColours[DecadeColour];
    // The decade as the exact power of ten that computeLogBounds found, so that a step of the
    // grid is the same single as the bound it is compared with.
    int decade = int(std::lround(std::log10(double(v.logDecade))));
    auto d = [&decade] { return std::pow(10.0, decade); };
    int i0 = int(v.logStart / v.logDecade);
    drawFrequencyLabel(v.logStart, kLabelColour);
    float f = v.logStart;
    do {
        for (int i = i0; i <= 9; ++i) {
            f = float(d() * i);
            if (f < v.logStop)
                drawSegment(f, v.grafikMin, f, v.grafikMax, grid);
        }
        ++decade;
        if (const float next = float(d()); next < v.logStop) {
            drawSegment(next, v.grafikMin, next, v.grafikMax, decadeColour);
            drawFrequencyLabel(next, kLabelColour);
        }
        i0 = 2;
    } while (f < v.logStop);
    drawFrequencyLabel(v.logStop, kLabelColour);
}

void ChartPainter::paintZeroSpanLine()
{
    picture3_.setForeColour(kZeroSpanColour);
    picture3_.setTextPosition(1000, 10);
    picture3_.print(QStringLiteral("Zerospan / Freq: ") + frequencyLabelText(view().startFrequency, true));
}

void ChartPainter::paintLevelGrid()
{
    const ChartView &v = view();
    const AnalyserSettings &a = state().analyser;
    const float g = (a.refLevel + a.attenuator) * 2.5f;
    const float step = 2.5f * a.dbPerDivision;
    if (!(step > 0) || !std::isfinite(g))
        return;
    if (g <= v.grafikMax) {
        for (float y = g; y <= v.grafikMax; y += step)
            paintLevelLine(y);
        for (float y = g - step; y >= v.grafikMin; y -= step)
            paintLevelLine(y);
    } else {
        // An anchor above the window: the lines stand at whole steps from the top edge.
        for (float y = v.grafikMax; y >= v.grafikMin; y -= step)
            if (y < g)
                paintLevelLine(y);
    }
}

void ChartPainter::paintLevelLine(double y)
{
    picture1_.line(0, y, kPlotWidth, y, state().screenColours[GridColour]);
    drawLevelLabel(y, kLabelColour);
}

void ChartPainter::paintTraces()
{
    AppState &s = state();
    if (s.traceFrozen == 0) {
        picture1_.setDrawWidth(1);
        controls_.setLiveButtonsEnabled(true);
        controls_.setCaption(QString());
        if (s.analyser.span > 0)
            paintLiveSweep();
        else
            paintLiveZeroSpan();
        controls_.setCaption(liveCaption());
    } else {
        paintStored();
    }
}

namespace {

struct LiveTrace {
    const TraceArray &levels;
    quint32 colour;
};

// The live traces that are on, in the order sample, average, max hold, memory.
QList<LiveTrace> liveTraces(const AppState &s)
{
    const Slots on = visibleSlots(s);
    const TraceStore &t = s.traces;
    QList<LiveTrace> traces;
    const std::pair<Slot, const TraceArray *> table[] = {
        {Sample, &t.sampleTrace}, {Average, &t.averageTrace}, {Maxhold, &t.maxholdTrace}, {Memory, &t.memoryTrace}};
    for (const auto &[slot, levels] : table)
        if (on[slot])
            traces.append(LiveTrace{*levels, s.screenColours[kSlotColour[slot]]});
    return traces;
}

int livePointCount(const AppState &s) { return std::min(s.pointCount, kTraceSize - 1); }

} // namespace

void ChartPainter::paintLiveSweep()
{
    AppState &s = state();
    ChartView &v = s.chart;
    const QList<LiveTrace> traces = liveTraces(s);
    const int n = livePointCount(s);
    // The step divides by the number of points, so the last point falls one step short of the stop.
    const float step = (v.stopFrequency - v.startFrequency) / s.pointCount;
    for (int i = 2; i <= n; ++i) {
        const float f1 = v.startFrequency + step * (i - 2);
        const float f2 = v.startFrequency + step * (i - 1);
        for (const LiveTrace &trace : traces) {
            drawSegment(f1, trace.levels[i - 1], f2, trace.levels[i], trace.colour);
            if (trace.levels[i] > v.peakLevel) {
                v.peakLevel = trace.levels[i];
                v.peakFrequency = f2;
            }
        }
    }
}

void ChartPainter::paintLiveZeroSpan()
{
    AppState &s = state();
    ChartView &v = s.chart;
    const QList<LiveTrace> traces = liveTraces(s);
    const int n = livePointCount(s);
    for (int i = 2; i <= n; ++i) {
        const double x1 = double(qint64(i - 2) * 1000000) / s.pointCount;
        const double x2 = double(qint64(i - 1) * 1000000) / s.pointCount;
        for (const LiveTrace &trace : traces) {
            picture1_.line(x1, trace.levels[i - 1], x2, trace.levels[i], trace.colour);
            if (trace.levels[i] > v.peakLevel) {
                v.peakLevel = trace.levels[i];
                v.peakFrequency = float(x2); // in zero span the peak is an x position
            }
        }
    }
}

// "   Sam:" and the time of each trace on; the long time is shown as hh:mm:ss in every locale.
QString ChartPainter::liveCaption()
{
    const AppState &s = state();
    const Slots on = visibleSlots(s);
    const TraceStore &t = s.traces;
    const std::tuple<Slot, const char *, const QDateTime *> table[] = {{Sample, "   Sam:", &t.sampleTime},
                                                                       {Average, "   Ave:", &t.averageTime},
                                                                       {Maxhold, "   Max:", &t.maxholdTime},
                                                                       {Memory, "   Mem:", &t.memoryTime}};
    QString caption;
    for (const auto &[slot, label, time] : table)
        if (on[slot])
            caption += QLatin1String(label) + time->toString(QStringLiteral("hh:mm:ss"));
    return caption;
}

void ChartPainter::paintStored()
{
    AppState &s = state();
    const ChartView &v = s.chart;
    controls_.setLiveButtonsEnabled(false);
    // "general date": the locale's short date and the time.
    controls_.setCaption(QStringLiteral("Measure date: ") +
                         QLocale().toString(s.measurementDate.date(), QLocale::ShortFormat) + QLatin1Char(' ') +
                         s.measurementDate.toString(QStringLiteral("hh:mm:ss")));
    controls_.setMemoryTraceCaption(s.emcMode == 0 ? QStringLiteral("Mem B") : QStringLiteral("Sweep"));
    picture1_.setDrawWidth(1);

    const bool emcBars = s.emcMode == 2;
    const bool zeroSpan = s.emcMode == 0 && s.analyser.span <= 0;
    if (s.emcMode > 2)
        return;
    Slots wanted = visibleSlots(s);
    wanted[AmbientH] = wanted[AmbientH] && emcBars;
    wanted[AmbientV] = wanted[AmbientV] && emcBars;
    wanted[Sample] = wanted[Sample] || emcBars; // the mark of a measured row
    StoredRows rows(measurementFilePath(s), zeroSpan ? 0 : v.paintSelection, wanted);
    const Slots on = visibleSlots(s);
    auto colour = [&s](int slot) { return s.screenColours[kSlotColour[slot]]; };

    if (zeroSpan) {
        const qint64 n = rows.recordCount();
        Levels previous{};
        if (!rows.next())
            return;
        rows.read(previous);
        for (qint64 i = 2; i <= n && rows.next(); ++i) {
            Levels current = previous;
            rows.read(current);
            const double x1 = double((i - 2) * 1000000) / n, x2 = double((i - 1) * 1000000) / n;
            for (int slot = Sample; slot <= Memory; ++slot)
                if (on[slot])
                    picture1_.line(x1, previous[slot], x2, current[slot], colour(slot));
            previous = current;
        }
        return;
    }

    // A factor too large for its byte is not taken: the last one stays (the system's overflow).
    const double factor = std::nearbyint(double(rows.recordCount()) / 500.0);
    if (factor <= 255)
        s.chart.thinFactor = quint8(factor);
    const bool thin = !(v.paintAllPoints == 1 || v.thinFactor <= 5);

    if (!emcBars) {
        walkStored(rows, thin, v.thinFactor, v.stopFrequency,
                   [&](float f1, const Levels &previous, float f2, const Levels &current) {
                       for (int slot = Sample; slot <= Memory; ++slot)
                           if (on[slot])
                               drawSegment(f1, previous[slot], f2, current[slot], colour(slot));
                   });
        return;
    }
    walkStored(rows, thin, v.thinFactor, v.stopFrequency,
               [&](float f1, const Levels &previous, float f2, const Levels &current) {
                   if (on[Memory])
                       drawSegment(f1, previous[Memory], f2, current[Memory], colour(Memory));
                   // Detector bars show only where they stand above the ambient by the distance.
                   int threshold = -10000;
                   if (on[AmbientH]) {
                       if (s.emcViewAmbient)
                           drawSegment(f1, previous[AmbientH], f2, current[AmbientH], colour(AmbientH));
                       if (s.emcCalcAmbient)
                           threshold = previous[AmbientH];
                   }
                   if (on[AmbientV]) {
                       if (s.emcViewAmbient)
                           drawSegment(f1, previous[AmbientV], f2, current[AmbientV], colour(AmbientV));
                       if (s.emcCalcAmbient && previous[AmbientV] > threshold)
                           threshold = previous[AmbientV];
                   }
                   if (s.emcCalcAmbient)
                       threshold += int(std::nearbyint(2.5 * s.emcAmbientDistance));
                   // A row the step scan has measured carries a positive mark in its sample column.
                   if (previous[Sample] > 0)
                       for (Slot slot : {Maxhold, QPeak, Average})
                           if (on[slot] && previous[slot] > threshold)
                               drawBar(f1, v.grafikMin, previous[slot], colour(slot));
               });
}
