#pragma once
// The level rows of a measurement file's table Measurement, as the chart walks them.

#include "core/app_state.h"

#include <QFile>
#include <QFileInfo>
#include <QString>
#include <QStringList>
#include <algorithm>
#include <array>
#include <cstring>
#include <functional>
#include <limits>
#include <memory>
#include <sqlite3.h>
#include <vector>

// The traces of the trace table, in their drawing order, and the two ambient columns.
enum Slot { Sample, Average, Maxhold, QPeak, Memory, AmbientH, AmbientV, SlotCount };
using Levels = std::array<int, SlotCount>;
using Slots = std::array<bool, SlotCount>;

inline const std::array<ColourRole, SlotCount> kSlotColour = {SampleColour, AverageColour, MaxholdColour, QPeakColour,
                                                       MemoryColour, AmbientHColour, AmbientVColour};

// The stored column of a slot for the paint selection: 1 horizontal, 2 vertical, else plain.
QString storedColumn(Slot slot, int selection);
// The slots whose traces are on.
Slots visibleSlots(const AppState &s);

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

    // The trace of a compared file as rows of the sample slot, so that it is walked and thinned as
    // a stored trace is. The trace is in frequency order already.
    explicit StoredRows(const std::vector<ComparisonPoint> &trace)
    {
        field_.fill(-1);
        rows_.reserve(trace.size());
        for (const ComparisonPoint &point : trace) {
            Row row{point.frequency, {}};
            row.levels.fill(kNoLevel);
            row.levels[Sample] = countOf(point.level);
            rows_.push_back(row);
        }
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

    // A level column's value as a count; kNoLevel for a NULL or text.
    // The level columns are singles: the value is taken as one before it is multiplied.
    static qint16 levelAt(sqlite3_stmt *statement, int field)
    {
        if (field < 0)
            return kNoLevel;
        const int type = sqlite3_column_type(statement, field);
        if (type != SQLITE_FLOAT && type != SQLITE_INTEGER)
            return kNoLevel;
        return countOf(float(sqlite3_column_double(statement, field)));
    }

    // dB x 2.5, halves to even, as a 16-bit count; kNoLevel for a value out of range.
    static qint16 countOf(float level)
    {
        const double counts = std::nearbyint(double(level) * 2.5);
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
        // The file may have been swapped since it was loaded: a pipe or a device would block.
        if (!QFileInfo(path).isFile())
            return {};
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
        // Only a table is read: a view in its place (even one that recurses) gives no columns.
        bool isTable = false;
        if (db && sqlite3_prepare_v2(db, "select 1 from sqlite_master where type = 'table' and name like 'measurement'",
                                     -1, &statement, nullptr) == SQLITE_OK)
            isTable = sqlite3_step(statement) == SQLITE_ROW;
        sqlite3_finalize(statement);
        statement = nullptr;
        if (isTable && sqlite3_prepare_v2(db, "pragma table_info(measurement)", -1, &statement, nullptr) == SQLITE_OK)
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
void walkStored(StoredRows &rows, bool thin, int thinFactor, float stop, const StoredStep &step);
