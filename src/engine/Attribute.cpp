#include "engine/Attribute.h"

#include "engine/FileRecord.h"

#include <algorithm>

namespace thntfs {

AttributeWalk::AttributeWalk(ConstBytes record)
    : record_(record)
    , offset_(FirstAttributeOffset(record))
    , limit_(std::min<std::uint64_t>(BytesInUse(record), record.size())) {}

void AttributeWalk::Next() {
    const std::uint32_t length = Current().Length();
    offset_ = length == 0 ? limit_ : offset_ + length;
}

std::u16string UnitsAt(ConstBytes bytes, std::uint64_t offset, std::size_t units) {
    std::u16string text(units, u'\0');
    const ConstBytes source = Part(bytes, offset, 2 * units);
    if (!source.empty()) {
        std::memcpy(text.data(), source.data(), source.size() & ~std::size_t{1});
    }
    return text;
}

} // namespace thntfs
