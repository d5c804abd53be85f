#pragma once
// delfor-cli identify and delfor-cli read: the work on the unit, over the link of the context.
// Both end by giving the unit back to local operation; a unit that does not go back is a failure,
// since its keys stay locked. Exit code: 0 done, 1 failed, the reason on stderr.

#include "core/context.h"

#include <QStringList>

#include <cstdio>
#include <memory>
#include <optional>

struct ReadRequest {
    QStringList traces{"sample"}; // of sample, average, maxhold, memory
    QString csv = QStringLiteral("-"); // "-" is standard output
    std::optional<QString> mes;
};

// Prints model and firmware to `out`.
int identifyUnit(Context &ctx, std::FILE *out = stdout);
// Reads the panel and the traces asked for and writes them as CSV (and as a .mes file).
int readUnit(Context &ctx, const ReadRequest &request);

// "delfor-cli: <message>" on stderr; gives the exit code 1.
int fail(const QString &message);
// Bad arguments: the usage and the message on stderr; gives the exit code 2.
int refuseArguments(const char *usage, const QString &message);
// Opens the working database that --database names (never created) or, without it, the one of the
// user's data folder; false, with the reason on stderr, when there is none to work on.
bool openCliDatabase(Context &ctx, const std::optional<QString> &database);
// A context without an analyser, for the commands on files and the catalogue: console prompts, the
// system clock, a port that is never opened, and the program's logic attached.
std::unique_ptr<Context> offlineContext();
// Writes the bytes whole to standard output for "-", otherwise to a file that replaces an old one
// only when complete.
bool writeOut(const QString &path, const QByteArray &bytes);
