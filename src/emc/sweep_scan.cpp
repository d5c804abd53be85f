#include "emc/sweep_scan.h"

#include "emc/detectors.h"
#include "emc/stepped_scan.h"
#include "link/commands.h"
#include "signal/level_math.h"
#include "signal/trace_store.h"
#include "store/data_view.h"
#include "store/measurement_file.h"
#include "store/sqlite_file.h"

#include <QCoreApplication>

#include <cmath>
#include <utility>
#include <optional>

namespace {

constexpr float kLimitStartUsed = 100000.0f;
// The segment wait yields the event queue and lets this much time pass between its looks.
constexpr double kWaitSlice = 0.05;
// The step pass paints the rows so far after this many rows and one more.
constexpr int kRowsPerPaint = 30;

// Every level column of a row: a new row holds -1000 in all of them but the round's own.
const char *const kLevelColumns[] = {"Sample_dBmW",    "Average_dBmW",   "Maxhold_dBmW",   "QPeak_dBmW",
                                     "Memory_dBmW",    "Ambient_H_dBmW", "Ambient_V_dBmW", "V_Memory_dBmW",
                                     "H_Memory_dBmW",  "H_Average_dBmW", "H_Maxhold_dBmW", "H_QPeak_dBmW",
                                     "V_Average_dBmW", "V_Maxhold_dBmW", "V_QPeak_dBmW"};

// The frequency as the file keys it: the float32 value formatted "0.000".
QString frequencyText(float f) { return QString::number(double(f), 'f', 3); }
float keyed(float f) { return frequencyText(f).toFloat(); }
// Frequencies are compared at that 1 kHz grain.
qint64 kiloHertz(float f) { return qRound64(frequencyText(f).toDouble() * 1000.0); }

// The limit line in force as the file holds it, in frequency order.
QString limitQuery(const AppState &s)
{
    return s.limitReference != 0 ? QStringLiteral("select * from limitlines order by avefreq")
                                 : QStringLiteral("select * from limitlines order by maxfreq");
}

struct LimitPoint {
    float frequency, level;
};

LimitPoint limitPoint(const AppState &s, const DataView &limits)
{
    const bool average = s.limitReference != 0;
    return {limits.value(average ? QStringLiteral("avefreq") : QStringLiteral("maxfreq")).toFloat(),
            limits.value(average ? QStringLiteral("Average_dBmW") : QStringLiteral("Maxhold_dBmW")).toFloat()};
}

// The segment's span and the analyser's bandwidth command, coupled.
void sendSegmentBandwidth(Context &ctx)
{
    switch (ctx.state.analyser.bandwidth) {
    case 9:
        sendBandwidth9(ctx);
        break;
    case 120:
        sendBandwidth120(ctx);
        break;
    default:
        sendBandwidth1000(ctx);
    }
}

void showFrequency(Context &ctx, float frequency)
{
    ctx.run().setFrequencyLabel(QString::number(double(frequency), 'f', 3));
}

// The analyser's max hold runs for `sweepTime` seconds from `began`; the program yields meanwhile.
// Measured on the steady clock, so a wait across midnight ends as any other. False on Stop or
// offline.
bool waitForSegment(Context &ctx, double began)
{
    AppState &s = ctx.state;
    for (;;) {
        const double left = s.sweepTime - (ctx.clock.steadySeconds() - began);
        ctx.run().setBlocksLabel(QString::number(qRound(qMax(0.0, left))) + QLatin1Char('s'));
        QCoreApplication::processEvents();
        if (s.emcStopRequest == 1 || s.online == 0)
            return false;
        if (left < 0)
            return true;
        // The last slice ends with the measuring time, not up to a slice after it.
        ctx.clock.sleep(qMin(kWaitSlice, left + 0.001));
    }
}

// The columns of a new row, in the order of newRow's values.
QStringList newRowColumns()
{
    QStringList columns{QStringLiteral("Frequency")};
    for (const char *column : kLevelColumns)
        columns << QLatin1String(column);
    return columns;
}

// A new row at `f`: -1000 everywhere but in the round's own columns, which get `v`.
QVariantList newRow(const AppState &s, float f, double v)
{
    QStringList own;
    if (s.ambientRound == 1)
        own = {QStringLiteral("Ambient_H_dBmW")};
    else if (s.ambientRound == 2)
        own = {QStringLiteral("Ambient_V_dBmW")};
    else
        own = {QStringLiteral("Memory_dBmW"), s.horizontalRound != 0 ? QStringLiteral("H_Memory_dBmW")
                                                                     : QStringLiteral("V_Memory_dBmW")};
    QVariantList values{double(keyed(f))};
    for (const char *column : kLevelColumns)
        values << (own.contains(QLatin1String(column)) ? v : kNotMeasured);
    return values;
}

// The row under the cursor takes the segment's value; no frequency is compared.
void editCursorRow(const AppState &s, DataView &rows, double v)
{
    if (rows.edit()) {
        if (s.ambientRound == 1) {
            rows.setValue(QStringLiteral("Ambient_H_dBmW"), v);
        } else if (s.ambientRound == 2) {
            rows.setValue(QStringLiteral("Ambient_V_dBmW"), v);
        } else {
            if (v > rows.value(QStringLiteral("Memory_dBmW")).toDouble())
                rows.setValue(QStringLiteral("Memory_dBmW"), v);
            rows.setValue(s.horizontalRound != 0 ? QStringLiteral("H_Memory_dBmW") : QStringLiteral("V_Memory_dBmW"), v);
        }
        rows.update();
    }
    rows.moveNext();
}

// The limit at f between the points p1 and p2; nothing on a division by zero.
std::optional<double> limitAt(double f, LimitPoint p1, LimitPoint p2, bool logarithmic)
{
    const double f1 = p1.frequency, f2 = p2.frequency, l1 = p1.level, l2 = p2.level;
    if (f2 - f1 < 0.001 || l1 == l2)
        return l1;
    if (logarithmic) {
        double x = f, x1 = f1, x2 = f2;
        const double below = logTen(x2) - logTen(x1);
        if (below == 0.0)
            return std::nullopt;
        return l1 + (l2 - l1) * (logTen(x) - logTen(x1)) / below;
    }
    // Deliberately not the usual interpolation: l2 at f1, running away towards f2.
    if (f2 - f == 0.0)
        return std::nullopt;
    return l1 + (l2 - l1) * (f2 - f1) / (f2 - f);
}

// The row's frequency commanded and shown.
void tuneToRow(Context &ctx, const DataView &rows)
{
    AppState &s = ctx.state;
    s.stepFrequency = keyed(rows.value(QStringLiteral("Frequency")).toFloat());
    s.analyser.centerFrequency = float(s.stepFrequency);
    sendCenterFrequency(ctx);
    showFrequency(ctx, s.analyser.centerFrequency);
}

// The segment last read goes into the file.
void storeSegment(Context &ctx)
{
    mergeSweep(ctx);
    ctx.state.storedUpTo = ctx.state.chart.stopFrequency;
}

// The rounds' segments, from the test's start; false when the round broke off in a wait. A
// segment is stored while the analyser measures the next one, so that the file's work costs no
// measuring time; only the last is stored after its read.
bool sweepSegments(Context &ctx)
{
    AppState &s = ctx.state;
    bool pending = false;
    for (;;) {
        setBusy(ctx);
        calculationStart(ctx); // restarts the max hold
        const double began = ctx.clock.steadySeconds();
        showFrequency(ctx, s.analyser.centerFrequency);
        s.repaintRequest = 0;
        if (std::exchange(pending, false)) {
            storeSegment(ctx);
            s.chart.startFrequency = s.testStart; // the chart shows the whole test so far
            call(ctx.calls.paintChart);
        }
        if (!waitForSegment(ctx, began))
            return false;
        s.repaintRequest = 0;
        readTraceSingle(ctx); // the chart's start and stop are now the segment's ends
        // The last segment may reach beyond the stop.
        if (s.chart.stopFrequency >= s.testStop) {
            storeSegment(ctx);
            return true;
        }
        // Segments abut: the next starts where this one stopped.
        s.analyser.centerFrequency = s.chart.stopFrequency + float(s.analyser.span) / 2.0f;
        sendCenterFrequency(ctx);
        pending = true;
    }
}

} // namespace

