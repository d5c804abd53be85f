#include "store/loss_gain.h"

#include "core/context.h"
#include "store/database.h"

#include <QSqlQuery>
#include <QSqlRecord>

namespace {

// A number stored in the column. SQLite sorts null before and text after all numbers, so
// leaving those out keeps the rows in the frequency order the chain searches by halves.
bool isNumber(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::Double:
    case QMetaType::Int:
    case QMetaType::LongLong:
        return true;
    default:
        return false;
    }
}

} // namespace

QList<ComponentRow> componentRows(const Context &ctx, qint32 losnr)
{
    QList<ComponentRow> rows;
    const QSqlDatabase db = workingDatabase(ctx);
    if (!db.isOpen())
        return rows;
    QSqlQuery query(db);
    query.setForwardOnly(true);
    if (!query.prepare(QStringLiteral("select * from losdef where losnr = ? order by frequency")))
        return rows;
    query.addBindValue(losnr);
    if (!query.exec())
        return rows;
    const QSqlRecord layout = query.record();
    const int frequency = layout.indexOf(QStringLiteral("frequency"));
    const int level = layout.indexOf(QStringLiteral("level_dbmw"));
    if (frequency < 0 || level < 0)
        return rows;
    while (query.next()) {
        const QVariant f = query.value(frequency);
        if (isNumber(f))
            rows.append({f.toFloat(), query.value(level).toFloat()});
    }
    return rows;
}

void attachStore(Context &ctx)
{
    ctx.calls.componentRows = [&ctx](qint32 losnr) { return componentRows(ctx, losnr); };
}
