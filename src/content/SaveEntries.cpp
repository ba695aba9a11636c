#include "content/SaveEntries.h"

#include "catalogue/EntryWalk.h"
#include "content/EntryContent.h"
#include "engine/EngineState.h"
#include "platform/files/File.h"
#include "platform/system/Text.h"

#include <utility>

namespace thntfs {

namespace {

constexpr std::uint64_t kBigFileBytes = std::uint64_t{1} << 20U;
constexpr std::uint16_t kFlagSparse = 0x200;
constexpr std::uint16_t kFlagCompressed = 0x800;

bool IsSeed(const CatalogueItem& item) { return item.EntryId <= kRootEntryId; }

std::string ReasonOf(ErrorCode code) { return Engine.ScanRunFlag == 0 ? "stopped" : SystemErrorText(code); }

} // namespace

EntrySaver::EntrySaver(std::unique_ptr<TargetFolder> target, SaveListener& listener, bool deletedOnly)
    : listener_(listener)
    , deletedOnly_(deletedOnly)
    , path_(std::move(target))
    , account_(path_.Target(), listener) {}

void EntrySaver::Save(const LocatedEntry& entry) {
    if (Engine.ScanRunFlag == 0) {
        account_.Stop();
        return;
    }
    path_.Cut(1);
    if (entry.Path.starts_with('/')) {
        path_.Enter(u" Root", true);
    }
    for (const std::u16string& folder : entry.Folders) {
        path_.Enter(folder, false);
    }
    try {
        if (entry.Item.IsFolder()) {
            SaveBelow(entry);
        } else if (Wanted(entry.Item)) {
            SaveFile(entry.Item, entry.Path);
        }
    } catch (const CUserException&) {
        account_.Stop(); // the user has seen the box; what comes after would fail the same way
    }
}

const SaveTotals& EntrySaver::Finish() {
    if (Engine.ScanRunFlag == 0) {
        account_.Stop();
    }
    return account_.Settle();
}

void EntrySaver::SaveBelow(const LocatedEntry& entry) {
    if (!IsSeed(entry.Item)) {
        EnterFolder(entry.Item);
    }
    const std::size_t base = path_.Length();
    EntryWalk walk(StartAt(entry), IsSeed(entry.Item) ? WalkReach::Whole : WalkReach::Part);
    while (walk.Next()) {
        if (Engine.ScanRunFlag == 0) {
            account_.Stop();
            return;
        }
        path_.Cut(base + walk.Depth());
        if (walk.Item().IsFolder()) {
            EnterFolder(walk.Item());
        } else if (Wanted(walk.Item())) {
            SaveFile(walk.Item(), walk.Path());
        }
    }
}

// Lost folders have no record of their own: they stand for a name that isn't known, and are made only for
// what is in them.
void EntrySaver::EnterFolder(const CatalogueItem& item) {
    const bool isRoot = item.EntryId == kRootEntryId;
    path_.Enter(item.Name, isRoot);
    const bool lost = item.RecordSector == 0;
    if (!isRoot && Wanted(item) && !(deletedOnly_ && lost)) {
        OpenLevel();
    }
}

TargetPath::Level* EntrySaver::OpenLevel() {
    return path_.Open([this](const TargetPath::Level& level, const std::string& path, ErrorCode code) {
        if (code == kErrorNone) {
            account_.FolderMade(path);
            TellName(path, level.Name, level.MadeName);
        } else {
            account_.Fail(path, ReasonOf(code));
        }
    });
}

void EntrySaver::SaveFile(const CatalogueItem& item, const std::string& path) {
    TargetPath::Level* folder = OpenLevel();
    if (folder == nullptr) {
        account_.Fail(path, "its folder could not be made or opened");
    } else if (HasRoom(item, path)) {
        item.Size > kBigFileBytes ? WriteBig(*folder, item, path) : WriteSmall(*folder, item, path);
    }
}

void EntrySaver::WriteSmall(TargetPath::Level& folder, const CatalogueItem& item, const std::string& path) {
    std::unique_ptr<File> file;
    std::string name = TargetName(item.Name);
    ErrorCode code = TakeFreeName(
        folder.Numbers, name, [&](const std::string& free) { return folder.Handle->CreateFile(free, file); });
    if (code != kErrorNone) {
        account_.Fail(path, ReasonOf(code));
        return;
    }
    const ContentOutcome outcome = TakeContent(item, *file);
    code = outcome.Kept() ? file->Close() : kErrorNone;
    file.reset();
    if (!outcome.Kept() || code != kErrorNone) {
        folder.Handle->DeleteFile(name);
    }
    Conclude(item, path, name, outcome, code);
}

void EntrySaver::WriteBig(TargetPath::Level& folder, const CatalogueItem& item, const std::string& path) {
    std::unique_ptr<File> file;
    std::string part;
    ErrorCode code = folder.Handle->CreatePart(part, file);
    if (code != kErrorNone) {
        account_.Fail(path, ReasonOf(code));
        return;
    }
    const ContentOutcome outcome = TakeContent(item, *file);
    std::string name = TargetName(item.Name);
    code = outcome.Kept() ? file->Sync() : kErrorNone;
    if (outcome.Kept() && code == kErrorNone) {
        code = TakeFreeName(folder.Numbers, name,
                            [&](const std::string& free) { return folder.Handle->NamePart(part, free); });
    }
    if (!outcome.Kept() || code != kErrorNone) {
        folder.Handle->DeleteFile(part);
    }
    Conclude(item, path, name, outcome, code);
}

// `error` is what stood in the way of content that is to be kept.
void EntrySaver::Conclude(const CatalogueItem& item, const std::string& path, const std::string& name,
                          const ContentOutcome& outcome, ErrorCode error) {
    if (!outcome.Kept()) {
        FailContent(path, outcome);
    } else if (error != kErrorNone) {
        account_.Fail(path, ReasonOf(error));
    } else {
        TellName(path, item.Name, name);
        account_.FileWritten(path, outcome);
    }
}

void EntrySaver::FailContent(const std::string& path, const ContentOutcome& outcome) {
    if (outcome.End == ContentEnd::Stopped) {
        account_.Stop();
        account_.Fail(path, "stopped");
    } else if (outcome.End == ContentEnd::WriteFailed) {
        account_.Fail(path, SystemErrorText(outcome.WriteError));
    } else if (outcome.End == ContentEnd::RecordDamaged) {
        account_.Fail(path, "its file record is damaged");
    } else {
        account_.Fail(path, "the medium could not be read");
        throw CUserException();
    }
}

// A file with holes or compressed data may need less room than its size.
bool EntrySaver::HasRoom(const CatalogueItem& item, const std::string& path) {
    const auto room = path_.Target().FreeBytes();
    if (!room || item.Size <= *room || (item.Flags & (kFlagSparse | kFlagCompressed)) != 0) {
        return true;
    }
    const std::uint64_t need = ContentNeed(item);
    if (need <= *room) {
        return true;
    }
    account_.Fail(path, "it needs " + std::to_string(need) + " bytes and the target has room for " +
                            std::to_string(*room));
    return false;
}

void EntrySaver::TellName(const std::string& path, std::u16string_view name, const std::string& targetName) {
    if (NarrowText(name) != targetName) {
        listener_.Renamed(path, targetName);
    }
}

} // namespace thntfs
