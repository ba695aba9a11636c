#include "platform/system/posix/NeutralLocale.h"

namespace thntfs {

locale_t NeutralLocale() {
    static const locale_t locale = ::newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    return locale;
}

} // namespace thntfs
