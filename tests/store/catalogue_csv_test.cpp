#include "store/catalogue_csv.h"
#include "store/schema.h"
#include "store/sqlite_file.h"

#include <QFile>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

namespace {

using Points = QList<std::pair<float, float>>;

// Stored points of a head, in frequency order.
Points storedPoints(QSqlDatabase db, const QString &pointTable, const QString &key, const QString &headTable,
                    const QString &nameColumn, const QString &name)
{
    QSqlQuery query(db);
    query.prepare("select frequency, level_dbmw from " + pointTable + " where " + key + " = (select " + key + " from "
                  + headTable + " where " + nameColumn + " = ?) order by frequency");
    query.addBindValue(name);
    query.exec();
    Points out;
    while (query.next())
        out.append({query.value(0).toFloat(), query.value(1).toFloat()});
    return out;
}

// Every row of every table, to show that a refused import wrote nothing.
QStringList dump(QSqlDatabase db)
{
    QStringList out;
    QStringList tables = db.tables();
    tables.sort();
    for (const QString &table : tables) {
        QSqlQuery query("select * from \"" + table + "\" order by rowid", db);
        while (query.next()) {
            QStringList row{table};
            for (int i = 0; i < query.record().count(); ++i)
                row << query.value(i).toString();
            out << row.join('|');
        }
    }
    return out;
}

} // namespace

class CatalogueCsvTest : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    std::unique_ptr<SqliteFile> m_file;
    QSqlDatabase m_db;

    QString write(const QString &name, const QByteArray &content)
    {
        QFile file(m_dir.filePath(name));
        file.open(QIODevice::WriteOnly);
        file.write(content);
        return file.fileName();
    }
    QByteArray read(const QString &name)
    {
        QFile file(m_dir.filePath(name));
        file.open(QIODevice::ReadOnly);
        return file.readAll();
    }
    Points limitPoints(const QString &name)
    {
        return storedPoints(m_db, "LimitDef", "limitnr", "LimitHead", "limitname", name);
    }
    Points componentPoints(const QString &name)
    {
        return storedPoints(m_db, "losdef", "losnr", "loshead", "losname", name);
    }
    QVariant value(const QString &sql, const QString &name = {})
    {
        QSqlQuery query(m_db);
        query.prepare(sql);
        if (!name.isNull())
            query.addBindValue(name);
        query.exec();
        return query.next() ? query.value(0) : QVariant();
    }

