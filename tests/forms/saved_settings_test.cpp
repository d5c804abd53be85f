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

qint32 limitNumber(Context &ctx, const char *name)
{
    QSqlQuery query(workingDatabase(ctx));
    query.exec(QStringLiteral("select limitnr from LimitHead where limitname = '%1'").arg(QLatin1String(name)));
    return query.next() ? query.value(0).toInt() : -1;
}

// The program started, with the box of a first start put aside.
void start(FrameBench &b)
{
    b.start();
    b.prompts().shown.clear();
}

template <typename T = QWidget> T *in(QWidget *parent, const char *name) { return parent->findChild<T *>(name); }

// The form of this name that is up, if any; closed forms are gone once their deletion ran.
QDialog *form(FrameBench &b, const char *name)
{
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    auto *dialog = b.frame->findChild<QDialog *>(QLatin1String(name));
    return dialog && dialog->isVisible() ? dialog : nullptr;
}

void click(QDialog *dialog, const char *name) { QTest::mouseClick(in(dialog, name), Qt::LeftButton); }

void saveAs(QDialog *saveset, const QString &name)
{
    in<QLineEdit>(saveset, "Text1")->setText(name);
    click(saveset, "Command1");
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

// The fields a saved setting holds.
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
        b.state().analyser.centerFrequency = 456.0f;
        b.trigger("mnussettings");
        QDialog *saveset = form(b, "saveset");
        in<QTableWidget>(saveset, "DBGrid1")->cellClicked(0, 0);
        QCOMPARE(in<QLineEdit>(saveset, "Text1")->text(), QStringLiteral("Bench one"));
        b.prompts().answerMessage(QStringLiteral("Save setting"), answer);
        saveAs(saveset, QStringLiteral("  bench ONE "));

        const bool yes = answer == MsgAnswer::Yes;
        QCOMPARE(b.prompts().messages(), QStringList{"Save setting|Setting exist ( bench ONE )\r\rOverwrite?\r\r"});
        QCOMPARE(form(b, "saveset") == nullptr, yes);
        // The row keeps its place; only its values change.
        QCOMPARE(column(b.ctx(), "name"), (QVariantList{yes ? "bench ONE" : "Bench one", "Bench two"}));
        QCOMPARE(column(b.ctx(), "centerfreq").first().toFloat(), yes ? 456.0f : 123.5f);
        QCOMPARE(b.state().emcMode, quint8(0)); // opened from the menu: no mode change
    }

    // A name is matched as a pattern by the program, never run as SQL: a quote makes the search
    // fail, so the name is added anew each time. Each name is saved twice, Yes to any question.
    void namesAreStoredAsTyped_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QVariantList>("rows");
        QTest::addColumn<QStringList>("boxes");
        const QString tooShort = QStringLiteral("DELFOR - V3.00|The name should be longer than 3 characters");
        const QString statement = QStringLiteral("x'); drop table settings; --");
        QTest::newRow("two characters") << "ab" << QVariantList{} << QStringList{tooShort, tooShort};
        QTest::newRow("three characters")
            << "abc" << QVariantList{"abc"} << QStringList{"Save setting|Setting exist ( abc )\r\rOverwrite?\r\r"};
        // A quote is text like any other: the second save finds the name and asks.
        QTest::newRow("quote") << "O'Brien's" << QVariantList{"O'Brien's"}
                               << QStringList{"Save setting|Setting exist ( O'Brien's )\r\rOverwrite?\r\r"};
        QTest::newRow("statement") << statement << QVariantList{statement}
                                   << QStringList{"Save setting|Setting exist ( " + statement + " )\r\rOverwrite?\r\r"};
    }

    void namesAreStoredAsTyped()
    {
        QFETCH(QString, name);
        QFETCH(QVariantList, rows);
        QFETCH(QStringList, boxes);
        FrameBench b;
        start(b);
        b.prompts().answerMessage(QStringLiteral("Save setting"), MsgAnswer::Yes);
        saveFromMenu(b, name);
        if (!form(b, "saveset"))
            b.trigger("mnussettings");
        saveAs(form(b, "saveset"), name);

        QCOMPARE(column(b.ctx(), "name"), rows);
        QCOMPARE(b.prompts().messages(), boxes);
        QCOMPARE(form(b, "saveset") != nullptr, rows.isEmpty()); // a refused name keeps the form up
    }

    void loadBringsTheSettingIntoStateAndPanel()
    {
        FrameBench b;
        start(b);
        AppState &s = b.state();
        AnalyserSettings &a = s.analyser;
        const qint32 classB = limitNumber(b.ctx(), "EN 55032 B 3m QP");
        const qint32 classA = limitNumber(b.ctx(), "EN 55032 A 3m QP");
        a.centerFrequency = 200.0f, a.refLevel = -40.0f, a.attenuator = 20.0f, a.bandwidth = 100;
        a.videoFilter = 1, a.span = 100, a.readMode = 2, a.tgOn = 1, a.tgLevel = -10.5f, a.calculationOn = 1;
        s.unitName = QStringLiteral("dBuV/m"), s.configName = QStringLiteral("Radiated 3m"), s.correctionOn = 1;
        s.viewSample = 0, s.viewAverage = 1, s.viewMaxhold = 1, s.viewMemoryB = 0, s.viewMemoryAB = 1;
        s.viewLimitMax = 1, s.viewLimitAverage = 1, s.maxholdLimitNr = classB, s.averageLimitNr = classA;
        const QVariantList saved = savedFields(s);
        saveFromMenu(b, QStringLiteral("Radiated scan"));
        QCOMPARE(column(b.ctx(), "averagename"), QVariantList{classB}); // the numbers lie crosswise
        QCOMPARE(column(b.ctx(), "maxholdname"), QVariantList{classA});

        b.frame->enterNormalMode(); // the view flags back to their defaults
        a = AnalyserSettings();
        s.unitName = QStringLiteral("dBmW"), s.configName = QStringLiteral("Not set"), s.correctionOn = 0;
        s.maxholdLimitNr = s.averageLimitNr = 0;
        b.sim.online();
        b.trigger("mnulsettings");
        pick(form(b, "loadset"), QStringLiteral("radiated SCAN"));
        click(form(b, "loadset"), "Command1");

        QVERIFY(!form(b, "loadset"));
        QCOMPARE(savedFields(s), saved);
        QCOMPARE(s.chart.startFrequency, 150.0f);
        QCOMPARE(s.chart.stopFrequency, 250.0f);
        QCOMPARE(in<QComboBox>(b.frame.get(), "detecDBCombo1")->currentText(), QStringLiteral("EN 55032 B 3m QP"));
        QCOMPARE(in<QComboBox>(b.frame.get(), "detecDBCombo2")->currentText(), QStringLiteral("EN 55032 A 3m QP"));
        QCOMPARE(in<QComboBox>(b.frame.get(), "DBmeasur1")->currentText(), QStringLiteral("dBuV/m"));
        QCOMPARE(in<QComboBox>(b.frame.get(), "DBmeasur2")->currentText(), QStringLiteral("Radiated 3m"));
        QVERIFY(b.sim.port->traffic.empty()); // nothing goes to the analyser
    }

    // Deleting takes the picked row, then the first by name, with no question. A load of a name
    // not saved says so and closes the form; with no rows left it does nothing.
    void deleteAndLoadWhatIsNotThere()
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
            click(loadset, "Command2");
            QCOMPARE(column(b.ctx(), "name"), rows);
            QCOMPARE(combo->currentText(), rows.isEmpty() ? QString() : rows.last().toString());
        }
        pick(loadset, QStringLiteral("gamma"));
        click(loadset, "Command1");
        QVERIFY(b.prompts().shown.isEmpty());
        QVERIFY(form(b, "loadset"));

        loadset->close();
        saveFromMenu(b, QStringLiteral("delta"));
        b.trigger("mnulsettings");
        pick(form(b, "loadset"), QStringLiteral("gamma"));
        click(form(b, "loadset"), "Command1");
        QCOMPARE(b.prompts().messages(), QStringList{"load setting|Setting not exist ( gamma )"});
        QVERIFY(!form(b, "loadset"));
    }

    // Yes opens the form and the mode is entered when it closes, saved, loaded or cancelled;
    // No enters the mode at once. In the mode already, the item asks nothing.
    void modeSwitchOpensTheForm_data()
    {
        QTest::addColumn<QString>("item");
        QTest::addColumn<MsgAnswer>("answer");
        QTest::addColumn<bool>("cancel");
        QTest::addColumn<int>("mode");
        for (const char *item : {"mnuemc", "mnunormal"}) {
            const int mode = item == QLatin1String("mnuemc") ? 1 : 0;
            QTest::addRow("%s, done", item) << item << MsgAnswer::Yes << false << mode;
            QTest::addRow("%s, cancelled", item) << item << MsgAnswer::Yes << true << mode;
            QTest::addRow("%s, No", item) << item << MsgAnswer::No << false << mode;
        }
    }

    void modeSwitchOpensTheForm()
    {
        QFETCH(QString, item);
        QFETCH(MsgAnswer, answer);
        QFETCH(bool, cancel);
        QFETCH(int, mode);
        const QString title = mode ? QStringLiteral("Select EMC-Mode") : QStringLiteral("Select Normal-Mode");
        const char *formName = mode ? "saveset" : "loadset";
        FrameBench b;
        start(b);
        b.state().analyser.centerFrequency = 77.0f;
        saveFromMenu(b, QStringLiteral("Seventy-seven"));
        if (mode == 0)
            b.frame->enterEmcMode();
        b.state().analyser.centerFrequency = 500.0f;
        b.prompts().answerMessage(title, answer);
        b.trigger(item);

        const QString question = mode ? "Do you want to save the settings" : "Do you want to load the settings";
        QCOMPARE(b.prompts().messages(), QStringList{title + "|" + question});
        QDialog *opened = form(b, formName);
        QCOMPARE(opened != nullptr, answer == MsgAnswer::Yes);
        const bool done = opened && !cancel;
        if (opened) {
            QCOMPARE(int(b.state().emcMode), 1 - mode); // not yet
            if (cancel)
                opened->close();
            else if (mode == 1)
                saveAs(opened, QStringLiteral("Before EMC"));
            else
                click(opened, "Command1"); // the first row
        }

        QVERIFY(!form(b, formName));
        QCOMPARE(int(b.state().emcMode), mode);
        QCOMPARE(column(b.ctx(), "name").size(), mode == 1 && done ? 2 : 1);
        QCOMPARE(b.state().analyser.centerFrequency, mode == 0 && done ? 77.0f : 500.0f);
        QCOMPARE(b.find<QAction>("mnulsettings")->isEnabled(), mode == 0);

        b.prompts().shown.clear();
        b.trigger(item); // in that mode already
        QVERIFY(b.prompts().shown.isEmpty());
        QVERIFY(!form(b, formName));
        QCOMPARE(int(b.state().emcMode), mode);
    }
};

QTEST_MAIN(SavedSettingsTest)
#include "saved_settings_test.moc"
