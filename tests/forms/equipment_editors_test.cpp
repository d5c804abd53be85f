// The limit and loss/gain editors of the equipment tab and their dialogs, driven by their controls
// on the main frame over a fresh working database.

#include "frame_bench.h"

#include "chart/image_canvas.h"
#include "forms/curve_page.h"
#include "forms/grafik.h"
#include "store/catalogue_views.h"
#include "store/database.h"

#include <QComboBox>
#include <QDialog>
#include <QDir>
#include <QMdiSubWindow>
#include <QFile>
#include <QLineEdit>
#include <QPushButton>
#include <QSqlQuery>
#include <QTabWidget>
#include <QTableWidget>

namespace {

// The editor of this prefix in front: "lim" the limit tab, "LG" the loss/gain tab.
void openEditor(FrameBench &b, const QString &prefix)
{
    b.find<QTabWidget>("grtab")->setCurrentIndex(4);
    auto *equTab = b.find<QTabWidget>("equTab");
    equTab->setCurrentIndex(prefix == "lim" ? 0 : 1);
    QCoreApplication::processEvents();
}

void pick(QComboBox *combo, const QString &text)
{
    const int i = combo->findText(text);
    QVERIFY2(i >= 0, qPrintable(text));
    combo->setCurrentIndex(i);
    emit combo->activated(i);
}

QDialog *dialog(FrameBench &b, const char *name)
{
    auto *d = b.frame->findChild<QDialog *>(QLatin1String(name));
    if (d)
        (void)QTest::qWaitForWindowExposed(d);
    return d;
}

// Points of the named definition as stored: frequency -> level.
QMultiMap<double, double> storedPoints(FrameBench &b, const QString &prefix, const QString &name)
{
    const bool limit = prefix == "lim";
    QSqlQuery q(workingDatabase(b.ctx()));
    q.prepare(limit ? "select d.frequency, d.level_dbmw from limitdef d join LimitHead h on d.limitnr = h.limitnr "
                      "where h.limitname = ?"
                    : "select d.frequency, d.level_dbmw from losdef d join loshead h on d.losnr = h.losnr "
                      "where h.losname = ?");
    q.addBindValue(name);
    q.exec();
    QMultiMap<double, double> points;
    while (q.next())
        points.insert(double(q.value(0).toFloat()), double(q.value(1).toFloat()));
    return points;
}

int headCount(FrameBench &b, const QString &prefix, const QString &name)
{
    QSqlQuery q(workingDatabase(b.ctx()));
    q.prepare(prefix == "lim" ? "select count(*) from LimitHead where limitname = ?"
                              : "select count(*) from loshead where losname = ?");
    q.addBindValue(name);
    q.exec();
    q.next();
    return q.value(0).toInt();
}

void typePoint(FrameBench &b, const QString &prefix, const QString &frequency, const QString &level)
{
    auto *f = b.find<QLineEdit>(prefix + "Text1");
    auto *l = b.find<QLineEdit>(prefix + "Text2");
    f->clear();
    l->clear();
    QTest::keyClicks(f, frequency);
    QTest::keyClick(f, Qt::Key_Return);
    QTest::keyClicks(l, level);
    QTest::keyClick(l, Qt::Key_Return);
}

QStringList gridRow(FrameBench &b, const QString &prefix, const QString &frequency)
{
    auto *grid = b.find<QTableWidget>(prefix + "Grid1");
    for (int r = 0; r < grid->rowCount(); ++r)
        if (grid->item(r, 0)->text() == frequency)
            return {grid->item(r, 0)->text(), grid->item(r, 1)->text()};
    return {};
}

} // namespace

class EquipmentEditorsTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { QStandardPaths::setTestModeEnabled(true); }
    void addCopyDelete_data();
    void addCopyDelete();
    void pointEntry_data();
    void pointEntry();
    void unitOffsetTruncated();
    void keyFilters();
    void gridClickAndDelete();
    void csvButtons();
    void screenshot();
};

