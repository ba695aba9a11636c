#include "shell/PauseGate.h"

namespace thntfs {

void PauseGate::Close() {
    const std::lock_guard lock(mutex_);
    closed_ = true;
}

void PauseGate::Open() {
    {
        const std::lock_guard lock(mutex_);
        closed_ = false;
    }
    opened_.notify_all();
}

void PauseGate::Pass() {
    std::unique_lock lock(mutex_);
    ++waiting_;
    opened_.wait(lock, [this] { return !closed_; });
    --waiting_;
}

bool PauseGate::IsClosed() const {
    const std::lock_guard lock(mutex_);
    return closed_;
}

bool PauseGate::IsHolding() const {
    const std::lock_guard lock(mutex_);
    return closed_ && waiting_ > 0;
}

PauseGate& WorkerGate() {
    static PauseGate gate;
    return gate;
}

} // namespace thntfs
