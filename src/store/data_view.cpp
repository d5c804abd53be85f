#include "store/data_view.h"

#include <QHash>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>

#include <sqlite3.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <optional>

namespace {

bool isIdentifier(QStringView s)
{
    if (s.isEmpty() || !(s[0].isLetter() || s[0] == u'_'))
        return false;
    for (QChar c : s) {
        if (!(c.isLetterOrNumber() || c == u'_'))
            return false;
    }
    return true;
}

// Names in SQL are only ever names read back from the schema, quoted all the same.
QString quoted(const QString &name)
{
    QString q = name;
    q.replace(u'"', QStringLiteral("\"\""));
    return u'"' + q + u'"';
}

// Position of a keyword at a word boundary outside quotes, or -1.
qsizetype findKeyword(QStringView s, QStringView keyword, qsizetype from = 0)
{
    bool inQuote = false;
    for (qsizetype i = from; i < s.size(); ++i) {
        if (s[i] == u'\'') {
            inQuote = !inQuote;
            continue;
        }
        if (inQuote)
            continue;
        if (i > 0 && (s[i - 1].isLetterOrNumber() || s[i - 1] == u'_'))
            continue;
        if (s.mid(i).startsWith(keyword, Qt::CaseInsensitive)) {
            const qsizetype end = i + keyword.size();
            if (end == s.size() || !(s[end].isLetterOrNumber() || s[end] == u'_'))
                return i;
        }
    }
    return -1;
}

// The leading word of `s` (after blanks) if it equals `keyword`; advances `pos` past it.
bool takeKeyword(QStringView s, qsizetype &pos, QStringView keyword)
{
    qsizetype i = pos;
    while (i < s.size() && s[i].isSpace())
        ++i;
    qsizetype end = i;
    while (end < s.size() && (s[end].isLetterOrNumber() || s[end] == u'_' || s[end] == u'*'))
        ++end;
    if (s.mid(i, end - i).compare(keyword, Qt::CaseInsensitive) != 0)
        return false;
    pos = end;
    return true;
}

QString takeWord(QStringView s, qsizetype &pos)
{
    while (pos < s.size() && s[pos].isSpace())
        ++pos;
    const qsizetype from = pos;
    while (pos < s.size() && (s[pos].isLetterOrNumber() || s[pos] == u'_'))
        ++pos;
    return s.mid(from, pos - from).toString();
}

// Whether the connection is inside a transaction that someone opened on it. Asking SQLite saves
// the refused BEGIN that would otherwise tell.
bool inTransaction(const QSqlDatabase &db)
{
    const QVariant handle = db.driver() ? db.driver()->handle() : QVariant();
    if (!handle.isValid() || qstrcmp(handle.typeName(), "sqlite3*") != 0)
        return false;
    sqlite3 *sqlite = *static_cast<sqlite3 *const *>(handle.data());
    return sqlite && sqlite3_get_autocommit(sqlite) == 0;
}

} // namespace

DataView::DataView(QSqlDatabase db, Access access)
    : m_db(db), m_access(access)
{
}

void DataView::setDatabase(QSqlDatabase db)
{
    close();
    m_db = db;
}

int DataView::columnIndex(const QString &name) const
{
    for (int k = 0; k < m_columns.size(); ++k) {
        if (m_columns[k].name.compare(name, Qt::CaseInsensitive) == 0)
            return k;
    }
    return -1;
}

void DataView::close()
{
    m_statements.clear();
    m_table.clear();
    m_columns.clear();
    m_where = Criteria();
    m_hasWhere = false;
    m_order.clear();
    m_rowids.clear();
    m_rows.clear();
    m_complete.clear();
    m_columnLoaded.clear();
    m_singleReads = 0;
    m_pos = -1;
    m_afterDelete = false;
    m_noMatch = false;
    m_mode = Mode::Browse;
    m_pending.clear();
    m_dirty.clear();
}

bool DataView::setSource(const QString &source)
{
    close();
    m_source = source;
    m_error.clear();
    if (!parseSource(source)) {
        close();
        if (m_error.isEmpty())
            m_error = QStringLiteral("Source not understood");
        return false;
    }
    refresh();
    return true;
}

