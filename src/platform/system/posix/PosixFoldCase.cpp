#include "platform/system/FoldCase.h"
#include "platform/system/posix/NeutralLocale.h"

#include <cwctype>

namespace thntfs {

namespace {

char16_t FoldUnit(char16_t unit, locale_t locale) {
    const wint_t upper = ::towupper_l(unit, locale);
    return static_cast<char16_t>(::towlower_l(upper, locale));
}

char16_t FoldAscii(char16_t unit) {
    return unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit + (u'a' - u'A')) : unit;
}

} // namespace

std::u16string FoldCase(std::u16string_view text) {
    const locale_t locale = NeutralLocale();
    std::u16string folded(text);
    for (char16_t& unit : folded) {
        unit = unit < 0x80 || locale == nullptr ? FoldAscii(unit) : FoldUnit(unit, locale);
    }
    return folded;
}

} // namespace thntfs
