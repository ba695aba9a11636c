#pragma once

#include <condition_variable>
#include <mutex>

namespace thntfs {

/// The user's pause: a gate that the worker passes at each message, each batch and each single-sector read.
/// While it is closed the worker stands still there. The thread isn't frozen at just any instruction, where
/// it might hold the allocator's lock.
class PauseGate {
public:
    void Close();
    void Open();

    /// Returns when the gate is open.
    void Pass();

    [[nodiscard]] bool IsClosed() const;
    /// True while somebody stands before the closed gate.
    [[nodiscard]] bool IsHolding() const;

private:
    mutable std::mutex mutex_;
    std::condition_variable opened_;
    bool closed_ = false;
    unsigned waiting_ = 0;
};

/// The gate of the one worker.
PauseGate& WorkerGate();

/// Closed from here to the end of the block.
class WorkerPause {
public:
    WorkerPause() { WorkerGate().Close(); }
    ~WorkerPause() { WorkerGate().Open(); }
    WorkerPause(const WorkerPause&) = delete;
    WorkerPause& operator=(const WorkerPause&) = delete;
};

} // namespace thntfs
