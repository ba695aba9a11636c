#pragma once

#include "platform/system/Bytes.h"

#include <cstdint>

namespace thntfs {

class File;

/// Keeps the device of a target busy while it is written from front to back: room is set aside ahead of the
/// writing, and what was written starts on its way to the device behind it. The destructor gives back the
/// room that was not used.
class TargetFlow {
public:
    /// `endBytes` is the size that the target will have in the end.
    TargetFlow(File& target, std::uint64_t endBytes);
    ~TargetFlow();
    TargetFlow(const TargetFlow&) = delete;
    TargetFlow& operator=(const TargetFlow&) = delete;

    /// A stretch is going to be written.
    void Before(std::uint64_t offset, std::uint64_t bytes);

    /// It has been written.
    void After(std::uint64_t offset, std::uint64_t bytes);

private:
    File& target_;
    std::uint64_t endBytes_;
    std::uint64_t reservedEnd_ = 0;
    std::uint64_t pendingFirst_ = 0; ///< written and not yet on its way: from here
    std::uint64_t pendingEnd_ = 0;   ///< to here
};

} // namespace thntfs
