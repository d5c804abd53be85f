#pragma once
// A live ordered row set over one table of an SQLite file, with a current row.
//
// The source is a table name or "select * from T [where criteria] [order by c [asc|desc], ...]".
// Table and column names are looked up in the file's own schema (case-insensitive) and only
// those schema names reach SQL; values are bound as parameters and the where part is
// evaluated here. Rows are addressed by rowid, since the tables carry no key.

#include "store/criteria.h"

#include <QList>
#include <QSet>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QString>
#include <QVariant>

#include <optional>

class DataView
{
public:
    enum class Access { Updatable, Snapshot };

    explicit DataView(QSqlDatabase db = {}, Access access = Access::Updatable);

    void setDatabase(QSqlDatabase db);
    // Binds a new source and reads it. A source that does not parse, or names an unknown
    // table or column, gives an empty set. Returns whether the source was accepted.
    bool setSource(const QString &source);
    QString source() const { return m_source; }
    // Reads the rows again; the current row stays on the same rowid when it is still there.
    void refresh();
    void close();

    bool isOpen() const { return !m_table.isEmpty(); }
    bool isReadOnly() const { return m_access == Access::Snapshot; }
    QString tableName() const { return m_table; }
    const QList<ColumnInfo> &columns() const { return m_columns; }
    int columnIndex(const QString &name) const;

    int rowCount() const { return static_cast<int>(m_rows.size()); }
    int position() const { return m_pos; }
    bool isBof() const { return m_rows.isEmpty() || m_pos < 0; }
    bool isEof() const { return m_rows.isEmpty() || m_pos >= rowCount(); }
    bool hasCurrent() const { return !m_afterDelete && m_pos >= 0 && m_pos < rowCount(); }

    void moveFirst();
    void moveLast();
    void moveNext();
    void movePrevious();

    // A find that matches nothing leaves the current row where it was and sets noMatch().
    bool findFirst(const QString &criterion);
    bool findLast(const QString &criterion);
    bool findNext(const QString &criterion);
    bool findPrevious(const QString &criterion);
    bool noMatch() const { return m_noMatch; }

    // The current row's value, or the pending value while adding or editing; invalid
    // when there is no current row or no such column.
    QVariant value(const QString &column) const;
    // Only while adding or editing; false for an unknown column or outside an edit.
    bool setValue(const QString &column, const QVariant &v);

    bool addNew();
    bool edit();
    bool isEditing() const { return m_mode != Mode::Browse; }
    void cancelUpdate();
    // Writes the pending row in one transaction: an insert after addNew (columns left unset
    // take their table defaults), an update of the current row after edit. The written row
    // becomes current when it belongs to the set.
    bool update();
    // Deletes the current row in one transaction. Until the next move there is no current
    // row; moveNext then lands on the row that followed the deleted one.
    bool deleteRow();

    QString lastError() const { return m_error; }

private:
    enum class Mode { Browse, Adding, Editing };

    bool parseSource(const QString &source);
    bool loadSchema(const QString &table);
    QVariant storedForm(int column, const QVariant &v) const;
    bool find(const QString &criterion, int from, int step);
    // Runs one prepared write as its own transaction; false (and the error kept) when it failed.
    bool runWrite(QSqlQuery &query);
    int indexOfRowid(qint64 rowid) const;
    std::optional<QVariantList> readRow(qint64 rowid) const;

    QSqlDatabase m_db;
    Access m_access;
    QString m_source;
    QString m_table;
    QList<ColumnInfo> m_columns;
    Criteria m_where;
    bool m_hasWhere = false;
    QList<QPair<int, bool>> m_order;   // column index, descending
    QList<qint64> m_rowids;
    QList<QVariantList> m_rows;
    int m_pos = -1;
    bool m_afterDelete = false;
    bool m_noMatch = false;
    Mode m_mode = Mode::Browse;
    QVariantList m_pending;
    QSet<int> m_dirty;
    QString m_error;
};

// A read-only snapshot or an updatable set of one query.
class Recordset : public DataView
{
public:
    explicit Recordset(QSqlDatabase db = {}, Access access = Access::Snapshot)
        : DataView(db, access)
    {
    }
    Recordset(QSqlDatabase db, const QString &source, Access access = Access::Snapshot)
        : DataView(db, access)
    {
        setSource(source);
    }
};
