#include "shell/MessageTarget.h"

#include "shell/PauseGate.h"

#include <QCoreApplication>
#include <QEvent>
#include <QObject>
#include <QThread>
#include <exception>
#include <memory>
#include <semaphore>
#include <utility>

namespace thntfs {

namespace {

const auto kMessageEvent = static_cast<QEvent::Type>(QEvent::registerEventType());

struct Message {
    std::uint32_t Number;
    std::uintptr_t WParam;
    std::uintptr_t LParam;
};

/// What a worker waits for.
struct Reply {
    std::intptr_t Result = 0;
    std::exception_ptr Failure;
    std::binary_semaphore Handled{0};
};

/// A message on its way. A sent one has a reply, which is given even where nobody takes the message any more.
class MessageEvent : public QEvent {
public:
    MessageEvent(const Message& message, std::shared_ptr<Reply> reply)
        : QEvent(kMessageEvent)
        , message_(message)
        , reply_(std::move(reply)) {}
    ~MessageEvent() override {
        if (reply_) {
            reply_->Handled.release();
        }
    }
    MessageEvent(const MessageEvent&) = delete;
    MessageEvent& operator=(const MessageEvent&) = delete;

    void Deliver(MessageTarget& target) {
        if (!reply_) {
            target.OnMessage(message_.Number, message_.WParam, message_.LParam);
            return;
        }
        try {
            reply_->Result = target.OnMessage(message_.Number, message_.WParam, message_.LParam);
        } catch (...) {
            reply_->Failure = std::current_exception();
        }
    }

private:
    Message message_;
    std::shared_ptr<Reply> reply_;
};

MessageTarget* mainWindow = nullptr;

} // namespace

/// The event queue's end of a target.
class MessagePort : public QObject {
public:
    explicit MessagePort(MessageTarget& target)
        : target_(target) {}

    bool event(QEvent* event) override {
        if (event->type() != kMessageEvent) {
            return QObject::event(event);
        }
        static_cast<MessageEvent*>(event)->Deliver(target_);
        return true;
    }

private:
    MessageTarget& target_;
};

MessageTarget::MessageTarget()
    : port_(std::make_unique<MessagePort>(*this)) {}

MessageTarget::~MessageTarget() = default;

bool OnInterfaceThread() {
    const QCoreApplication* application = QCoreApplication::instance();
    return application == nullptr || application->thread() == QThread::currentThread();
}

std::intptr_t SendWindowMessage(MessageTarget* target, std::uint32_t message, std::uintptr_t wParam,
                                std::uintptr_t lParam) {
    if (target == nullptr) {
        return 0;
    }
    if (OnInterfaceThread()) {
        return target->OnMessage(message, wParam, lParam);
    }
    WorkerGate().Pass();
    const auto reply = std::make_shared<Reply>();
    QCoreApplication::postEvent(target->port_.get(), new MessageEvent({message, wParam, lParam}, reply),
                                Qt::HighEventPriority);
    reply->Handled.acquire();
    WorkerGate().Pass();
    if (reply->Failure) {
        std::rethrow_exception(reply->Failure);
    }
    return reply->Result;
}

void PostWindowMessage(MessageTarget* target, std::uint32_t message, std::uintptr_t wParam,
                       std::uintptr_t lParam) {
    if (target != nullptr) {
        QCoreApplication::postEvent(target->port_.get(),
                                    new MessageEvent({message, wParam, lParam}, nullptr));
    }
}

MessageTarget* MainWindow() { return mainWindow; }
void SetMainWindow(MessageTarget* frame) { mainWindow = frame; }

} // namespace thntfs
