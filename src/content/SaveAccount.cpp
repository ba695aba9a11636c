#include "content/SaveAccount.h"

#include <utility>

namespace thntfs {

namespace {

// A sync costs more than one turn of the disk, and all that one of them fails for has to be named.
constexpr std::size_t kUnsyncedEntries = 4096;
constexpr std::uint64_t kUnsyncedBytes = std::uint64_t{64} << 20U;
constexpr std::size_t kUnsyncedPathBytes = std::size_t{16} << 20U; // kept in memory

} // namespace

SaveAccount::SaveAccount(TargetFolder& target, SaveListener& listener, bool report)
    : target_(target)
    , listener_(listener)
    , report_(report) {}

void SaveAccount::FileWritten(SavedFile file) {
    for (const std::string& reason : file.Reasons) {
        listener_.Warned(file.Path, reason);
    }
    Add({std::move(file), false});
}

void SaveAccount::FolderMade(const std::string& path) {
    SavedFile folder;
    folder.Path = path;
    Add({std::move(folder), true});
}

void SaveAccount::Fail(const std::string& path, const std::string& reason) {
    ++totals_.Failed;
    listener_.Failed(path, reason);
}

void SaveAccount::FailFile(SavedFile file) {
    Fail(file.Path, file.Reasons.back());
    file.Whole = false;
    file.Bytes = 0;
    file.Sha256.clear();
    file.Links.clear();
    Conclude(file);
}

void SaveAccount::LeaveOut(const SavedFile& file, SaveWish why) {
    ++(why == SaveWish::ExcludedType ? totals_.TypesLeftOut : totals_.LeftOut);
    Conclude(file);
}

void SaveAccount::Skip(const std::string& path, bool told) {
    ++totals_.Skipped;
    if (told) {
        listener_.Skipped(path);
    }
}

void SaveAccount::SkipFile(const SavedFile& file, bool told) {
    Skip(file.Path, told);
    Conclude(file);
}

void SaveAccount::Conclude(const SavedFile& file) {
    if (report_) {
        listener_.Concluded(file);
    }
}

void SaveAccount::Add(Entry entry) {
    unsyncedBytes_ += entry.File.Bytes;
    unsyncedPathBytes_ += entry.File.Path.size();
    for (const std::string& link : entry.File.Links) {
        unsyncedPathBytes_ += link.size();
    }
    unsynced_.push_back(std::move(entry));
    if (target_.IsArchive()) {
        return;
    }
    if (unsynced_.size() >= kUnsyncedEntries || unsyncedBytes_ >= kUnsyncedBytes ||
        unsyncedPathBytes_ >= kUnsyncedPathBytes) {
        StartSync();
    }
}

void SaveAccount::StartSync() {
    AwaitSync();
    syncing_ = std::exchange(unsynced_, {});
    unsyncedBytes_ = 0;
    unsyncedPathBytes_ = 0;
    if (!syncing_.empty()) {
        result_ = std::async([this] { return target_.Sync(); });
    }
}

// A failure is told once, and may be that of a file written after the sync began.
void SaveAccount::AwaitSync() {
    if (!result_.valid()) {
        return;
    }
    const ErrorCode code = result_.get();
    Judge(std::exchange(syncing_, {}), code);
    if (code != kErrorNone) {
        Judge(std::exchange(unsynced_, {}), code);
    }
}

const SaveTotals& SaveAccount::Settle() {
    StartSync();
    AwaitSync();
    return totals_;
}

void SaveAccount::Judge(std::vector<Entry> entries, ErrorCode code) {
    for (Entry& entry : entries) {
        if (code == kErrorNone) {
            Count(entry);
            continue;
        }
        const std::string reason =
            "the target could not be synced, so what stands there may be broken: " + SystemErrorText(code);
        if (entry.Folder) {
            Fail(entry.File.Path, reason);
        } else {
            entry.File.Reasons.push_back(reason);
            FailFile(std::move(entry.File));
        }
    }
}

void SaveAccount::Count(const Entry& entry) {
    const SavedFile& file = entry.File;
    if (entry.Folder) {
        ++totals_.Folders;
        return;
    }
    if (file.IsStream) {
        ++totals_.Streams;
    } else {
        ++totals_.Files;
        totals_.Bytes += file.Bytes;
    }
    totals_.Links += file.Links.size();
    totals_.Damaged += file.Whole ? 0 : 1;
    Conclude(file);
}

} // namespace thntfs
