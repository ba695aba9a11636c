#include "platform/system/Utf8Scope.h"
#include "platform/system/posix/NeutralLocale.h"

namespace thntfs {

Utf8Scope::Utf8Scope()
    : previous_(NeutralLocale() != nullptr ? ::uselocale(NeutralLocale()) : ::uselocale(nullptr)) {}

Utf8Scope::~Utf8Scope() { (void)::uselocale(static_cast<locale_t>(previous_)); }

} // namespace thntfs
