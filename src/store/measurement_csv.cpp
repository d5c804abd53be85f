#include "store/measurement_csv.h"

#include "core/context.h"
#include "store/decimal_text.h"
#include "store/measurement_file.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <cmath>
#include <memory>
#include <sqlite3.h>
#include <vector>

namespace {

const QString kExportTitle = QStringLiteral("Export CSV");
constexpr int kOpenFlags = 6148;  // path and file must exist, hide read-only
constexpr int kSaveFlags = 8198;  // overwrite prompt, hide read-only, create prompt

// A column of table Measurement and its name in the CSV.
struct CsvColumn {
    const char *stored;
    const char *header;
};

const std::vector<CsvColumn> kTraceColumns{{"Frequency", "Frequency_MHz"},
                                           {"Sample_dBmW", "Sample_dBm"},
                                           {"Average_dBmW", "Average_dBm"},
                                           {"Maxhold_dBmW", "Maxhold_dBm"},
                                           {"memory_dBmW", "Memory_dBm"}};

const std::vector<CsvColumn> kEmcColumns{
    {"Frequency", "Frequency_MHz"},     {"Sample_dBmW", "Selected_for_step"}, {"Average_dBmW", "Average_dBm"},
    {"Maxhold_dBmW", "Maxhold_dBm"},    {"QPeak_dBmW", "QPeak_dBm"},          {"memory_dBmW", "Memory_dBm"},
    {"Ambient_H_dBmW", "Ambient_H_dBm"}, {"Ambient_V_dBmW", "Ambient_V_dBm"}, {"V_memory_dBmW", "V_Memory_dBm"},
    {"H_memory_dBmW", "H_Memory_dBm"},  {"H_Average_dBmW", "H_Average_dBm"},  {"H_Maxhold_dBmW", "H_Maxhold_dBm"},
    {"H_QPeak_dBmW", "H_QPeak_dBm"},    {"V_Average_dBmW", "V_Average_dBm"},  {"V_Maxhold_dBmW", "V_Maxhold_dBm"},
    {"V_QPeak_dBmW", "V_QPeak_dBm"}};

QStringList headers(const std::vector<CsvColumn> &columns)
{
    QStringList names;
    for (const CsvColumn &column : columns)
        names << QLatin1String(column.header);
    return names;
}

struct Close {
    void operator()(sqlite3 *db) const { sqlite3_close(db); }
    void operator()(sqlite3_stmt *statement) const { sqlite3_finalize(statement); }
};

// A stored value as a cell: none for NULL, text or a number beyond a float, and for the levels of
// an .emc file that hold "nothing measured".
std::optional<float> cellOf(sqlite3_stmt *row, int column, bool emc)
{
    const int type = sqlite3_column_type(row, column);
    if (type != SQLITE_FLOAT && type != SQLITE_INTEGER)
        return std::nullopt;
    const float value = float(sqlite3_column_double(row, column));
    if (!std::isfinite(value) || (emc && column > 0 && value == float(kNotMeasured)))
        return std::nullopt;
    return value;
}

// The rows of `path` in frequency order, read through SQLite itself: an .emc file of 100,000 rows
// has 1.6 million cells, too many for a value object each.
std::optional<QByteArray> readRows(const QString &path, const MeasurementFileSummary &summary, QString &fault)
{
    const bool emc = isEmcFile(summary);
    const std::vector<CsvColumn> &columns = emc ? kEmcColumns : kTraceColumns;
    QStringList names;
    for (const CsvColumn &column : columns)
        names << QLatin1String(column.stored);
    const QByteArray sql = ("select " + names.join(QLatin1Char(',')) + " from measurement order by frequency").toUtf8();

    sqlite3 *opened = nullptr; // one thread: no lock around every call
    sqlite3_open_v2(QFile::encodeName(path).constData(), &opened, SQLITE_OPEN_READONLY | SQLITE_OPEN_NOMUTEX, nullptr);
    const std::unique_ptr<sqlite3, Close> db(opened);
    sqlite3_stmt *prepared = nullptr;
    if (sqlite3_prepare_v2(db.get(), sql.constData(), -1, &prepared, nullptr) != SQLITE_OK) {
        fault = path + QStringLiteral(" is no measurement file: ") + QString::fromUtf8(sqlite3_errmsg(db.get()));
        return std::nullopt;
    }
    const std::unique_ptr<sqlite3_stmt, Close> rows(prepared);
    LevelCsv csv(headers(columns));
    csv.reserve(summary.rowCount);
    std::vector<std::optional<float>> cells(columns.size());
    int step = SQLITE_ROW;
    while ((step = sqlite3_step(rows.get())) == SQLITE_ROW) {
        for (int i = 0; i < int(cells.size()); ++i)
            cells[size_t(i)] = cellOf(rows.get(), i, emc);
        csv.addRow(cells);
    }
    if (step != SQLITE_DONE) {
        fault = path + QStringLiteral(" is damaged: ") + QString::fromUtf8(sqlite3_errmsg(db.get()));
        return std::nullopt;
    }
    return csv.text();
}

bool isSameFile(const QString &a, const QString &b)
{
    const QString canonical = QFileInfo(a).canonicalFilePath();
    return !canonical.isEmpty() && canonical == QFileInfo(b).canonicalFilePath();
}

} // namespace

