#pragma once

#include "platform/Bytes.h"
#include "platform/ErrorCodes.h"

#include <string>

namespace thntfs {

/// Gives a file new content so that at any moment, a crash included, either the old or the new content stands
/// under its name, whole. Works through a file with ".new" behind the name, which it replaces if one is left
/// over from an earlier run. A failure leaves the old content.
ErrorCode ReplaceFile(const std::string& path, ConstBytes content);

} // namespace thntfs