bool DataView::loadSchema(const QString &table)
{
    if (!m_db.isOpen())
        return false;
    QString found;
    const QStringList tables = m_db.tables(QSql::Tables);
    for (const QString &t : tables) {
        if (t.compare(table, Qt::CaseInsensitive) == 0) {
            found = t;
            break;
        }
    }
    if (found.isEmpty()) {
        m_error = QStringLiteral("No such table");
        return false;
    }
    QSqlQuery q(m_db);
    if (!q.exec(QStringLiteral("PRAGMA table_info(%1)").arg(quoted(found))))
        return false;
    QList<ColumnInfo> columns;
    while (q.next())
        columns.append({q.value(1).toString(), columnKindOf(q.value(2).toString())});
    if (columns.isEmpty())
        return false;
    m_table = found;
    m_columns = columns;
    return true;
}

bool DataView::parseSource(const QString &text)
{
    const QString trimmed = text.trimmed();
    const QStringView s(trimmed);
    if (isIdentifier(s))
        return loadSchema(trimmed);

    qsizetype pos = 0;
    if (!takeKeyword(s, pos, u"select") || !takeKeyword(s, pos, u"*") || !takeKeyword(s, pos, u"from"))
        return false;
    const QString table = takeWord(s, pos);
    if (!isIdentifier(table))
        return false;

    qsizetype orderAt = findKeyword(s, u"order", pos);
    QStringView wherePart;
    QStringView orderPart;
    QStringView rest = s.mid(pos, (orderAt < 0 ? s.size() : orderAt) - pos).trimmed();
    if (!rest.isEmpty()) {
        qsizetype w = 0;
        if (!takeKeyword(rest, w, u"where"))
            return false;
        wherePart = rest.mid(w).trimmed();
        if (wherePart.isEmpty())
            return false;
    }
    if (orderAt >= 0) {
        qsizetype o = orderAt;
        if (!takeKeyword(s, o, u"order") || !takeKeyword(s, o, u"by"))
            return false;
        orderPart = s.mid(o).trimmed();
        if (orderPart.isEmpty())
            return false;
    }

    if (!loadSchema(table))
        return false;

    if (!wherePart.isEmpty()) {
        m_where = Criteria::parse(wherePart.toString());
        if (!m_where.bind(m_columns)) {
            m_error = QStringLiteral("Where part not understood");
            return false;
        }
        m_hasWhere = true;
    }
    if (!orderPart.isEmpty()) {
        for (QStringView item : orderPart.split(u',')) {
            qsizetype p = 0;
            const QString name = takeWord(item, p);
            const int column = columnIndex(name);
            if (column < 0)
                return false;
            bool descending = false;
            const QString direction = takeWord(item, p);
            if (direction.compare(u"desc", Qt::CaseInsensitive) == 0)
                descending = true;
            else if (!direction.isEmpty() && direction.compare(u"asc", Qt::CaseInsensitive) != 0)
                return false;
            if (!item.mid(p).trimmed().isEmpty())
                return false;
            m_order.append({column, descending});
        }
    }
    return true;
}

std::optional<QVariantList> DataView::readRow(qint64 rowid) const
{
    QStringList names;
    for (const ColumnInfo &c : m_columns)
        names << quoted(c.name);
    QSqlQuery *q = prepared(QStringLiteral("SELECT %1 FROM %2 WHERE rowid = ?").arg(names.join(u','), quoted(m_table)));
    if (!q)
        return std::nullopt;
    q->bindValue(0, rowid);
    std::optional<QVariantList> row;
    if (q->exec() && q->next()) {
        row.emplace();
        for (int k = 0; k < m_columns.size(); ++k)
            row->append(q->value(k));
    }
    q->finish();
    return row;
}

QSqlQuery *DataView::prepared(const QString &sql) const
{
    if (const auto found = m_statements.find(sql); found != m_statements.end())
        return &*found;
    QSqlQuery q(m_db);
    if (!q.prepare(sql)) {
        m_error = q.lastError().text();
        return nullptr;
    }
    return &*m_statements.insert(sql, std::move(q));
}

