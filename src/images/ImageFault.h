#pragma once

#include "images/ImageKind.h"
#include "platform/system/ErrorCodes.h"

#include <string>

namespace thntfs {

/// Why an image can't be opened. Thrown within this folder only.
struct ImageFault {
    std::string Why; ///< a sentence for the user
    ErrorCode Code = kErrorImage;
};

ImageFault MissingLibrary(ImageKind kind, const std::string& library);
ImageFault DamagedImage(ImageKind kind);
ImageFault TooManyLayers();
ImageFault NoMemoryForImage();

} // namespace thntfs
