#include "engine/ScanLosses.h"

namespace thntfs {

namespace {

std::string Counted(std::uint64_t count, const std::string& thing) {
    return std::to_string(count) + " " + thing + (count == 1 ? "" : "s");
}

void AddReason(std::string& reasons, std::uint64_t count, const char* reason) {
    if (count != 0) {
        reasons += (reasons.empty() ? "" : ", ") + std::to_string(count) + " " + reason;
    }
}

} // namespace

std::string LossText(const ScanLosses& losses) {
    std::string text;
    if (losses.NoTable) {
        text = "No record stands where the Master File Table should be";
    }
    if (losses.Records() != 0) {
        std::string reasons;
        AddReason(reasons, losses.Unread, "in unreadable sectors");
        AddReason(reasons, losses.BehindEnd, "behind the end of the medium");
        AddReason(reasons, losses.Missing, "in lost pieces of the table");
        AddReason(reasons, losses.Damaged, "damaged");
        text += (text.empty() ? "At least " : "; at least ") + Counted(losses.Records(), "record") +
                " could not be read (" + reasons + ")";
    }
    if (losses.Sectors != 0) {
        text += (text.empty() ? "" : "; ") + Counted(losses.Sectors, "sector") + " could not be read";
    }
    return text;
}

} // namespace thntfs
