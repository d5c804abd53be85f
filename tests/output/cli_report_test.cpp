// delfor-cli report: a stored .mes and a stored .emc file as PDF reports whose text names the
// headline, the settings and the date the file was measured; bad arguments and refused files.

#include "support/cli_run.h"
#include "support/no_port.h"
#include "core/clock.h"
#include "core/context.h"
#include "core/scripted_prompts.h"
#include "store/measurement_file.h"

#include <QImage>
#include <QProcess>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QTest>

namespace {

// The settings row's date and note, put in place with plain SQL.
void setFileDate(const QString &path)
{
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("dated"));
        db.setDatabaseName(path);
        QVERIFY(db.open());
        QSqlQuery q(db);
        QVERIFY(q.exec(QStringLiteral("update Settings set dat = '2019-03-14T09:26:53', note = 'Mains filter fitted'")));
    }
    QSqlDatabase::removeDatabase(QStringLiteral("dated"));
}

// A short EMC run: the sweep as a line, every tenth row measured by the detectors.
void writeEmcRun(const QString &path)
{
    Context ctx(Platform{std::make_unique<VirtualClock>(), std::make_unique<ScriptedPrompts>(), std::make_unique<NoPort>()});
    AppState &s = ctx.state;
    s.measurementFileName = path;
    s.emcMode = 2;
    s.emcTestName = QStringLiteral("EN 55032 B radiated 3m");
    s.emcViewMaxhold = s.emcViewQPeak = s.emcViewAverage = 1;
    s.chart.grafikMin = -300;
    s.chart.grafikMax = -50;
    QVERIFY(createMeasurementFile(ctx));
    writeEmcHeader(ctx);
    updateEmcChartRange(ctx);
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("emc-run"));
        db.setDatabaseName(path);
        QVERIFY(db.open());
        db.transaction();
        QSqlQuery q(db);
        q.prepare(QStringLiteral("insert into Measurement (Frequency, Sample_dBmW, memory_dBmW, Maxhold_dBmW, "
                                 "QPeak_dBmW, Average_dBmW) values (?, ?, ?, ?, ?, ?)"));
        for (int i = 0; i < 200; ++i) {
            const bool measured = i % 10 == 0;
            for (const QVariant &value : {QVariant(30.0 + i), QVariant(measured ? 1.0 : 0.0), QVariant(-90.0),
                                          measured ? QVariant(-70.0) : QVariant(), measured ? QVariant(-75.0) : QVariant(),
                                          measured ? QVariant(-80.0) : QVariant()})
                q.addBindValue(value);
            QVERIFY(q.exec());
        }
        db.commit();
    }
    QSqlDatabase::removeDatabase(QStringLiteral("emc-run"));
}

QString pdfText(const QString &pdf)
{
    QProcess p;
    p.start(QStringLiteral("pdftotext"), {pdf, QStringLiteral("-")});
    p.waitForFinished(20000);
    return QString::fromUtf8(p.readAllStandardOutput());
}

} // namespace

class CliReportTest : public QObject {
    Q_OBJECT

private slots:
    void reportOfStoredFile_data();
    void reportOfStoredFile();
    void refused_data();
    void refused();
};

void CliReportTest::reportOfStoredFile_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QStringList>("expected");
    QTest::newRow("mes") << "mes" << QStringList{"CF: 500.000MHz", "SPAN: 1000.0MHz", "TG: OFF", "Mains filter fitted"};
    QTest::newRow("emc") << "emc" << QStringList{"Peak", "QPeak", "Sweep", "Unit: dBmW"};
}

void CliReportTest::reportOfStoredFile()
{
    QFETCH(QString, kind);
    QFETCH(QStringList, expected);
    QTemporaryDir dir;
    const QString file = dir.filePath("run." + kind);
    if (kind == "mes") {
        const CliRun read = cli({"read", "--simulate", "--csv", dir.filePath("t.csv"), "--mes", file});
        QCOMPARE(read.exitCode, 0);
    } else {
        writeEmcRun(file);
    }
    setFileDate(file);
    const QString pdf = dir.filePath("report.pdf"), png = dir.filePath("chart.png");
    // Compared with itself: the dashed line in the compare colour lies over the file's own.
    const CliRun report = cli({"report", file, "--pdf", pdf, "--notes", "--headline", "Run-12-Mains", "--png", png,
                               "--compare", file});
    QCOMPARE(report.exitCode, 0);
    const QString text = pdfText(pdf);
    QVERIFY2(text.contains("Run-12-Mains"), qPrintable(text));
    QVERIFY(text.contains("Measure date: "));
    QVERIFY(text.contains("09:26:53"));
    QVERIFY(text.contains("Notes:"));
    for (const QString &item : expected)
        QVERIFY2(text.contains(item), qPrintable(item));
    const QImage chart(png);
    QCOMPARE(chart.size(), QSize(1600, 1000));
    int compared = 0;
    for (int y = 0; y < chart.height(); ++y)
        for (int x = 0; x < chart.width(); ++x)
            compared += chart.pixelColor(x, y) == QColor(0xE0, 0x68, 0x00);
    QVERIFY2(compared > 200, qPrintable(QString::number(compared)));
    QVERIFY(text.contains("run." + kind)); // the legend names the compared file
}

void CliReportTest::refused_data()
{
    QTest::addColumn<QStringList>("args");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QString>("message");
    QTest::newRow("no output") << QStringList{"report", "x.mes"} << 2 << "needs --pdf";
    QTest::newRow("no file") << QStringList{"report", "--pdf", "o.pdf"} << 2 << "needs a measurement file";
    QTest::newRow("value missing") << QStringList{"report", "x.mes", "--pdf"} << 2 << "--pdf needs a value";
    QTest::newRow("unknown option") << QStringList{"report", "x.mes", "--pdf", "o.pdf", "--fancy"} << 2 << "unknown argument";
    QTest::newRow("missing file") << QStringList{"report", "/nonexistent/x.mes", "--pdf", "o.pdf"} << 1 << "x.mes";
    QTest::newRow("compared file missing") << QStringList{"report", "/nonexistent/x.mes", "--pdf", "o.pdf", "--compare"}
                                           << 2 << "--compare needs a value";
}

void CliReportTest::refused()
{
    QFETCH(QStringList, args);
    QFETCH(int, exitCode);
    QFETCH(QString, message);
    const CliRun run = cli(args);
    QCOMPARE(run.exitCode, exitCode);
    QVERIFY2(run.err.contains(message), qPrintable(run.err));
}

QTEST_MAIN(CliReportTest)
#include "cli_report_test.moc"