void sweepRound(Context &ctx)
{
    AppState &s = ctx.state;
    s.repaintRequest = 0;
    {
        SqliteFile file(measurementFilePath(s));
        Recordset limits(file.handle(), limitQuery(s));
        if (limits.isEof()) {
            clearBusy(ctx);
            return;
        }
        s.limitStartFrequency = limitPoint(s, limits).frequency;
    }
    s.testStart = s.chart.startFrequency;
    s.testStop = s.chart.stopFrequency;
    s.stepIncrement = s.stepWidth;
    s.analyser.span = spanForBandwidth(s.analyser.bandwidth);
    s.analyser.centerFrequency = s.chart.startFrequency + float(s.analyser.span) / 2.0f;
    s.analyser.readMode = 4;
    s.traceTarget = 0;
    sendTraceTarget(ctx);
    sendAllSettings(ctx);
    s.emcStopRequest = 0;
    sendSegmentBandwidth(ctx);
    s.traceFrozen = 1;
    s.stepCounter = 0;
    s.qpeakValue = 0.0;
    s.emcStartTime = ctx.clock.now();
    s.stepFrequency = s.chart.startFrequency;
    s.traceTarget = 4; // the block read is the analyser's max hold
    sendTraceTarget(ctx);
    s.storedUpTo = s.nextStoreFrequency = s.chart.startFrequency;
    const bool swept = sweepSegments(ctx);
    if (swept) {
        s.chart.startFrequency = s.testStart;
        s.chart.stopFrequency = s.testStop;
        call(ctx.calls.paintChart);
        if (s.ambientRound == 0) {
            selectCriticalFrequencies(ctx);
            stepCriticalFrequencies(ctx);
        }
        QCoreApplication::processEvents();
        s.chart.startFrequency = s.testStart;
        s.chart.stopFrequency = s.testStop;
    }
    clearBusy(ctx);
}

