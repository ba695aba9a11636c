#include "content/ContentWriter.h"

#include "platform/files/File.h"

#include <memory>

namespace thntfs {

namespace {

constexpr std::uint64_t kBigFileBytes = std::uint64_t{1} << 20U;

WrittenContent WriteSmall(TargetPath::Level& folder, NameChoice& name, const ContentTaker& take) {
    WrittenContent written;
    std::unique_ptr<File> file;
    written.Error = name.Take(folder.Numbers,
                              [&](const std::string& free) { return folder.Handle->CreateFile(free, file); });
    if (written.Error != kErrorNone) {
        return written;
    }
    written.Outcome = take(*file);
    written.Error = written.Outcome.Kept() ? file->Close() : kErrorNone;
    file.reset();
    if (!written.Stands()) {
        folder.Handle->DeleteFile(name.Name());
    }
    return written;
}

WrittenContent WriteBig(TargetPath::Level& folder, NameChoice& name, const ContentTaker& take) {
    WrittenContent written;
    std::unique_ptr<File> file;
    std::string part;
    name.SettleIn(*folder.Handle);
    if (name.Skipped()) {
        written.Error = kErrorCancelled;
        return written;
    }
    written.Error = folder.Handle->CreatePart(part, file);
    if (written.Error != kErrorNone) {
        return written;
    }
    written.Outcome = take(*file);
    written.Error = written.Outcome.Kept() ? file->Sync() : kErrorNone;
    if (written.Stands()) {
        written.Error = name.Take(
            folder.Numbers, [&](const std::string& free) { return folder.Handle->NamePart(part, free); });
    }
    if (!written.Stands()) {
        folder.Handle->DeleteFile(part);
    }
    return written;
}

} // namespace

WrittenContent WriteContent(TargetPath::Level& folder, NameChoice& name, std::uint64_t size,
                            const ContentTaker& take) {
    return size > kBigFileBytes && !folder.Handle->IsArchive() ? WriteBig(folder, name, take)
                                                               : WriteSmall(folder, name, take);
}

} // namespace thntfs
