#pragma once
// Runs the built delfor-cli with arguments and keeps what it printed.

#include <QProcess>
#include <QString>
#include <QStringList>

struct CliRun {
    int exitCode;
    QString out;
    QString err;
};

inline CliRun cli(const QStringList &args)
{
    QProcess p;
    p.start(qEnvironmentVariable("DELFOR_BIN") + "/delfor-cli", args);
    if (!p.waitForFinished(20000))
        return {-1, {}, "did not finish"};
    return {p.exitCode(), QString::fromLocal8Bit(p.readAllStandardOutput()),
            QString::fromLocal8Bit(p.readAllStandardError())};
}
