#include "platform/media/posix/HoleFinder.h"

#include <cerrno>
#include <unistd.h>

namespace thntfs {

bool HoleFinder::IsHole(std::uint64_t offset, std::uint64_t bytes) {
    if (supported_ && (offset < start_ || offset >= end_)) {
        Ask(offset);
    }
    return supported_ && hole_ && offset >= start_ && offset < end_ && bytes <= end_ - offset;
}

void HoleFinder::Ask(std::uint64_t offset) {
    const off_t from = static_cast<off_t>(offset);
    const off_t data = ::lseek(descriptor_, from, SEEK_DATA);
    if (data < 0) {
        // No data up to the end that the file has now, unless the file system can't tell.
        supported_ = errno == ENXIO;
        hole_ = true;
        start_ = offset;
        end_ = static_cast<std::uint64_t>(::lseek(descriptor_, 0, SEEK_END));
        return;
    }
    const off_t end = data > from ? data : ::lseek(descriptor_, from, SEEK_HOLE);
    supported_ = end > from;
    hole_ = data > from;
    start_ = offset;
    end_ = static_cast<std::uint64_t>(end);
}

} // namespace thntfs
