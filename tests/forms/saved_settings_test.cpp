// Saved settings: the forms saveset and loadset from the menu and from the mode switch.

#include "frame_bench.h"

#include "store/database.h"

#include <QAction>
#include <QComboBox>
#include <QDialog>
#include <QLineEdit>
#include <QSqlQuery>
#include <QTableWidget>

namespace {

const QString kOverwrite = QStringLiteral("Save setting");

// One column of table settings, the rows in the order they were added.
QVariantList column(Context &ctx, const QString &name)
{
    QSqlQuery query(workingDatabase(ctx));
    query.exec("select " + name + " from settings order by rowid");
    QVariantList values;
    while (query.next())
        values << query.value(0);
    return values;
}

qint32 limitNumber(Context &ctx, const QString &name)
{
    QSqlQuery query(workingDatabase(ctx));
    query.prepare(QStringLiteral("select limitnr from LimitHead where limitname = ?"));
    query.addBindValue(name);
    query.exec();
    return query.next() ? query.value(0).toInt() : -1;
}

// The program started, with the box of a first start put aside.
void start(FrameBench &b)
{
    b.start();
    b.prompts().shown.clear();
}

template <typename T = QWidget> T *in(QWidget *parent, const char *name)
{
    return parent->findChild<T *>(QLatin1String(name));
}

// The form of this name that is up, if any; closed forms are gone once their deletion ran.
QDialog *form(FrameBench &b, const char *name)
{
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    auto *dialog = b.frame->findChild<QDialog *>(QLatin1String(name));
    return dialog && dialog->isVisible() ? dialog : nullptr;
}

void saveAs(QDialog *saveset, const QString &name)
{
    in<QLineEdit>(saveset, "Text1")->setText(name);
    QTest::mouseClick(in(saveset, "Command1"), Qt::LeftButton);
}

void saveFromMenu(FrameBench &b, const QString &name)
{
    b.trigger("mnussettings");
    saveAs(form(b, "saveset"), name);
}

// A pick in loadset's list: the name typed and taken with Return, as the mouse would.
void pick(QDialog *loadset, const QString &name)
{
    auto *combo = in<QComboBox>(loadset, "DBCombo1");
    combo->lineEdit()->setText(name);
    QTest::keyClick(combo->lineEdit(), Qt::Key_Return);
}

// The fields a saved setting holds, as one comparable list.
QVariantList savedFields(const AppState &s)
{
    const AnalyserSettings &a = s.analyser;
    return {a.centerFrequency, a.refLevel, a.attenuator, a.bandwidth, a.videoFilter, a.span, s.unitName,
            s.correctionOn, s.configName, a.readMode, s.viewSample, s.viewAverage, s.viewMaxhold, s.viewMemoryB,
            s.viewMemoryAB, s.viewLimitMax, s.viewLimitAverage, s.maxholdLimitNr, s.averageLimitNr, a.tgOn,
            a.tgLevel, a.calculationOn};
}

} // namespace

class SavedSettingsTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { QStandardPaths::setTestModeEnabled(true); }

    void overwriteAsksFirst_data()
    {
        QTest::addColumn<MsgAnswer>("answer");
        QTest::newRow("Yes") << MsgAnswer::Yes;
        QTest::newRow("No") << MsgAnswer::No;
    }

    void overwriteAsksFirst()
    {
        QFETCH(MsgAnswer, answer);
        FrameBench b;
        start(b);
        b.state().analyser.centerFrequency = 123.5f;
        saveFromMenu(b, QStringLiteral("Bench one"));
        saveFromMenu(b, QStringLiteral("Bench two"));
        QVERIFY(!form(b, "saveset"));
        const QVariantList rowids = column(b.ctx(), "rowid");

        b.state().analyser.centerFrequency = 456.0f;
        b.trigger("mnussettings");
        QDialog *saveset = form(b, "saveset");
        auto *grid = in<QTableWidget>(saveset, "DBGrid1");
        QCOMPARE(grid->rowCount(), 2);
        grid->cellClicked(0, 0);
        QCOMPARE(in<QLineEdit>(saveset, "Text1")->text(), QStringLiteral("Bench one"));
        b.prompts().answerMessage(kOverwrite, answer);
        saveAs(saveset, QStringLiteral("  bench ONE "));

        QCOMPARE(b.prompts().messages(kOverwrite),
                 QStringList{"Save setting|Setting exist ( bench ONE )\r\rOverwrite?\r\r"});
        const bool yes = answer == MsgAnswer::Yes;
        QCOMPARE(form(b, "saveset") == nullptr, yes);
        // The row keeps its place; only its values change.
        QCOMPARE(column(b.ctx(), "rowid"), rowids);
        QCOMPARE(column(b.ctx(), "name"), (QVariantList{yes ? "bench ONE" : "Bench one", "Bench two"}));
        QCOMPARE(column(b.ctx(), "centerfreq").first().toFloat(), yes ? 456.0f : 123.5f);
        QCOMPARE(b.state().emcMode, quint8(0)); // opened from the menu: no mode change
    }

    // User text is matched as a pattern by the program itself, never run as SQL: a quote only
    // makes the search fail, so the name is added anew each time.
    void namesAreStoredAsTyped_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QVariantList>("rows");
        QTest::addColumn<QStringList>("boxes");
        const QString shortName = QStringLiteral("DELFOR - V3.00|The name should be longer than 3 characters");
        const QString overwrite = QStringLiteral("Save setting|Setting exist ( abc )\r\rOverwrite?\r\r");
        QTest::newRow("two characters") << "ab" << QVariantList{} << QStringList{shortName, shortName};
        QTest::newRow("three characters") << "abc" << QVariantList{"abc"} << QStringList{overwrite};
        QTest::newRow("quote") << "O'Brien's" << QVariantList{"O'Brien's", "O'Brien's"} << QStringList{};
        const QString statement = QStringLiteral("x'); drop table settings; --");
        QTest::newRow("statement") << statement << QVariantList{statement, statement} << QStringList{};
    }

    void namesAreStoredAsTyped()
    {
        QFETCH(QString, name);
        QFETCH(QVariantList, rows);
        QFETCH(QStringList, boxes);
        FrameBench b;
        start(b);
        b.trigger("mnussettings");
        QDialog *saveset = form(b, "saveset");
        b.prompts().answerMessage(kOverwrite, MsgAnswer::Yes);
        saveAs(saveset, name);
        if (!form(b, "saveset"))
            b.trigger("mnussettings");
        saveAs(form(b, "saveset"), name);

        QCOMPARE(column(b.ctx(), "name"), rows);
        QCOMPARE(b.prompts().messages(), boxes);
        QCOMPARE(form(b, "saveset") != nullptr, rows.isEmpty());
    }

    void loadBringsTheSettingIntoStateAndPanel()
    {
        FrameBench b;
        start(b);
        AppState &s = b.state();
        AnalyserSettings &a = s.analyser;
        const qint32 classB = limitNumber(b.ctx(), "EN 55032 B 3m QP");
        const qint32 classA = limitNumber(b.ctx(), "EN 55032 A 3m QP");
        QVERIFY(classA > 0 && classB > 0 && classA != classB);
        a.centerFrequency = 200.0f, a.refLevel = -40.0f, a.attenuator = 20.0f, a.bandwidth = 100;
        a.videoFilter = 1, a.span = 100, a.readMode = 2, a.tgOn = 1, a.tgLevel = -10.5f, a.calculationOn = 1;
        s.unitName = QStringLiteral("dBuV/m"), s.configName = QStringLiteral("Radiated 3m"), s.correctionOn = 1;
        s.viewSample = 0, s.viewAverage = 1, s.viewMaxhold = 1, s.viewMemoryB = 0, s.viewMemoryAB = 1;
        s.viewLimitMax = 1, s.viewLimitAverage = 1, s.maxholdLimitNr = classB, s.averageLimitNr = classA;
        const QVariantList saved = savedFields(s);
        saveFromMenu(b, QStringLiteral("Radiated scan"));
        // The limit numbers lie crosswise in the row.
        QCOMPARE(column(b.ctx(), "averagename"), QVariantList{classB});
        QCOMPARE(column(b.ctx(), "maxholdname"), QVariantList{classA});

        b.frame->enterNormalMode(); // the view flags and more back to their defaults
        a = AnalyserSettings();
        s.unitName = QStringLiteral("dBmW"), s.configName = QStringLiteral("Not set"), s.correctionOn = 0;
        s.maxholdLimitNr = s.averageLimitNr = 0;
        b.sim.online();
        s.repaintRequest = 0;
        b.trigger("mnulsettings");
        QDialog *loadset = form(b, "loadset");
        pick(loadset, QStringLiteral("radiated SCAN"));
        QTest::mouseClick(in(loadset, "Command1"), Qt::LeftButton);

        QVERIFY(!form(b, "loadset"));
        QCOMPARE(savedFields(s), saved);
        QCOMPARE(s.chart.startFrequency, 150.0f);
        QCOMPARE(s.chart.stopFrequency, 250.0f);
        QCOMPARE(s.repaintRequest, quint8(1));
        QCOMPARE(in<QComboBox>(b.frame.get(), "detecDBCombo1")->currentText(), QStringLiteral("EN 55032 B 3m QP"));
        QCOMPARE(in<QComboBox>(b.frame.get(), "detecDBCombo2")->currentText(), QStringLiteral("EN 55032 A 3m QP"));
        QCOMPARE(in<QComboBox>(b.frame.get(), "DBmeasur1")->currentText(), QStringLiteral("dBuV/m"));
        QCOMPARE(in<QComboBox>(b.frame.get(), "DBmeasur2")->currentText(), QStringLiteral("Radiated 3m"));
        QVERIFY(b.sim.port->traffic.empty()); // nothing goes to the analyser
        QCOMPARE(s.emcMode, quint8(0));
    }

    void loadOfANameNotSaved_data()
    {
        QTest::addColumn<bool>("rowsExist");
        QTest::addColumn<QStringList>("boxes");
        QTest::newRow("rows") << true << QStringList{"load setting|Setting not exist ( nothing )"};
        QTest::newRow("no rows") << false << QStringList{};
    }

    void loadOfANameNotSaved()
    {
        QFETCH(bool, rowsExist);
        QFETCH(QStringList, boxes);
        FrameBench b;
        start(b);
        if (rowsExist)
            saveFromMenu(b, QStringLiteral("something"));
        b.state().analyser.centerFrequency = 321.0f;
        b.trigger("mnulsettings");
        pick(form(b, "loadset"), QStringLiteral("nothing"));
        QTest::mouseClick(in(form(b, "loadset"), "Command1"), Qt::LeftButton);

        QCOMPARE(b.prompts().messages(), boxes);
        QCOMPARE(form(b, "loadset") != nullptr, !rowsExist); // the box closes the form; no rows keep it
        QCOMPARE(b.state().analyser.centerFrequency, 321.0f);
    }

    void deleteTakesThePickedRow()
    {
        FrameBench b;
        start(b);
        for (const char *name : {"gamma", "alpha", "beta"})
            saveFromMenu(b, QLatin1String(name));
        b.trigger("mnulsettings");
        QDialog *loadset = form(b, "loadset");
        auto *combo = in<QComboBox>(loadset, "DBCombo1");
        QCOMPARE(combo->currentText(), QStringLiteral("alpha"));
        pick(loadset, QStringLiteral("beta"));
        const QList<QVariantList> remaining = {{"gamma", "alpha"}, {"gamma"}, {}, {}};
        for (const QVariantList &rows : remaining) {
            QTest::mouseClick(in(loadset, "Command2"), Qt::LeftButton);
            QCOMPARE(column(b.ctx(), "name"), rows);
            QCOMPARE(combo->currentText(), rows.isEmpty() ? QString() : rows.last().toString()); // first by name
        }
        QVERIFY(b.prompts().shown.isEmpty()); // no question before a delete
    }

    // Yes opens the form and the mode is entered when it closes, saved, loaded or cancelled;
    // No enters the mode at once.
    void modeSwitchOpensTheForm_data()
    {
        QTest::addColumn<QString>("item");
        QTest::addColumn<QString>("title");
        QTest::addColumn<QString>("formName");
        QTest::addColumn<MsgAnswer>("answer");
        QTest::addColumn<bool>("cancel");
        QTest::addColumn<int>("mode");
        const QString toEmc = QStringLiteral("Select EMC-Mode");
        const QString toNormal = QStringLiteral("Select Normal-Mode");
        QTest::newRow("EMC, saved") << "mnuemc" << toEmc << "saveset" << MsgAnswer::Yes << false << 1;
        QTest::newRow("EMC, cancelled") << "mnuemc" << toEmc << "saveset" << MsgAnswer::Yes << true << 1;
        QTest::newRow("EMC, No") << "mnuemc" << toEmc << "saveset" << MsgAnswer::No << false << 1;
        QTest::newRow("normal, loaded") << "mnunormal" << toNormal << "loadset" << MsgAnswer::Yes << false << 0;
        QTest::newRow("normal, cancelled") << "mnunormal" << toNormal << "loadset" << MsgAnswer::Yes << true << 0;
        QTest::newRow("normal, No") << "mnunormal" << toNormal << "loadset" << MsgAnswer::No << false << 0;
    }

    void modeSwitchOpensTheForm()
    {
        QFETCH(QString, item);
        QFETCH(QString, title);
        QFETCH(QString, formName);
        QFETCH(MsgAnswer, answer);
        QFETCH(bool, cancel);
        QFETCH(int, mode);
        FrameBench b;
        start(b);
        b.state().analyser.centerFrequency = 77.0f;
        saveFromMenu(b, QStringLiteral("Seventy-seven"));
        if (mode == 0)
            b.frame->enterEmcMode();
        b.state().analyser.centerFrequency = 500.0f;
        b.prompts().answerMessage(title, answer);
        b.trigger(item);

        QDialog *opened = form(b, formName.toLatin1());
        QCOMPARE(opened != nullptr, answer == MsgAnswer::Yes);
        if (opened) {
            QCOMPARE(int(b.state().emcMode), 1 - mode); // not yet
            QCOMPARE(b.state().modeSwitchSettingsPrompt, qint16(-1));
            if (cancel)
                opened->close();
            else if (mode == 1)
                saveAs(opened, QStringLiteral("Before EMC"));
            else
                QTest::mouseClick(in(opened, "Command1"), Qt::LeftButton); // the first row
        }

        QVERIFY(!form(b, formName.toLatin1()));
        QCOMPARE(int(b.state().emcMode), mode);
        QCOMPARE(b.state().modeSwitchSettingsPrompt, qint16(0));
        QCOMPARE(column(b.ctx(), "name").size(), mode == 1 && opened && !cancel ? 2 : 1);
        QCOMPARE(b.state().analyser.centerFrequency, mode == 0 && opened && !cancel ? 77.0f : 500.0f);
        QCOMPARE(b.find<QAction>("mnulsettings")->isEnabled(), mode == 0);
        QVERIFY(b.prompts().unexpected.isEmpty());
    }
};

QTEST_MAIN(SavedSettingsTest)
#include "saved_settings_test.moc"
