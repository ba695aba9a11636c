#pragma once

#include <cstddef>
#include <memory>
#include <utility>

namespace thntfs {

/// Owner of a singly linked list of heap records: the first record is owned by the head, each following one
/// by the `Next` of the record before it (a std::unique_ptr<Node>). Freeing a long list does not recurse.
template <typename Node>
class ListHead {
public:
    ListHead() = default;
    ~ListHead() { Clear(); }
    ListHead(const ListHead&) = delete;
    ListHead& operator=(const ListHead&) = delete;
    ListHead(ListHead&& other) noexcept
        : first_(std::move(other.first_))
        , last_(std::exchange(other.last_, nullptr)) {}
    ListHead& operator=(ListHead&& other) noexcept {
        if (this != &other) {
            Clear();
            first_ = std::move(other.first_);
            last_ = std::exchange(other.last_, nullptr);
        }
        return *this;
    }

    [[nodiscard]] Node* First() const { return first_.get(); }
    [[nodiscard]] Node* Last() const { return last_; }
    [[nodiscard]] bool Empty() const { return first_ == nullptr; }

    [[nodiscard]] std::size_t Count() const {
        std::size_t count = 0;
        for (const Node* node = First(); node != nullptr; node = node->Next.get()) {
            ++count;
        }
        return count;
    }

    Node& Append(std::unique_ptr<Node> node) {
        Node* added = node.get();
        (last_ == nullptr ? first_ : last_->Next) = std::move(node);
        last_ = added;
        return *added;
    }

    void PushFront(std::unique_ptr<Node> node) {
        node->Next = std::move(first_);
        first_ = std::move(node);
        if (last_ == nullptr) {
            last_ = first_.get();
        }
    }

    /// Hangs all records of another list behind the last one of this list.
    void Splice(ListHead&& other) {
        if (other.Empty()) {
            return;
        }
        (last_ == nullptr ? first_ : last_->Next) = std::move(other.first_);
        last_ = std::exchange(other.last_, nullptr);
    }

    void Clear() {
        while (first_ != nullptr) {
            first_ = std::move(first_->Next);
        }
        last_ = nullptr;
    }

private:
    std::unique_ptr<Node> first_;
    Node* last_ = nullptr;
};

} // namespace thntfs
