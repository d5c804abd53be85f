// The view boxes of the EMC frame and the difference between signals and ambient, as the user
// drives them.

#include "forms/frame_bench.h"
#include "forms/grafik.h"

#include <QCheckBox>
#include <QLineEdit>
#include <QTabWidget>

namespace {

// The main frame in EMC mode with the chart in front.
struct EmcFrameBench : FrameBench {
    EmcFrameBench()
    {
        start();
        frame->enterEmcMode();
        frame->grafik()->findChild<QTabWidget *>(QStringLiteral("grtab"))->setCurrentIndex(0);
    }
};

} // namespace

class AmbientViewTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { QStandardPaths::setTestModeEnabled(true); }

    // Each box copies its state into its own flag and asks for a repaint. (The first four show what
    // the test in force last set, so a box and its flag may differ until the box is clicked.)
    void viewBoxesSetTheirFlags()
    {
        const struct {
            const char *box;
            const char *caption;
            quint8 AppState::*flag;
        } boxes[] = {{"emcCheck1", "Max. Hold", &AppState::viewMaxhold},
                     {"emcCheck2", "Quasipeak", &AppState::viewQPeak},
                     {"emcCheck3", "Average", &AppState::viewAverage},
                     {"emcCheck4", "Sweep", &AppState::viewMemoryB},
                     {"emcCheck5", "Calc/View Horizontal", &AppState::emcViewAmbientH},
                     {"emcCheck6", "Calc/View Vertical", &AppState::emcViewAmbientV},
                     {"emcCheck7", "Calc On", &AppState::emcCalcAmbient},
                     {"emcCheck8", "View Ambient", &AppState::emcViewAmbient}};
        EmcFrameBench b;
        AppState &s = b.state();
        for (const auto &entry : boxes) {
            auto *box = b.find<QCheckBox>(QLatin1String(entry.box));
            QCOMPARE(box->text(), QLatin1String(entry.caption));
            const AppState before = s;
            const bool wasChecked = box->isChecked();
            for (int click = 1; click <= 2; ++click) {
                s.repaintRequest = 0;
                QTest::mouseClick(box, Qt::LeftButton, {}, QPoint(6, box->height() / 2));
                QCOMPARE(s.*entry.flag, quint8(box->isChecked() ? 1 : 0));
                QCOMPARE(box->isChecked(), click == 1 ? !wasChecked : wasChecked);
                QCOMPARE(s.repaintRequest, quint8(1));
                for (const auto &other : boxes)
                    if (other.flag != entry.flag)
                        QCOMPARE(s.*other.flag, before.*other.flag);
            }
        }
    }

    void distanceTakenOnReturnOnly_data()
    {
        QTest::addColumn<QString>("keys");
        QTest::addColumn<bool>("returnPressed");
        QTest::addColumn<int>("distance");
        QTest::addColumn<QString>("shown");
        QTest::newRow("Return takes it") << "12" << true << 12 << "12";
        QTest::newRow("leaving does not") << "12" << false << 3 << "12";
        QTest::newRow("negative, letters dropped") << "-4dB" << true << -4 << "-4";
        QTest::newRow("halves to even") << "2.5" << true << 2 << "2";
        QTest::newRow("above 16 bits") << "99999" << true << 32767 << "32767";
        QTest::newRow("below 16 bits") << "-40000" << true << -32768 << "-32768";
        QTest::newRow("no number") << "-" << true << 0 << "0";
    }
    void distanceTakenOnReturnOnly()
    {
        QFETCH(QString, keys);
        QFETCH(bool, returnPressed);
        QFETCH(int, distance);
        QFETCH(QString, shown);
        EmcFrameBench b;
        b.state().emcAmbientDistance = 3;
        auto *field = b.find<QLineEdit>(QStringLiteral("emcText1"));
        field->setFocus();
        field->clear();
        QTest::keyClicks(field, keys);
        if (returnPressed)
            QTest::keyClick(field, Qt::Key_Return);
        else
            b.find<QCheckBox>(QStringLiteral("emcCheck5"))->setFocus(Qt::TabFocusReason);
        QCOMPARE(int(b.state().emcAmbientDistance), distance);
        QCOMPARE(field->text(), shown);
        QVERIFY(b.prompts().unexpected.isEmpty());
    }
};

QTEST_MAIN(AmbientViewTest)
#include "ambient_view_test.moc"
