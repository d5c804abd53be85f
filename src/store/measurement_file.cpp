#include "store/measurement_file.h"

#include "core/context.h"
#include "store/data_view.h"
#include "store/database.h"
#include "store/sqlite_file.h"
#include "store/criteria.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSet>
#include <QSqlError>
#include <QSqlQuery>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>
#include <memory>
#include <type_traits>

namespace {

const QString kText20 = textType(20);
const QString kText80 = textType(80);

QList<ColumnSchema> singles(const QStringList &names)
{
    QList<ColumnSchema> columns;
    for (const QString &name : names)
        columns.append({name, kSingle});
    return columns;
}

QList<TableSchema> buildTables()
{
    return {
        {"Measurement",
         singles({"Frequency", "Sample_dBmW", "Average_dBmW", "Maxhold_dBmW", "QPeak_dBmW", "memory_dBmW",
                  "Ambient_H_dBmW", "Ambient_V_dBmW", "V_memory_dBmW", "H_memory_dBmW", "H_Average_dBmW",
                  "H_Maxhold_dBmW", "H_QPeak_dBmW", "V_Average_dBmW", "V_Maxhold_dBmW", "V_QPeak_dBmW"})},
        {"Limitlines", singles({"avefreq", "Average_dBmW", "maxfreq", "Maxhold_dBmW"})},
        {"Settings",
         {{"Vernr", kInteger},        {"dat", kDate},           {"centerfreq", kSingle},  {"reflevel", kSingle},
          {"attenuator", kSingle},    {"bandwith", kInteger},   {"videofilter", kByte},   {"span", kInteger},
          {"unit", kText20},          {"correctionon", kByte},  {"configname", kText80},  {"readmode", kByte},
          {"viewsample", kByte},      {"viewaverage", kByte},   {"viewmaxhold", kByte},   {"viewb", kByte},
          {"viewqpeak", kByte},       {"viewlimitmax", kByte},  {"viewlimitave", kByte},  {"averagename", kText80},
          {"maxholdname", kText80},   {"tgon", kByte},          {"tglevel", kSingle},     {"Mode", kByte},
          {"viewab", kByte},          {"lmaxdist", kByte},      {"lavedist", kByte},      {"lmaxlog", kBoolean},
          {"lavelog", kBoolean},      {"configdist", kByte},    {"grafikmin", kInteger},  {"grafikmax", kInteger},
          {"note", kMemo},            {"headline", kText80},    {"Ambient", kByte},       {"viewambi", kByte},
          {"viewambih", kByte},       {"viewambiv", kByte},     {"calcambi", kByte},      {"ambidist", kInteger}}},
    };
}

// A number for a whole-number column of the range lo..hi. The conversion rounds half to even;
// a value out of range cannot be stored and leaves the column empty.
QVariant whole(double value, double lo, double hi)
{
    const double rounded = std::nearbyint(value);
    if (!std::isfinite(rounded) || rounded < lo || rounded > hi)
        return {};
    return qlonglong(rounded);
}

QVariant byteColumn(double value) { return whole(value, 0, 255); }
QVariant integerColumn(double value) { return whole(value, -32768, 32767); }
QVariant singleColumn(float value) { return double(value); }
QVariant textColumn(const QString &text, int width) { return text.left(width); }

using Row = QList<QPair<QString, QVariant>>;

void addRow(DataView &view, const Row &row)
{
    view.addNew();
    for (const auto &[column, value] : row)
        view.setValue(column, value);
    view.update();
}

// Opens the file at `path`, runs `write` on it in one transaction and closes it again. False when
// the file did not open or the transaction did not commit; `failure` then takes the engine's reason.
template <typename Write>
bool writeInOneTransaction(const QString &path, Write write, QString *failure = nullptr)
{
    SqliteFile file(path);
    QSqlDatabase db = file.handle();
    if (db.isOpen() && db.transaction()) {
        write(db);
        if (db.commit())
            return true;
        if (failure)
            *failure = db.lastError().databaseText();
        db.rollback();
    }
    return false;
}

const QStringList kTraceColumns{"Frequency", "Sample_dBmW", "Average_dBmW", "Maxhold_dBmW", "Memory_dBmW", "QPeak_dBmW"};

// One row per point: the frequency in 32-bit float arithmetic, the traces in dB.
QList<QVariantList> traceRows(const AppState &s)
{
    const TraceStore &t = s.traces;
    QList<QVariantList> rows;
    rows.reserve(std::max(s.pointCount, 0));
    for (qint32 i = 1; i <= s.pointCount; ++i) {
        QVariantList row{singleColumn(traceFrequency(s, i)), QVariant(), QVariant(), QVariant(), QVariant(), 0.0};
        if (i < kTraceSize) { // beyond the arrays' bound the level columns stay empty
            row[1] = singleColumn(float(t.sampleTrace[i] / 2.5));
            row[2] = singleColumn(float(t.averageTrace[i] / 2.5));
            row[3] = singleColumn(float(t.maxholdTrace[i] / 2.5));
            row[4] = singleColumn(float(t.memoryTrace[i] / 2.5));
        }
        rows.append(row);
    }
    return rows;
}

QString limitPointsSource(qint32 limitnr)
{
    return QStringLiteral("select * from limitdef where limitnr = ") + QString::number(limitnr)
           + QStringLiteral(" order by frequency");
}

// Copies the two limit lines in force: row n holds the n-th point of each line.
void fillLimitLines(Context &ctx, QSqlDatabase file)
{
    DataView lines(file);
    lines.setSource(QStringLiteral("select * from limitlines"));
    Recordset average(workingDatabase(ctx), limitPointsSource(ctx.state.averageLimitNr));
    for (average.moveFirst(); !average.isEof(); average.moveNext())
        addRow(lines, {{"avefreq", average.value("frequency")}, {"average_dBmW", average.value("level_dbmw")}});

    Recordset maxhold(workingDatabase(ctx), limitPointsSource(ctx.state.maxholdLimitNr));
    if (maxhold.rowCount() == 0)
        return;
    lines.moveFirst();
    if (lines.isEof())
        lines.addNew();
    else
        lines.edit();
    for (maxhold.moveFirst(); !maxhold.isEof(); maxhold.moveNext()) {
        lines.setValue("maxfreq", maxhold.value("frequency"));
        lines.setValue("maxhold_dBmW", maxhold.value("level_dbmw"));
        lines.update();
        if (lines.isEof()) {
            lines.addNew();
        } else {
            lines.moveNext();
            if (lines.isEof())
                lines.addNew();
            else
                lines.edit();
        }
    }
    // The row opened for a next point that never comes is dropped when the view goes.
}

// The settings row in the order it is written; .mes and .emc take some columns from elsewhere.
Row settingsRow(const Context &ctx, bool emc)
{
    const AppState &s = ctx.state;
    const AnalyserSettings &a = s.analyser;
    const auto either = [emc](const QVariant &trace, const QVariant &run) { return emc ? run : trace; };
    Row row{
        {"vernr", emc ? kEmcFileVersion : kTraceFileVersion},
        {"dat", ctx.clock.now().toString(Qt::ISODate)},
        {"centerfreq", singleColumn(emc ? s.chart.startFrequency : a.centerFrequency)},
        {"reflevel", singleColumn(a.refLevel)},
        {"attenuator", singleColumn(a.attenuator)},
        {"bandwith", integerColumn(a.bandwidth)},
        {"videofilter", either(int(a.videoFilter), 0)},
        {"span", either(int(a.span), 0)},
        {"unit", textColumn(s.unitName, 20)},
        {"correctionon", int(s.correctionOn)},
        {"configname", textColumn(emc ? s.emcTestName : s.configName, 80)},
        {"readmode", either(int(a.readMode), 0)},
        {"viewsample", either(int(s.viewSample), 0)},
        {"viewaverage", either(int(s.viewAverage), int(s.emcViewAverage))},
        {"viewmaxhold", either(int(s.viewMaxhold), int(s.emcViewMaxhold))},
        {"viewb", int(s.viewMemoryB)},
        {"viewab", either(int(s.viewMemoryAB), 0)},
        {"viewqpeak", either(0, int(s.emcViewQPeak))},
        {"viewlimitmax", int(s.viewLimitMax)},
        {"viewlimitave", int(s.viewLimitAverage)},
        {"averagename", textColumn(s.averageLimitName, 80)},
        {"maxholdname", textColumn(s.maxholdLimitName, 80)},
        {"tgon", either(int(a.tgOn), 0)},
        {"tglevel", either(singleColumn(a.tgLevel), 0.0)},
        {"mode", either(0, s.emcScanMode == 1 ? 1 : 2)},
        // Distances are floats in the state; the file keeps whole metres.
        {"lmaxdist", byteColumn(s.maxholdLimitDistance)},
        {"lavedist", byteColumn(s.averageLimitDistance)},
        {"configdist", byteColumn(s.distanceFromDut)},
        {"lmaxlog", int(s.maxholdLimitLog)},
        {"lavelog", int(s.averageLimitLog)},
        {"grafikmin", either(int(s.chart.grafikMin), 0)},
        {"grafikmax", either(int(s.chart.grafikMax), 0)},
    };
    const Row headline{{"headline", textColumn(emc ? s.emcTestName.trimmed() : s.headline, 80)}};
    const Row note{{"note", s.notes}};
    if (!emc)
        return row + headline + note;
    return row + note + headline
           + Row{{"ambient", int(s.ambientOn)},
                 {"viewambi", int(s.emcViewAmbient)},
                 {"viewambih", int(s.emcViewAmbientH)},
                 {"viewambiv", int(s.emcViewAmbientV)},
                 {"calcambi", int(s.emcCalcAmbient)},
                 {"ambidist", integerColumn(s.emcAmbientDistance)}};
}

void writeSettingsRow(const Context &ctx, QSqlDatabase file, bool emc)
{
    DataView settings(file);
    settings.setSource(QStringLiteral("select * from settings"));
    addRow(settings, settingsRow(ctx, emc));
}

// A stored value into a field of the state. A null, something that is no number for a number
// field, or a number the field cannot hold leaves the field as it was. True when it was taken.
template <typename T>
bool take(const QVariant &value, T &field)
{
    if (value.isNull())
        return false;
    if constexpr (std::is_same_v<T, QString>) {
        field = value.toString();
        return true;
    } else if constexpr (std::is_same_v<T, QDateTime>) {
        const QDateTime moment = QDateTime::fromString(value.toString(), Qt::ISODate);
        if (moment.isValid())
            field = moment;
        return moment.isValid();
    } else {
        bool ok = false;
        const double number = value.toDouble(&ok);
        if (!ok || !std::isfinite(number))
            return false;
        if constexpr (std::is_floating_point_v<T>) {
            if (std::fabs(number) > double(std::numeric_limits<T>::max()))
                return false;
            field = T(number);
        } else {
            const double rounded = std::nearbyint(number);
            if (rounded < double(std::numeric_limits<T>::lowest()) || rounded > double(std::numeric_limits<T>::max()))
                return false;
            field = T(rounded);
        }
        return true;
    }
}

enum Versions { V100 = 1, V101 = 2, V102 = 4, AllVersions = V100 | V101 | V102 };

// The stored number is compared as it stands: 100.4 is no known version, it is not rounded to 100.
int versionBit(const QVariant &vernr)
{
    double version = 0.0;
    take(vernr, version);
    if (version == kTraceFileVersion)
        return V100;
    if (version == kOldEmcFileVersion)
        return V101;
    if (version == kEmcFileVersion)
        return V102;
    return 0;
}

// The settings row of a file of a known version. `mode` comes first, because entering the
// mode resets the panels that the other columns then fill.
void readSettingsRow(Context &ctx, const DataView &settings, int version)
{
    AppState &s = ctx.state;
    AnalyserSettings &a = s.analyser;
    take(settings.value("mode"), s.emcMode);
    enterStoredMode(ctx);
    const auto read = [&](const char *column, auto &field, int versions) {
        if (versions & version)
            take(settings.value(column), field);
    };
    read("dat", s.measurementDate, AllVersions);
    read("centerfreq", a.centerFrequency, AllVersions);
    read("reflevel", a.refLevel, AllVersions);
    read("attenuator", a.attenuator, AllVersions);
    read("bandwith", a.bandwidth, AllVersions);
    read("videofilter", a.videoFilter, AllVersions);
    read("span", a.span, AllVersions);
    read("unit", s.unitName, AllVersions);
    read("correctionon", s.correctionOn, AllVersions);
    read("configname", s.configName, AllVersions);
    read("readmode", a.readMode, AllVersions);
    read("viewsample", s.viewSample, AllVersions);
    read("viewaverage", s.viewAverage, AllVersions);
    read("viewmaxhold", s.viewMaxhold, AllVersions);
    read("viewb", s.viewMemoryB, AllVersions);
    read("viewab", s.viewMemoryAB, V100); // an .emc file writes it 0 and never gives it back
    read("viewqpeak", s.viewQPeak, AllVersions);
    read("viewlimitmax", s.viewLimitMax, AllVersions);
    read("viewlimitave", s.viewLimitAverage, AllVersions);
    read("averagename", s.averageLimitName, AllVersions);
    read("maxholdname", s.maxholdLimitName, AllVersions);
    read("tgon", a.tgOn, AllVersions);
    read("tglevel", a.tgLevel, AllVersions);
    read("lmaxdist", s.maxholdLimitDistance, AllVersions);
    read("lavedist", s.averageLimitDistance, AllVersions);
    read("configdist", s.distanceFromDut, AllVersions);
    read("lmaxlog", s.maxholdLimitLog, AllVersions);
    read("lavelog", s.averageLimitLog, AllVersions);
    read("grafikmin", s.chart.grafikMin, AllVersions);
    read("grafikmax", s.chart.grafikMax, AllVersions);
    read("headline", s.headline, AllVersions);
    if (take(settings.value("note"), s.notes))
        s.notes = s.notes.trimmed();
    read("ambient", s.ambientOn, V101 | V102);
    read("viewambi", s.emcViewAmbient, V102);
    read("viewambih", s.emcViewAmbientH, V102);
    read("viewambiv", s.emcViewAmbientV, V102);
    read("calcambi", s.emcCalcAmbient, V102);
    read("ambidist", s.emcAmbientDistance, V102);
}

// The unit of an EMC file, looked up in the working database's units.
void lookUpUnit(Context &ctx)
{
    AppState &s = ctx.state;
    const DisplayUnit unit = findDisplayUnit(ctx, s.unitName);
    s.unitName = unit.name;
    s.analyser.unitOffset = unit.offset;
}

const QStringList kJournalSuffixes{QStringLiteral("-journal"), QStringLiteral("-wal"), QStringLiteral("-shm")};

// Deletes the file at `path` with a journal that an interrupted write may have left beside it,
// which would otherwise be rolled into the next file of that name.
void removeWithJournal(const QString &path)
{
    QFile::remove(path);
    for (const QString &suffix : kJournalSuffixes)
        QFile::remove(path + suffix);
}

// Makes a file at `path` with the three empty tables, deleting what was there.
bool makeNewFile(const QString &path)
{
    if (path.isEmpty())
        return false;
    removeWithJournal(path);
    return writeNewDatabase(path, measurementTables());
}

bool writeTraceFile(Context &ctx, const QString &path, QString *failure = nullptr)
{
    return writeInOneTransaction(
        path,
        [&](QSqlDatabase db) {
            DataView rows(db);
            rows.setSource(QStringLiteral("select * from measurement"));
            rows.appendRows(kTraceColumns, traceRows(ctx.state));
            fillLimitLines(ctx, db);
            writeSettingsRow(ctx, db, false);
        },
        failure);
}

// A measurement file open for reading, with what a read needs of its rows.
struct OpenedFile {
    std::unique_ptr<SqliteFile> file;
    int rowCount = 0;
    QVariant firstFrequency; // of the rows in frequency order; null when a row has none
    QVariant lastFrequency;
};

// Why a file is refused when SQLite failed on it: damage, or something that is no database.
QString refusalOf(const QString &path, const QSqlError &error)
{
    constexpr int kCorrupt = 11; // SQLITE_CORRUPT, also the base of its extended codes
    const bool damaged = error.nativeErrorCode().toInt() % 256 == kCorrupt;
    return path + (damaged ? QStringLiteral(" is damaged: ") : QStringLiteral(" is no measurement file: "))
           + error.databaseText();
}

// The first table of a measurement file that the file lacks as a table (a view in its place could
// run for ever); empty when all are there. `refusal` is set when SQLite cannot read the file.
QString missingTable(QSqlDatabase db, const QString &path, QString &refusal)
{
    QSqlQuery query(db);
    if (!query.exec(QStringLiteral("select name from sqlite_master where type = 'table'"))) {
        refusal = refusalOf(path, query.lastError());
        return {};
    }
    QSet<QString> tables;
    while (query.next())
        tables.insert(query.value(0).toString().toLower());
    for (const TableSchema &table : measurementTables()) {
        if (!tables.contains(table.name.toLower()))
            return table.name;
    }
    return {};
}

// Opens `path` to read it as a measurement file. Only a regular file is opened: a pipe or a
// device would block or never end. Every row of the three tables is read once here, so that
// damage in the middle of the rows refuses the file instead of cutting it short. On refusal the
// file is not returned and `fault` says why, naming the file.
OpenedFile openForReading(const QString &path, QString &fault)
{
    OpenedFile opened;
    const QFileInfo info(path);
    if (!info.exists()) {
        fault = path + QStringLiteral(" is no measurement file: it does not exist");
        return {};
    }
    if (!info.isFile()) {
        fault = path + QStringLiteral(" is no measurement file: it is no regular file");
        return {};
    }
    auto file = std::make_unique<SqliteFile>(path);
    const QString missing = missingTable(file->handle(), path, fault);
    if (!missing.isEmpty())
        fault = path + QStringLiteral(" is no measurement file: it has no table ") + missing;
    if (!fault.isEmpty())
        return {};
    QSqlQuery rows(file->handle());
    rows.setForwardOnly(true);
    // The first of the rows in frequency order has no frequency when any row has none (nulls sort first).
    if (!rows.exec(QStringLiteral("select count(*), count(frequency), min(frequency), max(frequency), "
                                  "(select count(*) from limitlines), (select count(*) from settings) "
                                  "from measurement"))
        || !rows.next()) {
        fault = refusalOf(path, rows.lastError());
        return {};
    }
    opened.rowCount = rows.value(0).toInt();
    opened.firstFrequency = rows.value(1) == rows.value(0) ? rows.value(2) : QVariant();
    opened.lastFrequency = rows.value(3);
    opened.file = std::move(file);
    return opened;
}

} // namespace

