#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace thntfs {

/// The path from the root on, without ".", ".." and double or closing slashes. Works on the text alone: it
/// follows no link and nothing need exist. An empty path stays empty.
std::string AbsolutePath(const std::string& path);

/// The path itself or the nearest of its parents that exists, "/" at last. Takes any path, gives an absolute
/// one; empty for an empty path.
std::string NearestExisting(const std::string& path);

/// What a link leads to, through any number of links, whether it exists or not; any other path as it is.
std::string BehindLinks(const std::string& path);

/// Bytes that this user may still write at a path, or at the nearest of its parents that exists. None where
/// the system doesn't tell.
std::optional<std::uint64_t> FreeBytesAt(const std::string& path);

} // namespace thntfs
