#include "support/cli_run.h"
#include "store/schema.h"
#include "store/sqlite_file.h"

#include <QFile>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QTest>

class CliCatalogueTest : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    QString m_database;

    QString write(const QString &name, const QByteArray &content)
    {
        QFile file(m_dir.filePath(name));
        file.open(QIODevice::WriteOnly);
        file.write(content);
        return file.fileName();
    }
    QByteArray read(const QString &path)
    {
        QFile file(path);
        file.open(QIODevice::ReadOnly);
        return file.readAll();
    }

private slots:
    // The user's data folder lies in the test's folder.
    void initTestCase() { qputenv("XDG_DATA_HOME", m_dir.filePath("data").toUtf8()); }

    void init()
    {
        m_database = m_dir.filePath("work.sqlite");
        QFile::remove(m_database);
        QVERIFY(writePristineDatabase(m_database));
        SqliteFile file(m_database);
        QSqlQuery(QStringLiteral("insert into unit (unitname, unitoffset) select 'dBuV/m', 107 "
                                 "where not exists (select 1 from unit where unitname = 'dBuV/m')"),
                  file.handle());
    }

    void importListExport()
    {
        const QByteArray limit = "Frequency_MHz,dBuV/m\n30,40\n230,47\n1000,47\n";
        const QString in = write("limit.csv", limit);
        const QString out = m_dir.filePath("out.csv");
        const QString name = "O'Brien's line";
        QCOMPARE(cli({"limits", "import", name, in, "--database", m_database}).exitCode, 0);
        const CliRun list = cli({"limits", "list", "--database", m_database});
        QCOMPARE(list.exitCode, 0);
        QVERIFY2(list.out.contains(name + "\t3\tdBuV/m\t30 - 1000 MHz\n"), qPrintable(list.out));
        QCOMPARE(cli({"limits", "export", name, out, "--database", m_database}).exitCode, 0);
        QCOMPARE(read(out), limit);

        const CliRun again = cli({"limits", "import", name, in, "--database", m_database});
        QCOMPARE(again.exitCode, 1);
        QVERIFY2(again.err.contains("--replace"), qPrintable(again.err));
        QCOMPARE(cli({"limits", "import", name, in, "--replace", "--database", m_database}).exitCode, 0);

        const QByteArray gain = "Frequency_MHz,dB\n0.009,20.5\n1000,18.25\n";
        QCOMPARE(cli({"components", "import", "Amp", "--kind", "gain", write("gain.csv", gain), "--database", m_database})
                     .exitCode,
                 0);
        QVERIFY(cli({"components", "list", "--database", m_database}).out.contains("Amp\t2\tgain\t0.009 - 1000 MHz\n"));
        QCOMPARE(cli({"components", "export", "Amp", out, "--database", m_database}).exitCode, 0);
        QCOMPARE(read(out), gain);
    }

    // A refused file, an unknown name or a database that is not one: exit 1, a message naming the
    // cause, and the database file as it was.
    void refused_data()
    {
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<QByteArray>("file");
        QTest::addColumn<QString>("message");
        const QStringList limitImport{"limits", "import", "New"};
        QTest::newRow("frequency twice") << QStringList{"components", "import", "New", "--kind", "loss"}
                                         << QByteArray("Frequency_MHz;dB\n30;1\n30,0;2\n") << "line 3: frequency 30.0";
        QTest::newRow("one point") << limitImport << QByteArray("Frequency_MHz,dBuV/m\n30,40\n")
                                   << "line 2: the file ends with fewer than two points";
        QTest::newRow("unknown limit") << QStringList{"limits", "export", "Nothing"} << QByteArray()
                                       << "there is no limit Nothing";
        QTest::newRow("no such database") << QStringList{"limits", "list", "--database", m_dir.filePath("none.sqlite")}
                                          << QByteArray() << "none.sqlite does not exist";
        QTest::newRow("no database") << QStringList{"components", "list", "--database", m_dir.filePath("in.csv")}
                                     << QByteArray() << "in.csv is no working database";
    }
    void refused()
    {
        QFETCH(QStringList, args);
        QFETCH(QByteArray, file);
        QFETCH(QString, message);
        const QByteArray before = read(m_database);
        const QString path = write("in.csv", file);
        if (!args.contains("list"))
            args << path << "--database" << m_database;
        const CliRun run = cli(args);
        QCOMPARE(run.exitCode, 1);
        QVERIFY2(run.err.contains(message), qPrintable(run.err));
        QCOMPARE(run.out, QString());
        QCOMPARE(read(m_database), before);
        QVERIFY(!QFile::exists(m_dir.filePath("none.sqlite")));
    }

    void badArguments_data()
    {
        QTest::addColumn<QStringList>("args");
        QTest::newRow("no action") << QStringList{"limits"};
        QTest::newRow("unknown action") << QStringList{"limits", "remove", "A"};
        QTest::newRow("import without file") << QStringList{"limits", "import", "A"};
        QTest::newRow("list with a name") << QStringList{"components", "list", "A"};
        QTest::newRow("empty name") << QStringList{"limits", "import", " ", "a.csv"};
        QTest::newRow("replace on export") << QStringList{"limits", "export", "A", "a.csv", "--replace"};
        QTest::newRow("kind of a limit") << QStringList{"limits", "import", "A", "a.csv", "--kind", "gain"};
        QTest::newRow("no kind") << QStringList{"components", "import", "A", "a.csv"};
        QTest::newRow("unknown kind") << QStringList{"components", "import", "A", "--kind", "mixer", "a.csv"};
        QTest::newRow("distance of a loss")
            << QStringList{"components", "import", "A", "--kind", "loss", "--distance", "3", "a.csv"};
        QTest::newRow("distance not a number")
            << QStringList{"components", "import", "A", "--kind", "antenna", "--distance", "far", "a.csv"};
        QTest::newRow("database without file") << QStringList{"limits", "list", "--database"};
        QTest::newRow("unknown option") << QStringList{"components", "list", "--all"};
        QTest::newRow("tests with a name") << QStringList{"tests", "A"};
        QTest::newRow("tests with replace") << QStringList{"tests", "--replace"};
    }
    void badArguments()
    {
        QFETCH(QStringList, args);
        const CliRun run = cli(args);
        QCOMPARE(run.exitCode, 2);
        QVERIFY(run.err.contains("usage: delfor-cli " + args[0]));
        QCOMPARE(run.out, QString());
    }

    // One line a test in name order; a limit that no longer exists and a test of no kind known
    // to a run (mode 2: a run takes it for Sweep + Step) are listed as a run would take them.
    void testsListing()
    {
        QString firstLimit;
        {
            SqliteFile file(m_database);
            QSqlQuery q(file.handle());
            QVERIFY(q.exec("delete from test"));
            QVERIFY(q.exec("insert into test (name, mode, startfreq, stopfreq, step, peakdet, AVdet, peak, average) "
                           "values ('O''Brien''s test', 1, 0.15, 30, 9, 0, -1, 999, "
                           "(select limitnr from LimitHead order by limitname limit 1))"));
            QVERIFY(q.exec("insert into test (name, mode, startfreq, stopfreq, step, peakdet, AVdet, peak, average) "
                           "values ('Antenna', 2, 30, 1000.5, 120, 1, 0, 0, 0)"));
            QVERIFY(q.exec("select limitname from LimitHead order by limitname limit 1") && q.next());
            firstLimit = q.value(0).toString();
        }
        const CliRun run = cli({"tests", "--database", m_database});
        QCOMPARE(run.exitCode, 0);
        QCOMPARE(run.out, "Antenna\tSweep + Step\t30 - 1000.5 MHz\t120 kHz\tPeak + Quasipeak\tNot set\tNot set\n"
                          "O'Brien's test\tStep\t0.15 - 30 MHz\t9 kHz\tPeak + Average\tNot set\t" + firstLimit + "\n");
    }

    // Without --database the working database of the data folder is made as the program makes it.
    void userDatabase()
    {
        const CliRun help = cli({"components", "--help"});
        QCOMPARE(help.exitCode, 0);
        QVERIFY(help.out.startsWith("usage: delfor-cli components"));
        QVERIFY(!QFile::exists(m_dir.filePath("data/delfor/default.sqlite")));

        const CliRun list = cli({"components", "list"});
        QCOMPARE(list.exitCode, 0);
        QVERIFY(QFile::exists(m_dir.filePath("data/delfor/DELFO.sqlite")));
        QVERIFY(QFile::exists(m_dir.filePath("data/delfor/default.sqlite")));
        QVERIFY(list.out.contains("\tgain\t"));
    }
};

QTEST_GUILESS_MAIN(CliCatalogueTest)
#include "cli_catalogue_test.moc"
