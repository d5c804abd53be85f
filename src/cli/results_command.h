#pragma once
// delfor-cli results: the result table of a stored EMC run, as an aligned table on standard output
// or as CSV, optionally held against a second stored file.

#include <QStringList>

// `args` starts with "results". Exit code: 0 done, 1 a file was refused, the working database is
// missing or the output could not be written, 2 bad arguments.
int resultsCommand(const QStringList &args);
