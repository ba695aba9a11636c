#pragma once

#include "content/SaveListener.h"
#include "engine/Host.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace thntfs {

class MessageTarget;

/// A name that won't do, on its way to the user and back.
struct SaveNameRequest {
    const std::string& Path; ///< in the catalogue
    const std::string& Name; ///< UTF-8
    NameTrouble Why;
    NameAnswer Answer{NameAnswer::Kind::Skip, {}};
    bool ForAll = false; ///< and for all further ones: without asking, with a number in place of a name
};

/// What a save tells and asks as it goes: rows for the log, which are limited in number and go there with the
/// next look at the progress, and questions that the frame puts to the user while the worker waits.
class SaveNotes : public SaveListener {
public:
    /// Both outlive it.
    SaveNotes(MessageTarget& frame, std::vector<ProcessLogEntry>& rows)
        : frame_(frame)
        , waitingRows_(rows) {}

    void Renamed(const std::string& path, const std::string& targetName) override;
    void Warned(const std::string& path, const std::string& text) override;
    void Failed(const std::string& path, const std::string& reason) override;
    void Skipped(const std::string& path) override;
    NameAnswer NameTaken(const std::string& path, const std::string& name, NameTrouble why) override;

private:
    void AddRow(const std::string& path, const std::string& text, std::uint8_t status);

    MessageTarget& frame_;
    std::vector<ProcessLogEntry>& waitingRows_;
    std::uint32_t rows_ = 0;
    std::optional<NameAnswer> standing_; ///< the answer to all further names
};

} // namespace thntfs
