#pragma once
// A live ordered row set over one table of an SQLite file, with a current row.
//
// The source is a table name or "select * from T [where criteria] [order by c [asc|desc], ...]".
// Table and column names are looked up in the file's own schema (case-insensitive) and only
// those schema names reach SQL; values are bound as parameters and the where part is
// evaluated here. Rows are addressed by rowid, since the tables carry no key. A snapshot holds
// the values as they were when it was read; an updatable set reads a row's values from the
// file when they are first used.

#include "store/criteria.h"

#include <QHash>
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
    // becomes current when it belongs to the set. Every write of a view joins a transaction
    // that the caller opened on the same connection instead of opening its own.
    bool update();
    // Inserts many rows through one prepared statement, all in one transaction: each row holds
    // the values of `columns` in that order, stored as setValue would store them. The set is
    // not re-read; the rows show after refresh(). False (nothing written) for an unknown column,
    // a row of the wrong length or a failed write.
    bool appendRows(const QStringList &columns, const QList<QVariantList> &rows);
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
    // Runs `write` (prepared statements on `query`) as one transaction, or within the caller's;
    // false (and the error kept) when it failed. In a transaction of its own nothing stays then.
    template <typename Write>
    bool runWrite(QSqlQuery &query, Write write);
    int indexOfRowid(qint64 rowid) const;
    std::optional<QVariantList> readRow(qint64 rowid) const;
    // The statement of `sql`, prepared once for the life of the source: a run writes rows one by
    // one, and parsing each statement anew cost more than the writes themselves. None when it
    // does not prepare (the error kept).
    QSqlQuery *prepared(const QString &sql) const;
    // An updatable set reads its rows in steps: refresh reads the rowids in order and the columns
    // of the where part; a find reads the columns it tests for all rows; a row's other values are
    // read when it is used, one row at a time for the first few rows, then all rows at once.
    QList<int> criteriaColumns(const Criteria &criteria) const;
    void loadColumns(const QList<int> &columns) const;
    const QVariantList &fullRow(int k) const;

    QSqlDatabase m_db;
    Access m_access;
    QString m_source;
    QString m_table;
    QList<ColumnInfo> m_columns;
    Criteria m_where;
    bool m_hasWhere = false;
    QList<QPair<int, bool>> m_order;   // column index, descending
    QList<qint64> m_rowids;
    mutable QList<QVariantList> m_rows;   // values read so far; the others are invalid
    mutable QList<bool> m_complete;       // the row's values are all read
    mutable QList<bool> m_columnLoaded;   // the column is read for every row
    mutable int m_singleReads = 0;
    mutable QHash<QString, QSqlQuery> m_statements;
    int m_pos = -1;
    bool m_afterDelete = false;
    bool m_noMatch = false;
    Mode m_mode = Mode::Browse;
    QVariantList m_pending;
    QSet<int> m_dirty;
    mutable QString m_error; // also of a statement that a read prepared
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
