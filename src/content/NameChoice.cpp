#include "content/NameChoice.h"

#include "platform/files/TargetFolder.h"

#include <utility>

namespace thntfs {

NameChoice::NameChoice(const NameRules& rules, const std::string& path, std::string wanted)
    : rules_(rules)
    , path_(path)
    , wanted_(std::move(wanted))
    , name_(wanted_) {
    if (FitName(name_) != name_) {
        Ask(NameTrouble::Unfit);
    }
}

void NameChoice::SettleIn(TargetFolder& folder) {
    while (!settled_ && !skipped_ && folder.Has(name_)) {
        Ask(NameTrouble::Exists);
    }
}

void NameChoice::Ask(NameTrouble why) {
    if (rules_.Prefix) {
        Settle(*rules_.Prefix + name_);
    } else {
        AskListener(why);
    }
}

void NameChoice::AskListener(NameTrouble why) {
    while (!ContentStopped()) {
        NameAnswer answer = rules_.Listener.NameTaken(path_, name_, why);
        switch (answer.What) {
        case NameAnswer::Kind::Number:
            Settle(name_);
            return;
        case NameAnswer::Kind::Skip:
            skipped_ = true;
            return;
        case NameAnswer::Kind::Rename:
            name_ = std::move(answer.NewName);
        }
        if (FitName(name_) == name_) {
            return;
        }
        why = NameTrouble::Unfit;
    }
    Settle(name_);
}

void NameChoice::Settle(std::string_view name) {
    name_ = FitName(std::string(name));
    settled_ = true;
}

} // namespace thntfs
