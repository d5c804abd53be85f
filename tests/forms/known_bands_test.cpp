#include "forms/grafik_bands.h"
#include "store/catalogue_fixture.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableWidget>
#include <QTest>

namespace {

struct BandsBench : CatalogueFixture {
    BandsBench() : page(ctx)
    {
        page.reload();
        page.show();
    }
    template <typename T = QWidget> T *find(const QString &name) { return page.findChild<T *>(name); }
    QLineEdit *text3(int box) { return find<QLineEdit>(QStringLiteral("Text3_%1").arg(box)); }
    void click(const QString &name) { QTest::mouseClick(find(name), Qt::LeftButton); }
    // Types into a box and commits it with Return.
    void enter(int box, const QString &typed)
    {
        text3(box)->clear();
        QTest::keyClicks(text3(box), typed);
        QTest::keyClick(text3(box), Qt::Key_Return);
    }
    QString firstRowName() { return find<QTableWidget>("DBGrid1")->item(0, 0)->text(); }
    int rows() { return find<QTableWidget>("DBGrid1")->rowCount(); }
    QVariant stored(const QString &column)
    {
        return views().known.value(column);
    }

    GrafikBands page;
};

} // namespace

class KnownBandsTest : public QObject {
    Q_OBJECT

private slots:
    void entriesAndSortOrders()
    {
        BandsBench b;
        QCOMPARE(b.rows(), 9);
        QCOMPARE(b.firstRowName(), QStringLiteral("DAB (Band III)")); // the form starts by name
        b.click("Command5_0");
        QCOMPARE(b.firstRowName(), QStringLiteral("FM broadcast"));
        b.click("Command5_1");
        QCOMPARE(b.firstRowName(), QStringLiteral("DAB (Band III)"));

        b.click("Command4_0");
        QCOMPARE(b.rows(), 10);
        QVERIFY(b.stored("signal").isNull()); // written at once, empty
        b.enter(0, "Pager");
        QCOMPARE(b.sql("select count(*) from knownsignals where signal = 'Pager'").toInt(), 1);
        b.click("Command4_1");
        QCOMPARE(b.rows(), 9);
        QCOMPARE(b.sql("select count(*) from knownsignals where signal = 'Pager'").toInt(), 0);
    }

    // The level boxes commit in the unit of the moment.
    void boxesCommit_data()
    {
        QTest::addColumn<int>("box");
        QTest::addColumn<float>("unitOffset");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("column");
        QTest::addColumn<QString>("shown");
        QTest::addColumn<double>("stored");
        QTest::newRow("start, comma typed") << 1 << 0.0f << "100,5" << "startfreq" << "100.500" << 100.5;
        QTest::newRow("stop") << 2 << 0.0f << "108" << "stopfreq" << "108.000" << 108.0;
        QTest::newRow("max level in dBmW") << 3 << 0.0f << "-20" << "max-level" << "-20.0" << -20.0;
        QTest::newRow("max level in dBuV") << 3 << 107.0f << "-20" << "max-level" << "-20.0" << -127.0;
        QTest::newRow("min level in dBuV") << 4 << 107.0f << "40.25" << "min-level" << "40.3" << -66.75;
    }
    void boxesCommit()
    {
        QFETCH(int, box);
        QFETCH(float, unitOffset);
        QFETCH(QString, typed);
        QFETCH(QString, column);
        QFETCH(QString, shown);
        QFETCH(double, stored);
        BandsBench b;
        b.ctx.state.analyser.unitOffset = unitOffset;
        b.enter(box, typed);
        QCOMPARE(b.text3(box)->text(), shown);
        QCOMPARE(b.stored(column).toDouble(), stored);
        QCOMPARE(b.page.focusWidget(), b.text3(box + 1));
    }

    void changeColour()
    {
        BandsBench b;
        const QVariant before = b.stored("screenColor");
        b.prompts->answerColour(std::nullopt);
        b.click("Command6");
        QCOMPARE(b.stored("screenColor"), before);
        b.prompts->answerColour(0x123456);
        b.click("Command6");
        QCOMPARE(b.stored("screenColor").toUInt(), 0x123456u);
        QCOMPARE(b.find<QLabel>("Label18")->property("colour").toUInt(), 0x123456u);
        QVERIFY(b.prompts->unexpected.isEmpty());
    }

    // Kept as it always was: a key in a name of 50 characters costs every box its decimal character.
    void longNameLosesTheDecimalCharacter()
    {
        BandsBench b;
        b.text3(0)->clear();
        QTest::keyClicks(b.text3(0), QString(49, 'x'));
        QCOMPARE(b.ctx.state.decimalChar, quint8('.'));
        QTest::keyClicks(b.text3(0), "yz");
        QCOMPARE(b.ctx.state.decimalChar, quint8(0));
        b.enter(1, "1.5");
        QCOMPARE(b.stored("startfreq").toDouble(), 15.0);
    }
};

QTEST_MAIN(KnownBandsTest)
#include "known_bands_test.moc"