QString obstacleToSaving(const QString &path)
{
    const QFileInfo file(path);
    if (!file.absoluteDir().exists())
        return QStringLiteral("the folder does not exist");
    // The new file is renamed over the old one, which a read-only mark alone would not stop.
    if (file.exists() && !(file.permissions() & QFileDevice::WriteOwner))
        return QStringLiteral("the file is read-only");
    return {};
}

QString measurementFilePath(const AppState &s)
{
    QString name = s.measurementFileName;
    while (name.endsWith(u' '))
        name.chop(1);
    return name;
}

float traceFrequency(const AppState &s, qint32 i)
{
    const float start = s.chart.startFrequency;
    // One point alone has no step; the division fails and the step stays 0.
    const float step = s.pointCount == 1 ? 0.0f : (s.chart.stopFrequency - start) / float(s.pointCount - 1);
    return float(i - 1) * step + start;
}

const QList<TableSchema> &measurementTables()
{
    static const QList<TableSchema> tables = buildTables();
    return tables;
}

bool createMeasurementFile(Context &ctx) { return makeNewFile(measurementFilePath(ctx.state)); }

void writeTraceMeasurement(Context &ctx) { writeTraceFile(ctx, measurementFilePath(ctx.state)); }

QString saveTraceMeasurement(Context &ctx)
{
    const QString path = measurementFilePath(ctx.state);
    const QString part = path + QStringLiteral(".part");
    const auto refusal = [&path](const QString &reason) {
        return QStringLiteral("Cannot save ") + path + QStringLiteral(": ") + reason;
    };
    if (const QString obstacle = obstacleToSaving(path); !obstacle.isEmpty())
        return refusal(obstacle);
    QString failure = QStringLiteral("the file cannot be created");
    if (!makeNewFile(part) || !writeTraceFile(ctx, part, &failure)) {
        removeWithJournal(part);
        return refusal(failure);
    }
    // A journal of the old file would be rolled into the new one.
    for (const QString &suffix : kJournalSuffixes)
        QFile::remove(path + suffix);
    if (std::rename(QFile::encodeName(part).constData(), QFile::encodeName(path).constData()) != 0) {
        const QString reason = QString::fromLocal8Bit(std::strerror(errno));
        QFile::remove(part);
        return refusal(reason);
    }
    return {};
}

