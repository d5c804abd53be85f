#pragma once
// Writes the Measurement table of a measurement file with plain SQL, for tests and benchmarks
// of the parts that read it. Columns are the sixteen of the file, all REAL.

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <functional>

inline const QStringList kMeasurementColumns = {
    QStringLiteral("Frequency"),      QStringLiteral("Sample_dBmW"),    QStringLiteral("Average_dBmW"),
    QStringLiteral("Maxhold_dBmW"),   QStringLiteral("QPeak_dBmW"),     QStringLiteral("memory_dBmW"),
    QStringLiteral("Ambient_H_dBmW"), QStringLiteral("Ambient_V_dBmW"), QStringLiteral("V_memory_dBmW"),
    QStringLiteral("H_memory_dBmW"),  QStringLiteral("H_Average_dBmW"), QStringLiteral("H_Maxhold_dBmW"),
    QStringLiteral("H_QPeak_dBmW"),   QStringLiteral("V_Average_dBmW"), QStringLiteral("V_Maxhold_dBmW"),
    QStringLiteral("V_QPeak_dBmW")};

// Creates `path` with the table Measurement (of `tableColumns`, all sixteen by default) and
// inserts `count` rows in one transaction; row(i) gives the values of `columns` for row i,
// an invalid QVariant writing NULL. False when the file cannot be written.
inline bool writeMeasurementTable(const QString &path, const QStringList &columns, int count,
                                  const std::function<QVariantList(int)> &row,
                                  const QStringList &tableColumns = kMeasurementColumns)
{
    const QString name = QStringLiteral("measurement-fixture");
    bool ok = false;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        db.setDatabaseName(path);
        if (db.open()) {
            QSqlQuery query(db);
            ok = query.exec(QStringLiteral("create table Measurement (%1 REAL)")
                                .arg(tableColumns.join(QStringLiteral(" REAL, "))));
            db.transaction();
            ok = ok && query.prepare(QStringLiteral("insert into Measurement (%1) values (%2)")
                                         .arg(columns.join(QLatin1Char(',')),
                                              QStringList(columns.size(), QStringLiteral("?")).join(QLatin1Char(','))));
            for (int i = 0; ok && i < count; ++i) {
                const QVariantList values = row(i);
                for (int c = 0; c < values.size(); ++c)
                    query.bindValue(c, values[c]);
                ok = query.exec();
            }
            ok = db.commit() && ok;
            db.close();
        }
    }
    QSqlDatabase::removeDatabase(name);
    return ok;
}
