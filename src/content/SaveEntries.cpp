#include "content/SaveEntries.h"

#include "catalogue/CatalogueTotals.h"
#include "catalogue/EntryWalk.h"
#include "engine/EngineState.h"

#include <utility>

namespace thntfs {

namespace {

bool IsSeed(const CatalogueItem& item) { return item.EntryId <= kRootEntryId; }

CatalogueItem RootItem() {
    CatalogueItem root;
    root.EntryId = kRootEntryId;
    return root;
}

} // namespace

EntrySaver::EntrySaver(std::unique_ptr<TargetFolder> target, SaveListener& listener,
                       const SaveOptions& options)
    : options_(options)
    , target_(std::move(target))
    , account_(*target_, listener, options.Report)
    , files_({options_, *target_, made_, account_, listener})
    , path_(*target_, made_, [this](const CatalogueItem& folder) { return files_.DatesOfFolder(folder); }) {}

void EntrySaver::Save(const std::vector<LocatedEntry>& entries) {
    files_.Select(entries);
    for (const LocatedEntry& entry : entries) {
        SaveOne(entry);
    }
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
    files_.Leave();
    path_.Cut(1);
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
    path_.Enter(item);
    const bool lost = item.RecordSector == 0;
    if (item.EntryId != kRootEntryId && Wanted(item) && !(options_.DeletedOnly && lost)) {
        OpenLevel();
    }
}

TargetPath::Level* EntrySaver::OpenLevel() {
    return path_.Open([this](TargetPath& way, const auto& level, const std::string& path, ErrorCode code) {
        files_.FolderOpened(way, level, path, code);
    });
}

void EntrySaver::SaveFile(const CatalogueItem& item, const std::string& path) {
    if (ConditionWanted(options_.Conditions, item)) {
        files_.Save(OpenLevel(), item, path);
    } else {
        files_.LeaveOut(item, path);
    }
}

} // namespace thntfs