void writeEmcHeader(Context &ctx)
{
    writeInOneTransaction(measurementFilePath(ctx.state), [&](QSqlDatabase db) {
        fillLimitLines(ctx, db);
        writeSettingsRow(ctx, db, true);
    });
}

void updateEmcChartRange(Context &ctx)
{
    writeInOneTransaction(measurementFilePath(ctx.state), [&](QSqlDatabase db) {
        DataView settings(db);
        settings.setSource(QStringLiteral("select * from settings"));
        settings.edit();
        settings.setValue("grafikmin", integerColumn(ctx.state.chart.grafikMin));
        settings.setValue("grafikmax", integerColumn(ctx.state.chart.grafikMax));
        settings.update();
    });
}

QString readMeasurementFile(Context &ctx)
{
    AppState &s = ctx.state;
    QString fault;
    const OpenedFile file = openForReading(measurementFilePath(s), fault);
    if (!file.file)
        return fault;
    Recordset settings(file.file->handle(), QStringLiteral("select * from settings"));
    if (const int version = versionBit(settings.value("vernr")))
        readSettingsRow(ctx, settings, version);
    s.traceFrozen = 1;
    if (s.emcMode != 0)
        lookUpUnit(ctx);
    // Again: a Sweep + Step file's 2 survives what the mode entry did to the field.
    take(settings.value("mode"), s.emcMode);

    s.pointCount = file.rowCount;
    take(file.firstFrequency, s.chart.startFrequency);
    take(file.lastFrequency, s.chart.stopFrequency);
    return {};
}

