// The page fTest and its dialogs as the user drives them.

#include "forms/frame_bench.h"
#include "forms/grafik.h"
#include "store/database.h"

#include <QComboBox>
#include <QDialog>
#include <QLineEdit>
#include <QRadioButton>
#include <QSqlQuery>
#include <QTabWidget>

namespace {

void pick(QComboBox *combo, const QString &name)
{
    combo->lineEdit()->setText(name);
    QTest::keyClick(combo->lineEdit(), Qt::Key_Return);
}

// A click on an option button's circle.
void choose(QWidget *option) { QTest::mouseClick(option, Qt::LeftButton, {}, QPoint(6, option->height() / 2)); }

template <typename T = QWidget> T *in(QWidget *parent, const char *name)
{
    return parent->findChild<T *>(QLatin1String(name));
}

QVariant testColumn(Context &ctx, const QString &test, const QString &column)
{
    QSqlQuery query(workingDatabase(ctx));
    query.prepare("select " + column + " from test where name = ?");
    query.addBindValue(test);
    query.exec();
    return query.next() ? query.value(0) : QVariant();
}

// The main frame in EMC mode with the page fTest in front.
struct PageBench : FrameBench {
    PageBench()
    {
        start();
        frame->enterEmcMode();
        grafik = frame->grafik();
        in<QTabWidget>(grafik, "grtab")->setCurrentIndex(2);
        pick(in<QComboBox>(grafik, "testDBCombo1"), QStringLiteral("EN 55032 B radiated 3m"));
    }
    QLineEdit *field(const char *name) { return in<QLineEdit>(grafik, name); }
    GrafikForm *grafik = nullptr;
};

} // namespace

class TestPageTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { QStandardPaths::setTestModeEnabled(true); }

    // The keys a number field takes, and what Return and leaving the field store.
    void numberFields_data()
    {
        QTest::addColumn<QString>("field");
        QTest::addColumn<QString>("keys");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("shown");
        QTest::addColumn<QString>("column");
        QTest::addColumn<double>("stored");
        QTest::newRow("comma becomes the point") << "testText4" << "-12,5x" << "-12.5" << "-12.5" << "leveldist" << -12.5;
        QTest::newRow("letters and plus dropped") << "steptime" << "+a7b" << "7" << "7" << "steptime" << 7.0;
        QTest::newRow("step under 120 kHz") << "incwidth" << "125" << "125" << "120" << "step" << 120.0;
        QTest::newRow("reference level clamped, 10 dB, dBuV/m") << "testText3" << "200" << "200" << "90.0" << "ref"
                                                                << -27.0;
    }
    void numberFields()
    {
        QFETCH(QString, field);
        QFETCH(QString, keys);
        QFETCH(QString, typed);
        QFETCH(QString, shown);
        QFETCH(QString, column);
        QFETCH(double, stored);
        PageBench b;
        const QString test = b.state().emcTestName;
        QCOMPARE(in<QComboBox>(b.grafik, "testDBCombo1")->currentText(), test);
        QLineEdit *edit = b.field(qPrintable(field));
        edit->setFocus();
        edit->clear();
        QTest::keyClicks(edit, keys);
        QCOMPARE(edit->text(), typed);
        QTest::keyClick(edit, Qt::Key_Return);
        QCOMPARE(edit->text(), shown);
        QCOMPARE(testColumn(b.ctx(), test, column).toDouble(), stored);
        QVERIFY(b.prompts().unexpected.isEmpty());
    }

    // Options write their columns at once; the attenuator shows in the level; Step locks the
    // controls of Sweep + Step; the 0.5 MHz box answers a start at the top of the range.
    void optionsAndRange()
    {
        PageBench b;
        const QString test = b.state().emcTestName;
        choose(in(b.grafik, "att_2"));
        QCOMPARE(testColumn(b.ctx(), test, "atten").toInt(), 20);
        b.field("testText3")->setText("200");
        QTest::keyClick(b.field("testText3"), Qt::Key_Return);
        QCOMPARE(b.field("testText3")->text(), QStringLiteral("100.0")); // dBuV/m: -27 + 107 + 20 at the input
        choose(in(b.grafik, "omode_1"));
        QCOMPARE(testColumn(b.ctx(), test, "mode").toInt(), 1);
        QVERIFY(!b.field("testText4")->isEnabled());
        QVERIFY(!in(b.grafik, "oactive_0")->isEnabled());
        choose(in(b.grafik, "rbw_2"));
        QCOMPARE(b.field("incwidth")->text(), QStringLiteral("9"));

        b.field("testText2")->setText("1050");
        QTest::keyClick(b.field("testText2"), Qt::Key_Return);
        b.prompts().answerMessage("Testsettings", MsgAnswer::Ok);
        b.field("testText1")->setText("1049.9");
        QTest::keyClick(b.field("testText1"), Qt::Key_Return);
        QCOMPARE(b.field("testText1")->text(), QStringLiteral("1049.400"));
        QCOMPARE(b.prompts().messages("Testsettings").size(), 1);

        pick(in<QComboBox>(b.grafik, "testDBCombo3"), "EN 55032 B mains QP");
        QTest::mouseClick(in(b.grafik, "testCommand2"), Qt::LeftButton);
        QCOMPARE(testColumn(b.ctx(), test, "peak").toInt(), 0);
        QCOMPARE(in<QComboBox>(b.grafik, "testDBCombo3")->currentText(), QStringLiteral("Not set"));
        QVERIFY(b.prompts().unexpected.isEmpty());
    }

    // New / Copy and Delete through the page's buttons; closing either applies the test again.
    void dialogs()
    {
        PageBench b;
        QTest::mouseClick(in(b.grafik, "New"), Qt::LeftButton);
        auto *newtest = b.find<QDialog>("newtest");
        QVERIFY(newtest && newtest->isVisible());
        QTest::keyClicks(in<QLineEdit>(newtest, "Text1"), "Bench");
        QTest::mouseClick(in(newtest, "Command1"), Qt::LeftButton);
        QCOMPARE(in<QComboBox>(newtest, "DBCombo2")->currentText(), QStringLiteral("Bench"));
        b.prompts().answerMessage("Add new", MsgAnswer::Ok);
        QTest::mouseClick(in(newtest, "Command1"), Qt::LeftButton);
        QCOMPARE(b.prompts().messages("Add new"), QStringList{"Add new|Configuration exist ( Bench )"});
        pick(in<QComboBox>(newtest, "DBCombo1"), "EN 55032 B conducted");
        QTest::mouseClick(in(newtest, "Command2"), Qt::LeftButton);
        QCOMPARE(testColumn(b.ctx(), "Bench", "stopfreq").toFloat(), 30.0f);
        newtest->close();
        QVERIFY(in<QComboBox>(b.grafik, "testDBCombo1")->findText("Bench") >= 0);

        pick(in<QComboBox>(b.grafik, "testDBCombo1"), "Bench");
        QCOMPARE(b.state().emcTestName, QStringLiteral("Bench"));
        QCOMPARE(b.state().emcScanMode, quint8(1));
        QTest::mouseClick(in(b.grafik, "Delete"), Qt::LeftButton);
        auto *deltest = b.find<QDialog>("deltest");
        QVERIFY(deltest && deltest->isVisible());
        pick(in<QComboBox>(deltest, "DBCombo2"), "Bench");
        QTest::mouseClick(in(deltest, "Command1"), Qt::LeftButton);
        QVERIFY(!testColumn(b.ctx(), "Bench", "name").isValid());
        QCOMPARE(in<QComboBox>(deltest, "DBCombo2")->currentText(), QString()); // left blank, as it always was
        deltest->close();
        QCOMPARE(b.state().emcTestName, QStringLiteral("EN 55032 B conducted"));
        QVERIFY(b.prompts().unexpected.isEmpty());
    }
};

QTEST_MAIN(TestPageTest)
#include "test_page_test.moc"
