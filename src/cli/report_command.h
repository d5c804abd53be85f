#pragma once
// delfor-cli report: a stored measurement (.mes or .emc) rendered without a screen through the
// program's report, as a PDF file, and the chart alone as a PNG picture.

#include <QStringList>

// `args` starts with "report". Exit code: 0 done, 1 the file was refused or an output could not
// be written, 2 bad arguments.
int reportCommand(const QStringList &args);
