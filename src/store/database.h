#pragma once
// The one working database: how it comes into being, how it is opened at start-up, how the
// user selects another one, and the version rule that decides whether a file is usable.
//
// The open file is held as a named Qt SQL connection, one per context, kept by the store.

#include <QSqlDatabase>
#include <QString>

class Context;

inline const QString kPristineDatabaseName = QStringLiteral("DELFO.sqlite");
inline const QString kWorkingDatabaseName = QStringLiteral("default.sqlite");

// Start-up: makes sure default.sqlite exists in the data folder (copied from DELFO.sqlite, which
// is written out first if it is missing or damaged), opens `databasePath`, checks it and loads the
// quasi-peak constants. A file that is refused leads into selectDatabase.
//
// A file is a working database when SQLite finds it whole, it holds every table of the schema as
// a table, and the last row of its version table is a number below 100; only such a file, of an
// accepted version, becomes the database in force.
void openWorkingDatabase(Context &ctx);

// The database selection dialog and the opening of the chosen file; a file that is refused leaves
// the previous database in force (while `databasePath` names the chosen file). Ends with busy
// cleared.
void selectDatabase(Context &ctx);

// Gives the data views the current file. The views attach themselves once they exist.
void bindDataViews(Context &ctx);

// The working database of this context; invalid until a file was opened.
QSqlDatabase workingDatabase(const Context &ctx);

// Closes and forgets the working database of this context.
void closeWorkingDatabase(const Context &ctx);

// Each quasi-peak constant is twice the absolute value of the column's integer part.
quint16 quasiPeakConstant(double column);
