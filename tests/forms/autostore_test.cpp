// Autostore: the form autost from the menu, Timer1 storing numbered files on the virtual clock.

#include "frame_bench.h"

#include <QCheckBox>
#include <QDialog>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

namespace {

struct Autost {
    explicit Autost(FrameBench &bench) : b(bench)
    {
        b.start();
        b.prompts().shown.clear();
        b.trigger("mnuautostore");
        form = b.frame->findChild<QDialog *>("autost");
    }
    template <typename T = QWidget> T *in(const char *name) const { return form->findChild<T *>(name); }
    void click(const char *name) const { QTest::mouseClick(in(name), Qt::LeftButton); }
    void chooseFile(const QString &path) const
    {
        b.prompts().answerFile(QStringLiteral("Save Data"), path);
        click("Command1");
    }
    void typeInterval(const QString &text) const
    {
        auto *box = in<QLineEdit>("Text1");
        box->clear();
        QTest::keyClicks(box, text);
        QTest::keyClick(box, Qt::Key_Return);
    }
    // Lets `seconds` pass and gives Timer1 its tick.
    void tickAfter(double seconds) const
    {
        b.sim.clock->sleep(seconds);
        b.frame->timer1Tick();
    }

    FrameBench &b;
    QDialog *form = nullptr;
};

} // namespace

class AutostoreTest : public QObject {
    Q_OBJECT
private slots:
    void intervalIsClamped_data();
    void intervalIsClamped();
    void storesNumberedFilesAtTheInterval_data();
    void storesNumberedFilesAtTheInterval();
    void pauseRunsTheNumbersOnAndStopStartsAgain();
    void badFolderGivesBadFilenameAtEachStore();
};

void AutostoreTest::intervalIsClamped_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("shown");
    QTest::newRow("below the shortest") << "2" << "5";
    QTest::newRow("above the longest") << "5000" << "3600";
    QTest::newRow("within") << "90" << "90";
    QTest::newRow("no number") << "--" << "5";
}

void AutostoreTest::intervalIsClamped()
{
    QFETCH(QString, typed);
    QFETCH(QString, shown);
    FrameBench bench;
    Autost a(bench);
    QCOMPARE(a.in<QLineEdit>("Text1")->text(), QStringLiteral("60"));
    a.typeInterval(typed);
    QCOMPARE(a.in<QLineEdit>("Text1")->text(), shown);
    QCOMPARE(QString::number(bench.state().autostoreInterval), shown);
}

void AutostoreTest::storesNumberedFilesAtTheInterval_data()
{
    QTest::addColumn<bool>("print");
    QTest::newRow("store only") << false;
    QTest::newRow("print after storage") << true;
}

void AutostoreTest::storesNumberedFilesAtTheInterval()
{
    QFETCH(bool, print);
    FrameBench bench;
    int prints = 0;
    bench.ctx().calls.printNow = [&] { ++prints; };
    Autost a(bench);
    const QString dir = bench.folder.path();
    a.chooseFile(dir + "/run.MES");
    QCOMPARE(a.in<QLabel>("Label1")->text(), dir + "/runXXX.mes");
    a.typeInterval("5");
    if (print)
        a.click("Check1");

    a.click("Command2");
    QCOMPARE(a.in<QPushButton>("Command2")->text(), QStringLiteral("Pause"));
    QVERIFY(bench.find<QCheckBox>("ckauto")->isChecked());
    QCOMPARE(bench.state().autoReading, quint8(1));
    const QDateTime next = bench.state().autostoreNextTime;
    QCOMPARE(bench.ctx().clock.now().secsTo(next), 5);
    QCOMPARE(a.in<QLabel>("Label4")->text(), next.toString("HH:mm:ss"));

    a.tickAfter(1); // not yet due: reads, stores nothing
    QVERIFY(!QFileInfo::exists(dir + "/run.mes"));
    const QStringList names{"run.mes", "run1.mes", "run2.mes"};
    for (const QString &name : names) {
        a.tickAfter(5);
        QVERIFY2(QFileInfo(dir + "/" + name).size() > 0, qPrintable(name));
        QCOMPARE(a.in<QLabel>("Label1")->text(), dir + "/" + name);
    }
    QCOMPARE(prints, print ? 3 : 0);
    QVERIFY(!QFileInfo::exists(dir + "/run3.mes"));
    QVERIFY(bench.prompts().messages().isEmpty());
}

void AutostoreTest::pauseRunsTheNumbersOnAndStopStartsAgain()
{
    FrameBench bench;
    Autost a(bench);
    const QString dir = bench.folder.path();
    a.chooseFile(dir + "/s");
    a.typeInterval("5");
    a.click("Command2");
    a.tickAfter(5);
    a.click("Command2"); // Pause
    QCOMPARE(a.in<QPushButton>("Command2")->text(), QStringLiteral("Start"));
    QVERIFY(!bench.find<QCheckBox>("ckauto")->isChecked());
    a.tickAfter(5);
    QVERIFY(!QFileInfo::exists(dir + "/s1.mes"));
    a.click("Command2");
    a.tickAfter(5);
    QVERIFY(QFileInfo::exists(dir + "/s1.mes"));

    a.click("Command4"); // Stop: the next series overwrites this one
    QCOMPARE(bench.state().autostoreCounter, 0);
    QVERIFY(!bench.find<QCheckBox>("ckauto")->isChecked());
    QFile::remove(dir + "/s.mes");
    a.click("Command2");
    a.tickAfter(5);
    QVERIFY(QFileInfo::exists(dir + "/s.mes"));
    QVERIFY(!QFileInfo::exists(dir + "/s2.mes"));

    a.click("Command3"); // Exit disarms
    QCOMPARE(bench.state().autostoreOn, quint8(0));
    QCOMPARE(bench.state().autoReading, quint8(0));
}

void AutostoreTest::badFolderGivesBadFilenameAtEachStore()
{
    FrameBench bench;
    Autost a(bench);
    a.chooseFile(bench.folder.path() + "/missing/run.mes");
    a.typeInterval("5");
    a.click("Command2");
    a.tickAfter(5);
    a.tickAfter(5);
    QCOMPARE(bench.prompts().messages("Auto Save"), QStringList(2, "Auto Save|Bad Filename"));
    QCOMPARE(bench.state().autostoreCounter, 2); // the numbers go on
}

QTEST_MAIN(AutostoreTest)
#include "autostore_test.moc"
