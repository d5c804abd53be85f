#include "store/catalogue_csv.h"

#include "store/decimal_text.h"

#include <QFile>
#include <QLocale>
#include <QSaveFile>
#include <QSqlQuery>
#include <QVariantList>

#include <cmath>
#include <functional>
#include <map>
#include <optional>

namespace {

const QString kFrequencyHeader = QStringLiteral("Frequency_MHz");
const QString kComponentUnit = QStringLiteral("dB");
constexpr int kNameWidth = 80; // limitname and losname are Text(80)

// Head and point tables of one catalogue.
struct Catalogue {
    QString head;
    QString points;
    QString number;
    QString name;
    QString counter; // column of MeasureCount
    QString noun;
};

const Catalogue kLimits{QStringLiteral("LimitHead"), QStringLiteral("LimitDef"), QStringLiteral("limitnr"),
                        QStringLiteral("limitname"), QStringLiteral("limitnr"), QStringLiteral("limit")};
const Catalogue kComponents{QStringLiteral("loshead"), QStringLiteral("losdef"), QStringLiteral("losnr"),
                            QStringLiteral("losname"), QStringLiteral("losnr"), QStringLiteral("component")};

// How a level in the file becomes the stored one and back: a limit's offset is that of its unit,
// a component's sign is -1 for a gain. Frequencies pass with offset 0 and sign 1.
struct Scale {
    double offset = 0;
    double sign = 1;
    float stored(double shown) const { return float(shown * sign - offset); }
    double shown(float stored) const { return (double(stored) + offset) * sign; }
};

// Single columns hold the 32-bit value widened, as the program writes them.
struct StoredPoint {
    float frequency;
    float level;
};

struct CsvPoint {
    double frequency;
    double level;
};

struct CsvFile {
    QString unit;
    int headerLine = 0;
    QList<CsvPoint> points;
    QString error; // "line 7: ..." on a refusal
};

// A refusal of the file, naming it.
CsvOutcome refusal(const QString &path, const QString &message) { return {false, path + ": " + message}; }

// A line's fields: with a semicolon in it, semicolons separate and a comma is a decimal mark.
QStringList fields(const QString &line)
{
    const bool semicolons = line.contains(QLatin1Char(';'));
    QStringList out = line.split(semicolons ? QLatin1Char(';') : QLatin1Char(','));
    for (QString &field : out) {
        field = field.trimmed();
        if (semicolons)
            field.replace(QLatin1Char(','), QLatin1Char('.'));
    }
    return out;
}

// A number that a 32-bit float holds, written with a point.
std::optional<double> number(const QString &text)
{
    bool ok = false;
    const double value = QLocale::c().toDouble(text, &ok);
    if (!ok || !std::isfinite(value) || !std::isfinite(float(value)))
        return std::nullopt;
    return value;
}

// Reads and checks the file; nothing about the database is known here but the unit's name.
CsvFile readCsvFile(const QString &path)
{
    CsvFile csv;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        csv.error = QStringLiteral("cannot be read");
        return csv;
    }
    QString text = QString::fromUtf8(file.readAll());
    if (text.startsWith(QChar(0xFEFF)))
        text.remove(0, 1);
    const QStringList lines = text.split(QLatin1Char('\n'));
    std::map<float, int> lineOfFrequency;
    int lastLine = 0;
    for (int i = 0; i < lines.size() && csv.error.isEmpty(); ++i) {
        const QString line = lines[i].trimmed();
        if (line.isEmpty() || line.startsWith(QLatin1Char('#')))
            continue;
        lastLine = i + 1;
        const QStringList parts = fields(line);
        const QString where = QStringLiteral("line %1: ").arg(i + 1);
        if (csv.headerLine == 0) {
            if (parts.size() != 2 || parts[0].compare(kFrequencyHeader, Qt::CaseInsensitive) != 0
                || parts[1].isEmpty())
                csv.error = where + QStringLiteral("the header must be Frequency_MHz,<unit>");
            csv.unit = parts.value(1);
            csv.headerLine = i + 1;
            continue;
        }
        if (parts.size() != 2) {
            csv.error = where + QStringLiteral("a point is a frequency and a level");
            continue;
        }
        const auto frequency = number(parts[0]);
        const auto level = number(parts[1]);
        if (!frequency || !level) {
            csv.error = where + QStringLiteral("'%1' is not a number").arg(frequency ? parts[1] : parts[0]);
        } else if (*frequency < 0) {
            csv.error = where + QStringLiteral("a frequency cannot be negative");
        } else if (const auto [first, added] = lineOfFrequency.emplace(float(*frequency), i + 1); !added) {
            csv.error = where + QStringLiteral("frequency %1 appears twice (first on line %2)")
                                    .arg(parts[0]).arg(first->second);
        } else {
            csv.points.append({*frequency, *level});
        }
    }
    if (csv.error.isEmpty() && csv.headerLine == 0)
        csv.error = QStringLiteral("line 1: no header Frequency_MHz,<unit>");
    else if (csv.error.isEmpty() && csv.points.size() < 2)
        csv.error = QStringLiteral("line %1: the file ends with fewer than two points").arg(lastLine);
    return csv;
}

