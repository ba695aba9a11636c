#pragma once

#include <cstddef>
#include <cstdint>
#include <new>
#include <vector>

namespace thntfs {

/// Memory that begins with a page. To where the system copies its cached pages matters: a few bytes behind
/// the start of one, as large blocks of std::allocator lie, many processors take four times as long.
template <typename Value>
struct PageAllocator {
    using value_type = Value;

    PageAllocator() = default;
    template <typename Other>
    explicit PageAllocator(const PageAllocator<Other>& /*other*/) {}

    Value* allocate(std::size_t count) { // NOLINT(readability-identifier-naming): as the library wants it
        return static_cast<Value*>(::operator new(count * sizeof(Value), kPage));
    }
    void deallocate(Value* memory, std::size_t /*count*/) { // NOLINT(readability-identifier-naming)
        ::operator delete(memory, kPage);
    }
    bool operator==(const PageAllocator& /*other*/) const { return true; }

private:
    static constexpr std::align_val_t kPage{4096};
};

/// What much is read into at a time.
using ReadBuffer = std::vector<std::uint8_t, PageAllocator<std::uint8_t>>;

} // namespace thntfs
