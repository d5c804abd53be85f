#pragma once
// The tables of the working database, and the pristine file the program starts from.
//
// Columns carry the type names of the file format (SINGLE, BYTE, INTEGER, LONG, BOOLEAN,
// DOUBLE, DATE, TEXT(n)) as their declared SQLite types, so that the file documents itself;
// SQLite stores them as REAL, INTEGER and TEXT. A memo is declared TEXT: under the name MEMO
// SQLite would turn a note "0815" into the number 815. Booleans hold -1 for true and 0 for
// false. Tables have no key beyond SQLite's rowid.

#include <QList>
#include <QSqlQuery>
#include <functional>
#include <QString>

// Declared type names of the file format.
inline const QString kSingle = QStringLiteral("SINGLE");
inline const QString kDouble = QStringLiteral("DOUBLE");
inline const QString kByte = QStringLiteral("BYTE");
inline const QString kInteger = QStringLiteral("INTEGER");
inline const QString kLong = QStringLiteral("LONG");
inline const QString kBoolean = QStringLiteral("BOOLEAN");
inline const QString kDate = QStringLiteral("DATE");
inline const QString kMemo = QStringLiteral("TEXT"); // files of earlier versions say MEMO
inline QString textType(int width) { return QStringLiteral("TEXT(%1)").arg(width); }

struct ColumnSchema {
    QString name;
    QString type;
};

struct TableSchema {
    QString name;
    QList<ColumnSchema> columns;
};

// Every table of the working database, in the order they are created.
const QList<TableSchema> &workingTables();

// The "create table" statement of one table.
QString createTableSql(const TableSchema &table);

// Schema revision that the program requires, and that a pristine file carries.
inline constexpr float kRequiredDatabaseVersion = 1.1f;

// Makes a database file at `path` with `tables` and whatever `fill` writes, all in one
// transaction; a file that could not be made whole is removed again.
bool writeNewDatabase(const QString &path, const QList<TableSchema> &tables,
                      const std::function<bool(QSqlQuery &)> &fill = {});

// Builds a pristine working database at `path` (tables and starter rows) in one transaction.
// An existing file at `path` is replaced. Returns false if the file could not be written.
bool writePristineDatabase(const QString &path);