void DataView::refresh()
{
    const qint64 currentRowid = hasCurrent() ? m_rowids[m_pos] : -1;
    m_rowids.clear();
    m_rows.clear();
    m_complete.clear();
    m_columnLoaded = QList<bool>(m_columns.size(), false);
    m_singleReads = 0;
    m_pos = -1;
    m_afterDelete = false;
    m_mode = Mode::Browse;
    m_pending.clear();
    m_dirty.clear();
    if (m_table.isEmpty() || !m_db.isOpen())
        return;

    // A snapshot is a copy and reads everything now; an updatable set reads the columns of its
    // where and order parts now (the engine reads them anyway) and the rest when it is used.
    QList<int> wanted = m_hasWhere ? criteriaColumns(m_where) : QList<int>();
    for (const auto &[column, descending] : std::as_const(m_order)) {
        if (!wanted.contains(column))
            wanted.append(column);
    }
    if (isReadOnly()) {
        wanted = QList<int>(m_columns.size());
        std::iota(wanted.begin(), wanted.end(), 0);
    }
    // A row holds values up to the last column read so far: short rows keep a large set cheap.
    const qsizetype wantedWidth = wanted.isEmpty() ? 0 : *std::max_element(wanted.begin(), wanted.end()) + 1;
    QStringList names{QStringLiteral("rowid")};
    for (int k : wanted)
        names << quoted(m_columns[k].name);
    QString sql = QStringLiteral("SELECT %1 FROM %2").arg(names.join(u','), quoted(m_table));
    QStringList order;
    for (const auto &[column, descending] : std::as_const(m_order)) {
        QString term = quoted(m_columns[column].name);
        if (m_columns[column].kind == ColumnKind::Text)
            term += QStringLiteral(" COLLATE NOCASE");
        if (descending)
            term += QStringLiteral(" DESC");
        order << term;
    }
    order << QStringLiteral("rowid");
    sql += QStringLiteral(" ORDER BY ") + order.join(u',');

    QSqlQuery q(m_db);
    q.setForwardOnly(true);
    if (!q.exec(sql)) {
        m_error = q.lastError().text();
        return;
    }
    while (q.next()) {
        QVariantList row(wantedWidth);
        for (int j = 0; j < wanted.size(); ++j)
            row[wanted[j]] = q.value(j + 1);
        if (m_hasWhere && !m_where.matches(row))
            continue;
        m_rowids.append(q.value(0).toLongLong());
        m_rows.append(std::move(row));
    }
    m_complete = QList<bool>(m_rows.size(), isReadOnly());
    for (int k : wanted)
        m_columnLoaded[k] = true;
    if (m_rows.isEmpty())
        return;
    const int again = currentRowid >= 0 ? indexOfRowid(currentRowid) : -1;
    m_pos = again >= 0 ? again : 0;
}

QList<int> DataView::criteriaColumns(const Criteria &criteria) const
{
    QList<int> columns;
    for (const Condition &c : criteria.conditions()) {
        const int k = columnIndex(c.column);
        if (k >= 0 && !columns.contains(k))
            columns.append(k);
    }
    return columns;
}

void DataView::loadColumns(const QList<int> &columns) const
{
    QList<int> missing;
    for (int k : columns) {
        if (!m_columnLoaded[k])
            missing.append(k);
    }
    if (missing.isEmpty())
        return;
    for (int k : missing)
        m_columnLoaded[k] = true;
    if (m_rows.isEmpty() || !m_db.isOpen())
        return;
    QHash<qint64, int> indexOf;
    indexOf.reserve(m_rowids.size());
    for (int i = 0; i < m_rowids.size(); ++i)
        indexOf.insert(m_rowids[i], i);
    QStringList names{QStringLiteral("rowid")};
    for (int k : missing)
        names << quoted(m_columns[k].name);
    const qsizetype width = *std::max_element(missing.begin(), missing.end()) + 1;
    QSqlQuery q(m_db);
    q.setForwardOnly(true);
    if (!q.exec(QStringLiteral("SELECT %1 FROM %2").arg(names.join(u','), quoted(m_table))))
        return;
    while (q.next()) {
        const auto found = indexOf.constFind(q.value(0).toLongLong());
        if (found == indexOf.cend())
            continue;
        QVariantList &row = m_rows[*found];
        if (row.size() < width)
            row.resize(width);
        for (int j = 0; j < missing.size(); ++j)
            row[missing[j]] = q.value(j + 1);
    }
}

const QVariantList &DataView::fullRow(int k) const
{
    constexpr int kSingleReads = 8;
    if (m_complete[k])
        return m_rows[k];
    if (m_singleReads < kSingleReads) {
        ++m_singleReads;
        if (const std::optional<QVariantList> row = readRow(m_rowids[k]))
            m_rows[k] = *row;
        m_complete[k] = true;
        return m_rows[k];
    }
    QList<int> all(m_columns.size());
    std::iota(all.begin(), all.end(), 0);
    loadColumns(all);
    m_complete.fill(true);
    return m_rows[k];
}

int DataView::indexOfRowid(qint64 rowid) const
{
    return static_cast<int>(m_rowids.indexOf(rowid));
}

void DataView::moveFirst()
{
    cancelUpdate();
    m_afterDelete = false;
    m_pos = m_rows.isEmpty() ? -1 : 0;
}

