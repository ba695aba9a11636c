#pragma once

#include <cstdint>
#include <string>

namespace thntfs {

/// A size for people: seven places wide with three decimals, in KB below 1,048,576 bytes, in MB below
/// 1,073,741,824, else in GB. 512 gives "  0.500 KB".
std::string SizeText(std::uint64_t bytes);

/// A number with a fixed count of decimals, rounded, and a point before them whatever the user's language
/// writes there.
std::string DecimalText(double number, int decimals);

} // namespace thntfs
