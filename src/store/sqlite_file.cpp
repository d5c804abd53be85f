#include "store/sqlite_file.h"

#include <QFileInfo>
#include <atomic>

namespace {
std::atomic<int> connectionCounter{0};
}

SqliteFile::SqliteFile(const QString &path, OpenMode mode)
    : name_(QStringLiteral("delfor-file-%1").arg(++connectionCounter))
{
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name_);
    if (mode == OpenMode::Existing && !QFileInfo(path).isFile())
        return;
    db.setDatabaseName(path);
    db.open();
}

SqliteFile::~SqliteFile()
{
    {
        QSqlDatabase db = QSqlDatabase::database(name_, false);
        db.close();
    }
    QSqlDatabase::removeDatabase(name_);
}

QSqlDatabase SqliteFile::handle() const { return QSqlDatabase::database(name_, false); }
