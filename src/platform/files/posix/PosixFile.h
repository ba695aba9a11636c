#pragma once

#include "platform/files/posix/FileDescriptor.h"

#include <memory>

namespace thntfs {

class File;

/// What Close of a file does before it closes.
enum class AtClose { Nothing, Sync };

/// An ordinary file on an open descriptor, which it takes over.
std::unique_ptr<File> MakePosixFile(FileDescriptor descriptor, AtClose atClose = AtClose::Nothing);

} // namespace thntfs
