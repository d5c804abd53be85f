#include "forms/frame_bench.h"
#include "store/measurement_csv.h"
#include "store/measurement_file.h"

#include <QDir>

// Data > Export CSV... on the main frame, answered from the script.
class ExportCsvMenuTest : public QObject {
    Q_OBJECT

private slots:
    void exportsShownOrPickedFile_data();
    void exportsShownOrPickedFile();
};

void ExportCsvMenuTest::exportsShownOrPickedFile_data()
{
    QTest::addColumn<bool>("shown");       // the stored file is on display; otherwise live traces
    QTest::addColumn<QString>("pick");     // answer to the question for the file: "-" cancels
    QTest::addColumn<QString>("csv");      // answer to the question for the CSV name: "-" cancels
    QTest::addColumn<QString>("written");  // the CSV file written, or none
    QTest::addColumn<QString>("message");  // the box shown, %1 standing for the folder
    QTest::newRow("shown file") << true << "" << "out" << "out.csv" << "";
    QTest::newRow("live, file picked") << false << "m.mes" << "out.csv" << "out.csv" << "";
    QTest::newRow("name cancelled") << true << "" << "-" << "" << "";
    QTest::newRow("live, pick cancelled") << false << "-" << "" << "" << "";
    QTest::newRow("live, no measurement picked")
        << false << "notes.txt" << "" << "" << "%1/notes.txt is no measurement file: file is not a database";
    QTest::newRow("missing folder") << true << "" << "gone/out" << ""
                                    << "Cannot save %1/gone/out.csv: the folder does not exist";
}

void ExportCsvMenuTest::exportsShownOrPickedFile()
{
    QFETCH(bool, shown);
    QFETCH(QString, pick);
    QFETCH(QString, csv);
    QFETCH(QString, written);
    QFETCH(QString, message);
    FrameBench b;
    b.start();
    const QDir folder(b.folder.path());
    const QString mes = folder.filePath("m.mes");
    b.state().measurementFileName = mes;
    QVERIFY(createMeasurementFile(b.ctx()));
    writeTraceMeasurement(b.ctx());
    QFile notes(folder.filePath("notes.txt"));
    QVERIFY(notes.open(QIODevice::WriteOnly) && notes.write("no measurement\n") > 0);
    notes.close();
    if (shown) {
        b.prompts().answerFile("Select Measurement", mes);
        b.trigger("mnulmeasure");
    } else {
        b.state().traceFrozen = 0;
    }
    const auto answer = [&](const QString &text) {
        if (!text.isEmpty())
            b.prompts().answerFile("Export CSV", text == "-" ? std::nullopt : std::optional(folder.filePath(text)));
    };
    answer(pick);
    answer(csv);
    const qsizetype before = b.prompts().shown.size();

    b.trigger("mnuexportcsv");

    QCOMPARE(b.prompts().unused(), QStringList());
    QCOMPARE(b.prompts().unexpected, QStringList());
    QCOMPARE(b.prompts().shown.size() - before,
             qsizetype(!pick.isEmpty()) + qsizetype(!csv.isEmpty()) + qsizetype(!message.isEmpty()));
    QCOMPARE(b.prompts().messages("Export CSV"),
             message.isEmpty() ? QStringList() : QStringList("Export CSV|" + message.arg(folder.path())));
    QCOMPARE(folder.entryList({"*.csv"}, QDir::Files), written.isEmpty() ? QStringList() : QStringList(written));
    if (!written.isEmpty()) {
        QFile out(folder.filePath(written));
        QVERIFY(out.open(QIODevice::ReadOnly));
        QCOMPARE(out.readAll(), measurementCsv(mes).value());
    }
    QCOMPARE(b.state().busy, quint8(0));
}

QTEST_MAIN(ExportCsvMenuTest)
#include "export_csv_menu_test.moc"
