#include "content/FileSaver.h"

#include "content/EntryContent.h"
#include "content/HashedFile.h"
#include "content/TargetName.h"
#include "engine/EngineState.h"
#include "platform/files/File.h"
#include "platform/system/Text.h"

#include <utility>

namespace thntfs {

namespace {

constexpr std::uint16_t kFlagSparse = 0x200;
constexpr std::uint16_t kFlagCompressed = 0x800;

std::string ReasonOf(ErrorCode code) { return Engine.ScanRunFlag == 0 ? "stopped" : SystemErrorText(code); }

std::string NoRoomText(std::uint64_t need, std::uint64_t room) {
    return "it needs " + std::to_string(need) + " bytes and the target has room for " + std::to_string(room);
}

} // namespace

FileSaver::FileSaver(const SaveContext& context)
    : context_(context) {
    if (context_.Options.Report) {
        digest_.emplace();
    }
}

void FileSaver::Save(TargetPath::Level* folder, const CatalogueItem& item, const std::string& path) {
    SavedFile file;
    file.Path = path;
    file.Record = item.RecordNumber;
    file.Size = item.Size;
    if (folder == nullptr) {
        Fail(file, "its folder could not be made or opened");
    } else {
        SaveStored(*folder, item, file);
    }
}

void FileSaver::SaveStored(TargetPath::Level& folder, const CatalogueItem& item, SavedFile& file) {
    if (!HasRoomAsStored(item, file)) {
        return;
    }
    const WrittenContent written = WriteContent(folder, TargetName(item.Name), item.Size, [&](File& output) {
        HashedFile hashed(output, digest_ ? &*digest_ : nullptr);
        return TakeContent(item, hashed);
    });
    if (Conclude(written, item.Name, file)) {
        context_.Account.FileWritten(std::move(file));
    }
}

bool FileSaver::Conclude(const WrittenContent& written, std::u16string_view name, SavedFile& file) {
    const std::string digest = digest_ ? digest_->Take() : "";
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
    TellName(file.Path, name, written.Name);
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
        Fail(file, "its file record is damaged");
        break;
    default:
        Fail(file, "the medium could not be read");
        throw CUserException();
    }
}

void FileSaver::Fail(SavedFile& file, const std::string& reason) {
    file.Reasons = {reason};
    context_.Account.FailFile(std::move(file));
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

void FileSaver::FolderOpened(const TargetPath::Level& level, const std::string& path, ErrorCode code) {
    if (code == kErrorNone) {
        context_.Account.FolderMade(path);
        TellName(path, level.Item.Name, level.MadeName);
    } else {
        context_.Account.Fail(path, ReasonOf(code));
    }
}

void FileSaver::TellName(const std::string& path, std::u16string_view name, const std::string& targetName) {
    if (NarrowText(name) != targetName) {
        context_.Listener.Renamed(path, targetName);
    }
}

} // namespace thntfs
