#pragma once

#include <functional>
#include <thread>

namespace thntfs {

/// The thread of one job. It ends by returning from its function; the destructor waits for that.
class JobThread {
public:
    explicit JobThread(std::function<void()> work)
        : thread_(std::move(work)) {}

private:
    std::jthread thread_;
};

} // namespace thntfs
