#include "store/schema.h"
#include "store/sqlite_file.h"
#include "store/starter_rows.h"

#include <QFile>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QStringList>

namespace {

QList<TableSchema> buildTables()
{
    return {
        {"version", {{"versionnr", kSingle}}},
        {"qpeak",
         {{"tauf-30", kSingle}, {"tauf-1000", kSingle}, {"tent-30", kSingle}, {"tent-1000", kSingle}}},
        {"unit", {{"unitname", textType(20)}, {"unitoffset", kSingle}}},
        {"LimitHead",
         {{"limitnr", kLong},
          {"limitname", textType(80)},
          {"Radiated", kBoolean},
          {"loga", kBoolean},
          {"Distance", kSingle},
          {"Memo", kMemo},
          {"limunit", textType(20)},
          {"dat", textType(20)},
          {"tim", textType(20)}}},
        {"LimitDef", {{"limitnr", kLong}, {"frequency", kSingle}, {"level_dbmw", kSingle}}},
        {"loshead",
         {{"losnr", kLong},
          {"losname", textType(80)},
          {"lostyp", kInteger},
          {"Distance", kSingle},
          {"Memo", kMemo},
          {"dat", textType(20)},
          {"tim", textType(20)}}},
        {"losdef", {{"losnr", kLong}, {"frequency", kSingle}, {"level_dbmw", kSingle}}},
        {"MeasureCount", {{"limitnr", kLong}, {"losnr", kLong}}},
        {"config",
         {{"ConfigName", textType(80)},
          {"devicea", kLong},
          {"deviceb", kLong},
          {"devicec", kLong},
          {"deviced", kLong},
          {"devicee", kLong}}},
        {"test",
         {{"name", textType(80)},
          {"config", textType(80)},
          {"peak", kLong},
          {"average", kLong},
          {"startfreq", kSingle},
          {"stopfreq", kSingle},
          {"peakdet", kInteger},
          {"AVdet", kBoolean},
          {"rbw", kInteger},
          {"ref", kSingle},
          {"unit", textType(20)},
          {"atten", kSingle},
          {"horizontal", kBoolean},
          {"vertical", kBoolean},
          {"mode", kByte},
          {"leveldist", kSingle},
          {"meastime", kInteger},
          {"limitbezug", kByte},
          {"Ambient", kBoolean},
          {"step", kSingle},
          {"steptime", kByte},
          {"tgon", kBoolean},
          {"memo", kMemo}}},
        {"settings",
         {{"name", textType(80)},
          {"centerfreq", kSingle},
          {"reflevel", kSingle},
          {"attenuator", kSingle},
          {"bandwith", kInteger},
          {"videofilter", kByte},
          {"span", kInteger},
          {"unit", textType(20)},
          {"correctionon", kByte},
          {"configname", textType(80)},
          {"readmode", kByte},
          {"viewsample", kByte},
          {"viewaverage", kByte},
          {"viewmaxhold", kByte},
          {"viewb", kByte},
          {"viewab", kByte},
          {"viewlimitmax", kByte},
          {"viewlimitave", kByte},
          {"averagename", kLong},
          {"maxholdname", kLong},
          {"tgon", kByte},
          {"tglevel", kSingle},
          {"calc", kByte}}},
        {"knownsignals",
         {{"signal", textType(50)},
          {"startfreq", kDouble},
          {"stopfreq", kDouble},
          {"max-level", kDouble},
          {"min-level", kDouble},
          {"memo", kMemo},
          {"screenColor", kLong},
          {"hor", kBoolean},
          {"ver", kBoolean}}},
    };
}

QString quoted(const QString &name) { return QLatin1Char('"') + name + QLatin1Char('"'); }

// The fixed rows a pristine file starts with; the delivered catalogue follows them. The
// quasi-peak row loads as the program's own defaults (2, 2, 320, 1100); loshead 0 is the fixed
// entry that cannot be edited or deleted.
QStringList starterRows()
{
    return {
        QStringLiteral("insert into version (versionnr) values (1.1)"),
        QStringLiteral("insert into qpeak (\"tauf-30\", \"tauf-1000\", \"tent-30\", \"tent-1000\") "
                       "values (1, 1, 160, 550)"),
        QStringLiteral("insert into unit (unitname, unitoffset) values ('dBmW', 0)"),
        QStringLiteral("insert into unit (unitname, unitoffset) values ('dBuV', 107)"),
        // With an antenna factor in the chain the level is a field strength: the same offset.
        QStringLiteral("insert into unit (unitname, unitoffset) values ('dBuV/m', 107)"),
        QStringLiteral("insert into unit (unitname, unitoffset) values ('dBmV', 47)"),
        QStringLiteral("insert into unit (unitname, unitoffset) values ('dBuW', 30)"),
        QStringLiteral("insert into MeasureCount (limitnr, losnr) values (0, 0)"),
        QStringLiteral("insert into loshead (losnr, losname, lostyp, Distance, Memo, dat, tim) "
                       "values (0, ' ', 1, 0, '', '', '')"),
    };
}

bool execute(QSqlQuery &query, const StarterStatement &statement)
{
    if (!query.prepare(statement.sql))
        return false;
    for (const QVariant &value : statement.values)
        query.addBindValue(value);
    return query.exec();
}

} // namespace

const QList<TableSchema> &workingTables()
{
    static const QList<TableSchema> tables = buildTables();
    return tables;
}

QString createTableSql(const TableSchema &table)
{
    QStringList columns;
    for (const ColumnSchema &c : table.columns)
        columns << quoted(c.name) + QLatin1Char(' ') + c.type;
    return QStringLiteral("create table %1 (%2)").arg(quoted(table.name), columns.join(QStringLiteral(", ")));
}

bool writeNewDatabase(const QString &path, const QList<TableSchema> &tables,
                      const std::function<bool(QSqlQuery &)> &fill)
{
    bool ok = false;
    {
        SqliteFile file(path, SqliteFile::OpenMode::CreateIfMissing);
        QSqlDatabase db = file.handle();
        if (db.isOpen() && db.transaction()) {
            QSqlQuery query(db);
            ok = true;
            for (const TableSchema &table : tables)
                ok = ok && query.exec(createTableSql(table));
            ok = ok && (!fill || fill(query));
            query.finish();
            ok = ok ? db.commit() : (db.rollback(), false);
        }
    }
    if (!ok)
        QFile::remove(path);
    return ok;
}

bool writePristineDatabase(const QString &path)
{
    if (QFile::exists(path) && !QFile::remove(path))
        return false;
    return writeNewDatabase(path, workingTables(), [](QSqlQuery &query) {
        bool ok = true;
        for (const QString &row : starterRows())
            ok = ok && query.exec(row);
        for (const StarterStatement &row : deliveredRows())
            ok = ok && execute(query, row);
        return ok;
    });
}
