// The notes: notesfrm from the tool bar, its length limit, OK and Exit, and the support mail.

#include "frame_bench.h"

#include <QDialog>
#include <QPlainTextEdit>

namespace {

struct Notes {
    explicit Notes(FrameBench &bench, const QString &notes = QStringLiteral(" ")) : b(bench)
    {
        b.start();
        b.prompts().shown.clear();
        b.state().notes = notes;
        b.click("Command5");
        form = b.frame->findChild<QDialog *>("notesfrm");
        text1 = form->findChild<QPlainTextEdit *>("Text1");
    }
    void click(const char *name) const { QTest::mouseClick(form->findChild<QWidget *>(name), Qt::LeftButton); }
    void write(const QString &text) const
    {
        text1->clear();
        QTest::keyClicks(text1, text);
    }

    FrameBench &b;
    QDialog *form = nullptr;
    QPlainTextEdit *text1 = nullptr;
};

} // namespace

class NotesTest : public QObject {
    Q_OBJECT
private slots:
    void buttonsKeepOrDiscardTheText_data();
    void buttonsKeepOrDiscardTheText();
    void fieldHoldsAtMost800Characters();
    void mailCarriesSubjectAndText_data();
    void mailCarriesSubjectAndText();
    void noMailProgramIsSaidInABox();
};

void NotesTest::buttonsKeepOrDiscardTheText_data()
{
    QTest::addColumn<QStringList>("buttons");
    QTest::addColumn<QString>("notes");
    QTest::newRow("OK keeps") << QStringList{"Command3"} << "cable 3 m";
    QTest::newRow("Exit discards") << QStringList{"Command2"} << "old";
    QTest::newRow("Clear, then OK") << QStringList{"Command1", "Command3"} << "";
}

void NotesTest::buttonsKeepOrDiscardTheText()
{
    QFETCH(QStringList, buttons);
    QFETCH(QString, notes);
    FrameBench bench;
    Notes n(bench, "old");
    QCOMPARE(n.text1->toPlainText(), QStringLiteral("old"));
    n.write("cable 3 m");
    for (const QString &button : buttons)
        n.click(button.toLatin1());
    QCOMPARE(bench.state().notes, notes);
    QVERIFY(!n.form->isVisible());
}

void NotesTest::fieldHoldsAtMost800Characters()
{
    FrameBench bench;
    Notes n(bench);
    n.write(QString(799, 'a'));
    QTest::keyClicks(n.text1, "bc");
    QCOMPARE(n.text1->toPlainText(), QString(799, 'a') + "b");
    QTest::keyClick(n.text1, Qt::Key_Backspace); // editing keys still work
    QCOMPARE(n.text1->toPlainText().size(), 799);
    n.text1->insertPlainText(QString(10, 'x')); // a paste is cut off
    QCOMPARE(n.text1->toPlainText().size(), 800);
}

void NotesTest::mailCarriesSubjectAndText_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("encoded");
    QTest::newRow("plain") << "Spike at 433 MHz" << "Spike%20at%20433%20MHz";
    QTest::newRow("characters of a URL") << "a&b=c+d?#%" << "a%26b%3Dc%2Bd%3F%23%25";
    QTest::newRow("line feed, umlaut") << "eins\nzwei \u00fc" << "eins%0Azwei%20%C3%BC";
}

void NotesTest::mailCarriesSubjectAndText()
{
    QFETCH(QString, text);
    QFETCH(QString, encoded);
    FrameBench bench;
    Notes n(bench);
    n.text1->setPlainText(text);
    n.click("Command5");
    QCOMPARE(bench.prompts().openedUrls.size(), 1);
    const QString url = bench.prompts().openedUrls.first();
    QVERIFY(url.startsWith("mailto:support@quelt-instruments.example?subject=Support%20DELFOR&body=Supportform%3A%0D%0A%0D%0A"));
    QVERIFY(url.contains("My%20question%3A%0D%0A%0D%0A" + encoded));
    QVERIFY(url.endsWith(encoded));
    QVERIFY(!n.form->isVisible());
    QVERIFY(bench.prompts().shown.isEmpty());
}

void NotesTest::noMailProgramIsSaidInABox()
{
    FrameBench bench;
    Notes n(bench);
    n.text1->clear();
    n.click("Command5"); // an empty text sends nothing
    QVERIFY(bench.prompts().openedUrls.isEmpty());

    bench.prompts().desktopTakesUrls = false;
    n.write("help");
    n.click("Command5");
    QCOMPARE(bench.prompts().openedUrls.size(), 1);
    const QStringList boxes = bench.prompts().messages("Send as e-mail");
    QCOMPARE(boxes.size(), 1);
    QVERIFY(boxes.first().contains("No e-mail program"));
    QVERIFY(n.form->isVisible()); // the text stays to be kept or sent later
}

QTEST_MAIN(NotesTest)
#include "notes_test.moc"
