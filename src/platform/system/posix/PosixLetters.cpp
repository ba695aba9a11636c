#include "platform/system/Letters.h"

#include <clocale>
#include <cwctype>
#include <locale.h>

namespace thntfs {

namespace {

// The program's own locale may know ASCII alone.
locale_t EveryScript() {
    static const locale_t locale = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    return locale;
}

} // namespace

char32_t SmallLetter(char32_t letter) {
    return EveryScript() == nullptr
               ? letter
               : static_cast<char32_t>(towlower_l(static_cast<wint_t>(letter), EveryScript()));
}

} // namespace thntfs
