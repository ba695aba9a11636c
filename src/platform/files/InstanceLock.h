#pragma once

#include "platform/system/ErrorCodes.h"

#include <memory>
#include <string>

namespace thntfs {

/// What one running program holds and a second one of the same user can't have. It leaves no file behind, and
/// goes with the process however that ends.
class InstanceLock {
public:
    InstanceLock();
    ~InstanceLock();
    InstanceLock(const InstanceLock&) = delete;
    InstanceLock& operator=(const InstanceLock&) = delete;

    /// Takes the lock of a name. Gives 0, kErrorAlreadyExists where another program holds it, or the system's
    /// code.
    ErrorCode Take(const std::string& name);

private:
    class Holder;
    std::unique_ptr<Holder> holder_;
};

} // namespace thntfs
