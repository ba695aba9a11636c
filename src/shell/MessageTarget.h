#pragma once

#include <cstdint>
#include <memory>

namespace thntfs {

class MessagePort;

/// Whoever takes window messages: the frame, a view, a dialog. To be made and destroyed on the interface
/// thread, and not while a worker may still send to it.
class MessageTarget {
public:
    MessageTarget();
    virtual ~MessageTarget();
    MessageTarget(const MessageTarget&) = delete;
    MessageTarget& operator=(const MessageTarget&) = delete;

    /// Handles a message, on the interface thread. What it gives and what it throws comes back to who has
    /// sent the message. Out of a posted message nothing may be thrown.
    virtual std::intptr_t OnMessage(std::uint32_t message, std::uintptr_t wParam, std::uintptr_t lParam) = 0;

private:
    friend std::intptr_t SendWindowMessage(MessageTarget*, std::uint32_t, std::uintptr_t, std::uintptr_t);
    friend void PostWindowMessage(MessageTarget*, std::uint32_t, std::uintptr_t, std::uintptr_t);

    std::unique_ptr<MessagePort> port_;
};

/// Has the target handle a message and waits until it has done so, so pointers in it stay valid. On the
/// interface thread this is a plain call. From a worker the message runs on the interface thread, in the
/// order of sending and before what has been posted; a worker under pause neither begins nor ends a send.
/// Without a target nothing happens. Gives what OnMessage gives, 0 where the target went away meanwhile.
std::intptr_t SendWindowMessage(MessageTarget* target, std::uint32_t message, std::uintptr_t wParam = 0,
                                std::uintptr_t lParam = 0);

/// Queues a message for the interface thread and goes on. It must carry numbers only.
void PostWindowMessage(MessageTarget* target, std::uint32_t message, std::uintptr_t wParam = 0,
                       std::uintptr_t lParam = 0);

/// True on the thread that owns the windows.
bool OnInterfaceThread();

/// The main frame, to which all report; null as long as there is none.
MessageTarget* MainWindow();
void SetMainWindow(MessageTarget* frame);

} // namespace thntfs
