// The print dialog: its check boxes set the report's fields and redraw the preview, the headline
// takes keys up to 61 characters, Print prints through the program's hook and Cancel keeps what
// was changed.

#include "frame_bench.h"

#include "forms/printe.h"
#include "forms/setprn.h"

#include <QCheckBox>
#include <QLineEdit>
#include <QPushButton>

class PrintDialogTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { QStandardPaths::setTestModeEnabled(true); }
    void dialogSetsFieldsAndPrints();
};

void PrintDialogTest::dialogSetsFieldsAndPrints()
{
    FrameBench b;
    b.start();
    int printed = 0;
    b.ctx().calls.printNow = [&printed] { ++printed; };
    b.click("Command1");
    auto *setprn = b.frame->findChild<SetprnForm *>();
    QVERIFY(setprn);
    QCOMPARE(b.state().previewOpen, quint8(1));
    const QImage before = setprn->preview()->picture();

    QVERIFY(QTest::qWaitForWindowExposed(setprn));
    setprn->findChild<QCheckBox *>("Check7")->click();
    QCOMPARE(b.state().printInColour, quint8(0));
    QVERIFY(setprn->preview()->picture() != before); // drawn anew in black

    auto *text1 = setprn->findChild<QLineEdit *>("Text1");
    text1->setText(QString(60, QLatin1Char('x')));
    QTest::keyClicks(text1, "yz");
    QCOMPARE(text1->text().size(), 61); // the 61st is taken, the 62nd refused
    QTest::keyClick(text1, Qt::Key_Return);
    QCOMPARE(b.state().headline.size(), 61);

    QTest::mouseClick(setprn->findChild<QPushButton *>("Command1"), Qt::LeftButton);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCOMPARE(printed, 1);
    QVERIFY(!b.frame->findChild<SetprnForm *>());
    QCOMPARE(b.state().previewOpen, quint8(0));
    QCOMPARE(b.state().printInColour, quint8(0)); // kept after the dialog
    QVERIFY(b.prompts().unexpected.isEmpty());
}

QTEST_MAIN(PrintDialogTest)
#include "print_dialog_test.moc"