void EquipmentEditorsTest::addCopyDelete_data()
{
    QTest::addColumn<QString>("prefix");
    QTest::addColumn<QString>("source");
    QTest::addColumn<QString>("exists");
    QTest::newRow("limit") << "lim" << "EN 55032 B 3m QP" << "Limitdefinition exist ( Bench line )";
    QTest::newRow("component") << "LG" << "Cable RG214 10 m" << "losdefinition exist ( Bench line )";
}

void EquipmentEditorsTest::addCopyDelete()
{
    QFETCH(QString, prefix);
    QFETCH(QString, source);
    QFETCH(QString, exists);
    const bool limit = prefix == "lim";
    FrameBench b;
    b.start();
    openEditor(b, prefix);

    b.trigger(limit ? "mnunewlim" : "mnunewlos");
    QDialog *add = dialog(b, limit ? "newlim" : "newlos");
    QVERIFY(add);
    QTest::keyClicks(add->findChild<QLineEdit *>("Text1"), "  Bench line ");
    QTest::mouseClick(add->findChild<QPushButton *>("Command1"), Qt::LeftButton);
    QCOMPARE(headCount(b, prefix, "Bench line"), 1);
    QCOMPARE(b.find<QComboBox>(prefix + "DBCombo1")->currentText(), QString("Bench line"));
    QCOMPARE(add->findChild<QComboBox *>("DBCombo2")->currentText(), QString("Bench line"));

    // The same name again is refused with a box, and no second head is made.
    QTest::mouseClick(add->findChild<QPushButton *>("Command1"), Qt::LeftButton);
    QCOMPARE(b.prompts().messages("Add new"), QStringList{"Add new|" + exists});
    QCOMPARE(headCount(b, prefix, "Bench line"), 1);

    // The copy merges: the point typed at 30 MHz keeps its level, the others come from the source.
    typePoint(b, prefix, "30", "5");
    pick(add->findChild<QComboBox *>("DBCombo1"), source);
    QTest::mouseClick(add->findChild<QPushButton *>("Command2"), Qt::LeftButton);
    const QMultiMap<double, double> from = storedPoints(b, prefix, source);
    const QMultiMap<double, double> copied = storedPoints(b, prefix, "Bench line");
    QCOMPARE(copied.size(), from.size());
    QCOMPARE(copied.value(30.0), 5.0);
    // The limit took over the source's unit (dBuV) and shows its stored 5 dBm in it.
    QCOMPARE(gridRow(b, prefix, "30"), QStringList({"30", limit ? "112.00" : "5.00"}));
    add->close();

    b.trigger(limit ? "mnudellim" : "mnudellos");
    QDialog *del = dialog(b, limit ? "dellim" : "dellos");
    QVERIFY(del);
    pick(del->findChild<QComboBox *>("DBCombo2"), "Bench line");
    QTest::mouseClick(del->findChild<QPushButton *>("Command1"), Qt::LeftButton);
    QCOMPARE(headCount(b, prefix, "Bench line"), 0);
    QVERIFY(storedPoints(b, prefix, "Bench line").isEmpty());
    QCOMPARE(storedPoints(b, prefix, source), from);
    QCOMPARE(b.find<QComboBox>(prefix + "DBCombo1")->findText("Bench line"), -1);
    QVERIFY(b.prompts().unexpected.isEmpty());
}

void EquipmentEditorsTest::pointEntry_data()
{
    QTest::addColumn<QString>("prefix");
    QTest::addColumn<QString>("definition");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<double>("stored");
    // The limit is edited in dBuV: 50 typed is -57 dBm.
    QTest::newRow("limit") << "lim" << "EN 55032 B 3m QP" << "50" << -57.0;
    QTest::newRow("loss") << "LG" << "Cable RG214 10 m" << "3.5" << 3.5;
    QTest::newRow("gain") << "LG" << "Preamplifier 22 dB" << "20" << -20.0;
}

