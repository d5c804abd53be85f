// delfor-cli identify and read succeed only when the unit is given back to local operation.

#include "cli/unit_commands.h"
#include "output/logic_wiring.h"
#include "support/sim_bench.h"

#include <QTemporaryDir>
#include <QTest>

#include <cstdio>

namespace {

// Runs one command on a fresh bench; the analyser hears nothing from its byte `deafFrom` on (0: it
// hears all).
struct CommandRun {
    int exitCode;
    QStringList boxes;
    long printed;    // bytes identify printed
    bool csvWritten; // by read
    qint64 received; // bytes the analyser heard
};

CommandRun runCommand(const QString &command, qint64 deafFrom)
{
    SimBench b;
    attachLogic(*b.ctx);
    b.state().comPort = 0;
    for (qint64 n = deafFrom; n > 0 && n < deafFrom + 100; ++n)
        b.analyser.lostOnTheWay.insert(n);
    QTemporaryDir dir;
    ReadRequest request;
    request.csv = dir.filePath("trace.csv");
    std::FILE *out = std::tmpfile();
    const int code = command == "identify" ? identifyUnit(*b.ctx, out) : readUnit(*b.ctx, request);
    const long printed = std::ftell(out);
    std::fclose(out);
    return {code, b.prompts->messages(), printed, QFile::exists(request.csv), b.analyser.received()};
}

} // namespace

class CliReturnToLocalTest : public QObject {
    Q_OBJECT

private slots:
    void commandFailsWhenUnitStaysRemote_data();
    void commandFailsWhenUnitStaysRemote();
};

void CliReturnToLocalTest::commandFailsWhenUnitStaysRemote_data()
{
    QTest::addColumn<QString>("command");
    QTest::newRow("identify") << "identify";
    QTest::newRow("read") << "read";
}

// The last command of a clean run is "#kl0\r"; the analyser that does not hear it stays remote.
void CliReturnToLocalTest::commandFailsWhenUnitStaysRemote()
{
    QFETCH(QString, command);
    const CommandRun clean = runCommand(command, 0);
    QCOMPARE(clean.exitCode, 0);
    QVERIFY(clean.boxes.isEmpty());
    QCOMPARE(clean.printed > 0 || clean.csvWritten, true);

    const CommandRun remote = runCommand(command, clean.received - 4);
    QCOMPARE(remote.exitCode, 1);
    QCOMPARE(remote.boxes, QStringList{"Serial - Error| Data send error ( #kl0 )"});
    QCOMPARE(remote.printed, 0L);
    QVERIFY(!remote.csvWritten);
}

QTEST_GUILESS_MAIN(CliReturnToLocalTest)
#include "cli_return_to_local_test.moc"
