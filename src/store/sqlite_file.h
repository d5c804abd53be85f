#pragma once
// One SQLite file held open under a connection name of its own; the name leaves Qt's registry
// when the object goes. Working databases and measurement files are all opened this way.

#include <QSqlDatabase>
#include <QString>

class SqliteFile {
public:
    enum class OpenMode { Existing, CreateIfMissing };

    // Opens `path`; with OpenMode::Existing a path that is not a file is not opened at all.
    explicit SqliteFile(const QString &path, OpenMode mode = OpenMode::Existing);
    ~SqliteFile();
    SqliteFile(const SqliteFile &) = delete;
    SqliteFile &operator=(const SqliteFile &) = delete;

    bool isOpen() const { return handle().isOpen(); }
    QSqlDatabase handle() const;

private:
    QString name_;
};