bool exec(QSqlQuery &query, const QString &sql, const QVariantList &values = {})
{
    if (!query.prepare(sql))
        return false;
    for (const QVariant &value : values)
        query.addBindValue(value);
    return query.exec();
}

// The first value of a query's first row; none when there is no row.
std::optional<QVariant> firstValue(QSqlDatabase db, const QString &sql, const QVariantList &values)
{
    QSqlQuery query(db);
    if (!exec(query, sql, values) || !query.next())
        return std::nullopt;
    return query.value(0);
}

// Names are matched as the catalogue's searches match them: whole, without regard to case.
std::optional<qint32> headNumber(QSqlDatabase db, const Catalogue &c, const QString &name)
{
    const auto nr = firstValue(db, "select " + c.number + " from " + c.head + " where " + c.name + " = ? collate nocase",
                               {name});
    return nr ? std::optional<qint32>(nr->toInt()) : std::nullopt;
}

struct Unit {
    QString name;
    double offset = 0;
};

// A row of table unit; the limit editor works with the offset truncated to a whole number, and so
// does the file, so that the editor shows the file's numbers.
std::optional<Unit> findUnit(QSqlDatabase db, const QString &name)
{
    QSqlQuery query(db);
    if (!exec(query, QStringLiteral("select unitname, unitoffset from unit where unitname = ? collate nocase"), {name})
        || !query.next())
        return std::nullopt;
    return Unit{query.value(0).toString(), std::trunc(query.value(1).toDouble())};
}

QList<StoredPoint> storedPoints(const QList<CsvPoint> &points, Scale scale)
{
    QList<StoredPoint> out;
    for (const CsvPoint &p : points)
        out.append({float(p.frequency), scale.stored(p.level)});
    return out;
}

// Creates or replaces the head `name` and its points in one transaction. `writeHead` inserts a new
// head (created true) or updates the existing one.
using HeadWriter = std::function<bool(QSqlQuery &, qint32 nr, bool created)>;
CsvOutcome importPoints(QSqlDatabase db, const Catalogue &c, const QString &name, bool replace,
                        const QList<StoredPoint> &points, const HeadWriter &writeHead)
{
    if (name.isEmpty() || name.size() > kNameWidth)
        return {false, QStringLiteral("a %1 name has 1 to %2 characters").arg(c.noun).arg(kNameWidth)};
    std::optional<qint32> nr = headNumber(db, c, name);
    if (nr && !replace)
        return {false, QStringLiteral("%1 %2 exists").arg(c.noun, name), true};
    if (nr && *nr == 0)
        return {false, QStringLiteral("%1 %2 is a fixed entry").arg(c.noun, name)};
    if (!db.transaction())
        return {false, QStringLiteral("the database cannot be written")};
    QSqlQuery query(db);
    const bool created = !nr;
    bool ok = true;
    if (created) {
        // The counter is raised first; its new value numbers the head.
        ok = exec(query, "update MeasureCount set " + c.counter + " = " + c.counter + " + 1")
             && query.numRowsAffected() > 0;
        const auto counted = ok ? firstValue(db, "select " + c.counter + " from MeasureCount", {}) : std::nullopt;
        ok = ok && counted;
        nr = counted ? counted->toInt() : 0;
    }
    ok = ok && writeHead(query, *nr, created)
         && exec(query, "delete from " + c.points + " where " + c.number + " = ?", {*nr});
    for (const StoredPoint &p : points)
        ok = ok && exec(query, "insert into " + c.points + " (" + c.number + ", frequency, level_dbmw) values (?, ?, ?)",
                        {*nr, double(p.frequency), double(p.level)});
    if (ok && db.commit())
        return {true, {}};
    db.rollback();
    return {false, QStringLiteral("the database cannot be written")};
}

// The shortest text with a point as decimal mark that imports as `stored` again.
QString roundTripText(float stored, Scale scale)
{
    QByteArray text;
    appendShortestDecimals(text, scale.shown(stored), [&](double read) { return scale.stored(read) == stored; });
    return QString::fromLatin1(text);
}

