#pragma once

#include "content/ContentOutcome.h"
#include "content/SavedFile.h"
#include "platform/files/TargetFolder.h"

#include <cstdint>
#include <future>
#include <string>
#include <vector>

namespace thntfs {

/// What a save tells of single entries as it goes. Paths are those of the catalogue.
class SaveListener {
public:
    SaveListener() = default;
    virtual ~SaveListener() = default;
    SaveListener(const SaveListener&) = delete;
    SaveListener& operator=(const SaveListener&) = delete;

    /// A file or folder had to take another name in the target.
    virtual void Renamed(const std::string& path, const std::string& targetName) = 0;
    /// A file was saved damaged. Called once for each reason.
    virtual void Warned(const std::string& path, const std::string& text) = 0;
    /// A file or folder could not be saved.
    virtual void Failed(const std::string& path, const std::string& reason) = 0;
    /// What became of a file is known for good: it is on the device, failed, or was left out. Called where
    /// SaveOptions asked for a report, once for each file and each stream that is saved as one.
    virtual void Concluded(const SavedFile& /*file*/) {}
};

struct SaveTotals {
    std::uint64_t Files = 0;       ///< files saved
    std::uint64_t Folders = 0;     ///< folders saved or made for what is in them
    std::uint64_t Bytes = 0;       ///< bytes of the saved files
    std::uint64_t Damaged = 0;     ///< of the saved files and streams, those that aren't whole
    std::uint64_t Failed = 0;      ///< files, folders, streams and further names that could not be saved
    std::uint64_t Links = 0;       ///< further names given to saved files
    std::uint64_t Streams = 0;     ///< named streams saved
    std::uint64_t StreamsLeft = 0; ///< named streams that nobody asked for
    std::uint64_t LeftOut = 0;     ///< files in conditions that nobody asked for
    bool Stopped = false;          ///< ScanRunFlag was cleared, or the medium failed for good
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
    void LeaveOut(const SavedFile& file);
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