// A point typed at a frequency that exists overwrites it; a gain is stored negated and shown as typed.
void EquipmentEditorsTest::pointEntry()
{
    QFETCH(QString, prefix);
    QFETCH(QString, definition);
    QFETCH(QString, typed);
    QFETCH(double, stored);
    FrameBench b;
    b.start();
    openEditor(b, prefix);
    pick(b.find<QComboBox>(prefix + "DBCombo1"), definition);
    const int before = storedPoints(b, prefix, definition).size();

    typePoint(b, prefix, "30", typed);
    const QMultiMap<double, double> points = storedPoints(b, prefix, definition);
    QCOMPARE(points.size(), before);
    QCOMPARE(points.value(30.0), stored);
    QCOMPARE(gridRow(b, prefix, "30"), QStringList({"30", QString::number(typed.toDouble(), 'f', 2)}));
    QVERIFY(b.find<QLineEdit>(prefix + "Text1")->text().isEmpty());

    typePoint(b, prefix, "12.5", typed);
    QCOMPARE(storedPoints(b, prefix, definition).size(), before + 1);
}

// A unit of fractional offset converts with the offset truncated, so the level reads back as typed.
void EquipmentEditorsTest::unitOffsetTruncated()
{
    FrameBench b;
    b.start();
    QSqlQuery(workingDatabase(b.ctx())).exec("insert into unit (unitname, unitoffset) values ('dBuA', 73.8)");
    catalogueViews(b.ctx()).limData3.refresh();
    openEditor(b, "lim");
    pick(b.find<QComboBox>("limDBCombo1"), "EN 55032 B 3m QP");
    pick(b.find<QComboBox>("limDBCombo2"), "dBuA");
    QCOMPARE(b.state().limitUnitOffset, qint16(73));
    // Stored -60 dBm (47 dBuV) shows as 13 in the new unit.
    QCOMPARE(gridRow(b, "lim", "1000"), QStringList({"1000", "13.00"}));
    typePoint(b, "lim", "30", "60");
    QCOMPARE(storedPoints(b, "lim", "EN 55032 B 3m QP").value(30.0), -13.0);
    QCOMPARE(gridRow(b, "lim", "30"), QStringList({"30", "60.00"}));

    QSqlQuery q(workingDatabase(b.ctx()));
    q.exec("select limunit from LimitHead where limitname = 'EN 55032 B 3m QP'");
    QVERIFY(q.next());
    QCOMPARE(q.value(0).toString(), QString("dBuA"));
}

void EquipmentEditorsTest::keyFilters()
{
    FrameBench b;
    b.start();
    openEditor(b, "lim");
    b.state().decimalChar = ',';
    const struct {
        const char *field;
        const char *typed;
        const char *kept;
    } cases[] = {{"limText1", "1a2.5-x", "12,5"}, {"limText2", "-4e0,5", "-40,5"}, {"limText3", "1-0.", "10,"},
                 {"LGText1", "3,b0", "3,0"}, {"LGText2", "-2q2", "-22"}};
    for (const auto &c : cases) {
        auto *field = b.find<QLineEdit>(c.field);
        field->clear();
        QTest::keyClicks(field, c.typed);
        QCOMPARE(field->text(), QString(c.kept));
        QTest::keyClick(field, Qt::Key_Backspace);
        QCOMPARE(field->text(), QString(c.kept).chopped(1));
    }
}

void EquipmentEditorsTest::gridClickAndDelete()
{
    FrameBench b;
    b.start();
    openEditor(b, "LG");
    pick(b.find<QComboBox>("LGDBCombo1"), "Preamplifier 22 dB");
    auto *grid = b.find<QTableWidget>("LGGrid1");
    QCOMPARE(grid->rowCount(), 7);
    QTableWidgetItem *row = grid->item(2, 0);
    QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, grid->visualItemRect(row).center());
    QCOMPARE(b.find<QLineEdit>("LGText1")->text(), QString("100"));
    QCOMPARE(b.find<QLineEdit>("LGText2")->text(), QString("22.30"));

    QTest::keyClick(grid, Qt::Key_Delete);
    QCOMPARE(grid->rowCount(), 6);
    QVERIFY(!storedPoints(b, "LG", "Preamplifier 22 dB").contains(100.0));
    QVERIFY(gridRow(b, "LG", "100").isEmpty());
}

