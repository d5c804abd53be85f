#pragma once
// Find criteria of the views: "name like 'x*'", "frequency => 3", "losnr = 3 and name = 'a'".
// Parsed and evaluated here, never handed to the database engine.

#include <QList>
#include <QString>
#include <QStringView>
#include <QVariant>

// How a column's stored values compare; taken from the declared type in the schema.
enum class ColumnKind { Text, Integer, Single, Double, Boolean };

// "SINGLE", "FLOAT" and "REAL" are 32-bit floats, "DOUBLE" is 64-bit, "BOOLEAN" holds -1/0,
// "INTEGER", "BYTE", "LONG" are integers, anything else (TEXT, MEMO, DATE) is text.
ColumnKind columnKindOf(const QString &declaredType);

struct ColumnInfo {
    QString name;
    ColumnKind kind = ColumnKind::Text;
};

enum class CompareOp { Like, Equal, NotEqual, Less, LessEqual, Greater, GreaterEqual };

struct Condition {
    QString column;
    CompareOp op = CompareOp::Equal;
    QString operand;       // the text between the quotes, or the number as typed
    bool quoted = false;
};

// A criterion comparing a column with a text as the user gave it: a quote in the text is doubled,
// so "O'Brien" gives "limitname like 'O''Brien'".
QString textCriterion(const QString &column, const QString &op, const QString &text);

// `*` is any run of characters, `?` any one character; case is ignored.
bool likeMatch(QStringView pattern, QStringView text);

class Criteria
{
public:
    Criteria() = default;
    // Never throws; text that does not parse gives an invalid criterion.
    static Criteria parse(const QString &text);

    bool isValid() const { return m_valid; }
    const QList<Condition> &conditions() const { return m_conditions; }

    // Resolves the column names against a row layout (case-insensitive). False when the
    // criterion is invalid or names a column the layout lacks; such a criterion matches nothing.
    bool bind(const QList<ColumnInfo> &columns);
    // One row laid out as the bound columns. An unbound or invalid criterion matches nothing.
    bool matches(const QVariantList &row) const;

private:
    bool m_valid = false;
    bool m_bound = false;
    QList<Condition> m_conditions;
    QList<int> m_index;
    QList<ColumnKind> m_kind;
};