std::optional<MeasurementFileSummary> describeMeasurementFile(const QString &path, QString *fault)
{
    QString refusal;
    const OpenedFile file = openForReading(path, refusal);
    if (fault)
        *fault = refusal;
    if (!file.file)
        return std::nullopt;
    MeasurementFileSummary summary;
    Recordset settings(file.file->handle(), QStringLiteral("select * from settings"));
    if (settings.hasCurrent()) {
        for (const ColumnInfo &column : settings.columns()) {
            const QVariant value = settings.value(column.name);
            const bool single = column.kind == ColumnKind::Single && !value.isNull();
            summary.settings.append({column.name, single ? QVariant(value.toFloat()) : value});
        }
    }
    summary.rowCount = file.rowCount;
    float frequency = 0.0f;
    if (take(file.firstFrequency, frequency))
        summary.startFrequency = frequency;
    if (take(file.lastFrequency, frequency))
        summary.stopFrequency = frequency;
    return summary;
}

DisplayUnit findDisplayUnit(Context &ctx, const QString &name)
{
    Recordset units(workingDatabase(ctx), QStringLiteral("unit"));
    // The name goes between the quotes as it stands: one with an apostrophe finds nothing.
    if (!units.findFirst(textCriterion(QStringLiteral("unitname"), QStringLiteral("like"), name.trimmed())))
        return {QStringLiteral("dBmW"), 0.0f};
    DisplayUnit unit{name, 0.0f};
    take(units.value("unitname"), unit.name);
    take(units.value("unitoffset"), unit.offset);
    return unit;
}

QVariant settingOf(const MeasurementFileSummary &summary, const QString &column)
{
    for (const auto &[name, value] : summary.settings)
        if (name.compare(column, Qt::CaseInsensitive) == 0)
            return value;
    return {};
}

bool isEmcFile(const MeasurementFileSummary &summary)
{
    return settingOf(summary, QStringLiteral("mode")).toInt() != 0;
}
