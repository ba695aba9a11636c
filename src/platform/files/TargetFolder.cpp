#include "platform/files/TargetFolder.h"

namespace thntfs {

void TargetFolder::ExpectSubfolder(const FileDates& /*dates*/) {}

bool IsPlainName(std::string_view name) {
    if (name.empty() || name == "." || name == "..") {
        return false;
    }
    return name.find('/') == std::string_view::npos && name.find('\0') == std::string_view::npos;
}

} // namespace thntfs
