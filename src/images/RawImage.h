#pragma once

#include "platform/media/Medium.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace thntfs {

/// A regular file as a medium, links followed. What another image names is opened by this alone: a device or
/// a pipe in its place would be somebody else's choice. Throws ImageFault, which names the file as `role`
/// ("piece", "image that it builds on").
std::unique_ptr<Medium> OpenImageFilePart(const std::string& path, const std::string& role);

/// The pieces of a raw image whose first one's path is given: NAME.001 (or NAME.000) and those whose numbers
/// follow. One path where it isn't one of several. Throws ImageFault where a number is left out.
std::vector<std::string> PiecesOfImage(const std::string& path);

/// A raw image in pieces, one behind the other, each as long as it is now. Throws ImageFault, also where
/// pieces before the last have other sizes than the first.
std::unique_ptr<Medium> JoinPieces(const std::vector<std::string>& paths);

/// The first `bytes` of a medium.
std::unique_ptr<Medium> CutMedium(std::unique_ptr<Medium> whole, std::uint64_t bytes);

} // namespace thntfs
