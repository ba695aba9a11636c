#pragma once

#include <locale.h>

namespace thntfs {

/// A locale that knows the letters of all scripts, in UTF-8, and no user's own rules; null where the system
/// has none.
locale_t NeutralLocale();

} // namespace thntfs
