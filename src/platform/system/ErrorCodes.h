#pragma once

#include <cstdint>
#include <string>

namespace thntfs {

/// Number of a failure as the engine reasons with it. The numbers are those of the Win32 interface; every
/// platform folder maps its own failures to them. 0 is success.
using ErrorCode = std::uint32_t;

inline constexpr ErrorCode kErrorNone = 0;
inline constexpr ErrorCode kErrorFileNotFound = 2;
inline constexpr ErrorCode kErrorPathNotFound = 3;
inline constexpr ErrorCode kErrorTooManyOpenFiles = 4;
inline constexpr ErrorCode kErrorAccessDenied = 5;
inline constexpr ErrorCode kErrorInvalidHandle = 6;
inline constexpr ErrorCode kErrorNotEnoughMemory = 8;
inline constexpr ErrorCode kErrorImage = 11;
inline constexpr ErrorCode kErrorWriteProtect = 19;
inline constexpr ErrorCode kErrorNotReady = 21;
inline constexpr ErrorCode kErrorCrc = 23;
inline constexpr ErrorCode kErrorSectorNotFound = 27;
inline constexpr ErrorCode kErrorGeneralFailure = 31;
inline constexpr ErrorCode kErrorSharingViolation = 32;
inline constexpr ErrorCode kErrorFileExists = 80;
inline constexpr ErrorCode kErrorInvalidParameter = 87;
inline constexpr ErrorCode kErrorBrokenPipe = 109;
inline constexpr ErrorCode kErrorDiskFull = 112;
inline constexpr ErrorCode kErrorInvalidName = 123;
inline constexpr ErrorCode kErrorAlreadyExists = 183;
inline constexpr ErrorCode kErrorFilenameTooLong = 206;
inline constexpr ErrorCode kErrorFileTooLarge = 223;
inline constexpr ErrorCode kErrorDirectory = 267;
inline constexpr ErrorCode kErrorFileInvalid = 1006;
inline constexpr ErrorCode kErrorServiceNotActive = 1062;
inline constexpr ErrorCode kErrorIoDevice = 1117;
inline constexpr ErrorCode kErrorCancelled = 1223;
inline constexpr ErrorCode kErrorPrivilegeNotHeld = 1314;
inline constexpr ErrorCode kErrorInvalidUserBuffer = 1784;

/// The system's text for a code, one sentence without a line end. A code without a text of its own gives
/// "Unknown error N.".
std::string SystemErrorText(ErrorCode code);

} // namespace thntfs
