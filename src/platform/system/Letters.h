#pragma once

namespace thntfs {

/// The small letter that belongs to a capital of any script, one for one; anything else stays as it is.
char32_t SmallLetter(char32_t letter);

} // namespace thntfs
