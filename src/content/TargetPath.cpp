#include "content/TargetPath.h"

#include "content/TargetName.h"
#include "platform/system/Text.h"

#include <algorithm>
#include <utility>

namespace thntfs {

namespace {

constexpr std::size_t kOpenHandles = 64; // of the 1,024 that a process has by custom

} // namespace

bool MadeFolders::Has(const CatalogueItem& folder) const {
    return folder.EntryId < made_.size() && made_[folder.EntryId];
}

std::string MadeFolders::NameOf(const CatalogueItem& folder) const {
    const auto other = otherNames_.find(folder.EntryId);
    return other == otherNames_.end() ? TargetName(folder.Name) : other->second;
}

void MadeFolders::Add(const CatalogueItem& folder, const std::string& name) {
    if (made_.empty()) {
        made_.resize(CatalogueEntryCount());
    }
    if (folder.EntryId >= made_.size()) {
        return;
    }
    made_[folder.EntryId] = true;
    if (name != TargetName(folder.Name)) {
        otherNames_[folder.EntryId] = name;
    }
}

TargetPath::TargetPath(TargetFolder& target, MadeFolders& made, const NameRules& rules, DatesOf datesOf)
    : made_(made)
    , rules_(rules)
    , datesOf_(std::move(datesOf)) {
    levels_.emplace_back().Handle = &target;
}

void TargetPath::Cut(std::size_t length) {
    while (levels_.size() > length) {
        LeaveInnermost();
        levels_.pop_back();
    }
}

void TargetPath::LeaveInnermost() {
    if (levels_.back().MadeName.empty() || levels_.front().Handle->IsArchive()) {
        return;
    }
    const FileDates dates = datesOf_(levels_.back().Item);
    if (dates.Modified == 0 && dates.Accessed == 0) {
        return;
    }
    if (Level* const level = Open([](TargetPath&, const Level&, const std::string&, ErrorCode) {});
        level != nullptr) {
        level->Handle->SetDates(dates);
    }
}

void TargetPath::Enter(const CatalogueItem& folder) {
    Level& level = levels_.emplace_back();
    level.Item = folder;
    level.Transparent = folder.EntryId == kRootEntryId;
}

void TargetPath::EnterChain(const std::vector<CatalogueItem>& chain) {
    std::size_t same = 0;
    while (same < chain.size() && same + 1 < levels_.size() &&
           chain[same].EntryId == levels_[same + 1].Item.EntryId) {
        ++same;
    }
    Cut(same + 1);
    for (; same < chain.size(); ++same) {
        Enter(chain[same]);
    }
}

TargetPath::Level* TargetPath::Open(const Teller& tell) {
    std::size_t above = InnermostOpen();
    for (std::size_t i = above + 1; i < levels_.size(); ++i) {
        Level& level = levels_[i];
        if (level.Transparent) {
            continue;
        }
        if (level.Failed || level.Skipped || OpenBelow(levels_[above], i, tell) != kErrorNone) {
            return nullptr;
        }
        CloseFarAbove(i);
        above = i;
    }
    return &levels_[above];
}

bool TargetPath::Skipped() const {
    return std::any_of(levels_.begin(), levels_.end(), [](const Level& level) { return level.Skipped; });
}

TargetPath::Level& TargetPath::AboveOpen() {
    std::size_t index = InnermostOpen() - 1;
    while (levels_[index].Transparent) {
        --index;
    }
    return levels_[index];
}

std::size_t TargetPath::InnermostOpen() const {
    std::size_t index = levels_.size() - 1;
    while (levels_[index].Handle == nullptr) {
        --index; // the target is always open
    }
    return index;
}

ErrorCode TargetPath::OpenBelow(Level& above, std::size_t index, const Teller& tell) {
    Level& level = levels_[index];
    if (level.MadeName.empty() && made_.Has(level.Item)) {
        level.MadeName = made_.NameOf(level.Item);
    }
    level.Skipped = made_.Skips(level.Item);
    if (level.Skipped) {
        return kErrorCancelled;
    }
    ErrorCode code = kErrorNone;
    if (!level.MadeName.empty()) {
        code = above.Handle->OpenSubfolder(level.MadeName, level.Owned);
        level.Handle = level.Owned.get();
    } else {
        const std::string path = PathOf(index);
        code = MakeBelow(above, level, path);
        tell(*this, level, path, code);
    }
    return code;
}

ErrorCode TargetPath::MakeBelow(Level& above, Level& level, const std::string& path) {
    if (above.Handle->IsArchive()) {
        above.Handle->ExpectSubfolder(datesOf_(level.Item));
    }
    NameChoice name(rules_, path, NarrowText(level.Item.Name));
    const ErrorCode code = name.Take(above.Numbers, [&](const std::string& free) {
        return above.Handle->MakeSubfolder(free, level.Owned);
    });
    level.Handle = level.Owned.get();
    level.Skipped = name.Skipped();
    level.Failed = code != kErrorNone;
    if (level.Skipped) {
        made_.Skip(level.Item);
    } else if (!level.Failed) {
        level.MadeName = name.Name();
        made_.Add(level.Item, name.Name());
    }
    return code;
}

std::string TargetPath::PathOf(std::size_t index) const {
    std::string path;
    for (std::size_t i = 1; i <= index; ++i) {
        path += i > 1 ? "/" : "";
        if (!levels_[i].Transparent) {
            AppendNarrowText(path, levels_[i].Item.Name);
        }
    }
    return path;
}

void TargetPath::CloseFarAbove(std::size_t index) {
    if (index > kOpenHandles) {
        Level& level = levels_[index - kOpenHandles];
        level.Owned.reset();
        level.Handle = nullptr;
    }
}

} // namespace thntfs
