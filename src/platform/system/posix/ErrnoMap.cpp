#include "platform/system/posix/ErrnoMap.h"

#include <cerrno>

namespace thntfs {

namespace {

/// What means the same on a medium and on an ordinary file.
ErrorCode CommonError(int number) {
    switch (number) {
    case ENOENT:
        return kErrorFileNotFound;
    case ENOTDIR:
    case ELOOP:
        return kErrorPathNotFound;
    case EMFILE:
    case ENFILE:
        return kErrorTooManyOpenFiles;
    case EACCES:
    case EPERM:
        return kErrorAccessDenied;
    case EBADF:
        return kErrorInvalidHandle;
    case ENOMEM:
        return kErrorNotEnoughMemory;
    case ENXIO:
    case ENODEV:
    case ENOMEDIUM:
    case ESHUTDOWN:
    case ENOTCONN:
    case ESTALE:
    case EREMCHG:
        return kErrorNotReady;
    case EINVAL:
        return kErrorInvalidParameter;
    case ENAMETOOLONG:
        return kErrorFilenameTooLong;
    case EISDIR:
        return kErrorDirectory;
    case EFAULT:
        return kErrorInvalidUserBuffer;
    default:
        return kErrorGeneralFailure;
    }
}

} // namespace

ErrorCode MediumErrorOfErrno(int number) {
    switch (number) {
    case EIO:
    case ENODATA:
    case EILSEQ:
    case EBADMSG:
    case EUCLEAN:
        return kErrorCrc;
    case ETIMEDOUT:
    case ETIME:
    case EAGAIN:
    case EBUSY:
    case EBADE:
    case ENOLINK:
    case EREMOTEIO:
    case ECOMM:
    case EPROTO:
    case ECONNRESET:
    case ECONNABORTED:
    case EHOSTDOWN:
    case EHOSTUNREACH:
    case ENETDOWN:
    case ENETRESET:
    case ENETUNREACH:
        return kErrorIoDevice;
    default:
        return CommonError(number);
    }
}

ErrorCode FileErrorOfErrno(int number) {
    switch (number) {
    case EROFS:
        return kErrorWriteProtect;
    case EBUSY:
    case ETXTBSY:
    case EAGAIN:
        return kErrorSharingViolation;
    case EEXIST:
    case ENOTEMPTY:
        return kErrorFileExists;
    case EPIPE:
        return kErrorBrokenPipe;
    case ENOSPC:
    case EDQUOT:
        return kErrorDiskFull;
    case EILSEQ:
        return kErrorInvalidName;
    case EFBIG:
    case EOVERFLOW:
        return kErrorFileTooLarge;
    case EIO:
    case ENODATA:
    case EBADMSG:
    case EUCLEAN:
    case ETIMEDOUT:
    case ETIME:
    case ENOLINK:
    case EREMOTEIO:
    case ECOMM:
    case ECONNRESET:
        return kErrorIoDevice;
    default:
        return CommonError(number);
    }
}

} // namespace thntfs
