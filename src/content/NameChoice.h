#pragma once

#include "content/FreeName.h"
#include "content/SaveListener.h"

#include <optional>
#include <string>
#include <string_view>

namespace thntfs {

class TargetFolder;

/// Who says what becomes of a name that won't do.
struct NameRules {
    const std::optional<std::string>& Prefix; ///< asked before the listener
    SaveListener& Listener;
};

/// The way of one entry to a name in its folder of the target. It begins at the entry's own name. Where that
/// won't do, the rules say what comes next; once they have said a prefix or a number, what is free is found
/// without them.
class NameChoice {
public:
    /// `wanted`: the entry's own name, UTF-8; `path`: its path in the catalogue, which outlives the choice.
    NameChoice(const NameRules& rules, const std::string& path, std::string wanted);

    [[nodiscard]] const std::string& Wanted() const { return wanted_; }
    /// The name to be tried, or the one that was taken last.
    [[nodiscard]] const std::string& Name() const { return name_; }
    [[nodiscard]] bool Skipped() const { return skipped_; }

    /// Has the rules say what becomes of a name that is taken in the folder now, so that Take needs them no
    /// more, as far as one can tell.
    void SettleIn(TargetFolder& folder);

    /// Calls `take` with one name after the other until it answers anything but kErrorFileExists. Gives that
    /// answer, which is kErrorFileExists only after a stop, or kErrorCancelled where the entry is skipped.
    template <typename TakeName>
    ErrorCode Take(NextNumbers& numbers, TakeName take) {
        ErrorCode code = kErrorFileExists;
        while (code == kErrorFileExists && !settled_ && !skipped_) {
            code = take(name_);
            if (code == kErrorFileExists) {
                Ask(NameTrouble::Exists);
            }
        }
        if (skipped_) {
            return kErrorCancelled;
        }
        return code == kErrorFileExists ? TakeFreeName(numbers, name_, take) : code;
    }

private:
    void Ask(NameTrouble why);
    void AskListener(NameTrouble why);
    void Settle(std::string_view name);

    NameRules rules_;
    const std::string& path_;
    std::string wanted_;
    std::string name_;
    bool settled_ = false; ///< a number is the last thing that may be needed
    bool skipped_ = false;
};

} // namespace thntfs
