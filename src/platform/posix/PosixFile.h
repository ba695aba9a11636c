#pragma once

#include "platform/File.h"
#include "platform/posix/FileDescriptor.h"

#include <memory>

namespace thntfs {

/// What Close of a file does before it closes.
enum class AtClose { Nothing, Sync };

/// An ordinary file on an open descriptor, which it takes over.
std::unique_ptr<File> MakePosixFile(FileDescriptor descriptor, AtClose atClose = AtClose::Nothing);

} // namespace thntfs