const QStringList &traceCsvColumns()
{
    static const QStringList names = headers(kTraceColumns);
    return names;
}

LevelCsv::LevelCsv(const QStringList &columns) : columns_(columns.size())
{
    text_ = columns.join(QLatin1Char(',')).toUtf8() + '\n';
}

void LevelCsv::reserve(qsizetype rows) { text_.reserve(text_.size() + rows * columns_ * 9); }

void LevelCsv::addRow(std::span<const std::optional<float>> values)
{
    for (size_t i = 0; i < values.size(); ++i) {
        if (i > 0)
            text_ += ',';
        if (values[i])
            appendFloat(text_, *values[i]);
    }
    text_ += '\n';
}

std::optional<QByteArray> measurementCsv(const QString &path, QString *fault)
{
    QString refusal;
    const auto summary = describeMeasurementFile(path, &refusal);
    std::optional<QByteArray> csv = summary ? readRows(path, *summary, refusal) : std::nullopt;
    if (fault)
        *fault = refusal;
    return csv;
}

QString saveWhole(const QString &path, const QByteArray &bytes)
{
    const auto refusal = [&path](const QString &reason) {
        return QStringLiteral("Cannot save ") + path + QStringLiteral(": ") + reason;
    };
    if (const QFileInfo info(path); info.exists() && !info.isFile()) {
        // A pipe or a device (/dev/stdout) takes the bytes as they come: there is no old file to keep.
        QFile device(path);
        if (!device.open(QIODevice::WriteOnly) || device.write(bytes) != bytes.size() || !device.flush())
            return refusal(device.errorString());
        return {};
    }
    if (const QString obstacle = obstacleToSaving(path); !obstacle.isEmpty())
        return refusal(obstacle);
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit())
        return refusal(file.errorString());
    return {};
}

QString exportMeasurementCsv(const QString &path, const QString &csvPath)
{
    QString fault;
    const std::optional<QByteArray> csv = measurementCsv(path, &fault);
    if (!csv)
        return fault;
    if (isSameFile(path, csvPath))
        return QStringLiteral("Cannot save ") + csvPath + QStringLiteral(": it is the measurement file exported");
    return saveWhole(csvPath, *csv);
}

void exportCsvCommand(Context &ctx)
{
    const AppState &s = ctx.state;
    QString source = s.traceFrozen != 0 ? measurementFilePath(s) : QString();
    if (source.isEmpty()) { // live traces: which stored file is meant
        const std::optional<QString> chosen = ctx.prompts.openFileDialog(
            {kExportTitle, QStringLiteral("Measurement (*.mes) |*.mes|EMC (*.emc) |*.emc"), QStringLiteral("mes"), {},
             kOpenFlags, s.emcMode != 0 ? 2 : 1});
        if (!chosen)
            return;
        source = *chosen;
    }
    // A file that cannot be exported is told before a name is asked for.
    if (QString fault; !describeMeasurementFile(source, &fault)) {
        ctx.prompts.messageBox(kExportTitle, fault);
        return;
    }
    const std::optional<QString> chosen = ctx.prompts.saveFileDialog(
        {kExportTitle, QStringLiteral("CSV (*.csv) |*.csv"), QStringLiteral("csv"),
         QFileInfo(source).completeBaseName() + QStringLiteral(".csv"), kSaveFlags, 1});
    if (!chosen)
        return;
    QString csvPath = *chosen;
    if (QFileInfo(csvPath).suffix().isEmpty())
        csvPath += QStringLiteral(".csv");
    setBusy(ctx);
    const QString failure = exportMeasurementCsv(source, csvPath);
    clearBusy(ctx);
    if (!failure.isEmpty())
        ctx.prompts.messageBox(kExportTitle, failure);
}
