#include "engine/ScanYield.h"

namespace thntfs {

namespace {

std::string RecordsText(std::uint64_t count) {
    return std::to_string(count) + (count == 1 ? " record" : " records");
}

} // namespace

std::string LittleFoundText(const ScanYield& yield) {
    return "Little was found: " + RecordsText(yield.Met) + ", where the volume should have about " +
           std::to_string(yield.Expected);
}

std::string LeftOutText(const ScanYield& yield) {
    return yield.LeftOut == 0 ? std::string()
                              : RecordsText(yield.LeftOut) + " without a usable name left out";
}

} // namespace thntfs
