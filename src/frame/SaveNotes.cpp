#include "frame/SaveNotes.h"

#include "shell/WindowMessages.h"

namespace thntfs {

namespace {

constexpr std::uint32_t kMaxRows = 10000;

} // namespace

void SaveNotes::Renamed(const std::string& path, const std::string& targetName) {
    AddRow(path, "saved under the name " + targetName, kLogDone);
}

void SaveNotes::Warned(const std::string& path, const std::string& text) {
    AddRow(path, "damaged: " + text, kLogFailed);
}

void SaveNotes::Failed(const std::string& path, const std::string& reason) {
    AddRow(path, "not saved: " + reason, kLogFailed);
}

void SaveNotes::Skipped(const std::string& path) { AddRow(path, "skipped", kLogInProgress); }

void SaveNotes::AddRow(const std::string& path, const std::string& text, std::uint8_t status) {
    if (rows_ < kMaxRows) {
        waitingRows_.push_back({path, text, "", status});
    } else if (rows_ == kMaxRows) {
        waitingRows_.push_back(
            {"Further files aren't listed here", "The last line counts them", "", kLogFailed});
    } else {
        return;
    }
    ++rows_;
}

NameAnswer SaveNotes::NameTaken(const std::string& path, const std::string& name, NameTrouble why) {
    if (standing_) {
        return *standing_;
    }
    SaveNameRequest request{path, name, why};
    WM_SAVE_NAME.Send(&frame_, request);
    if (request.ForAll) {
        const bool skips = request.Answer.What == NameAnswer::Kind::Skip;
        standing_ = NameAnswer{skips ? NameAnswer::Kind::Skip : NameAnswer::Kind::Number, {}};
    }
    return request.Answer;
}

} // namespace thntfs
