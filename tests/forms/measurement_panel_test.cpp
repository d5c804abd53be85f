// The analyser's front on the measurement tab, driven by control names against the simulated
// K320-A: the commands on the wire, the clamps of the number fields, the calculation's rules,
// and the trace of the next Read following the new setting.

#include "frame_bench.h"

#include "chart/measurement_panel.h"
#include "forms/grafik.h"

#include <QCheckBox>
#include <QLineEdit>
#include <QRadioButton>
#include <QTabWidget>

#include <algorithm>

namespace {

// What readAllSettings asks, with the screen back in `readMode` after the reference level.
QByteArray readAll(int readMode)
{
    return "#es0\r#cf\r#vm\r#vm0\r#rl\r#vm" + QByteArray::number(readMode) + "\r#vf\r#sp\r#bw\r#at\r#tg\r#tl\r#dm\r#db\r#uc\r";
}

// The calculation started afresh, on the screen's read mode 0.
const QByteArray kRestart = "#dm1\r#vm0\r";

// The unit connected by a Read, the calculation on, the traffic cleared.
void readOnce(FrameBench &b)
{
    b.start();
    b.click("Command2");
    QCOMPARE(b.state().online, qint16(1));
    b.state().analyser.calculationOn = 1;
    showPanelSettings(b.ctx());
    b.sim.port->clearTraffic();
}

QByteArray sent(const FrameBench &b) { return b.sim.port->sentByProgram(); }

// The analyser's own answer to a query, asked past the port.
QByteArray asked(Analyser &a, const QByteArray &query)
{
    QByteArray reply;
    for (char c : query + '\r')
        reply += a.receive(c).reply;
    return reply.trimmed();
}

void enter(FrameBench &b, const char *field, const QString &typed)
{
    auto *edit = b.find<QLineEdit>(QLatin1String(field));
    edit->selectAll();
    QTest::keyClicks(edit, typed);
    QTest::keyClick(edit, Qt::Key_Return);
}

} // namespace

class MeasurementPanelTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { QStandardPaths::setTestModeEnabled(true); }
    void controlSendsItsCommand_data();
    void controlSendsItsCommand();
    void numberFieldIsClampedAndShown_data();
    void numberFieldIsClampedAndShown();
    void calculationRefusedWithMemoryAminusB();
    void spanChangeClearsTheTraces();
    void runningTestKeepsTheMeasurementTab();
    void traceFollowsSpanAroundCarrier();
};

void MeasurementPanelTest::controlSendsItsCommand_data()
{
    QTest::addColumn<QString>("control");
    QTest::addColumn<QByteArray>("wire");
    QTest::addColumn<QByteArray>("query");
    QTest::addColumn<QByteArray>("reply");
    QTest::newRow("span 30 after zero span") << "ospan_11" << "#sp30\r" + kRestart << QByteArray("#sp") << QByteArray("SP30");
    QTest::newRow("zero span") << "ospan_10" << "#sp0\r" + kRestart << QByteArray("#sp") << QByteArray("SP0");
    QTest::newRow("span 1000") << "ospan_0" << "#sp1000\r" + kRestart << QByteArray("#sp") << QByteArray("SP1000");
    QTest::newRow("bandwidth 9") << "obw_2" << "#bw9\r" + kRestart << QByteArray("#bw") << QByteArray("BW9");
    QTest::newRow("attenuator 40") << "oatt_4" << "#at40\r" + kRestart << QByteArray("#at") << QByteArray("AT40");
    QTest::newRow("memory A-B shown") << "omemb_2" << QByteArray() << QByteArray() << QByteArray();
    QTest::newRow("max hold trace") << "odet_4" << QByteArray("#vm4\r") << QByteArray("#vm") << QByteArray("VM4");
    QTest::newRow("memory A - B stops the calculation")
        << "odet_2" << "#dm0\r#vm2\r" + readAll(2) << QByteArray("#dm") << QByteArray("DM0");
    QTest::newRow("video filter") << "CVideo" << "#vf1\r" + kRestart << QByteArray("#vf") << QByteArray("VF1");
    QTest::newRow("5 dB per division") << "db" << "#db5\r" + kRestart << QByteArray("#db") << QByteArray("DB5");
    QTest::newRow("calculation off") << "detecCheck7" << QByteArray("#dm0\r#vm\r") << QByteArray("#dm")
                                     << QByteArray("DM0");
    QTest::newRow("tracking generator")
        << "ctrack" << QByteArray("#tl-50.0\r#tl\r#tg1\r#tl-50.0\r#tl\r") << QByteArray("#tg") << QByteArray("TG1");
    QTest::newRow("save A -> B") << "detecCommand1" << QByteArray("#sa\r") << QByteArray() << QByteArray();
    QTest::newRow("save memory") << "detecCommand2" << QByteArray("#sv1\r") << QByteArray() << QByteArray();
    QTest::newRow("recall memory") << "detecCommand3" << "#rc1\r" + kRestart + readAll(0) << QByteArray("#sp")
                                   << QByteArray("SP1000");
    QTest::newRow("reset calculation") << "detecCommand4" << kRestart << QByteArray("#dm") << QByteArray("DM1");
}

void MeasurementPanelTest::controlSendsItsCommand()
{
    QFETCH(QString, control);
    QFETCH(QByteArray, wire);
    QFETCH(QByteArray, query);
    QFETCH(QByteArray, reply);
    FrameBench b;
    readOnce(b);
    // The analyser calculates, as the program believes.
    asked(b.sim.analyser, "#dm1");
    b.sim.port->clearTraffic();
    QTest::mouseClick(b.find<QWidget>(control), Qt::LeftButton, {}, QPoint(8, 8));
    QCOMPARE(sent(b), wire);
    if (!query.isEmpty())
        QCOMPARE(asked(b.sim.analyser, query), reply);
    QVERIFY(b.prompts().unexpected.isEmpty());
}

