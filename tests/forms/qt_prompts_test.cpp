#include "forms/qt_prompts.h"

#include <QApplication>
#include <QDir>
#include <QFileDialog>
#include <QPrintDialog>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <functional>

namespace {

// Once the next modal dialog stands open, hands it to `act`, which must close it.
void whenDialogOpens(std::function<void(QDialog *)> act)
{
    QTimer::singleShot(0, [act] {
        auto *dialog = qobject_cast<QDialog *>(QApplication::activeModalWidget());
        QVERIFY(dialog);
        act(dialog);
    });
}

} // namespace

class QtPromptsTest : public QObject {
    Q_OBJECT

private slots:
    void filtersBecomeNameFilters_data();
    void filtersBecomeNameFilters();
    void coloursAreBlueGreenRed_data();
    void coloursAreBlueGreenRed();
    void fileDialogsOpenInLastFolder();
    void printerSetupShowsPrinterDialog();
};

void QtPromptsTest::filtersBecomeNameFilters_data()
{
    QTest::addColumn<QString>("filter");
    QTest::addColumn<QStringList>("expected");
    QTest::newRow("open measurement") << "Measurement (*.MES) |*.MES|EMC (*.emc) |*.emc"
                                      << QStringList{"Measurement (*.MES *.mes)", "EMC (*.emc *.EMC)"};
    QTest::newRow("blanks around") << "Datenbank (*.sqlite) | *.sqlite " << QStringList{"Datenbank (*.sqlite *.SQLITE)"};
    QTest::newRow("no brackets") << "Limits|*.lim" << QStringList{"Limits (*.lim *.LIM)"};
    QTest::newRow("two patterns") << "Files (*.a;*.b)|*.a;*.b" << QStringList{"Files (*.a *.A *.b *.B)"};
    QTest::newRow("no description") << "|*.txt" << QStringList{"*.txt (*.txt *.TXT)"};
    QTest::newRow("empty") << "" << QStringList{};
    QTest::newRow("description only") << "Measurement (*.mes)" << QStringList{};
    QTest::newRow("pattern missing") << "A||B|*.b|" << QStringList{"B (*.b *.B)"};
}

void QtPromptsTest::filtersBecomeNameFilters()
{
    QFETCH(QString, filter);
    QFETCH(QStringList, expected);
    QCOMPARE(nameFilters(filter), expected);
}

void QtPromptsTest::coloursAreBlueGreenRed_data()
{
    QTest::addColumn<quint32>("bgr");
    QTest::addColumn<QColor>("colour");
    QTest::newRow("red") << quint32(0x0000FF) << QColor(255, 0, 0);
    QTest::newRow("mixed") << quint32(0x123456) << QColor(0x56, 0x34, 0x12);
}

void QtPromptsTest::coloursAreBlueGreenRed()
{
    QFETCH(quint32, bgr);
    QFETCH(QColor, colour);
    QCOMPARE(colourFromBgr(bgr), colour);
    QCOMPARE(bgrFromColour(colour), bgr);
}

void QtPromptsTest::fileDialogsOpenInLastFolder()
{
    QTemporaryDir dir;
    QVERIFY(QDir(dir.path()).mkdir("build") && QDir(dir.path()).mkdir("data"));
    const QString before = QDir::currentPath();
    QDir::setCurrent(dir.filePath("build")); // where the program was started from
    QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    if (!QDir(documents).exists())
        documents = QDir::homePath();

    QtPrompts prompts;
    FileDialogRequest request{"Select Measurement", "Measurement (*.mes) |*.mes", "mes", {}, 8198, 1};
    QString openedIn;
    whenDialogOpens([&](QDialog *dialog) {
        auto *files = qobject_cast<QFileDialog *>(dialog);
        openedIn = files->directory().absolutePath();
        files->setDirectory(dir.filePath("data"));
        files->selectFile("run");
        dialog->accept();
    });
    QCOMPARE(prompts.saveFileDialog(request), std::optional<QString>(dir.filePath("data/run.mes")));
    QCOMPARE(openedIn, QDir(documents).absolutePath());

    whenDialogOpens([&](QDialog *dialog) {
        openedIn = qobject_cast<QFileDialog *>(dialog)->directory().absolutePath();
        dialog->reject();
    });
    QCOMPARE(prompts.openFileDialog(request), std::nullopt);
    QCOMPARE(openedIn, dir.filePath("data"));
    QDir::setCurrent(before);
}

void QtPromptsTest::printerSetupShowsPrinterDialog()
{
    QtPrompts prompts;
    bool shown = false;
    whenDialogOpens([&](QDialog *dialog) {
        shown = qobject_cast<QPrintDialog *>(dialog) != nullptr;
        dialog->reject();
    });
    QCOMPARE(prompts.printerSetup({}), std::nullopt);
    QVERIFY(shown);
}

QTEST_MAIN(QtPromptsTest)
#include "qt_prompts_test.moc"
