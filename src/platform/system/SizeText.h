#pragma once

#include <cstdint>
#include <string>

namespace thntfs {

// Sizes in bytes for people. KB, MB and GB are 1024, 1024 * 1024 and 1024 * 1024 * 1024 bytes.

/// In columns: seven places wide with three decimals, in KB below 1,048,576 bytes, in MB below 1,073,741,824,
/// else in GB. 512 gives "  0.500 KB".
std::string SizeText(std::uint64_t bytes);

/// In sentences: "512 bytes", "4.0 KB", "1.2 MB", "3.4 GB".
std::string ByteText(std::uint64_t bytes);

/// Of a whole disk: "3.00 MB", from one GB on "1.00 GB".
std::string DiskSizeText(std::uint64_t bytes);

/// Of a stretch of a disk: "1024 bytes", "1.25 MB". Just one unit is still told in the smaller one.
std::string StretchSizeText(std::uint64_t bytes);

/// A stretch of time: "0:07", "1:02:03"; 99:59:59 at most.
std::string DurationText(double seconds);

/// The same for guesses, rounded up: "5 s", "12 min", "1 h 20 min", "31 h".
std::string RoughTimeText(double seconds);

/// A number of things for people: "1 file", "2 files".
std::string CountText(std::uint64_t count, const std::string& one, const std::string& more);

} // namespace thntfs