private slots:
    void init()
    {
        const QString path = m_dir.filePath("work.sqlite");
        m_db = {};
        m_file.reset();
        QFile::remove(path);
        QVERIFY(writePristineDatabase(path));
        m_file = std::make_unique<SqliteFile>(path);
        m_db = m_file->handle();
        QSqlQuery(QStringLiteral("insert into unit (unitname, unitoffset) select 'dBuV/m', 107 "
                                 "where not exists (select 1 from unit where unitname = 'dBuV/m')"),
                  m_db);
    }

    // The file's levels are what the user sees: in the limit's unit, a gain positive. Export gives
    // the points back in the same words, and an import of the export the same 32-bit values.
    void importThenExport_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QByteArray>("input");
        QTest::addColumn<QByteArray>("exported");
        QTest::addColumn<float>("firstStoredLevel");
        const QByteArray limit = "Frequency_MHz,dBuV/m\n30,40\n230,47\n1000,47\n";
        QTest::newRow("limit in dBuV/m") << "limit" << limit << limit << -67.0f;
        QTest::newRow("limit, semicolons, decimal commas, comments")
            << "limit" << QByteArray("# from the standard\r\nFrequency_MHz;dBuV/m\r\n\r\n0,15;66,5\r\n# step\r\n30;40\r\n")
            << QByteArray("Frequency_MHz,dBuV/m\n0.15,66.5\n30,40\n") << -40.5f;
        QTest::newRow("limit, digits a float keeps")
            << "limit" << QByteArray("Frequency_MHz,dBuV/m\n0.009,1.1\n2999.999,43.52\n")
            << QByteArray("Frequency_MHz,dBuV/m\n0.009,1.1\n2999.999,43.52\n") << float(1.1 - 107);
        const QByteArray gain = "Frequency_MHz,dB\n0.009,20.5\n1000,18.25\n";
        QTest::newRow("gain") << "gain" << gain << gain << -20.5f;
    }
    void importThenExport()
    {
        QFETCH(QString, kind);
        QFETCH(QByteArray, input);
        QFETCH(QByteArray, exported);
        QFETCH(float, firstStoredLevel);
        const QString in = write("in.csv", input);
        const QString out = m_dir.filePath("out.csv");
        const bool isLimit = kind == "limit";
        const ComponentKind componentKind = kind == "gain" ? ComponentKind::Gain : ComponentKind::Antenna;
        const auto import = [&](const QString &name, const QString &path) {
            return isLimit ? importLimitCsv(m_db, name, path, false)
                           : importComponentCsv(m_db, name, componentKind, 3, path, false);
        };
        const auto points = [&](const QString &name) { return isLimit ? limitPoints(name) : componentPoints(name); };

        const CsvOutcome first = import("first", in);
        QVERIFY2(first.ok, qPrintable(first.message));
        QCOMPARE(points("first").value(0).second, firstStoredLevel);
        const CsvOutcome written = isLimit ? exportLimitCsv(m_db, "first", out) : exportComponentCsv(m_db, "first", out);
        QVERIFY2(written.ok, qPrintable(written.message));
        QCOMPARE(read("out.csv"), exported);
        QVERIFY(import("second", out).ok);
        QCOMPARE(points("second"), points("first"));
    }

    // A refused file names its line and leaves every table as it was.
    void refusedFile_data()
    {
        QTest::addColumn<bool>("isLimit");
        QTest::addColumn<QByteArray>("input");
        QTest::addColumn<QString>("line");
        QTest::newRow("unknown unit") << true << QByteArray("# x\nFrequency_MHz,dBfoo\n30,40\n40,40\n") << "line 2";
        QTest::newRow("component not in dB") << false << QByteArray("Frequency_MHz,dBuV/m\n30,1\n40,1\n") << "line 1";
        QTest::newRow("no header") << true << QByteArray("30,40\n40,40\n") << "line 1";
        QTest::newRow("empty file") << true << QByteArray() << "line 1";
        QTest::newRow("level not a number") << true << QByteArray("Frequency_MHz,dBuV/m\n30,40\n40,4O\n") << "line 3";
        QTest::newRow("frequency not a number") << false << QByteArray("Frequency_MHz,dB\nabc,1\n40,1\n") << "line 2";
        QTest::newRow("beyond a float") << false << QByteArray("Frequency_MHz,dB\n30,1e39\n40,1\n") << "line 2";
        QTest::newRow("decimal comma beside comma")
            << true << QByteArray("Frequency_MHz,dBuV/m\n30,40\n40,5,40\n") << "line 3";
        QTest::newRow("frequency twice") << true << QByteArray("Frequency_MHz;dBuV/m\n30;40\n50;40\n30,0;45\n")
                                         << "line 4";
        QTest::newRow("one point") << false << QByteArray("Frequency_MHz,dB\n30,1\n\n# end\n") << "line 2";
        QTest::newRow("negative frequency") << false << QByteArray("Frequency_MHz,dB\n-1,1\n40,1\n") << "line 2";
    }
    void refusedFile()
    {
        QFETCH(bool, isLimit);
        QFETCH(QByteArray, input);
        QFETCH(QString, line);
        const QStringList before = dump(m_db);
        const QString path = write("refused.csv", input);
        const CsvOutcome outcome = isLimit ? importLimitCsv(m_db, "new", path, true)
                                           : importComponentCsv(m_db, "new", ComponentKind::Loss, 0, path, true);
        QVERIFY(!outcome.ok);
        QVERIFY2(outcome.message.contains(path + ": " + line + ":"), qPrintable(outcome.message));
        QCOMPARE(dump(m_db), before);
    }

    // An existing name is refused unless its points are to be replaced; a replaced head keeps its
    // number, takes the file's unit or the given kind, and a name with an apostrophe is a name.
    void replace()
    {
        const QString name = "O'Brien's line";
        const QString first = write("first.csv", "Frequency_MHz,dBuV/m\n30,40\n1000,47\n");
        const QString second = write("second.csv", "Frequency_MHz,dBmW\n10,-50\n20,-55\n30,-60\n");
        const QVariant counter = value("select limitnr from MeasureCount");
        QVERIFY(importLimitCsv(m_db, name, first, false).ok);
        const QVariant number = value("select limitnr from LimitHead where limitname = ?", name);
        QCOMPARE(number.toInt(), counter.toInt() + 1);
        QCOMPARE(value("select limitnr from MeasureCount").toInt(), number.toInt());

        const QStringList before = dump(m_db);
        const CsvOutcome refused = importLimitCsv(m_db, "o'brien's LINE", second, false);
        QVERIFY(!refused.ok);
        QCOMPARE(refused.message, "limit o'brien's LINE exists");
        QCOMPARE(dump(m_db), before);

        QVERIFY(importLimitCsv(m_db, name, second, true).ok);
        QCOMPARE(limitPoints(name), (Points{{10, -50}, {20, -55}, {30, -60}}));
        QCOMPARE(value("select limitnr from LimitHead where limitname = ?", name), number);
        QCOMPARE(value("select limunit from LimitHead where limitname = ?", name).toString(), "dBmW");

        const QString loss = write("loss.csv", "Frequency_MHz,dB\n30,2\n1000,6\n");
        QVERIFY(importComponentCsv(m_db, name, ComponentKind::Loss, 0, loss, false).ok);
        QVERIFY(importComponentCsv(m_db, name, ComponentKind::Gain, 0, loss, true).ok);
        QCOMPARE(componentPoints(name), (Points{{30, -2}, {1000, -6}}));
        QCOMPARE(value("select lostyp from loshead where losname = ?", name).toInt(), int(ComponentKind::Gain));
    }
};

QTEST_GUILESS_MAIN(CatalogueCsvTest)
#include "catalogue_csv_test.moc"
