#pragma once

#include "scaninfo/ScanInfo.h"
#include "scaninfo/ScanInfoIo.h"
#include "scaninfo/ScanInfoNames.h"

#include <functional>

namespace thntfs {

// What the two scan information files have in common.

inline constexpr std::uint32_t kTreeInfoMagic = 0x01010000;
inline constexpr std::uint32_t kPartitionInfoMagic = 0x00000101;

/// The words of one of the two files in the process log.
struct ScanInfoTexts {
    const char* Name; ///< what the user knows it as
    const char* Invalid;
};

inline constexpr ScanInfoTexts kTreeInfoTexts{"Partition scan information",
                                              "Not a valid Partition scan information."};
inline constexpr ScanInfoTexts kPartitionInfoTexts{"Disk scan information",
                                                   "Not a valid Disk scan information"};

/// Writes a file at a place, from the log line that begins it to the one that ends it. `write` puts the
/// content.
ScanInfoResult RunScanInfoSave(const ScanInfoPlace& place, const ScanInfoTexts& texts,
                               const std::function<void(ScanInfoWriter&)>& write);

/// The line that begins a load.
void LogScanInfoLoad(const ScanInfoPlace& place);

/// The rest of a load, to the line that ends it. `read` takes the content, and throws what ends it. On
/// failure the engine state is reset.
ScanInfoResult RunScanInfoLoad(const ScanInfoPlace& place, const ScanInfoTexts& texts,
                               const std::function<void(ScanInfoReader&)>& read);

/// Puts a magic number, SourceDisk and its candidates.
void PutMediumAndCandidates(ScanInfoWriter& writer, std::uint32_t magic);

/// Takes the same into SourceDisk, without opening the medium.
void TakeMediumAndCandidates(ScanInfoReader& reader, std::uint32_t magic);

/// Opens the medium that SourceDisk describes.
void OpenDescribedMedium();

} // namespace thntfs
