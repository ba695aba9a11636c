#include "content/ZipFolder.h"

#include "content/ContentJob.h"
#include "content/TargetName.h"
#include "content/ZipArchive.h"
#include "engine/EngineState.h"
#include "platform/files/File.h"
#include "platform/files/Paths.h"
#include "platform/files/TargetFolder.h"
#include "platform/system/Dates.h"

#include <algorithm>
#include <limits>
#include <set>
#include <utility>
#include <vector>
#include <zlib.h>

namespace thntfs {

namespace {

constexpr std::uint64_t kMaxZeros = std::uint64_t{1} << 40U; // in a file; they take hours

constexpr unsigned kMaxNumber = 1000;
constexpr std::uint64_t kTriedFrom = 256U << 10U; // smaller files are compressed as quickly as tried
constexpr std::size_t kTriedBytes = std::size_t{64} << 10U;

/// Photos, films and archives don't become smaller, and to find that out for all of their bytes takes longer
/// than to read them from a disk.
bool Shrinks(ConstBytes bytes) {
    const ConstBytes tried = bytes.first(std::min(bytes.size(), kTriedBytes));
    std::vector<std::uint8_t> packed(::compressBound(static_cast<uLong>(tried.size())));
    auto length = static_cast<uLongf>(packed.size());
    const int result =
        ::compress2(packed.data(), &length, tried.data(), static_cast<uLong>(tried.size()), Z_BEST_SPEED);
    return result != Z_OK || length < tried.size() - tried.size() / 32;
}

std::optional<std::int64_t> SecondsOf(std::uint64_t fileTime) {
    constexpr std::int64_t kUnitsPerSecond = 10'000'000;
    constexpr std::int64_t kSecondsTo1970 = 11'644'473'600;
    if (fileTime == 0 || fileTime >> 63U != 0) {
        return std::nullopt;
    }
    return static_cast<std::int64_t>(fileTime) / kUnitsPerSecond - kSecondsTo1970;
}

/// An archive in the making, and what is in it.
class ZipTarget {
public:
    ZipTarget(std::unique_ptr<TargetFolder> place, std::string name)
        : place_(std::move(place))
        , name_(std::move(name)) {}
    ~ZipTarget() {
        file_.reset();
        if (!part_.empty()) {
            (void)place_->DeleteFile(part_);
        }
    }
    ZipTarget(const ZipTarget&) = delete;
    ZipTarget& operator=(const ZipTarget&) = delete;

    ErrorCode Create() {
        if (place_->Has(name_)) {
            return kErrorFileExists;
        }
        const ErrorCode code = place_->CreatePart(part_, file_);
        if (code == kErrorNone) {
            Archive.emplace(*file_, [this] { return place_->FreeBytes(); });
        }
        return code;
    }

    ErrorCode Complete() {
        if (file_ == nullptr) {
            return kErrorNone;
        }
        const ErrorCode code = Archive->Entries() != 0 ? Name() : kErrorNone;
        file_.reset();
        return code;
    }

    ErrorCode AddFolder(const std::string& path, const FileDates& dates) {
        ErrorCode code = Archive->Begin({path, true, false, {}, SecondsOf(dates.Modified)});
        if (code != kErrorNone) {
            return code;
        }
        code = Archive->End();
        if (code == kErrorNone) {
            Folders.insert(path);
        } else {
            Archive->Drop();
        }
        return code;
    }

    std::optional<ZipArchive> Archive;
    std::set<std::string> Files;
    std::set<std::string> Folders;

private:
    ErrorCode Name() {
        ErrorCode code = Archive->Finish();
        code = code == kErrorNone ? file_->Sync() : code;
        code = code == kErrorNone ? place_->NamePart(part_, name_) : code;
        for (unsigned number = 2; code == kErrorFileExists && number < kMaxNumber; ++number) {
            code = place_->NamePart(part_, NumberedName(name_, number));
        }
        if (code != kErrorNone) {
            return code;
        }
        part_.clear();
        return place_->Sync();
    }

    std::unique_ptr<TargetFolder> place_;
    std::string name_;
    std::string part_; ///< empty once it has its name
    std::unique_ptr<File> file_;
};

/// A file of the archive that is being written. One that isn't closed is none.
class ZipFile final : public File {
public:
    ZipFile(std::shared_ptr<ZipTarget> target, std::string path)
        : target_(std::move(target))
        , entry_{std::move(path)} {}
    ~ZipFile() override {
        if (begun_ && !kept_) {
            target_->Archive->Drop();
        }
    }

