#include "content/SaveEntries.h"

#include "catalogue/CatalogueTotals.h"
#include "catalogue/EntryWalk.h"
#include "content/FurtherEntries.h"
#include "engine/EngineState.h"

#include <algorithm>
#include <utility>

namespace thntfs {

namespace {

bool IsSeed(const CatalogueItem& item) { return item.EntryId <= kRootEntryId; }

CatalogueItem RootItem() {
    CatalogueItem root;
    root.EntryId = kRootEntryId;
    return root;
}

WalkReach WalkReachOf(const LocatedEntry& entry) {
    return IsSeed(entry.Item) ? WalkReach::Whole : WalkReach::Part;
}

std::vector<LocatedEntry> ByFurtherNames(const std::vector<LocatedEntry>& entries,
                                         const SaveOptions& options) {
    return options.AsStored ? std::vector<LocatedEntry>() : FurtherEntries().Below(entries);
}

void CountFile(const CatalogueItem& item, const SaveOptions& options, SaveWork& work) {
    if (!item.IsFolder() && WishFor(options, item) == SaveWish::Wanted) {
        ++work.Files;
        work.Bytes += item.Size;
    }
}

} // namespace

SaveWork CountSaveWork(const std::vector<LocatedEntry>& entries, const SaveOptions& options) {
    SaveWork work;
    for (const LocatedEntry& entry : entries) {
        CountFile(entry.Item, options, work);
        if (!entry.Item.IsFolder()) {
            continue;
        }
        EntryWalk walk(StartAt(entry), WalkReachOf(entry));
        while (walk.Next()) {
            CountFile(walk.Item(), options, work);
        }
    }
    for (const LocatedEntry& entry : ByFurtherNames(entries, options)) {
        CountFile(entry.Item, options, work);
    }
    return work;
}

EntrySaver::EntrySaver(std::unique_ptr<TargetFolder> target, SaveListener& listener,
                       const SaveOptions& options)
    : options_(options)
    , target_(std::move(target))
    , account_(*target_, listener, options.Report)
    , files_({options_, *target_, made_, account_, listener})
    , path_(*target_, made_, {options_.Prefix, listener},
            [this](const CatalogueItem& folder) { return files_.DatesOfFolder(folder); }) {}

void EntrySaver::Save(const std::vector<LocatedEntry>& entries) {
    files_.Select(entries);
    for (const LocatedEntry& entry : entries) {
        SaveOne(entry);
    }
    SaveByFurtherNames(entries);
}

void EntrySaver::SaveByFurtherNames(const std::vector<LocatedEntry>& entries) try {
    for (const LocatedEntry& entry : ByFurtherNames(entries, options_)) {
        SaveOne(entry);
    }
} catch (const CUserException&) {
    account_.Stop();
}

void EntrySaver::SaveOne(const LocatedEntry& entry) {
    if (Engine.ScanRunFlag == 0) {
        account_.Stop();
        return;
    }
    path_.Cut(1);
    if (entry.Path.starts_with('/')) {
        path_.Enter(RootItem());
    }
    for (const CatalogueItem& folder : entry.Folders) {
        path_.Enter(folder);
    }
    try {
        if (entry.Item.IsFolder()) {
            SaveBelow(entry);
        } else {
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
    files_.Leave();
    path_.Cut(1);
    return account_.Settle();
}

void EntrySaver::SaveBelow(const LocatedEntry& entry) {
    if (!IsSeed(entry.Item)) {
        EnterFolder(entry.Item);
    }
    const std::size_t base = path_.Length();
    EntryWalk walk(StartAt(entry), WalkReachOf(entry));
    while (walk.Next()) {
        if (Engine.ScanRunFlag == 0) {
            account_.Stop();
            return;
        }
        path_.Cut(base + walk.Depth());
        if (walk.Item().IsFolder()) {
            EnterFolder(walk.Item());
        } else {
            SaveFile(walk.Item(), walk.Path());
        }
    }
}

void EntrySaver::EnterFolder(const CatalogueItem& item) {
    path_.Enter(item);
    if (item.EntryId != kRootEntryId && WishFor(options_, item) == SaveWish::Wanted) {
        OpenLevel();
    }
}

TargetPath::Level* EntrySaver::OpenLevel() {
    return path_.Open([this](TargetPath& way, const auto& level, const std::string& path, ErrorCode code) {
        files_.FolderOpened(way, level, path, code);
    });
}

void EntrySaver::SaveFile(const CatalogueItem& item, const std::string& path) {
    const SaveWish wish = WishFor(options_, item);
    if (wish == SaveWish::Wanted) {
        Engine.BytesWritten = 0;
        sizeInHand_ = item.Size;
        TakeFile(item, path);
        sizeInHand_ = 0;
        ++done_.Files;
        done_.Bytes += item.Size;
    } else if (wish != SaveWish::NotAsked) {
        files_.LeaveOut(item, path, wish);
    }
}

void EntrySaver::TakeFile(const CatalogueItem& item, const std::string& path) {
    TargetPath::Level* const folder = OpenLevel();
    if (folder == nullptr && path_.Skipped()) {
        files_.SkipWithFolder(item, path);
    } else {
        files_.Save(folder, item, path);
    }
}

// What is read for further names and streams begins anew, so less may be in hand than before.
SaveWork EntrySaver::Done() {
    const std::uint64_t inHand = std::min(Engine.BytesWritten, sizeInHand_);
    bytesReached_ = std::max(bytesReached_, done_.Bytes + inHand);
    return {done_.Files, bytesReached_};
}

} // namespace thntfs