void DataView::moveLast()
{
    cancelUpdate();
    m_afterDelete = false;
    m_pos = m_rows.isEmpty() ? -1 : rowCount() - 1;
}

void DataView::moveNext()
{
    cancelUpdate();
    if (m_afterDelete) {
        // After a delete the position already names the row that followed.
        m_afterDelete = false;
        return;
    }
    if (m_pos < rowCount())
        ++m_pos;
}

void DataView::movePrevious()
{
    cancelUpdate();
    m_afterDelete = false;
    if (m_pos >= 0)
        --m_pos;
}

bool DataView::find(const QString &criterion, int from, int step)
{
    cancelUpdate();
    Criteria c = Criteria::parse(criterion);
    m_noMatch = true;
    if (!c.bind(m_columns))
        return false;
    loadColumns(criteriaColumns(c));
    for (int k = from; k >= 0 && k < rowCount(); k += step) {
        if (c.matches(m_rows[k])) {
            m_pos = k;
            m_afterDelete = false;
            m_noMatch = false;
            return true;
        }
    }
    return false;
}

bool DataView::findFirst(const QString &criterion) { return find(criterion, 0, 1); }
bool DataView::findLast(const QString &criterion) { return find(criterion, rowCount() - 1, -1); }

bool DataView::findNext(const QString &criterion)
{
    const int from = m_afterDelete ? m_pos : m_pos + 1;
    return find(criterion, std::max(from, 0), 1);
}

bool DataView::findPrevious(const QString &criterion)
{
    return find(criterion, std::min(m_pos - 1, rowCount() - 1), -1);
}

QVariant DataView::value(const QString &column) const
{
    const int k = columnIndex(column);
    if (k < 0)
        return {};
    if (m_mode != Mode::Browse)
        return m_pending.value(k);
    if (!hasCurrent())
        return {};
    return fullRow(m_pos).value(k);
}

// The value as this column stores it; invalid when it cannot be stored there.
QVariant DataView::storedForm(int column, const QVariant &v) const
{
    if (!v.isValid() || v.isNull())
        return QVariant(QMetaType::fromType<QString>());
    bool ok = false;
    switch (m_columns[column].kind) {
    case ColumnKind::Text:
        return v.toString();
    case ColumnKind::Boolean: {
        if (v.typeId() == QMetaType::Bool)
            return v.toBool() ? -1 : 0;
        const double d = v.toDouble(&ok);
        if (ok)
            return d != 0 ? -1 : 0;
        const QString t = v.toString().trimmed();
        if (t.compare(u"true", Qt::CaseInsensitive) == 0)
            return -1;
        if (t.compare(u"false", Qt::CaseInsensitive) == 0)
            return 0;
        return {};
    }
    case ColumnKind::Integer: {
        const qlonglong i = v.toLongLong(&ok);
        if (ok)
            return i;
        const double d = v.toDouble(&ok);
        if (!ok || !std::isfinite(d) || std::fabs(d) > 9.2e18)
            return {};
        return static_cast<qlonglong>(std::llround(d));
    }
    case ColumnKind::Single: {
        const double d = v.toDouble(&ok);
        if (!ok)
            return {};
        return static_cast<double>(static_cast<float>(d));
    }
    case ColumnKind::Double: {
        const double d = v.toDouble(&ok);
        return ok ? QVariant(d) : QVariant();
    }
    }
    return {};
}

bool DataView::setValue(const QString &column, const QVariant &v)
{
    const int k = columnIndex(column);
    if (m_mode == Mode::Browse || k < 0)
        return false;
    const QVariant stored = storedForm(k, v);
    if (!stored.isValid())
        return false;
    m_pending[k] = stored;
    m_dirty.insert(k);
    return true;
}

bool DataView::addNew()
{
    if (isReadOnly() || m_table.isEmpty())
        return false;
    m_mode = Mode::Adding;
    m_pending = QVariantList(m_columns.size());
    m_dirty.clear();
    return true;
}

bool DataView::edit()
{
    if (isReadOnly() || !hasCurrent() || m_afterDelete)
        return false;
    m_mode = Mode::Editing;
    m_pending = fullRow(m_pos);
    m_pending.resize(m_columns.size());
    m_dirty.clear();
    return true;
}

void DataView::cancelUpdate()
{
    m_mode = Mode::Browse;
    m_pending.clear();
    m_dirty.clear();
}

