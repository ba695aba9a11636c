#pragma once

#include "platform/system/ErrorCodes.h"

#include <string>
#include <vector>

namespace thntfs {

/// Of a device with sectors that this program can't read: no power of two, below 512 or above 32768 bytes.
inline constexpr ErrorCode kErrorSectorSize = 1106;

/// Opens a disk, by the path of its block device, as SourceDisk: sector size and size as the device states
/// them. Whatever was open before is closed first. Gives 0 or the failure's code, with SourceDisk left empty.
ErrorCode OpenPhysicalDisk(const std::string& devicePath);

/// Opens an image file as SourceDisk, in any of the formats that OpenAnyMedium knows. The sector size is the
/// one that the format states, or stamped at byte 444, or 512; the size in sectors is the file's length / the
/// sector size, a rest dropped. Sets ImagePath and ImageFolder. Gives 0 or the failure's code, with
/// SourceDisk left empty.
ErrorCode OpenImageFile(const std::string& imagePath);

/// Opens either, by what stands under the path.
ErrorCode OpenSource(const std::string& path);

/// Takes the medium that is open as SourceDisk's handle for a device or an image, as the calls above do.
ErrorCode TakeSource(const std::string& path);

/// The text for a code that one of them gave.
std::string OpenErrorText(ErrorCode code);

/// What a user is told whose medium can't be opened, a sentence or two a line.
std::vector<std::string> OpenFailureLines(const std::string& path, ErrorCode code);

/// True where SourceDisk is a device and not an image file.
bool SourceIsDevice();

/// Whether SourceDisk gives anything at all.
struct MediumAnswer {
    ErrorCode FirstSector = kErrorNone; ///< of reading sector 0
    bool Answers = true; ///< sector 0 or another one, of a few all over the medium, can be read
};

/// Tries it, without a line in the log. A device that isn't there is asked once only.
MediumAnswer AskMedium();

} // namespace thntfs
