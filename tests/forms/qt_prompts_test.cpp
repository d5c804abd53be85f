#include "forms/qt_prompts.h"

#include <QTest>

class QtPromptsTest : public QObject {
    Q_OBJECT

private slots:
    void filtersBecomeNameFilters_data();
    void filtersBecomeNameFilters();
    void coloursAreBlueGreenRed_data();
    void coloursAreBlueGreenRed();
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

QTEST_MAIN(QtPromptsTest)
#include "qt_prompts_test.moc"