// Writes the points of head `nr` as the file format has them; the file is replaced only when whole.
CsvOutcome writeCsvFile(QSqlDatabase db, const Catalogue &c, qint32 nr, const QString &unit, Scale scale,
                        const QString &path)
{
    QSqlQuery query(db);
    if (!exec(query, "select frequency, level_dbmw from " + c.points + " where " + c.number + " = ? order by frequency",
              {nr}))
        return refusal(path, QStringLiteral("the points cannot be read"));
    QByteArray out = (kFrequencyHeader + QLatin1Char(',') + unit + QLatin1Char('\n')).toUtf8();
    while (query.next())
        out += (roundTripText(query.value(0).toFloat(), Scale{}) + QLatin1Char(',')
                + roundTripText(query.value(1).toFloat(), scale) + QLatin1Char('\n'))
                   .toUtf8();
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(out) != out.size() || !file.commit())
        return refusal(path, QStringLiteral("cannot be written: ") + file.errorString());
    return {true, {}};
}

double componentSign(ComponentKind kind) { return kind == ComponentKind::Gain ? -1.0 : 1.0; }

} // namespace

CsvOutcome importLimitCsv(QSqlDatabase db, const QString &givenName, const QString &path, bool replace)
{
    const QString name = givenName.trimmed();
    const CsvFile csv = readCsvFile(path);
    if (!csv.error.isEmpty())
        return refusal(path, csv.error);
    const std::optional<Unit> unit = findUnit(db, csv.unit);
    if (!unit)
        return refusal(path, QStringLiteral("line %1: unknown unit %2").arg(csv.headerLine).arg(csv.unit));
    const auto writeHead = [&](QSqlQuery &query, qint32 nr, bool created) {
        return created ? exec(query,
                              QStringLiteral("insert into LimitHead (limitnr, limitname, Radiated, loga, Distance, Memo, "
                                             "limunit, dat, tim) values (?, ?, 0, 0, 0, '', ?, '', '')"),
                              {nr, name, unit->name})
                       : exec(query, QStringLiteral("update LimitHead set limunit = ? where limitnr = ?"),
                              {unit->name, nr});
    };
    return importPoints(db, kLimits, name, replace, storedPoints(csv.points, Scale{unit->offset, 1}), writeHead);
}

CsvOutcome exportLimitCsv(QSqlDatabase db, const QString &name, const QString &path)
{
    const std::optional<qint32> nr = headNumber(db, kLimits, name);
    if (!nr)
        return {false, QStringLiteral("there is no limit ") + name};
    const auto unitName = firstValue(db, QStringLiteral("select limunit from LimitHead where limitnr = ?"), {*nr});
    // A definition whose unit is not in the table is shown in dBmW, as the editor shows it.
    const Unit unit = findUnit(db, unitName ? unitName->toString() : QString())
                          .value_or(Unit{QStringLiteral("dBmW"), 0});
    return writeCsvFile(db, kLimits, *nr, unit.name, Scale{unit.offset, 1}, path);
}

CsvOutcome importComponentCsv(QSqlDatabase db, const QString &givenName, ComponentKind kind, float distance,
                              const QString &path, bool replace)
{
    const QString name = givenName.trimmed();
    const CsvFile csv = readCsvFile(path);
    if (!csv.error.isEmpty())
        return refusal(path, csv.error);
    if (csv.unit.compare(kComponentUnit, Qt::CaseInsensitive) != 0)
        return refusal(path, QStringLiteral("line %1: unknown unit %2 (a component is in dB)")
                                 .arg(csv.headerLine).arg(csv.unit));
    const auto writeHead = [&](QSqlQuery &query, qint32 nr, bool created) {
        return created ? exec(query,
                              QStringLiteral("insert into loshead (losnr, losname, lostyp, Distance, Memo, dat, tim) "
                                             "values (?, ?, ?, ?, '', '', '')"),
                              {nr, name, int(kind), double(distance)})
                       : exec(query, QStringLiteral("update loshead set lostyp = ?, Distance = ? where losnr = ?"),
                              {int(kind), double(distance), nr});
    };
    return importPoints(db, kComponents, name, replace, storedPoints(csv.points, Scale{0, componentSign(kind)}),
                        writeHead);
}

CsvOutcome exportComponentCsv(QSqlDatabase db, const QString &name, const QString &path)
{
    const std::optional<qint32> nr = headNumber(db, kComponents, name);
    if (!nr)
        return {false, QStringLiteral("there is no component ") + name};
    const auto kind = firstValue(db, QStringLiteral("select lostyp from loshead where losnr = ?"), {*nr});
    const double sign = kind && kind->toInt() == int(ComponentKind::Gain) ? -1.0 : 1.0;
    return writeCsvFile(db, kComponents, *nr, kComponentUnit, Scale{0, sign}, path);
}
