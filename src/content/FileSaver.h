#pragma once

#include "content/ContentDigest.h"
#include "content/ContentWriter.h"
#include "content/SaveAccount.h"
#include "content/SaveOptions.h"
#include "content/TargetPath.h"

#include <optional>
#include <string>
#include <string_view>

namespace thntfs {

/// What the parts of a save share.
struct SaveContext {
    const SaveOptions& Options;
    TargetFolder& Target;
    SaveAccount& Account;
    SaveListener& Listener;
};

/// Saves one file at a time: its data, its dates, its named streams and its further names; and for a folder
/// what belongs to it besides its content.
class FileSaver {
public:
    explicit FileSaver(const SaveContext& context);
    FileSaver(const FileSaver&) = delete;
    FileSaver& operator=(const FileSaver&) = delete;

    /// Saves a file into an open folder; null where that can't be had. Throws CUserException, with the file
    /// on the account, where the medium has failed for good.
    void Save(TargetPath::Level* folder, const CatalogueItem& item, const std::string& path);

    /// Takes a folder into account that has been made, or couldn't be.
    void FolderOpened(const TargetPath::Level& level, const std::string& path, ErrorCode code);

private:
    void SaveStored(TargetPath::Level& folder, const CatalogueItem& item, SavedFile& file);
    bool Conclude(const WrittenContent& written, std::u16string_view name, SavedFile& file);
    void Fail(SavedFile& file, const std::string& reason);
    void FailContent(const WrittenContent& written, SavedFile& file);
    bool HasRoomAsStored(const CatalogueItem& item, SavedFile& file);
    void TellName(const std::string& path, std::u16string_view name, const std::string& targetName);

    SaveContext context_;
    std::optional<ContentDigest> digest_; ///< where a report was asked for
};

} // namespace thntfs
