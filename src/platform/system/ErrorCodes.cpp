#include "platform/system/ErrorCodes.h"

#include <algorithm>
#include <iterator>
#include <string_view>

namespace thntfs {

namespace {

struct CodeText {
    ErrorCode Code;
    std::string_view Text;
};

constexpr CodeText kTexts[] = {
    {kErrorNone, "The operation completed successfully."},
    {kErrorFileNotFound, "The system cannot find the file specified."},
    {kErrorPathNotFound, "The system cannot find the path specified."},
    {kErrorTooManyOpenFiles, "The system cannot open the file."},
    {kErrorAccessDenied, "Access is denied."},
    {kErrorInvalidHandle, "The handle is invalid."},
    {kErrorNotEnoughMemory, "Not enough memory resources are available to process this command."},
    {kErrorWriteProtect, "The media is write protected."},
    {kErrorNotReady, "The device is not ready."},
    {kErrorCrc, "Data error (cyclic redundancy check)."},
    {kErrorSectorNotFound, "The drive cannot find the sector requested."},
    {kErrorGeneralFailure, "A device attached to the system is not functioning."},
    {kErrorSharingViolation,
     "The process cannot access the file because it is being used by another process."},
    {kErrorFileExists, "The file exists."},
    {kErrorInvalidParameter, "The parameter is incorrect."},
    {kErrorBrokenPipe, "The pipe has been ended."},
    {kErrorDiskFull, "There is not enough space on the disk."},
    {kErrorInvalidName, "The filename, directory name, or volume label syntax is incorrect."},
    {kErrorFilenameTooLong, "The filename or extension is too long."},
    {kErrorFileTooLarge, "The file size exceeds the limit allowed and cannot be saved."},
    {kErrorDirectory, "The directory name is invalid."},
    {kErrorIoDevice, "The request could not be performed because of an I/O device error."},
    {kErrorCancelled, "The operation was canceled by the user."},
    {kErrorInvalidUserBuffer, "The supplied user buffer is not valid for the requested operation."},
};

} // namespace

std::string SystemErrorText(ErrorCode code) {
    const auto* found = std::find_if(std::begin(kTexts), std::end(kTexts),
                                     [code](const CodeText& t) { return t.Code == code; });
    if (found == std::end(kTexts)) {
        return "Unknown error " + std::to_string(code) + ".";
    }
    return std::string(found->Text);
}

} // namespace thntfs