bool DataView::update()
{
    if (m_mode == Mode::Browse || isReadOnly() || !m_db.isOpen())
        return false;
    QList<int> dirty(m_dirty.begin(), m_dirty.end());
    std::sort(dirty.begin(), dirty.end());

    QString sql;
    if (m_mode == Mode::Adding) {
        if (dirty.isEmpty()) {
            sql = QStringLiteral("INSERT INTO %1 DEFAULT VALUES").arg(quoted(m_table));
        } else {
            QStringList names, marks;
            for (int k : dirty) {
                names << quoted(m_columns[k].name);
                marks << QStringLiteral("?");
            }
            sql = QStringLiteral("INSERT INTO %1 (%2) VALUES (%3)").arg(quoted(m_table), names.join(u','), marks.join(u','));
        }
    } else {
        if (!hasCurrent()) {
            cancelUpdate();
            return false;
        }
        if (dirty.isEmpty()) {
            cancelUpdate();
            return true;
        }
        QStringList sets;
        for (int k : dirty)
            sets << quoted(m_columns[k].name) + QStringLiteral(" = ?");
        sql = QStringLiteral("UPDATE %1 SET %2 WHERE rowid = ?").arg(quoted(m_table), sets.join(u','));
    }
    QSqlQuery *q = prepared(sql);
    if (!q) {
        cancelUpdate();
        return false;
    }
    int at = 0;
    for (int k : dirty)
        q->bindValue(at++, m_pending[k]);
    if (m_mode == Mode::Editing)
        q->bindValue(at, m_rowids[m_pos]);

    if (!runWrite(*q, [&] { return q->exec(); })) {
        cancelUpdate();
        return false;
    }

    const qint64 rowid = m_mode == Mode::Adding ? q->lastInsertId().toLongLong() : m_rowids[m_pos];
    const bool adding = m_mode == Mode::Adding;
    cancelUpdate();
    const std::optional<QVariantList> row = readRow(rowid);
    if (!row)
        return true;
    const bool belongs = !m_hasWhere || m_where.matches(*row);
    if (adding) {
        // A new row joins the end of the set, as it would until the next refresh.
        if (belongs) {
            m_rowids.append(rowid);
            m_rows.append(*row);
            m_complete.append(true);
            m_pos = rowCount() - 1;
            m_afterDelete = false;
        }
    } else {
        m_rows[m_pos] = *row;
        m_complete[m_pos] = true;
    }
    return true;
}

template <typename Write>
bool DataView::runWrite(QSqlQuery &query, Write write)
{
    // Inside a transaction that the caller opened on this connection SQLite refuses the BEGIN,
    // and the write becomes part of the caller's transaction.
    const bool own = !inTransaction(m_db) && m_db.transaction();
    if (write() && (!own || m_db.commit()))
        return true;
    m_error = query.lastError().text();
    if (own)
        m_db.rollback();
    return false;
}

bool DataView::appendRows(const QStringList &columns, const QList<QVariantList> &rows)
{
    if (isReadOnly() || m_table.isEmpty() || !m_db.isOpen() || columns.isEmpty())
        return false;
    QList<int> indexes;
    QStringList names, marks;
    for (const QString &column : columns) {
        const int k = columnIndex(column);
        if (k < 0)
            return false;
        indexes << k;
        names << quoted(m_columns[k].name);
        marks << QStringLiteral("?");
    }
    for (const QVariantList &row : rows) {
        if (row.size() != indexes.size())
            return false;
    }
    QSqlQuery q(m_db);
    if (!q.prepare(QStringLiteral("INSERT INTO %1 (%2) VALUES (%3)")
                       .arg(quoted(m_table), names.join(u','), marks.join(u',')))) {
        m_error = q.lastError().text();
        return false;
    }
    return runWrite(q, [&] {
        for (const QVariantList &row : rows) {
            for (int j = 0; j < indexes.size(); ++j)
                q.bindValue(j, storedForm(indexes[j], row[j]));
            if (!q.exec())
                return false;
        }
        return true;
    });
}

bool DataView::deleteRow()
{
    cancelUpdate();
    if (isReadOnly() || !hasCurrent() || m_afterDelete || !m_db.isOpen())
        return false;
    QSqlQuery q(m_db);
    q.prepare(QStringLiteral("DELETE FROM %1 WHERE rowid = ?").arg(quoted(m_table)));
    q.addBindValue(m_rowids[m_pos]);
    if (!runWrite(q, [&] { return q.exec(); }))
        return false;
    m_rowids.removeAt(m_pos);
    m_rows.removeAt(m_pos);
    m_complete.removeAt(m_pos);
    // Until the next move the deleted row stays current: it has no values, and moveNext
    // lands on the row that followed it.
    m_afterDelete = true;
    return true;
}
