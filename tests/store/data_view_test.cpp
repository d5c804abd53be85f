#include "store/criteria.h"
#include "store/data_view.h"

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QTest>

namespace {

struct Row {
    QString name;
    float level;
    int losnr;
};

// Table order; the Single column holds the 32-bit value widened, as the program writes it.
const QList<Row> kRows = {
    {"Alpha", 30.12f, 1},
    {"beta", 12.5f, 2},
    {"Gamma ray", 3.0f, 3},
    {"O'Brien", 7.25f, 4},
};

QStringList names(DataView &view)
{
    QStringList out;
    for (view.moveFirst(); !view.isEof(); view.moveNext())
        out << view.value("name").toString();
    return out;
}

} // namespace

class DataViewTest : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    QSqlDatabase m_db;

    int tableRows()
    {
        QSqlQuery q(m_db);
        return q.exec("SELECT count(*) FROM points") && q.next() ? q.value(0).toInt() : -1;
    }

private slots:
    void init()
    {
        m_db = QSqlDatabase::addDatabase("QSQLITE", "store_test");
        m_db.setDatabaseName(m_dir.filePath("store.sqlite"));
        QVERIFY(m_db.open());
        QSqlQuery q(m_db);
        QVERIFY(q.exec("DROP TABLE IF EXISTS points"));
        QVERIFY(q.exec("CREATE TABLE points (name TEXT, level REAL, losnr INTEGER DEFAULT 0)"));
        for (const Row &r : kRows) {
            q.prepare("INSERT INTO points VALUES (?, ?, ?)");
            q.addBindValue(r.name);
            q.addBindValue(static_cast<double>(r.level));
            q.addBindValue(r.losnr);
            QVERIFY(q.exec());
        }
    }

    void cleanup()
    {
        m_db.close();
        m_db = QSqlDatabase();
        QSqlDatabase::removeDatabase("store_test");
    }

    void find_data()
    {
        QTest::addColumn<QString>("criterion");
        QTest::addColumn<QString>("first");   // empty: no match
        QTest::addColumn<QString>("last");

        QTest::newRow("like exact, other case") << "name like 'alpha'" << "Alpha" << "Alpha";
        QTest::newRow("like star, upper keywords") << "NAME LIKE 'ALP*'" << "Alpha" << "Alpha";
        QTest::newRow("like question mark") << "name like 'B?TA'" << "beta" << "beta";
        QTest::newRow("like leading star") << "name like '*a*'" << "Alpha" << "Gamma ray";
        QTest::newRow("like is whole text") << "name like 'gam'" << "" << "";
        QTest::newRow("apostrophe in name") << "name like 'O'Brien'" << "" << "";
        QTest::newRow("apostrophe as the user typed it")
            << textCriterion(QStringLiteral("name"), QStringLiteral("like"), QStringLiteral("o'brien")) << "O'Brien"
            << "O'Brien";
        QTest::newRow("text equal ignores case") << "name = 'BETA'" << "beta" << "beta";
        QTest::newRow("single typed as shown") << "level = 30.12" << "Alpha" << "Alpha";
        QTest::newRow("two blanks before =") << "level  = 12.5" << "beta" << "beta";
        QTest::newRow("=> no blanks") << "level=>12.5" << "Alpha" << "beta";
        QTest::newRow(">=") << "level >= 7.25" << "Alpha" << "O'Brien";
        QTest::newRow("<=") << "level <= 7.25" << "Gamma ray" << "O'Brien";
        QTest::newRow("< none") << "level < 3" << "" << "";
        QTest::newRow("<>") << "level <> 30.12" << "beta" << "O'Brien";
        QTest::newRow("integer, column case") << "losNr = 3" << "Gamma ray" << "Gamma ray";
        QTest::newRow("like on a number") << "losnr like 2" << "beta" << "beta";
        QTest::newRow("and") << "losnr > 1 and level < 10" << "Gamma ray" << "O'Brien";
        QTest::newRow("missing number") << "level  = " << "" << "";
        QTest::newRow("unknown column") << "frequency = 3" << "" << "";
        QTest::newRow("doubled operator") << "level == 3" << "" << "";
        QTest::newRow("open quote") << "name like 'abc" << "" << "";
        QTest::newRow("or is not known") << "losnr = 1 or losnr = 2" << "" << "";
        QTest::newRow("trailing word") << "losnr = 3abc" << "" << "";
        QTest::newRow("empty") << "" << "" << "";
        QTest::newRow("statement in name") << "name like 'x'; drop table points; --'" << "" << "";
        QTest::newRow("quote closed early") << "name = ''; delete from points where ''=''" << "" << "";
    }

    void find()
    {
        QFETCH(QString, criterion);
        QFETCH(QString, first);
        QFETCH(QString, last);

        DataView view(m_db);
        QVERIFY(view.setSource("points"));
        view.moveLast();
        QCOMPARE(view.findFirst(criterion), !first.isEmpty());
        QCOMPARE(view.noMatch(), first.isEmpty());
        // Without a match the current row stays where it was.
        QCOMPARE(view.value("name").toString(), first.isEmpty() ? kRows.last().name : first);

        view.moveFirst();
        QCOMPARE(view.findLast(criterion), !last.isEmpty());
        QCOMPARE(view.value("name").toString(), last.isEmpty() ? kRows.first().name : last);

        QCOMPARE(tableRows(), kRows.size());
    }

    void findNextWalksMatches()
    {
        DataView view(m_db);
        QVERIFY(view.setSource("points"));
        QStringList seen;
        for (bool found = view.findFirst("name like '*a*'"); found; found = view.findNext("name like '*a*'"))
            seen << view.value("name").toString();
        QCOMPARE(seen, (QStringList{"Alpha", "beta", "Gamma ray"}));
        QVERIFY(view.noMatch());
    }

    void likePattern_data()
    {
        QTest::addColumn<QString>("pattern");
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("match");
        QTest::newRow("empty both") << "" << "" << true;
        QTest::newRow("star empty") << "*" << "" << true;
        QTest::newRow("question needs one") << "?" << "" << false;
        QTest::newRow("backtrack") << "*ab*ab" << "xabyabab" << true;
        QTest::newRow("umlaut case") << "DÄMPFUNG*" << "dämpfung 10 dB" << true;
        QTest::newRow("tail left over") << "a*b" << "acbd" << false;
    }

    void likePattern()
    {
        QFETCH(QString, pattern);
        QFETCH(QString, text);
        QFETCH(bool, match);
        QCOMPARE(likeMatch(pattern, text), match);
    }

    void sources_data()
    {
        QTest::addColumn<QString>("source");
        QTest::addColumn<QStringList>("expected");
        const QStringList all{"Alpha", "beta", "Gamma ray", "O'Brien"};
        QTest::newRow("table") << "points" << all;
        QTest::newRow("table, other case") << " POINTS " << all;
        QTest::newRow("select all") << "SELECT * FROM Points" << all;
        QTest::newRow("order by single") << "select * from points order by level"
                                         << QStringList{"Gamma ray", "O'Brien", "beta", "Alpha"};
        QTest::newRow("where, order desc ignoring case")
            << "select * from points where losnr > 1 order by NAME desc"
            << QStringList{"O'Brien", "Gamma ray", "beta"};
        QTest::newRow("where single") << "select * from points where level = 30.12" << QStringList{"Alpha"};
        QTest::newRow("where like number, order") << "select * from points where losnr like 2 order by level"
                                                  << QStringList{"beta"};
        QTest::newRow("order by two") << "select * from points order by losnr desc, name asc"
                                      << QStringList{"O'Brien", "Gamma ray", "beta", "Alpha"};
        QTest::newRow("unknown table") << "nosuch" << QStringList{};
        QTest::newRow("select unknown table") << "select * from nosuch" << QStringList{};
        QTest::newRow("where unknown column") << "select * from points where nosuch = 1" << QStringList{};
        QTest::newRow("order unknown column") << "select * from points order by nosuch" << QStringList{};
        QTest::newRow("second statement") << "select * from points; drop table points" << QStringList{};
        QTest::newRow("empty order") << "select * from points order by" << QStringList{};
        QTest::newRow("column list") << "select name from points" << QStringList{};
        QTest::newRow("bad where") << "select * from points where level = " << QStringList{};
        QTest::newRow("no match") << "select * from points where losnr > 99" << QStringList{};
    }

    void sources()
    {
        QFETCH(QString, source);
        QFETCH(QStringList, expected);
        DataView view(m_db);
        view.setSource(source);
        QCOMPARE(view.rowCount(), expected.size());
        QCOMPARE(names(view), expected);
        QCOMPARE(tableRows(), kRows.size());

        if (expected.isEmpty()) {
            // Every move on an empty set keeps both ends true and reads nothing.
            for (auto move : {&DataView::moveFirst, &DataView::moveNext, &DataView::moveLast,
                              &DataView::movePrevious}) {
                (view.*move)();
                QVERIFY(view.isBof() && view.isEof());
            }
            QVERIFY(!view.value("name").isValid());
            QVERIFY(!view.edit());
            QVERIFY(!view.deleteRow());
            QVERIFY(!view.findFirst("losnr = 1") && view.noMatch());
        } else {
            view.moveFirst();
            view.movePrevious();
            QVERIFY(view.isBof() && !view.isEof());
            view.moveLast();
            view.moveNext();
            QVERIFY(view.isEof() && !view.isBof());
        }
    }

    void addEditDelete()
    {
        DataView view(m_db);
        QVERIFY(view.setSource("select * from points order by level"));
        QVERIFY(!view.setValue("name", "x"));   // not editing

        QVERIFY(view.addNew());
        QVERIFY(view.setValue("NAME", "delta"));
        QVERIFY(view.setValue("level", 0.1));
        QVERIFY(!view.setValue("level", "abc"));
        QVERIFY(!view.setValue("nosuch", 1));
        QVERIFY(view.update());
        QCOMPARE(view.rowCount(), 5);
        QCOMPARE(view.value("name").toString(), "delta");
        QCOMPARE(view.value("losnr").toInt(), 0);   // table default

        DataView other(m_db);
        QVERIFY(other.setSource("points"));
        QVERIFY(other.findFirst("level = 0.1"));
        QCOMPARE(other.value("name").toString(), "delta");

        QVERIFY(view.findFirst("name = 'beta'"));
        QVERIFY(view.edit());
        QVERIFY(view.setValue("level", "1.3"));
        QVERIFY(view.update());
        QCOMPARE(view.value("name").toString(), "beta");
        other.refresh();
        QVERIFY(other.findFirst("level = 1.3"));
        QCOMPARE(other.value("name").toString(), "beta");
        QVERIFY(!other.findFirst("level = 12.5"));
        QCOMPARE(tableRows(), 5);

        view.refresh();
        QVERIFY(view.findFirst("name like 'gamma*'"));
        QVERIFY(view.deleteRow());
        QVERIFY(!view.value("name").isValid());
        view.moveNext();
        QCOMPARE(view.value("name").toString(), "O'Brien");
        QCOMPARE(tableRows(), 4);

        // Delete and move on, the way a set is emptied row by row.
        DataView some(m_db);
        QVERIFY(some.setSource("select * from points where losnr <= 2"));
        QCOMPARE(some.rowCount(), 3);
        for (some.moveFirst(); !some.isEof(); some.moveNext())
            QVERIFY(some.deleteRow());
        QCOMPARE(tableRows(), 1);
        other.refresh();
        QCOMPARE(names(other), QStringList{"O'Brien"});
    }

    void snapshotRefusesWrites()
    {
        Recordset snapshot(m_db, "select * from points order by name");
        QCOMPARE(snapshot.rowCount(), kRows.size());
        QVERIFY(!snapshot.addNew());
        QVERIFY(!snapshot.edit());
        QVERIFY(!snapshot.deleteRow());
        QVERIFY(!snapshot.update());
        QCOMPARE(tableRows(), kRows.size());
    }
};

QTEST_GUILESS_MAIN(DataViewTest)
#include "data_view_test.moc"