// Export of one component and import into another; a file the import refuses changes nothing and
// says why.
void EquipmentEditorsTest::csvButtons()
{
    FrameBench b;
    b.start();
    openEditor(b, "LG");
    const QString file = b.folder.path() + "/cable.csv";
    pick(b.find<QComboBox>("LGDBCombo1"), "Cable RG214 10 m");
    b.prompts().answerFile("Export CSV", file);
    QTest::mouseClick(b.find<QPushButton>("LGExport"), Qt::LeftButton);
    QVERIFY(QFile::exists(file));

    pick(b.find<QComboBox>("LGDBCombo1"), "Transient limiter 10 dB");
    b.prompts().answerFile("Import CSV", file);
    b.prompts().answerMessage("Import CSV", MsgAnswer::Yes);
    QTest::mouseClick(b.find<QPushButton>("LGImport"), Qt::LeftButton);
    QCOMPARE(storedPoints(b, "LG", "Transient limiter 10 dB"), storedPoints(b, "LG", "Cable RG214 10 m"));
    QCOMPARE(b.find<QTableWidget>("LGGrid1")->rowCount(), 10);

    openEditor(b, "lim");
    QFile bad(b.folder.path() + "/bad.csv");
    QVERIFY(bad.open(QIODevice::WriteOnly));
    bad.write("Frequency_MHz,dBuV\n30,40\n50,abc\n");
    bad.close();
    pick(b.find<QComboBox>("limDBCombo1"), "EN 55032 B 10m QP");
    const auto before = storedPoints(b, "lim", "EN 55032 B 10m QP");
    b.prompts().answerFile("Import CSV", bad.fileName());
    b.prompts().answerMessage("Import CSV", MsgAnswer::Yes);
    QTest::mouseClick(b.find<QPushButton>("limImport"), Qt::LeftButton);
    const QStringList boxes = b.prompts().messages("Import CSV");
    QCOMPARE(boxes.size(), 3);
    QVERIFY2(boxes.last().contains("line 3"), qPrintable(boxes.last()));
    QCOMPARE(storedPoints(b, "lim", "EN 55032 B 10m QP"), before);
    QVERIFY(b.prompts().unexpected.isEmpty());
    QVERIFY(b.prompts().unused().isEmpty());
}

// The limit editor with a delivered limit, its log segments drawn in the limit colour, kept in the
// build folder (screenshots/) to be looked at.
void EquipmentEditorsTest::screenshot()
{
    FrameBench b;
    b.frame->resize(1280, 800);
    b.start();
    b.frame->findChild<QMdiSubWindow *>()->showMaximized();
    openEditor(b, "lim");
    pick(b.find<QComboBox>("limDBCombo1"), "EN 55032 B mains QP");
    QCoreApplication::processEvents();
    const QImage plot = b.frame->findChild<PreviewPicture *>("limPicture1")->canvas().image();
    int curve = 0;
    for (int y = 0; y < plot.height(); ++y)
        for (int x = 0; x < plot.width(); ++x)
            curve += (plot.pixel(x, y) & 0xFFFFFF) == (bgrColour(b.state().screenColours[LimitColour]).rgb() & 0xFFFFFF);
    QVERIFY(curve > 500);
    QDir().mkpath(QCoreApplication::applicationDirPath() + "/screenshots");
    QVERIFY(b.frame->grab().save(QCoreApplication::applicationDirPath() + "/screenshots/limit-editor.png"));
}

QTEST_MAIN(EquipmentEditorsTest)
#include "equipment_editors_test.moc"
