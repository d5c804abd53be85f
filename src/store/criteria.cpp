#include "store/criteria.h"

#include <charconv>
#include <cmath>
#include <optional>

namespace {

bool isIdentStart(QChar c) { return c.isLetter() || c == u'_'; }
bool isIdentChar(QChar c) { return c.isLetterOrNumber() || c == u'_'; }

// Numbers are read the same under any locale: digits, a point, an exponent.
template <typename T>
std::optional<T> parseNumber(QStringView text)
{
    const QByteArray bytes = text.trimmed().toLatin1();
    if (bytes.isEmpty())
        return std::nullopt;
    const char *first = bytes.constData();
    const char *last = first + bytes.size();
    if (*first == '+')
        ++first;
    T value = 0;
    auto [ptr, ec] = std::from_chars(first, last, value);
    if (ec != std::errc() || ptr != last || !std::isfinite(value))
        return std::nullopt;
    return value;
}

std::optional<double> parseDouble(QStringView text)
{
    return parseNumber<double>(text);
}

std::optional<float> parseFloat(QStringView text)
{
    return parseNumber<float>(text);
}

// A number at `pos`: optional sign, digits with an optional point, optional exponent.
qsizetype scanNumber(QStringView s, qsizetype pos)
{
    qsizetype i = pos;
    if (i < s.size() && (s[i] == u'-' || s[i] == u'+'))
        ++i;
    const qsizetype digitsFrom = i;
    while (i < s.size() && s[i].isDigit())
        ++i;
    if (i < s.size() && s[i] == u'.') {
        ++i;
        while (i < s.size() && s[i].isDigit())
            ++i;
    }
    if (i == digitsFrom || (i == digitsFrom + 1 && s[digitsFrom] == u'.'))
        return pos;
    if (i < s.size() && (s[i] == u'e' || s[i] == u'E')) {
        qsizetype j = i + 1;
        if (j < s.size() && (s[j] == u'-' || s[j] == u'+'))
            ++j;
        const qsizetype expFrom = j;
        while (j < s.size() && s[j].isDigit())
            ++j;
        if (j > expFrom)
            i = j;
    }
    // "12abc" is not a number followed by a word.
    if (i < s.size() && isIdentChar(s[i]))
        return pos;
    return i;
}

template <typename T>
bool compareWith(CompareOp op, T left, T right)
{
    switch (op) {
    case CompareOp::Equal: return left == right;
    case CompareOp::NotEqual: return left != right;
    case CompareOp::Less: return left < right;
    case CompareOp::LessEqual: return left <= right;
    case CompareOp::Greater: return left > right;
    case CompareOp::GreaterEqual: return left >= right;
    case CompareOp::Like: return false;
    }
    return false;
}

// Stored values shown as text, for `like` on a number column.
QString storedText(const QVariant &stored, ColumnKind kind)
{
    if (kind == ColumnKind::Single)
        return QString::number(static_cast<double>(static_cast<float>(stored.toDouble())), 'g', 7);
    if (kind == ColumnKind::Double)
        return QString::number(stored.toDouble(), 'g', 15);
    return stored.toString();
}

bool evaluate(const Condition &c, ColumnKind kind, const QVariant &stored)
{
    if (!stored.isValid() || stored.isNull())
        return false;
    if (c.op == CompareOp::Like)
        return likeMatch(c.operand, storedText(stored, kind));

    switch (kind) {
    case ColumnKind::Text: {
        const QString text = stored.toString();
        if (c.quoted) {
            const int order = QString::compare(text, c.operand, Qt::CaseInsensitive);
            return compareWith(c.op, order, 0);
        }
        const auto left = parseDouble(text);
        const auto right = parseDouble(c.operand);
        return left && right && compareWith(c.op, *left, *right);
    }
    case ColumnKind::Single: {
        const auto right = parseFloat(c.operand);
        bool ok = false;
        const double raw = stored.toDouble(&ok);
        return ok && right && compareWith(c.op, static_cast<float>(raw), *right);
    }
    case ColumnKind::Integer:
    case ColumnKind::Double:
    case ColumnKind::Boolean: {
        const auto right = parseDouble(c.operand);
        bool ok = false;
        const double left = stored.toDouble(&ok);
        return ok && right && compareWith(c.op, left, *right);
    }
    }
    return false;
}

} // namespace

ColumnKind columnKindOf(const QString &declaredType)
{
    const QString t = declaredType.toUpper();
    if (t.contains(u"BOOL") || t.contains(u"BIT"))
        return ColumnKind::Boolean;
    if (t.contains(u"DOUB"))
        return ColumnKind::Double;
    if (t.contains(u"SINGLE") || t.contains(u"FLOA") || t.contains(u"REAL"))
        return ColumnKind::Single;
    if (t.contains(u"INT") || t.contains(u"BYTE") || t.contains(u"LONG") || t.contains(u"COUNTER"))
        return ColumnKind::Integer;
    return ColumnKind::Text;
}

