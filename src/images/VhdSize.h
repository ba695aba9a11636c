#pragma once

#include "platform/media/Medium.h"

#include <memory>

namespace thntfs {

/// A VHD as libvhdi is to see it: the library takes the size that the disk was made with for the one it has.
/// Where they differ, the footer at the end, which it reads, is shown with the present one as both. Any other
/// file stays as it is.
std::unique_ptr<Medium> ShowPresentVhdSize(std::unique_ptr<Medium> file);

} // namespace thntfs
