#include "content/SaveAccount.h"

#include <utility>

namespace thntfs {

namespace {

// A sync costs more than one turn of the disk, and all that one of them fails for has to be named.
constexpr std::size_t kUnsyncedEntries = 4096;
constexpr std::uint64_t kUnsyncedBytes = std::uint64_t{64} << 20U;
constexpr std::size_t kUnsyncedPathBytes = std::size_t{16} << 20U; // kept in memory

} // namespace

SaveAccount::SaveAccount(TargetFolder& target, SaveListener& listener)
    : target_(target)
    , listener_(listener) {}

void SaveAccount::FileWritten(const std::string& path, const ContentOutcome& outcome) {
    for (const std::string& reason : DamageReasons(outcome)) {
        listener_.Warned(path, reason);
    }
    Add({path, false, outcome.Whole(), outcome.Written});
}

void SaveAccount::FolderMade(const std::string& path) { Add({path, true, true, 0}); }

void SaveAccount::Fail(const std::string& path, const std::string& reason) {
    ++totals_.Failed;
    listener_.Failed(path, reason);
}

void SaveAccount::Add(Entry entry) {
    unsyncedBytes_ += entry.Bytes;
    unsyncedPathBytes_ += entry.Path.size();
    unsynced_.push_back(std::move(entry));
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

void SaveAccount::Judge(const std::vector<Entry>& entries, ErrorCode code) {
    for (const Entry& entry : entries) {
        if (code == kErrorNone) {
            Count(entry);
        } else {
            Fail(entry.Path, "the target could not be synced, so what stands there may be broken: " +
                                 SystemErrorText(code));
        }
    }
}

void SaveAccount::Count(const Entry& entry) {
    if (entry.Folder) {
        ++totals_.Folders;
        return;
    }
    ++totals_.Files;
    totals_.Bytes += entry.Bytes;
    totals_.Damaged += entry.Whole ? 0 : 1;
}

} // namespace thntfs
