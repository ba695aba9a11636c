#include "content/FileSaver.h"

#include "catalogue/Conditions.h"
#include "content/EntryContent.h"
#include "content/FurtherEntries.h"
#include "content/HashedFile.h"
#include "engine/EngineState.h"
#include "platform/files/File.h"
#include "platform/system/Text.h"

#include <algorithm>
#include <utility>

namespace thntfs {

namespace {

constexpr std::uint16_t kFlagSparse = 0x200;
constexpr std::uint16_t kFlagCompressed = 0x800;
constexpr std::uint64_t kSmallBytes = 4096;
constexpr const char* kNoFolder = "its folder could not be made or opened";
constexpr const char* kRecordDamaged = "its file record is damaged";
constexpr const char* kMediumFailed = "the medium could not be read";

std::string ReasonOf(ErrorCode code) { return Engine.ScanRunFlag == 0 ? "stopped" : SystemErrorText(code); }

std::string NoRoomText(std::uint64_t need, std::uint64_t room) {
    return "it needs " + std::to_string(need) + " bytes and the target has room for " + std::to_string(room);
}

constexpr std::string_view kSystemFolder = "/$Extend/"; // its streams are the volume's own

// Each of its sectors was read, but they aren't all its own any more.
void DoubtByCondition(const CatalogueItem& item, SavedFile& file) {
    const Condition condition = ConditionOf(item);
    if (condition.Kind == ConditionKind::Overwritten) {
        file.Reasons.emplace_back("its clusters are used by other files by now");
    } else if (condition.Kind == ConditionKind::Partly) {
        file.Reasons.push_back("only " + std::to_string(condition.Share) +
                               " % of its clusters are still its own");
    }
    file.Whole = file.Reasons.empty();
}

FileDates DatesIn(const ExactFile& file) {
    const ExactTimes times = file.Times();
    return {times.Modified, times.Accessed};
}

} // namespace

FileSaver::FileSaver(const SaveContext& context)
    : context_(context)
    , names_(context.Target, context.Made, Rules(),
             [this](const CatalogueItem& folder) { return DatesOfFolder(folder); }) {
    if (context_.Options.Report) {
        digest_.emplace();
    }
}

void FileSaver::Save(TargetPath::Level* folder, const CatalogueItem& item, const std::string& path) {
    SavedFile file = Begin(item, path);
    if (folder == nullptr) {
        Fail(file, kNoFolder);
    } else if (context_.Options.AsStored) {
        SaveStored(*folder, item, file);
    } else {
        SaveExact(*folder, item, file);
    }
}

SavedFile FileSaver::Begin(const CatalogueItem& item, const std::string& path) {
    SavedFile file;
    file.Path = path;
    file.Record = item.RecordNumber;
    file.Size = item.Size;
    file.Condition = ConditionWord(ConditionOf(item).Kind);
    return file;
}

void FileSaver::LeaveOut(const CatalogueItem& item, const std::string& path, SaveWish why) {
    SavedFile file = Begin(item, path);
    file.Reasons = {why == SaveWish::ExcludedType
                        ? std::string("left out, since its type is excluded")
                        : std::string("left out, since its condition is ") + file.Condition};
    context_.Account.LeaveOut(file, why);
}

void FileSaver::SkipWithFolder(const CatalogueItem& item, const std::string& path) {
    SavedFile file = Begin(item, path);
    file.Reasons = {"its folder was skipped"};
    context_.Account.SkipFile(file, false);
}

void FileSaver::SaveStored(TargetPath::Level& folder, const CatalogueItem& item, SavedFile& file) {
    if (!HasRoomAsStored(item, file)) {
        return;
    }
    NameChoice name(Rules(), file.Path, NarrowText(item.Name));
    const WrittenContent written = WriteContent(folder, name, item.Size, [&](File& output) {
        HashedFile hashed(output, Digest());
        return TakeContent(item, hashed);
    });
    if (Conclude(written, name, file)) {
        context_.Account.FileWritten(std::move(file));
    }
}

// A file with holes or compressed data may need less room than its size.
bool FileSaver::HasRoomAsStored(const CatalogueItem& item, SavedFile& file) {
    const auto room = context_.Target.FreeBytes();
    if (!room || item.Size <= *room || (item.Flags & (kFlagSparse | kFlagCompressed)) != 0) {
        return true;
    }
    const std::uint64_t need = ContentNeed(item);
    if (need > *room) {
        Fail(file, NoRoomText(need, *room));
    }
    return need <= *room;
}

void FileSaver::SaveExact(TargetPath::Level& folder, const CatalogueItem& item, SavedFile& file) {
    Facts facts;
    if (!ReadFacts(item, facts, file) || !HasRoom(facts.Data.get(), file)) {
        return;
    }
    NameChoice name(Rules(), file.Path, NarrowText(item.Name));
    const WrittenContent written = WriteStream(folder, name, facts.Data.get(), facts.Dates);
    if (Conclude(written, name, file)) {
        DoubtByCondition(item, file);
        GiveNames(folder, item, name.Name(), facts, file);
        context_.Account.FileWritten(file);
        SaveStreams(folder, name.Name(), file, reader_);
    }
}

bool FileSaver::ReadFacts(const CatalogueItem& item, Facts& facts, SavedFile& file) try {
    if (!reader_.Open(item)) {
        Fail(file, kRecordDamaged);
        return false;
    }
    facts.Data = reader_.OpenStream();
    facts.Names = reader_.Names();
    facts.Dates = DatesIn(reader_);
    file.Size = facts.Data != nullptr ? facts.Data->Size() : 0;
    return true;
} catch (const CUserException&) {
    Fail(file, kMediumFailed);
    throw;
}

// To ask for the room costs as much as to write a small file, which tells by itself where there is none.
bool FileSaver::HasRoom(const ExactStream* stream, SavedFile& file) {
    if (stream == nullptr || stream->Size() <= kSmallBytes) {
        return true;
    }
    const auto room = context_.Target.FreeBytes();
    if (!room || stream->Size() <= *room) {
        return true;
    }
    if (!keepsHoles_) {
        keepsHoles_ = context_.Target.KeepsHoles();
    }
    const std::uint64_t need = *keepsHoles_ ? DataBytes(*stream, *room) : stream->Size();
    if (need > *room) {
        Fail(file, NoRoomText(need, *room));
    }
    return need <= *room;
}

WrittenContent FileSaver::WriteStream(TargetPath::Level& folder, NameChoice& name, ExactStream* stream,
                                      const FileDates& dates) {
    const std::uint64_t size = stream != nullptr ? stream->Size() : 0;
    return WriteContent(folder, name, size, [&](File& output) {
        output.Expect(size, dates);
        const ContentOutcome outcome =
            stream != nullptr ? writer_.Write(*stream, output, Digest()) : ContentOutcome();
        output.SetDates(dates);
        return outcome;
    });
}

void FileSaver::GiveNames(TargetPath::Level& folder, const CatalogueItem& item, const std::string& name,
                          const Facts& facts, SavedFile& file) {
    for (const ExactName& further : facts.Names) {
        if (!IsListedName(item, further) && names_.GoTo(further)) {
            GiveName(folder, name, further, facts, file);
        }
    }
}

// Where the target has no such links, or no more for this file, the name gets a copy.
void FileSaver::GiveName(TargetPath::Level& folder, const std::string& name, const ExactName& further,
                         const Facts& facts, SavedFile& file) {
    const std::string path = names_.PathOf(further.Name);
    TargetPath::Level* const place =
        names_.Open([this](TargetPath& way, const auto& level, const std::string& made, ErrorCode code) {
            if (code == kErrorNone || code == kErrorCancelled) {
                FolderOpened(way, level, made, code);
            }
        });
    if (place == nullptr && names_.Skipped()) {
        context_.Account.Skip(path, false);
        return;
    }
    if (place == nullptr) {
        context_.Account.Fail(path, kNoFolder);
        return;
    }
    NameChoice given(Rules(), path, NarrowText(further.Name));
    ErrorCode code = given.Take(place->Numbers, [&](const std::string& free) {
        return folder.Handle->LinkFile(name, *place->Handle, free);
    });
    if (code != kErrorNone && code != kErrorCancelled && Engine.ScanRunFlag != 0) {
        code = Copy(*place, facts, given);
    }
    if (code == kErrorNone) {
        TellName(path, given.Wanted(), given.Name());
        file.Links.push_back(path);
    } else if (code == kErrorCancelled) {
        context_.Account.Skip(path);
    } else {
        context_.Account.Fail(path, ReasonOf(code));
    }
}

ErrorCode FileSaver::Copy(TargetPath::Level& folder, const Facts& facts, NameChoice& name) {
    const WrittenContent copy = WriteStream(folder, name, facts.Data.get(), facts.Dates);
    if (digest_) {
        (void)digest_->Take();
    }
    if (copy.Outcome.End == ContentEnd::MediumFailed) {
        return kErrorCrc;
    }
    if (copy.Outcome.End == ContentEnd::Stopped) {
        return kErrorGeneralFailure; // told as the stop that it is
    }
    return copy.Outcome.End == ContentEnd::WriteFailed ? copy.Outcome.WriteError : copy.Error;
}

void FileSaver::SaveStreams(TargetPath::Level& folder, const std::string& name, const SavedFile& file,
                            ExactFile& reader) {
    for (const ExactStreamInfo& stream : reader.Streams()) {
        if (stream.Name.empty() || file.Path.starts_with(kSystemFolder)) {
            continue;
        }
        if (!context_.Options.Streams) {
            context_.Account.StreamLeft();
            continue;
        }
        SavedFile saved;
        saved.Path = file.Path + ":" + NarrowText(stream.Name);
        saved.Record = file.Record;
        saved.Condition = file.Condition;
        saved.Size = stream.Size;
        saved.IsStream = true;
        SaveStream(folder, name, stream.Name, saved, reader);
    }
}

void FileSaver::SaveStream(TargetPath::Level& folder, const std::string& name, std::u16string_view stream,
                           SavedFile& file, ExactFile& reader) {
    const std::unique_ptr<ExactStream> data = reader.OpenStream(stream);
    if (data == nullptr || !HasRoom(data.get(), file)) {
        return;
    }
    NameChoice choice(Rules(), file.Path, name + "#" + NarrowText(stream));
    const WrittenContent written = WriteStream(folder, choice, data.get(), DatesIn(reader));
    if (Conclude(written, choice, file)) {
        context_.Account.FileWritten(std::move(file));
    }
}

bool FileSaver::Conclude(const WrittenContent& written, const NameChoice& name, SavedFile& file) {
    const std::string digest = digest_ ? digest_->Take() : "";
    if (name.Skipped()) {
        file.Reasons = {"skipped"};
        context_.Account.SkipFile(file);
        return false;
    }
    if (!written.Outcome.Kept()) {
        FailContent(written, file);
        return false;
    }
    if (written.Error != kErrorNone) {
        Fail(file, ReasonOf(written.Error));
        return false;
    }
    file.Size = written.Outcome.Size;
    file.Bytes = written.Outcome.Written;
    file.Whole = written.Outcome.Whole();
    file.Reasons = DamageReasons(written.Outcome);
    file.Sha256 = digest;
    TellName(file.Path, name.Wanted(), name.Name());
    return true;
}

void FileSaver::FailContent(const WrittenContent& written, SavedFile& file) {
    switch (written.Outcome.End) {
    case ContentEnd::Stopped:
        context_.Account.Stop();
        Fail(file, "stopped");
        break;
    case ContentEnd::WriteFailed:
        Fail(file, SystemErrorText(written.Outcome.WriteError));
        break;
    case ContentEnd::RecordDamaged:
        Fail(file, kRecordDamaged);
        break;
    default:
        Fail(file, kMediumFailed);
        throw CUserException();
    }
}

void FileSaver::Fail(SavedFile& file, const std::string& reason) {
    file.Reasons = {reason};
    context_.Account.FailFile(std::move(file));
}

void FileSaver::FolderOpened(TargetPath& way, const TargetPath::Level& level, const std::string& path,
                             ErrorCode code) {
    if (code == kErrorCancelled) {
        context_.Account.Skip(path);
        return;
    }
    if (code != kErrorNone) {
        context_.Account.Fail(path, ReasonOf(code));
        return;
    }
    context_.Account.FolderMade(path);
    TellName(path, NarrowText(level.Item.Name), level.MadeName);
    if (ReadsRecordOf(level.Item) && folderReader_.Open(level.Item)) {
        SavedFile folder;
        folder.Path = path;
        folder.Record = level.Item.RecordNumber;
        SaveStreams(way.AboveOpen(), level.MadeName, folder, folderReader_);
    }
}

FileDates FileSaver::DatesOfFolder(const CatalogueItem& folder) try {
    if (!ReadsRecordOf(folder) || !folderReader_.Open(folder)) {
        return {};
    }
    return DatesIn(folderReader_);
} catch (const CUserException&) {
    return {};
}

void FileSaver::TellName(const std::string& path, std::string_view wantedName, const std::string& name) {
    if (wantedName != name) {
        context_.Listener.Renamed(path, name);
    }
}

} // namespace thntfs
