#pragma once

#include "cli/Options.h"

namespace thntfs {

// Each runs one command from its words to its exit code.

int RunPartitions(const Options& options);
int RunScan(const Options& options);
int RunList(const Options& options);
int RunFind(const Options& options);
int RunCat(const Options& options);
int RunSave(const Options& options);
int RunDisks(const Options& options);
int RunImage(const Options& options);
int RunClone(const Options& options);
int RunMount(const Options& options);

} // namespace thntfs