void mergeSweep(Context &ctx)
{
    AppState &s = ctx.state;
    SqliteFile file(measurementFilePath(s));
    QSqlDatabase db = file.handle();
    DataView rows(db);
    if (!rows.setSource(QStringLiteral("select * from measurement order by frequency")))
        return;
    // Not the sample spacing of the conversion: this divides by one point less.
    const float spacing = (s.chart.stopFrequency - s.chart.startFrequency) / float(s.pointCount - 1);
    if (s.rowsExist == 1
        && !rows.findFirst(QStringLiteral("frequency = ") + frequencyText(s.nextStoreFrequency)))
        return; // the whole segment is dropped
    db.transaction();
    QList<QVariantList> added; // the new rows, written in one go
    for (qint32 i = 1; i <= s.pointCount && i < kTraceSize; ++i) {
        const float f = spacing * float(i - 1) + s.chart.startFrequency;
        if (kiloHertz(s.storedUpTo) > kiloHertz(f) || kiloHertz(s.nextStoreFrequency) > kiloHertz(f))
            continue;
        // A row holds the sample at or just above its grid frequency, not the step's maximum.
        const double v = s.traces.maxholdTrace[i] / 2.5;
        if (s.rowsExist == 1)
            editCursorRow(s, rows, v);
        else
            added << newRow(s, f, v);
        if (f > s.testStop)
            break; // the first row above the stop is still written
        s.nextStoreFrequency = keyed(f + float(s.stepIncrement));
        // The limit line's first point gets a row of its own, and the grid goes on from there.
        if (kiloHertz(s.limitStartFrequency) <= kiloHertz(s.nextStoreFrequency)
            && kiloHertz(s.limitStartFrequency) > kiloHertz(s.chart.startFrequency)) {
            s.nextStoreFrequency = s.limitStartFrequency;
            s.limitStartFrequency = kLimitStartUsed;
        }
    }
    if (!added.isEmpty())
        rows.appendRows(newRowColumns(), added);
    db.commit();
}