void MeasurementPanelTest::numberFieldIsClampedAndShown_data()
{
    QTest::addColumn<QString>("field");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QByteArray>("wire");
    QTest::addColumn<QString>("shown");
    // The reference level is typed as the level at the input: the attenuator's 10 dB come off.
    QTest::newRow("ref level cut to -27") << "measText2" << "-16" << "#rl-27.0\r#vm0\r#rl\r#vm0\r" + kRestart
                                          << "-17.0";
    QTest::newRow("ref level with a comma") << "measText2" << "-40,5" << "#rl-50.5\r#vm0\r#rl\r#vm0\r" + kRestart
                                            << "-40.5";
    QTest::newRow("ref level cut to -99.8") << "measText2" << "-200" << "#rl-99.8\r#vm0\r#rl\r#vm0\r" + kRestart
                                            << "-89.8";
    QTest::newRow("centre below 0") << "measText1" << "-1" << "#cf0000.000\r" + kRestart << "0.000";
    QTest::newRow("centre above the range") << "measText1" << "2000" << "#cf1050.000\r" + kRestart << "1050.000";
    QTest::newRow("a lone sign sends nothing") << "measText1" << "-" << QByteArray() << "500.000";
    QTest::newRow("tracking level cut to 1") << "tgText1" << "5" << QByteArray("#tl+01.0\r#tl\r") << "1.0";
    QTest::newRow("tracking level cut to -50") << "tgText1" << "-60" << QByteArray("#tl-50.0\r#tl\r") << "-50.0";
}

void MeasurementPanelTest::numberFieldIsClampedAndShown()
{
    QFETCH(QString, field);
    QFETCH(QString, typed);
    QFETCH(QByteArray, wire);
    QFETCH(QString, shown);
    FrameBench b;
    readOnce(b);
    enter(b, qPrintable(field), typed);
    QCOMPARE(sent(b), wire);
    QCOMPARE(b.find<QLineEdit>(field)->text(), shown);
}

void MeasurementPanelTest::calculationRefusedWithMemoryAminusB()
{
    FrameBench b;
    readOnce(b);
    b.state().analyser.calculationOn = 0;
    QTest::mouseClick(b.find<QWidget>("odet_2"), Qt::LeftButton, {}, QPoint(8, 8));
    b.sim.port->clearTraffic();
    auto *calculation = b.find<QCheckBox>("detecCheck7");
    calculation->click();
    QVERIFY(!calculation->isChecked());
    QCOMPARE(b.state().analyser.calculationOn, quint8(0));
    QCOMPARE(sent(b), QByteArray());
}

void MeasurementPanelTest::spanChangeClearsTheTraces()
{
    FrameBench b;
    readOnce(b);
    AppState &s = b.state();
    QVERIFY(s.chart.grafikMin < s.chart.grafikMax);
    QTest::mouseClick(b.find<QWidget>("ospan_3"), Qt::LeftButton, {}, QPoint(8, 8));
    QCOMPARE(sent(b), "#sp100\r" + kRestart);
    QCOMPARE(s.analyser.span, qint16(100));
    QVERIFY(std::all_of(s.traces.sampleTrace.begin() + 1, s.traces.sampleTrace.begin() + 2002,
                        [](qint16 v) { return v == 0; }));
    QCOMPARE(s.chart.grafikMin, qint16(1000));
    QCOMPARE(s.repaintRequest, quint8(1));
}

void MeasurementPanelTest::runningTestKeepsTheMeasurementTab()
{
    FrameBench b;
    b.start();
    auto *tabs = b.find<QTabWidget>("grtab");
    b.state().emcRunActive = 1;
    tabs->setCurrentIndex(3);
    QCOMPARE(tabs->currentIndex(), 0);
    b.state().emcRunActive = 0;
    tabs->setCurrentIndex(3);
    QCOMPARE(tabs->currentIndex(), 3);
}

// A harmonic of the simulated device at 240 MHz, in a span of 100 MHz around it: after the next
// Read the chart runs from 190 to 290 MHz and the trace peaks in its middle.
void MeasurementPanelTest::traceFollowsSpanAroundCarrier()
{
    FrameBench b;
    readOnce(b);
    enter(b, "measText1", "240");
    QTest::mouseClick(b.find<QWidget>("ospan_3"), Qt::LeftButton, {}, QPoint(8, 8));
    b.click("Command2");
    const AppState &s = b.state();
    QCOMPARE(b.sim.analyser.panel.centerFrequency, 240.0);
    QCOMPARE(s.chart.startFrequency, 190.0f);
    QCOMPARE(s.chart.stopFrequency, 290.0f);
    const auto &trace = s.traces.sampleTrace;
    const auto peak = std::max_element(trace.begin() + 1, trace.begin() + 2002);
    QVERIFY2(std::abs(int(peak - trace.begin()) - 1000) <= 3, "the carrier lies in the middle");
    // -35 dBm less 14 dB for the fifth harmonic, lifted 6 dB by the resonance: about -43 dBm.
    QVERIFY2(std::abs(*peak / 2.5 + 43.2) < 3.0, qPrintable(QString::number(*peak / 2.5)));
    QCOMPARE(b.find<QRadioButton>("ospan_3")->isChecked(), true);
    QCOMPARE(b.find<QLineEdit>("measText1")->text(), QStringLiteral("240.000"));
}

QTEST_MAIN(MeasurementPanelTest)
#include "measurement_panel_test.moc"
