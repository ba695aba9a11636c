#pragma once

#include "platform/system/ErrorCodes.h"

#include <cstdint>
#include <string>

namespace thntfs {

// Whether a copy of a whole medium may begin: what its source and its target must be to each other.
// What files that are got back may be written to stands in content/TargetRules.h.

/// Why a copy may not begin.
enum class CopyRefusal {
    None,           ///< it may
    OneMedium,      ///< source and target are one disk or image file
    TargetOnSource, ///< the target is a file on the source, which writing it would change
    SourceOnTarget, ///< the source lies on the target, and would be written over by its own copy
    TargetInUse,    ///< the target, or a part of it, is mounted or swapped to
    TargetTooSmall, ///< the target has fewer bytes than the copy
    TooLittleRoom,  ///< the target's file system has too few bytes free

    // Of an image file and its map.
    ImageExists,    ///< it is there, and nobody asked to go on with it
    MapExists,      ///< its map is there without it
    NoImage,        ///< it isn't there, and is to be gone on with
    NoImageFile,    ///< what is to be gone on with is no ordinary file
    BadMap,         ///< its map can't be used: Detail
    OtherSerial,    ///< it was taken from the disk with the serial number Detail
    ShorterThanMap, ///< it holds less than its map says
    OtherSize,      ///< its stamps tell of a source of another size or with other sectors
    OtherContents,  ///< a sector that was copied doesn't stand on the source: Sector
    SourceUnknown,  ///< it was begun from the source Detail, and nothing of it could be compared

    // The system's refusals: Code.
    CannotMake,
    CannotOpen,
    CannotRead,
    CannotWrite, ///< the target can't be opened for writing
    TargetHeld,  ///< somebody else has the target to himself
    SourceEmpty  ///< the source has not one sector
};

struct CopyVerdict {
    CopyRefusal Why = CopyRefusal::None;
    std::string Path;         ///< file or device that it is about
    std::uint64_t Needed = 0; ///< bytes, for the two of size
    std::uint64_t There = 0;  ///< bytes, for the two of size
    std::uint64_t Sector = 0; ///< of the source
    ErrorCode Code = kErrorNone;
    std::string Detail;

    [[nodiscard]] bool Allowed() const { return Why == CopyRefusal::None; }
};

/// Looks at where the two lie, in both directions, and whether the target is in use. The target need not
/// exist.
CopyVerdict CheckCopyPlaces(const std::string& source, const std::string& target);

/// Whether SourceDisk, opened by this path, has anything to copy.
CopyVerdict CheckSource(const std::string& path);

/// Whether a target of so many bytes is large enough for a copy of SourceDisk.
CopyVerdict CheckTargetSize(const std::string& target, std::uint64_t targetBytes);

/// Whether there is room for an image of SourceDisk and its map, of which `bytesThere` are written already.
CopyVerdict CheckImageRoom(const std::string& image, std::uint64_t bytesThere);

/// What there is to mind where the source is in use, in a sentence; empty where it isn't.
std::string MountedRemark(const std::string& source);

/// What a refusal says to the user, in full sentences: what is in the way and what to do. `source` is the
/// path of the medium that was to be copied.
std::string CopyRefusalText(const CopyVerdict& verdict, const std::string& source);

} // namespace thntfs
