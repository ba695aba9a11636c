#include "platform/system/ErrorCodes.h"

#include "platform/system/CoreText.h"

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
    {kErrorNone, CoreText("Core", "The operation completed successfully.")},
    {kErrorFileNotFound, CoreText("Core", "The system cannot find the file specified.")},
    {kErrorPathNotFound, CoreText("Core", "The system cannot find the path specified.")},
    {kErrorTooManyOpenFiles, CoreText("Core", "The system cannot open the file.")},
    {kErrorAccessDenied, CoreText("Core", "Access is denied.")},
    {kErrorInvalidHandle, CoreText("Core", "The handle is invalid.")},
    {kErrorNotEnoughMemory,
     CoreText("Core", "Not enough memory resources are available to process this command.")},
    {kErrorImage, CoreText("Core", "The image is damaged, not whole, or of a kind that can't be read.")},
    {kErrorWriteProtect, CoreText("Core", "The media is write protected.")},
    {kErrorNotReady, CoreText("Core", "The device is not ready.")},
    {kErrorCrc, CoreText("Core", "Data error (cyclic redundancy check).")},
    {kErrorSectorNotFound, CoreText("Core", "The drive cannot find the sector requested.")},
    {kErrorGeneralFailure, CoreText("Core", "A device attached to the system is not functioning.")},
    {kErrorSharingViolation,
     CoreText("Core", "The process cannot access the file because it is being used by another process.")},
    {kErrorFileExists, CoreText("Core", "The file exists.")},
    {kErrorInvalidParameter, CoreText("Core", "The parameter is incorrect.")},
    {kErrorBrokenPipe, CoreText("Core", "The pipe has been ended.")},
    {kErrorDiskFull, CoreText("Core", "There is not enough space on the disk.")},
    {kErrorInvalidName,
     CoreText("Core", "The filename, directory name, or volume label syntax is incorrect.")},
    {kErrorFilenameTooLong, CoreText("Core", "The filename or extension is too long.")},
    {kErrorFileTooLarge, CoreText("Core", "The file size exceeds the limit allowed and cannot be saved.")},
    {kErrorDirectory, CoreText("Core", "The directory name is invalid.")},
    {kErrorFileInvalid, CoreText("Core", "The volume for a file has been externally altered so that the "
                                         "opened file is no longer valid.")},
    {kErrorServiceNotActive, CoreText("Core", "The service has not been started.")},
    {kErrorIoDevice, CoreText("Core", "The request could not be performed because of an I/O device error.")},
    {kErrorCancelled, CoreText("Core", "The operation was canceled by the user.")},
    {kErrorPrivilegeNotHeld, CoreText("Core", "A required privilege is not held by the client.")},
    {kErrorInvalidUserBuffer,
     CoreText("Core", "The supplied user buffer is not valid for the requested operation.")},
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
