#pragma once

#include <string>
#include <vector>

namespace thntfs {

/// Tells that the terminal program does a copy that this program doesn't do yet. `work` begins the sentence,
/// `words` is the command's line behind the program's name.
void TellCopyNotBuilt(const char* work, const std::vector<std::string>& words);

} // namespace thntfs
