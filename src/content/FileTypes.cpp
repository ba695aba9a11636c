#include "content/FileTypes.h"

#include "platform/system/FoldCase.h"
#include "platform/system/Text.h"

namespace thntfs {

bool FileTypes::Add(std::string_view type) {
    if (type.starts_with('.')) {
        type.remove_prefix(1);
    }
    return !type.empty() && types_.insert(FoldCase(WideText(type))).second;
}

bool FileTypes::Has(std::u16string_view name) const {
    const std::size_t dot = types_.empty() ? name.npos : name.rfind(u'.');
    return dot != name.npos && types_.contains(FoldCase(name.substr(dot + 1)));
}

} // namespace thntfs
