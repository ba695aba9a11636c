#pragma once

#include "images/ImageKind.h"
#include "platform/media/Medium.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace thntfs {

/// Images that build on images that build on images: no more than this many.
inline constexpr unsigned kMostLayers = 32;

/// An image that is about to be opened by the library of its format.
struct ImageSource {
    std::string Path;
    ImageKind Kind = ImageKind::Raw;
    std::unique_ptr<Medium> File; ///< open, with the path's contents
    unsigned Layer = 0;           ///< images that build on it and have led here
};

// Each by its library, in a file of its own. All throw ImageFault, also where the build lacks the library.
std::unique_ptr<Medium> OpenEwf(ImageSource source);
std::unique_ptr<Medium> OpenVhd(ImageSource source); ///< VHD and VHDX
std::unique_ptr<Medium> OpenVmdk(ImageSource source);
std::unique_ptr<Medium> OpenQcow(ImageSource source);

/// Opens a file that an image builds on, whatever its format. Throws ImageFault.
std::unique_ptr<Medium> OpenLayerBelow(const std::string& path, unsigned layer);

/// A file name that an image holds, as a path: relative ones are meant from the image's folder. Backslashes
/// part folders where the name has no slash. Throws ImageFault for an address and for an empty name.
std::string PathNamedBy(const ImageSource& source, const std::string& name);

} // namespace thntfs
