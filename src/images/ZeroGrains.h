#pragma once

#include "platform/media/Medium.h"

#include <memory>

namespace thntfs {

/// A sparse VMDK extent whose tables may call grains zeros by the number 1, which libvmdk would take for a
/// place. They are shown to it as places of a grain of zeros behind the extent's end. Any other file stays as
/// it is. Throws ImageFault where the tables can't be followed, or a sparse extent's sizes can't be.
std::unique_ptr<Medium> ShowZeroGrains(std::unique_ptr<Medium> extent);

} // namespace thntfs
