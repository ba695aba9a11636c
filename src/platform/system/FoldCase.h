#pragma once

#include <string>
#include <string_view>

namespace thntfs {

/// UTF-16 text with each letter in its lower case, in every script that has two. Texts that differ in case
/// alone give the same.
std::u16string FoldCase(std::u16string_view text);

} // namespace thntfs
