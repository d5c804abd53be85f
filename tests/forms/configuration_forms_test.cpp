#include "forms/frame_bench.h"
#include "forms/grafik.h"
#include "store/database.h"

#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QSqlQuery>
#include <QTabWidget>

namespace {

// A pick in a list: the name typed into the combo and taken with Return.
void pick(QComboBox *combo, const QString &name)
{
    combo->lineEdit()->setText(name);
    QTest::keyClick(combo->lineEdit(), Qt::Key_Return);
}

QList<int> devices(Context &ctx, const QString &config)
{
    QSqlQuery query(workingDatabase(ctx));
    query.exec("select devicea, deviceb, devicec, deviced, devicee from config where configname = '" + config + "'");
    QList<int> row;
    while (query.next())
        for (int k = 0; k < 5; ++k)
            row << query.value(k).toInt();
    return row;
}

template <typename T = QWidget> T *in(QWidget *parent, const char *name)
{
    return parent->findChild<T *>(QLatin1String(name));
}

} // namespace

class ConfigurationFormsTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { QStandardPaths::setTestModeEnabled(true); }

    void newAndDeleteFromTheMenu()
    {
        FrameBench b;
        b.start();
        b.trigger("mnunewconf");
        auto *newconf = b.find<QDialog>("newconf");
        QVERIFY(newconf && newconf->isVisible());
        QTest::keyClicks(in<QLineEdit>(newconf, "Text1"), "Bench");
        QTest::mouseClick(in(newconf, "Command1"), Qt::LeftButton);
        QCOMPARE(devices(b.ctx(), "Bench"), QList<int>(5, 0));
        QCOMPARE(in<QComboBox>(newconf, "DBCombo2")->currentText(), QStringLiteral("Bench"));
        GrafikForm *grafik = b.frame->grafik();
        QCOMPARE(in<QComboBox>(grafik, "conDBCombo1")->currentText(), QStringLiteral("Bench"));

        b.prompts().answerMessage("Add new", MsgAnswer::Ok);
        QTest::mouseClick(in(newconf, "Command1"), Qt::LeftButton);
        QCOMPARE(b.prompts().messages("Add new"), QStringList{"Add new|Configuration exist ( Bench )"});

        pick(in<QComboBox>(newconf, "DBCombo1"), "Radiated 3m");
        QTest::mouseClick(in(newconf, "Command2"), Qt::LeftButton);
        QCOMPARE(devices(b.ctx(), "Bench"), devices(b.ctx(), "Radiated 3m"));
        QCOMPARE(in<QComboBox>(grafik, "conDBCombo6")->currentText(), QStringLiteral("BiLog antenna 30-1000 MHz"));
        QVERIFY(!in(grafik, "conFrame2")->isHidden());
        QCOMPARE(in<QLabel>(grafik, "conLabel4")->text(), QStringLiteral("3"));
        newconf->close();

        b.trigger("mnudelconf");
        auto *delconf = b.find<QDialog>("delconf");
        QVERIFY(delconf && delconf->isVisible());
        pick(in<QComboBox>(delconf, "DBCombo2"), "Bench");
        QTest::mouseClick(in(delconf, "Command1"), Qt::LeftButton);
        QVERIFY(devices(b.ctx(), "Bench").isEmpty());
        QVERIFY(b.prompts().unexpected.isEmpty());
    }

    void panelPicks()
    {
        FrameBench b;
        b.start();
        b.frame->enterNormalMode();
        GrafikForm *grafik = b.frame->grafik();
        in<QTabWidget>(grafik, "grtab")->setCurrentIndex(1);
        AppState &s = b.state();
        s.repaintRequest = 0;
        pick(in<QComboBox>(grafik, "DBmeasur1"), "dBuV");
        QCOMPARE(s.unitName, QStringLiteral("dBuV"));
        QCOMPARE(s.analyser.unitOffset, 107.0f);
        QCOMPARE(s.repaintRequest, quint8(1));

        s.traceFrozen = 1;
        s.correctionOn = 1;
        pick(in<QComboBox>(grafik, "DBmeasur2"), "Radiated 3m");
        QCOMPARE(s.traceFrozen, quint8(0));
        QCOMPARE(s.configName, QStringLiteral("Radiated 3m"));
        QVERIFY(!in(grafik, "measLabel4")->isHidden());
        QCOMPARE(in<QLabel>(grafik, "measLabel4")->text(), QStringLiteral("3"));
        QCOMPARE(in<QLabel>(grafik, "Label5")->text(), QStringLiteral("Distance from DUT: 3m"));

        pick(in<QComboBox>(grafik, "DBmeasur2"), "Conducted mains");
        QVERIFY(in(grafik, "measLabel4")->isHidden());
        QCOMPARE(s.distanceFromDut, 0.0f);
    }
};

QTEST_MAIN(ConfigurationFormsTest)
#include "configuration_forms_test.moc"
