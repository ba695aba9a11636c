#include "content/SaveEntries.h"

#include "catalogue/EntryWalk.h"
#include "content/TargetName.h"
#include "engine/EngineState.h"
#include "platform/Text.h"

namespace thntfs {

namespace {

constexpr std::uint32_t kRootEntryId = 1;
constexpr std::uint16_t kFlagSparse = 0x200;
constexpr std::uint16_t kFlagCompressed = 0x800;

bool IsSeed(const CatalogueItem& item) { return item.EntryId <= kRootEntryId; }

} // namespace

EntrySaver::EntrySaver(std::unique_ptr<TargetFolder> target, SaveListener& listener, bool deletedOnly)
    : listener_(listener)
    , deletedOnly_(deletedOnly) {
    levels_.emplace_back();
    levels_.front().Handle = std::move(target);
}

void EntrySaver::Save(const LocatedEntry& entry) {
    if (Engine.ScanRunFlag == 0) {
        totals_.Stopped = true;
        return;
    }
    levels_.resize(1);
    for (const std::u16string& folder : entry.Folders) {
        levels_.emplace_back().Name = folder;
    }
    try {
        if (entry.Item.IsFolder()) {
            SaveBelow(entry);
        } else if (Wanted(entry.Item)) {
            SaveFile(entry.Item, entry.Path);
        }
    } catch (const CUserException&) {
        totals_.Stopped = true; // the user has seen the box; what comes after would fail the same way
    }
}

void EntrySaver::SaveBelow(const LocatedEntry& entry) {
    if (!IsSeed(entry.Item)) {
        EnterFolder(entry.Item, entry.Path);
    }
    const std::size_t base = levels_.size();
    EntryWalk walk(StartAt(entry), IsSeed(entry.Item) ? WalkReach::Whole : WalkReach::Part);
    while (walk.Next()) {
        if (Engine.ScanRunFlag == 0) {
            totals_.Stopped = true;
            return;
        }
        levels_.resize(base + walk.Depth());
        if (walk.Item().IsFolder()) {
            EnterFolder(walk.Item(), walk.Path());
        } else if (Wanted(walk.Item())) {
            SaveFile(walk.Item(), walk.Path());
        }
    }
}

// Lost folders have no record of their own: they stand for a name that isn't known, and are made only for
// what is in them.
void EntrySaver::EnterFolder(const CatalogueItem& item, const std::string& path) {
    Level& level = levels_.emplace_back();
    level.Name = item.Name;
    level.Transparent = item.EntryId == kRootEntryId;
    const bool lost = item.RecordSector == 0;
    if (!level.Transparent && Wanted(item) && !(deletedOnly_ && lost)) {
        OpenLevel(path);
    }
}

void EntrySaver::SaveFile(const CatalogueItem& item, const std::string& path) {
    Level* folder = OpenLevel(path);
    if (folder == nullptr) {
        Fail(path, "its folder could not be made");
        return;
    }
    if (!HasRoom(item, path)) {
        return;
    }
    std::string name;
    std::unique_ptr<File> file;
    const ErrorCode code = CreateFileIn(*folder, item, path, name, file);
    if (code != kErrorNone) {
        Fail(path, SystemErrorText(code));
        return;
    }
    WriteContent(item, path, name, *file);
}

void EntrySaver::WriteContent(const CatalogueItem& item, const std::string& path, const std::string& name,
                              File& file) {
    const ContentOutcome outcome = TakeContent(item, file);
    if (outcome.Kept()) {
        FinishFile(outcome, path);
    } else if (outcome.End == ContentEnd::Stopped) {
        totals_.Stopped = true;
        Abandon(path, name, "stopped");
    } else if (outcome.End == ContentEnd::WriteFailed) {
        Abandon(path, name, SystemErrorText(outcome.WriteError));
    } else if (outcome.End == ContentEnd::RecordDamaged) {
        Abandon(path, name, "its file record is damaged");
    } else {
        Abandon(path, name, "the medium could not be read");
        throw CUserException();
    }
}

void EntrySaver::FinishFile(const ContentOutcome& outcome, const std::string& path) {
    ++totals_.Files;
    totals_.Bytes += outcome.Written;
    totals_.Damaged += outcome.Whole() ? 0 : 1;
    for (const std::string& reason : DamageReasons(outcome)) {
        listener_.Warned(path, reason);
    }
}

// Takes back a file that isn't worth keeping.
void EntrySaver::Abandon(const std::string& path, const std::string& name, const std::string& reason) {
    if (Level* folder = OpenLevel(path); folder != nullptr) {
        folder->Handle->DeleteFile(name);
    }
    Fail(path, reason);
}

void EntrySaver::Fail(const std::string& path, const std::string& reason) {
    ++totals_.Failed;
    listener_.Failed(path, reason);
}

// A file with holes or compressed data may need less room than its size.
bool EntrySaver::HasRoom(const CatalogueItem& item, const std::string& path) {
    const auto room = levels_.front().Handle->FreeBytes();
    if (!room || item.Size <= *room || (item.Flags & (kFlagSparse | kFlagCompressed)) != 0) {
        return true;
    }
    Fail(path, "it needs " + std::to_string(item.Size) + " bytes and the target has room for " +
                   std::to_string(*room));
    return false;
}

// The innermost level, made together with those above it; null where one can't be.
EntrySaver::Level* EntrySaver::OpenLevel(const std::string& path) {
    Level* above = &levels_.front();
    for (std::size_t i = 1; i < levels_.size(); ++i) {
        Level& level = levels_[i];
        if (level.Transparent) {
            continue;
        }
        if (!level.Tried) {
            level.Tried = true;
            if (const ErrorCode code = MakeLevel(level, *above, path); code != kErrorNone) {
                Fail(path, "folder " + NarrowText(level.Name) + ": " + SystemErrorText(code));
            }
        }
        if (level.Handle == nullptr) {
            return nullptr;
        }
        above = &level;
    }
    return above;
}

ErrorCode EntrySaver::MakeLevel(Level& level, Level& above, const std::string& path) {
    const std::string plain = TargetName(level.Name);
    std::string name = plain;
    ErrorCode code = above.Handle->MakeSubfolder(name, level.Handle);
    while (code == kErrorFileExists) {
        name = NextName(above, plain);
        code = above.Handle->MakeSubfolder(name, level.Handle);
    }
    if (code == kErrorNone) {
        ++totals_.Folders;
        TellName(path, level.Name, name);
    }
    return code;
}

ErrorCode EntrySaver::CreateFileIn(Level& level, const CatalogueItem& item, const std::string& path,
                                   std::string& name, std::unique_ptr<File>& file) {
    const std::string plain = TargetName(item.Name);
    name = plain;
    ErrorCode code = level.Handle->CreateFile(name, file);
    while (code == kErrorFileExists) {
        name = NextName(level, plain);
        code = level.Handle->CreateFile(name, file);
    }
    if (code == kErrorNone) {
        TellName(path, item.Name, name);
    }
    return code;
}

std::string EntrySaver::NextName(Level& level, const std::string& name) {
    unsigned& next = level.NextNumbers.try_emplace(name, 2U).first->second;
    return NumberedName(name, next++);
}

void EntrySaver::TellName(const std::string& path, std::u16string_view name, const std::string& targetName) {
    if (NarrowText(name) != targetName) {
        listener_.Renamed(path, targetName);
    }
}

} // namespace thntfs