void selectCriticalFrequencies(Context &ctx)
{
    const AppState &s = ctx.state;
    SqliteFile file(measurementFilePath(s));
    QSqlDatabase db = file.handle();
    DataView rows(db);
    rows.setSource(QStringLiteral("select * from measurement order by frequency"));
    Recordset limits(db, limitQuery(s));
    if (limits.isEof())
        return;
    LimitPoint p1 = limitPoint(s, limits);
    limits.moveNext();
    if (limits.isEof())
        return; // a line of one point has no second point to read
    LimitPoint p2 = limitPoint(s, limits);
    const bool logarithmic = (s.limitReference != 0 ? s.averageLimitLog : s.maxholdLimitLog) != 0;
    const QString column = s.horizontalRound != 0 ? QStringLiteral("H_Memory_dBmW") : QStringLiteral("V_Memory_dBmW");
    db.transaction();
    for (rows.moveFirst(); !rows.isEof(); rows.moveNext()) {
        const float f = rows.value(QStringLiteral("Frequency")).toFloat();
        const float m = rows.value(column).toFloat() - s.limitDistance;
        // Rows above the last limit point end the pass unclassified.
        bool past = false;
        while (f > p2.frequency && !past) {
            p1 = p2;
            limits.moveNext();
            past = limits.isEof();
            if (!past)
                p2 = limitPoint(s, limits);
        }
        if (past)
            break;
        bool selected = false;
        if ((m >= p1.level || m >= p2.level) && f >= p1.frequency) {
            const std::optional<double> t = limitAt(f, p1, p2, logarithmic);
            if (!t)
                break; // a division by zero ends the pass; the rows after stay as they are
            selected = m >= *t;
        }
        if (rows.edit()) {
            rows.setValue(QStringLiteral("Sample_dBmW"), selected ? 1.0 : 0.0);
            rows.update();
        }
    }
    db.commit();
}

void stepCriticalFrequencies(Context &ctx)
{
    AppState &s = ctx.state;
    s.repaintRequest = 0;
    int rowsSincePaint = 0;
    sendZeroSpanSettings(ctx);
    s.emcStopRequest = 0;
    s.traceFrozen = 1;
    s.stepCounter = 0;
    s.qpeakValue = 0.0;
    singleSweepModeOn(ctx);
    s.stepIncrement = s.analyser.bandwidth == 9 || s.analyser.bandwidth == 120 ? s.stepWidth : 1.0;
    SqliteFile file(measurementFilePath(s));
    DataView rows(file.handle());
    rows.setSource(QStringLiteral("select * from measurement where sample_dBmW = 1 order by frequency"));
    rows.moveFirst();
    if (rows.isEof())
        return;
    tuneToRow(ctx, rows);
    startSingleSweep(ctx);
    receiveTrace(ctx); // the first block is thrown away
    const quint8 blocks = qMax<quint8>(1, s.stepBlocks);
    while (!rows.isEof() && s.emcStopRequest == 0 && s.online != 0) {
        // Each block is started, awaited and evaluated in turn.
        for (s.stepBlocksLeft = blocks; s.stepBlocksLeft > 0;) {
            --s.stepBlocksLeft;
            startSingleSweep(ctx);
            QCoreApplication::processEvents();
            receiveTrace(ctx);
            detectSelectedBlock(ctx, rows);
            ctx.run().setBlocksLabel(QString::number(s.stepBlocksLeft + 1));
        }
        rows.moveNext();
        if (!rows.isEof())
            tuneToRow(ctx, rows);
        if (++rowsSincePaint > kRowsPerPaint) {
            rowsSincePaint = 0;
            call(ctx.calls.paintChart);
        }
    }
}
