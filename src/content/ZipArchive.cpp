#include "content/ZipArchive.h"

#include "content/ZipTail.h"
#include "platform/files/File.h"
#include "platform/system/Utf8Scope.h"

#include <algorithm>
#include <archive.h>
#include <archive_entry.h>
#include <ctime>
#include <limits>

namespace thntfs {

namespace {

// Level 6 packs programs and texts to 41 % and 26 %, this one to 45 % and 33 % in a third of the time, which
// is still more than a disk needs to read them.
constexpr const char* kLevel = "1";
constexpr std::size_t kZipPiece = std::size_t{1} << 20U;
constexpr std::uint64_t kZipPendingSync = std::uint64_t{16} << 20U;
constexpr std::size_t kMaxZipPath = 0xFFFF;                  // what its field holds
constexpr std::uint64_t kMaxDirectoryRecord = 46 + 80;       // besides the path
constexpr std::uint64_t kRoomLeft = std::uint64_t{1} << 20U; // for what the file system needs itself
constexpr std::int64_t kLastSecond = std::numeric_limits<std::int32_t>::max(); // of the field for it
constexpr unsigned kFileRights = 0644;
constexpr unsigned kFolderRights = 0755;

using EntryPointer = std::unique_ptr<archive_entry, void (*)(archive_entry*)>;

EntryPointer HeaderOf(const ZipEntry& entry) {
    EntryPointer header(::archive_entry_new(), ::archive_entry_free);
    ::archive_entry_set_pathname(header.get(), entry.Path.c_str());
    ::archive_entry_set_filetype(header.get(), entry.Folder ? AE_IFDIR : AE_IFREG);
    ::archive_entry_set_perm(header.get(), entry.Folder ? kFolderRights : kFileRights);
    const std::int64_t modified = entry.Modified.value_or(std::time(nullptr));
    ::archive_entry_set_mtime(header.get(), std::clamp<std::int64_t>(modified, 0, kLastSecond), 0);
    if (entry.Size) {
        ::archive_entry_set_size(header.get(), static_cast<std::int64_t>(*entry.Size));
    }
    return header;
}

void FreeWriter(archive* writer) { (void)::archive_write_free(writer); }

} // namespace

ZipArchive::ZipArchive(File& file, RoomOf room)
    : file_(file)
    , room_(std::move(room))
    , writer_(::archive_write_new(), FreeWriter) {
    const auto take = [](archive*, void* self, const void* bytes, std::size_t length) {
        static_cast<ZipArchive*>(self)->Take({static_cast<const std::uint8_t*>(bytes), length});
        return static_cast<la_ssize_t>(length);
    };
    (void)::archive_write_set_format_zip(writer_.get());
    (void)::archive_write_set_format_option(writer_.get(), "zip", "compression-level", kLevel);
    (void)::archive_write_set_bytes_per_block(writer_.get(), 0);
    Note(::archive_write_open(writer_.get(), this, nullptr, take, nullptr) == ARCHIVE_OK);
}

// The library closes what is open still, which then goes nowhere. It would lose memory if it were told that
// the archive has failed.
ZipArchive::~ZipArchive() {
    closing_ = false;
    (void)Note(false);
    writer_.reset();
}

// The library itself fails for want of memory alone.
ErrorCode ZipArchive::Note(bool done) {
    if (!done && failure_ == kErrorNone) {
        failure_ = kErrorNotEnoughMemory;
    }
    return failure_;
}

ErrorCode ZipArchive::Begin(const ZipEntry& entry) {
    if (failure_ != kErrorNone) {
        return failure_;
    }
    if (entry.Path.size() >= kMaxZipPath) {
        return kErrorFilenameTooLong;
    }
    const Utf8Scope names;
    (void)(entry.Stored ? ::archive_write_zip_set_compression_store(writer_.get())
                        : ::archive_write_zip_set_compression_deflate(writer_.get()));
    const bool done = ::archive_write_header(writer_.get(), HeaderOf(entry).get()) == ARCHIVE_OK;
    ++begun_;
    directoryBytes_ += kMaxDirectoryRecord + entry.Path.size();
    if (Note(done) != kErrorNone) {
        dropped_.push_back(begun_ - 1);
    }
    return failure_;
}

ErrorCode ZipArchive::Add(ConstBytes bytes) {
    const la_ssize_t taken = ::archive_write_data(writer_.get(), bytes.data(), bytes.size());
    return Note(taken == static_cast<la_ssize_t>(bytes.size()));
}

// What is in a buffer still might fail to be written when the entry has long been counted as whole.
ErrorCode ZipArchive::End() {
    const bool done = ::archive_write_finish_entry(writer_.get()) == ARCHIVE_OK;
    Flush();
    if (Note(done) == kErrorNone) {
        keptEnd_ = end_;
    }
    return failure_;
}

// The library counts the bytes, so those of the next entry stand behind a gap.
void ZipArchive::Drop() {
    (void)::archive_write_finish_entry(writer_.get());
    end_ += pending_.size();
    pending_.clear();
    dropped_.push_back(begun_ - 1);
}

ErrorCode ZipArchive::Finish() {
    closing_ = true;
    if (::archive_write_close(writer_.get()) != ARCHIVE_OK) {
        return Note(false);
    }
    if (dropped_.empty()) {
        Flush();
        return failure_;
    }
    const std::vector<std::uint8_t> tail = ZipTailWithout(pending_, dropped_, keptEnd_);
    const ErrorCode code = file_.WriteAt(keptEnd_, tail);
    return code == kErrorNone ? file_.SetSize(keptEnd_ + tail.size()) : code;
}

void ZipArchive::Take(ConstBytes bytes) {
    const bool cutsTail = closing_ && !dropped_.empty();
    if (failure_ != kErrorNone && !cutsTail) {
        return;
    }
    pending_.insert(pending_.end(), bytes.begin(), bytes.end());
    if (pending_.size() >= kZipPiece && !cutsTail) {
        Flush();
    }
}

void ZipArchive::Flush() {
    if (failure_ == kErrorNone && !pending_.empty()) {
        failure_ = HasRoom() ? file_.WriteAt(end_, pending_) : kErrorDiskFull;
        end_ += failure_ == kErrorNone ? pending_.size() : 0;
    }
    pending_.clear();
    if (end_ - syncStarted_ >= kZipPendingSync) {
        file_.StartSync(syncStarted_, end_ - syncStarted_);
        syncStarted_ = end_;
    }
}

// An archive without its directory is worth nothing, so the room for that is left.
bool ZipArchive::HasRoom() const {
    const auto room = closing_ ? std::nullopt : room_();
    return !room || *room >= pending_.size() + directoryBytes_ + kRoomLeft;
}

} // namespace thntfs
