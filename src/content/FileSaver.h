#pragma once

#include "content/ContentDigest.h"
#include "content/ContentWriter.h"
#include "content/ExactFile.h"
#include "content/FurtherNames.h"
#include "content/SaveAccount.h"
#include "content/SaveOptions.h"
#include "content/StreamWriter.h"
#include "content/TargetPath.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace thntfs {

/// What the parts of a save share.
struct SaveContext {
    const SaveOptions& Options;
    TargetFolder& Target;
    MadeFolders& Made;
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

    /// Further names are given in these folders and below them.
    void Select(const std::vector<LocatedEntry>& entries) { names_.Select(entries); }

    /// Saves a file into an open folder; null where that can't be had. Throws CUserException, with the file
    /// on the account, where the medium has failed for good.
    void Save(TargetPath::Level* folder, const CatalogueItem& item, const std::string& path);

    /// Takes a file into account that the options leave out.
    void LeaveOut(const CatalogueItem& item, const std::string& path, SaveWish why);

    /// Takes a file into account whose folder the user skips.
    void SkipWithFolder(const CatalogueItem& item, const std::string& path);

    /// Takes a folder on its way into account that has been made, or couldn't be, and saves its streams.
    void FolderOpened(TargetPath& way, const TargetPath::Level& level, const std::string& path,
                      ErrorCode code);

    /// The dates of a folder; none where they aren't to be set.
    FileDates DatesOfFolder(const CatalogueItem& folder);

    /// Leaves the folder that got a further name last.
    void Leave() { names_.Leave(); }

private:
    /// What the records of a file tell.
    struct Facts {
        std::unique_ptr<ExactStream> Data; ///< null where there is none
        std::vector<ExactName> Names;
        FileDates Dates;
    };

    static SavedFile Begin(const CatalogueItem& item, const std::string& path);
    void SaveStored(TargetPath::Level& folder, const CatalogueItem& item, SavedFile& file);
    bool HasRoomAsStored(const CatalogueItem& item, SavedFile& file);

    void SaveExact(TargetPath::Level& folder, const CatalogueItem& item, SavedFile& file);
    bool ReadFacts(const CatalogueItem& item, Facts& facts, SavedFile& file);
    bool HasRoom(const ExactStream* stream, SavedFile& file);
    WrittenContent WriteStream(TargetPath::Level& folder, NameChoice& name, ExactStream* stream,
                               const FileDates& dates);

    void GiveNames(TargetPath::Level& folder, const CatalogueItem& item, const std::string& name,
                   const Facts& facts, SavedFile& file);
    void GiveName(TargetPath::Level& folder, const std::string& name, const ExactName& further,
                  const Facts& facts, SavedFile& file);

    ErrorCode Copy(TargetPath::Level& folder, const Facts& facts, NameChoice& name);

    void SaveStreams(TargetPath::Level& folder, const std::string& name, const SavedFile& file,
                     ExactFile& reader);
    void SaveStream(TargetPath::Level& folder, const std::string& name, std::u16string_view stream,
                    SavedFile& file, ExactFile& reader);

    bool Conclude(const WrittenContent& written, const NameChoice& name, SavedFile& file);
    void Fail(SavedFile& file, const std::string& reason);
    void FailContent(const WrittenContent& written, SavedFile& file);
    /// Lost folders have no record, and the plain road asks for none.
    [[nodiscard]] bool ReadsRecordOf(const CatalogueItem& folder) const {
        return !context_.Options.AsStored && folder.RecordSector != 0;
    }
    void TellName(const std::string& path, std::string_view wantedName, const std::string& name);
    [[nodiscard]] NameRules Rules() const { return {context_.Options.Prefix, context_.Listener}; }
    ContentDigest* Digest() { return digest_ ? &*digest_ : nullptr; }

    SaveContext context_;
    std::optional<ContentDigest> digest_; ///< where a report was asked for
    StreamWriter writer_;
    ExactFile reader_;       ///< of the file in hand
    ExactFile folderReader_; ///< of a folder that is made or left meanwhile
    FurtherNames names_;
    std::optional<bool> keepsHoles_; ///< of the target, once it was asked
};

} // namespace thntfs