    void Expect(std::uint64_t bytes, const FileDates& dates) override {
        if (bytes <= std::numeric_limits<std::int64_t>::max()) {
            entry_.Size = bytes;
        }
        entry_.Modified = SecondsOf(dates.Modified);
    }
    ErrorCode Write(ConstBytes bytes) override {
        const ErrorCode code = Begin(bytes);
        position_ += bytes.size();
        return code == kErrorNone ? target_->Archive->Add(bytes) : code;
    }
    ErrorCode WriteAt(std::uint64_t offset, ConstBytes bytes) override {
        const ErrorCode code = SetSize(offset);
        return code == kErrorNone && position_ == offset ? Write(bytes) : code;
    }
    ErrorCode ReadAt(std::uint64_t /*offset*/, Bytes /*buffer*/, std::size_t& got) override {
        got = 0;
        return kErrorInvalidParameter;
    }
    ErrorCode Size(std::uint64_t& bytes) override {
        bytes = position_;
        return kErrorNone;
    }
    // A stop ends it early, without a failure: whoever writes the file looks for that himself.
    ErrorCode SetSize(std::uint64_t bytes) override {
        static const std::vector<std::uint8_t> kZeros(std::size_t{1} << 20U);
        if (bytes < position_) {
            return kErrorInvalidParameter;
        }
        zeros_ += bytes - position_;
        ErrorCode code = zeros_ <= kMaxZeros ? kErrorNone : kErrorFileTooLarge;
        while (position_ < bytes && code == kErrorNone && !ContentStopped()) {
            const auto piece = std::min<std::uint64_t>(bytes - position_, kZeros.size());
            code = Write(ConstBytes(kZeros).first(static_cast<std::size_t>(piece)));
            Engine.BytesWritten = position_;
        }
        return code;
    }
    ErrorCode Sync() override { return kErrorNone; }
    ErrorCode Close() override {
        ErrorCode code = Begin({});
        code = code == kErrorNone ? target_->Archive->End() : code;
        kept_ = code == kErrorNone;
        return code;
    }

private:
    ErrorCode Begin(ConstBytes first) {
        if (begun_) {
            return kErrorNone;
        }
        entry_.Stored = entry_.Size > kTriedFrom && !first.empty() && !Shrinks(first);
        const ErrorCode code = target_->Archive->Begin(entry_);
        begun_ = code == kErrorNone;
        return code;
    }

    std::shared_ptr<ZipTarget> target_;
    ZipEntry entry_;
    std::uint64_t position_ = 0;
    std::uint64_t zeros_ = 0;
    bool begun_ = false;
    bool kept_ = false;
};

class ZipFolder final : public TargetFolder {
public:
    /// `path`: in the archive; empty for the archive itself, else with '/' behind it.
    ZipFolder(std::shared_ptr<ZipTarget> target, std::string path)
        : target_(std::move(target))
        , path_(std::move(path)) {}

    [[nodiscard]] bool IsArchive() const override { return true; }

    void ExpectSubfolder(const FileDates& dates) override { datesBelow_ = dates; }
    ErrorCode MakeSubfolder(const std::string& name, std::unique_ptr<TargetFolder>& folder) override {
        ErrorCode code = IsPlainName(name) ? kErrorNone : kErrorInvalidName;
        if (code == kErrorNone && !target_->Folders.contains(path_ + name)) {
            code = Has(name) ? kErrorFileExists : target_->AddFolder(path_ + name, datesBelow_);
        }
        if (code != kErrorNone) {
            folder.reset();
            return code;
        }
        return OpenSubfolder(name, folder);
    }
    ErrorCode OpenSubfolder(const std::string& name, std::unique_ptr<TargetFolder>& folder) override {
        const bool known = target_->Folders.contains(path_ + name);
        folder = known ? std::make_unique<ZipFolder>(target_, path_ + name + "/") : nullptr;
        return known ? kErrorNone : kErrorFileNotFound;
    }
    [[nodiscard]] bool Has(const std::string& name) const override {
        return target_->Files.contains(path_ + name) || target_->Folders.contains(path_ + name);
    }
    ErrorCode CreateFile(const std::string& name, std::unique_ptr<File>& file) override {
        file.reset();
        if (!IsPlainName(name)) {
            return kErrorInvalidName;
        }
        if (Has(name)) {
            return kErrorFileExists;
        }
        if (target_->Archive->Failure() != kErrorNone) {
            return target_->Archive->Failure();
        }
        target_->Files.insert(path_ + name);
        file = std::make_unique<ZipFile>(target_, path_ + name);
        return kErrorNone;
    }
    ErrorCode DeleteFile(const std::string& name) override {
        return target_->Files.erase(path_ + name) != 0 ? kErrorNone : kErrorFileNotFound;
    }
    // Names can't be changed any more, and each file has one.
    ErrorCode CreatePart(std::string& /*name*/, std::unique_ptr<File>& file) override {
        file.reset();
        return kErrorInvalidParameter;
    }
    ErrorCode NamePart(const std::string& /*part*/, const std::string& /*name*/) override {
        return kErrorInvalidParameter;
    }
    ErrorCode LinkFile(const std::string& /*name*/, TargetFolder& /*folder*/,
                       const std::string& /*newName*/) override {
        return kErrorInvalidParameter;
    }
    void SetDates(const FileDates& /*dates*/) override {}
    [[nodiscard]] std::optional<std::uint64_t> FreeBytes() const override { return std::nullopt; }
    bool KeepsHoles() override { return false; }
    ErrorCode Sync() override { return target_->Complete(); }

private:
    std::shared_ptr<ZipTarget> target_;
    std::string path_;
    FileDates datesBelow_; ///< of the folder to be made next
};

} // namespace

ErrorCode OpenZipFolder(const std::string& path, std::unique_ptr<TargetFolder>& folder) {
    folder.reset();
    const std::string absolute = AbsolutePath(path);
    const std::size_t slash = absolute.rfind('/');
    std::unique_ptr<TargetFolder> place;
    ErrorCode code = TargetFolder::OpenTargetFolder(absolute.substr(0, slash + 1), false, place);
    if (code != kErrorNone) {
        return code;
    }
    auto target = std::make_shared<ZipTarget>(std::move(place), absolute.substr(slash + 1));
    code = target->Create();
    if (code == kErrorNone) {
        folder = std::make_unique<ZipFolder>(std::move(target), "");
    }
    return code;
}

} // namespace thntfs
