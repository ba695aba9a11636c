#include "images/ImageLibrary.h"

#include "images/ImageFault.h"
#include "platform/files/Paths.h"
#include "platform/system/CoreText.h"

#include <algorithm>

namespace thntfs {

std::string PathNamedBy(const ImageSource& source, const std::string& name) {
    if (name.empty() || name.find("://") != std::string::npos || name.starts_with("json:")) {
        throw ImageFault{"It builds on something that is no file: \"" + name + "\"."};
    }
    std::string path = name;
    if (path.find('/') == std::string::npos && path.find('\\') != std::string::npos) {
        std::replace(path.begin(), path.end(), '\\', '/');
        const bool hasDrive = path.size() > 1 && path[1] == ':';
        path = hasDrive ? path.substr(path.rfind('/') + 1) : path;
    }
    const std::string self = AbsolutePath(source.Path);
    return path.starts_with('/') ? path : AbsolutePath(self.substr(0, self.rfind('/') + 1) + path);
}

ImageFault MissingLibrary(ImageKind kind, const std::string& library) {
    return {std::string("This is an image in the format ") + NameOfKind(kind) +
            ", which this build can't read: it was built without " + library + "."};
}

ImageFault DamagedImage(ImageKind kind) {
    return {std::string("It is an image in the format ") + NameOfKind(kind) +
            ", but a damaged one, a part of one, or of a kind that can't be read."};
}

ImageFault TooManyLayers() {
    return {"It builds on an image that builds on another one, and so on for more than " +
            std::to_string(kMostLayers) + " images, or in a circle."};
}

ImageFault NoMemoryForImage() { return {CoreText("Core", "There isn't enough memory to open it.")}; }

} // namespace thntfs
