#pragma once
// delfor-cli emc: one EMC test run through the program's own run controller, with the operator's
// boxes on standard output (Enter goes on, or --yes), the progress on standard error, and Ctrl-C
// taken as the Stop button.

#include "core/context.h"

#include <memory>
#include <optional>

struct EmcRequest {
    QString test;
    QString out;
    std::optional<QString> database; // the working database of the data folder when unset
    bool yes = false;
};

// The prompts of the run's context, which emcCommand needs: the operator's boxes on standard
// output, the file of --out, the first failure of the link kept.
std::unique_ptr<Prompts> runPrompts(const EmcRequest &request);

// Exit code: 0 the run completed, 1 it ended on a link failure (or no working database),
// 2 the test is unknown, 130 stopped by Ctrl-C. The file keeps every finished row in all cases.
int emcCommand(Context &ctx, const EmcRequest &request);
