#pragma once

#include <cstdint>

namespace thntfs {

class CopyMap;
class File;

// Other copiers keep maps like ours, and leave images that aren't stamped and that end with the last sector
// they could read.

/// The end of what a map says has been read, in bytes, and of what has been tried.
std::uint64_t ReadEnd(const CopyMap& map);
std::uint64_t TriedEnd(const CopyMap& map);

/// Whether the image's first sector carries the stamps of SourceDisk.
bool IsStampedForSource(File& image);

/// Whether what stands in their places is SourceDisk's own, or nothing where that could not be read. True
/// where it can't be told.
bool IsUnstampedCopy(File& image, const CopyMap& map);

/// Makes of an image what a copy of ours would have left up to here: stamped, with zeros for bad sectors up
/// to the last one that has been tried. Throws CUserException, after a box, where it can't be written.
void AdoptImage(File& image, const CopyMap& map);

} // namespace thntfs
