#pragma once

#include "catalogue/FindEntry.h"
#include "content/FileSaver.h"
#include "content/SaveAccount.h"
#include "content/SaveOptions.h"
#include "content/TargetPath.h"
#include "platform/files/TargetFolder.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace thntfs {

/// Files, and bytes of them, that a save is to take or has dealt with, however they came out.
struct SaveWork {
    std::uint64_t Files = 0;
    std::uint64_t Bytes = 0;
};

/// What a save of these entries will take. Reads the catalogue alone. Throws CUserException where that can't
/// be read.
SaveWork CountSaveWork(const std::vector<LocatedEntry>& entries, const SaveOptions& options);

/// Writes catalogue entries, and all below them, into a folder of a healthy disk, with the folders above and
/// below them made again. Nothing that stands there is written over, and nothing is written outside it. A
/// job: ScanRunFlag must be set.
class EntrySaver {
public:
    EntrySaver(std::unique_ptr<TargetFolder> target, SaveListener& listener, const SaveOptions& options);

    /// Saves all these. A further name of a file is made where its folder is among them or below one of them;
    /// a file that stands there by further names alone is saved under the first.
    void Save(const std::vector<LocatedEntry>& entries);

    /// Waits until all that was saved is on the device, and gives the totals. To be called at the end.
    const SaveTotals& Finish();

    /// How far it is, the bytes of the file in hand among them. Never less than before, nor more than
    /// CountSaveWork told. For the thread that saves, at any time.
    SaveWork Done();

private:
    void SaveOne(const LocatedEntry& entry);
    void SaveByFurtherNames(const std::vector<LocatedEntry>& entries);
    void SaveBelow(const LocatedEntry& entry);
    void EnterFolder(const CatalogueItem& item);
    void SaveFile(const CatalogueItem& item, const std::string& path);
    void TakeFile(const CatalogueItem& item, const std::string& path);
    TargetPath::Level* OpenLevel();

    SaveOptions options_;
    std::unique_ptr<TargetFolder> target_;
    SaveAccount account_;
    MadeFolders made_;
    FileSaver files_;
    TargetPath path_;
    SaveWork done_;                  ///< files dealt with
    std::uint64_t sizeInHand_ = 0;   ///< of the file in hand
    std::uint64_t bytesReached_ = 0; ///< told last
};

} // namespace thntfs
