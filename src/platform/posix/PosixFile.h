#pragma once

#include "platform/File.h"
#include "platform/posix/FileDescriptor.h"

#include <memory>

namespace thntfs {

/// An ordinary file on an open descriptor, which it takes over.
std::unique_ptr<File> MakePosixFile(FileDescriptor descriptor);

} // namespace thntfs
