#include "scaninfo/ScanInfoIo.h"

#include "engine/CatalogueRecords.h"
#include "platform/files/File.h"

#include <algorithm>
#include <filesystem>

namespace thntfs {

namespace {

// Opening a pipe would wait for somebody to write to it.
ErrorCode OpenOrdinary(const std::string& path, std::unique_ptr<File>& file) {
    std::error_code failure;
    const auto status = std::filesystem::status(path, failure);
    if (std::filesystem::exists(status) && std::filesystem::is_other(status)) {
        return kErrorInvalidParameter;
    }
    return Files().Open(path, FileMode::OpenRead, file);
}

} // namespace

void CheckScanInfo(ErrorCode code) {
    if (code != kErrorNone) {
        throw ScanInfoFault{code};
    }
}

ScanInfoReader::ScanInfoReader(const std::string& path) {
    CheckScanInfo(OpenOrdinary(path, file_));
    CheckScanInfo(file_->Size(size_));
}

ScanInfoReader::~ScanInfoReader() = default;

void ScanInfoReader::Take(Bytes wanted) {
    if (wanted.size() > Left()) {
        throw ScanInfoFault{};
    }
    while (!wanted.empty()) {
        if (position_ - windowStart_ >= windowBytes_) {
            Fill();
        }
        const auto at = static_cast<std::size_t>(position_ - windowStart_);
        const std::size_t now = std::min(wanted.size(), windowBytes_ - at);
        std::copy_n(window_.begin() + static_cast<std::ptrdiff_t>(at), now, wanted.begin());
        wanted = wanted.subspan(now);
        position_ += now;
    }
}

void ScanInfoReader::Fill() {
    window_.resize(static_cast<std::size_t>(std::min<std::uint64_t>(kCopyBytes, Left())));
    windowStart_ = position_;
    windowBytes_ = 0;
    CheckScanInfo(file_->ReadAt(position_, window_, windowBytes_));
    if (windowBytes_ == 0) {
        throw ScanInfoFault{}; // cut short since it was opened
    }
}

std::uint32_t ScanInfoReader::TakeU32() { return U32At(TakeRecord<4>(), 0); }
std::uint64_t ScanInfoReader::TakeU64() { return U64At(TakeRecord<8>(), 0); }

void ScanInfoReader::CopyTo(File& target, std::uint64_t bytes) {
    if (bytes > Left()) {
        throw ScanInfoFault{};
    }
    while (bytes > 0) {
        if (position_ - windowStart_ >= windowBytes_) {
            Fill();
        }
        const auto at = static_cast<std::size_t>(position_ - windowStart_);
        const auto now = static_cast<std::size_t>(std::min<std::uint64_t>(bytes, windowBytes_ - at));
        CheckScanInfo(target.Write(ConstBytes(window_).subspan(at, now)));
        position_ += now;
        bytes -= now;
    }
}

ScanInfoWriter::ScanInfoWriter(File& file)
    : file_(file) {
    buffer_.reserve(kCopyBytes);
}

void ScanInfoWriter::Put(ConstBytes bytes) {
    if (buffer_.size() + bytes.size() > kCopyBytes) {
        Flush();
    }
    buffer_.insert(buffer_.end(), bytes.begin(), bytes.end());
}

void ScanInfoWriter::PutU32(std::uint32_t number) {
    std::array<std::uint8_t, 4> stored{};
    PutNumber(stored, 0, number);
    Put(stored);
}

void ScanInfoWriter::PutU64(std::uint64_t number) {
    std::array<std::uint8_t, 8> stored{};
    PutNumber(stored, 0, number);
    Put(stored);
}

void ScanInfoWriter::PutFile(const std::string& path) {
    std::unique_ptr<File> source;
    std::uint64_t size = 0;
    CheckScanInfo(Files().Open(path, FileMode::OpenOwn, source));
    CheckScanInfo(source->Size(size));
    CheckScanInfo(size > kMaxCatalogueFileBytes ? kErrorFileTooLarge : kErrorNone);
    PutU64(size);
    Flush();
    std::vector<std::uint8_t> piece(kCopyBytes);
    for (std::uint64_t done = 0; done < size;) {
        const Bytes wanted =
            Bytes(piece).first(static_cast<std::size_t>(std::min<std::uint64_t>(piece.size(), size - done)));
        std::size_t got = 0;
        CheckScanInfo(source->ReadAt(done, wanted, got));
        if (got == 0) {
            throw ScanInfoFault{}; // fewer bytes than its size, which is written already
        }
        CheckScanInfo(file_.Write(wanted.first(got)));
        done += got;
    }
}

void ScanInfoWriter::Flush() {
    if (!buffer_.empty()) {
        CheckScanInfo(file_.Write(buffer_));
        buffer_.clear();
    }
}

} // namespace thntfs
