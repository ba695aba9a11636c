#include "frame/StatusTexts.h"

#include "platform/system/SizeText.h"

namespace thntfs {

std::string TotalsText(std::uint64_t bytes, std::uint32_t files, std::uint32_t folders) {
    return SizeText(bytes) + " in " + std::to_string(files) + " Files in " + std::to_string(folders) +
           " Folders";
}

std::string MarkedText(std::uint64_t bytes, std::uint32_t files, std::uint32_t folders) {
    return "Marked " + TotalsText(bytes, files, folders);
}

} // namespace thntfs
