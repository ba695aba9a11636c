#include "engine/Attribute.h"

namespace thntfs {

std::u16string UnitsAt(ConstBytes bytes, std::uint64_t offset, std::size_t units) {
    std::u16string text(units, u'\0');
    const ConstBytes source = Part(bytes, offset, 2 * units);
    if (!source.empty()) {
        std::memcpy(text.data(), source.data(), source.size() & ~std::size_t{1});
    }
    return text;
}

} // namespace thntfs
