#pragma once

#include "content/ContentOutcome.h"
#include "content/SaveListener.h"
#include "content/SaveOptions.h"
#include "content/SavedFile.h"
#include "platform/files/TargetFolder.h"

#include <cstdint>
#include <future>
#include <string>
#include <vector>

namespace thntfs {

struct SaveTotals {
    std::uint64_t Files = 0;        ///< files saved
    std::uint64_t Folders = 0;      ///< folders saved or made for what is in them
    std::uint64_t Bytes = 0;        ///< bytes of the saved files
    std::uint64_t Damaged = 0;      ///< of the saved files and streams, those that aren't whole
    std::uint64_t Failed = 0;       ///< files, folders, streams and further names that could not be saved
    std::uint64_t Links = 0;        ///< further names given to saved files
    std::uint64_t Streams = 0;      ///< named streams saved
    std::uint64_t StreamsLeft = 0;  ///< named streams that nobody asked for
    std::uint64_t LeftOut = 0;      ///< files in conditions that nobody asked for
    std::uint64_t TypesLeftOut = 0; ///< files of excluded types
    std::uint64_t Skipped = 0;      ///< files, folders, streams and further names that the user skipped
    bool Stopped = false;           ///< ScanRunFlag was cleared, or the medium failed for good
};

/// The account of a save. What was written counts as saved once the target has been synced. That is done for
/// many files at a time, on a thread of its own while the next ones are written. Where it fails, all that was
/// written and not yet synced counts as failed, and each file is named.
class SaveAccount {
public:
    SaveAccount(TargetFolder& target, SaveListener& listener, bool report = false);

    /// A file or stream was written whole or damaged; its reasons tell which.
    void FileWritten(SavedFile file);
    void FolderMade(const std::string& path);
    void StreamLeft() { ++totals_.StreamsLeft; }
    void Fail(const std::string& path, const std::string& reason);
    /// A file or stream could not be saved, for the last of its reasons.
    void FailFile(SavedFile file);
    /// A file was left out, for its reason.
    void LeaveOut(const SavedFile& file, SaveWish why);
    /// The user skipped an entry, or a folder above it, which alone is told then.
    void Skip(const std::string& path, bool told = true);
    /// The same of a file or stream, for its reason.
    void SkipFile(const SavedFile& file, bool told = true);
    void Stop() { totals_.Stopped = true; }

    /// Syncs what is still open and gives the totals, which are final then.
    const SaveTotals& Settle();

private:
    struct Entry {
        SavedFile File;
        bool Folder;
    };

    void Add(Entry entry);
    void StartSync();
    void AwaitSync();
    void Judge(std::vector<Entry> entries, ErrorCode code);
    void Count(const Entry& entry);
    void Conclude(const SavedFile& file);

    TargetFolder& target_;
    SaveListener& listener_;
    bool report_;
    SaveTotals totals_;
    std::vector<Entry> unsynced_;
    std::vector<Entry> syncing_;    ///< what the sync under way vouches for
    std::future<ErrorCode> result_; ///< of that sync
    std::uint64_t unsyncedBytes_ = 0;
    std::size_t unsyncedPathBytes_ = 0;
};

} // namespace thntfs
