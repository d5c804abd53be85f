#pragma once
// delfor-cli limits and delfor-cli components: the list of a catalogue, and CSV import and export
// of one limit line or loss/gain component; delfor-cli tests: the list of the EMC tests. On the
// user's working database or on --database FILE.

#include <QStringList>

// `args` starts with the subcommand ("limits", "components" or "tests"). Exit code: 0 done, 1 the work
// failed (refused file, unknown name, no working database), 2 bad arguments.
int catalogueCommand(const QStringList &args);
