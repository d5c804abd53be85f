#pragma once
// delfor-cli export: a stored measurement (.mes or .emc) as CSV, in the format of the Data menu's
// "Export CSV...".

#include <QStringList>

// `args` starts with "export". Exit code: 0 done, 1 the file was refused or the CSV could not be
// written, 2 bad arguments.
int exportCommand(const QStringList &args);