bool likeMatch(QStringView pattern, QStringView text)
{
    // Iterative wildcard match with one backtrack point: linear in practice, never recursive.
    qsizetype p = 0, t = 0, starP = -1, starT = 0;
    while (t < text.size()) {
        if (p < pattern.size() && pattern[p] == u'*') {
            starP = p++;
            starT = t;
        } else if (p < pattern.size()
                   && (pattern[p] == u'?' || pattern[p].toCaseFolded() == text[t].toCaseFolded())) {
            ++p;
            ++t;
        } else if (starP >= 0) {
            p = starP + 1;
            t = ++starT;
        } else {
            return false;
        }
    }
    while (p < pattern.size() && pattern[p] == u'*')
        ++p;
    return p == pattern.size();
}

Criteria Criteria::parse(const QString &text)
{
    Criteria result;
    const QStringView s(text);
    qsizetype i = 0;
    auto skipBlanks = [&] {
        while (i < s.size() && s[i].isSpace())
            ++i;
    };
    auto word = [&]() -> QString {
        skipBlanks();
        if (i >= s.size() || !isIdentStart(s[i]))
            return {};
        const qsizetype from = i;
        while (i < s.size() && isIdentChar(s[i]))
            ++i;
        return s.mid(from, i - from).toString();
    };

    QList<Condition> conditions;
    for (;;) {
        Condition c;
        c.column = word();
        if (c.column.isEmpty())
            return result;

        skipBlanks();
        if (i < s.size() && isIdentStart(s[i])) {
            if (word().compare(u"like", Qt::CaseInsensitive) != 0)
                return result;
            c.op = CompareOp::Like;
        } else {
            QString op;
            while (i < s.size() && (s[i] == u'=' || s[i] == u'<' || s[i] == u'>') && op.size() < 2)
                op += s[i++];
            if (op == u"=") c.op = CompareOp::Equal;
            else if (op == u"<>") c.op = CompareOp::NotEqual;
            else if (op == u"<") c.op = CompareOp::Less;
            else if (op == u"<=" || op == u"=<") c.op = CompareOp::LessEqual;
            else if (op == u">") c.op = CompareOp::Greater;
            else if (op == u">=" || op == u"=>") c.op = CompareOp::GreaterEqual;
            else return result;
        }

        skipBlanks();
        if (i >= s.size())
            return result;
        if (s[i] == u'\'') {
            // Quoted text; a doubled quote stands for one quote.
            ++i;
            QString value;
            bool closed = false;
            while (i < s.size()) {
                if (s[i] == u'\'') {
                    if (i + 1 < s.size() && s[i + 1] == u'\'') {
                        value += u'\'';
                        i += 2;
                        continue;
                    }
                    ++i;
                    closed = true;
                    break;
                }
                value += s[i++];
            }
            if (!closed)
                return result;
            c.operand = value;
            c.quoted = true;
        } else {
            const qsizetype end = scanNumber(s, i);
            if (end == i)
                return result;
            c.operand = s.mid(i, end - i).toString();
            i = end;
        }
        conditions.append(c);

        skipBlanks();
        if (i >= s.size())
            break;
        const qsizetype before = i;
        if (word().compare(u"and", Qt::CaseInsensitive) != 0 || i == before)
            return result;
        // "and" must be followed by a blank or the next column would merge with it.
        if (i < s.size() && !s[i].isSpace())
            return result;
    }
    result.m_conditions = conditions;
    result.m_valid = true;
    return result;
}

bool Criteria::bind(const QList<ColumnInfo> &columns)
{
    m_bound = false;
    m_index.clear();
    m_kind.clear();
    if (!m_valid)
        return false;
    for (const Condition &c : std::as_const(m_conditions)) {
        int found = -1;
        for (int k = 0; k < columns.size(); ++k) {
            if (columns[k].name.compare(c.column, Qt::CaseInsensitive) == 0) {
                found = k;
                break;
            }
        }
        if (found < 0)
            return false;
        m_index.append(found);
        m_kind.append(columns[found].kind);
    }
    m_bound = true;
    return true;
}

bool Criteria::matches(const QVariantList &row) const
{
    if (!m_valid || !m_bound)
        return false;
    for (int k = 0; k < m_conditions.size(); ++k) {
        if (m_index[k] >= row.size() || !evaluate(m_conditions[k], m_kind[k], row[m_index[k]]))
            return false;
    }
    return true;
}

QString textCriterion(const QString &column, const QString &op, const QString &text)
{
    return column + QLatin1Char(' ') + op + QStringLiteral(" '") +
           QString(text).replace(QLatin1Char('\''), QStringLiteral("''")) + QLatin1Char('\'');
}
