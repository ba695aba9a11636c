#include "platform/files/posix/FileDescriptor.h"
#include "platform/media/DiskListing.h"
#include "platform/media/LentDisk.h"
#include "platform/media/Medium.h"
#include "platform/media/posix/DiskTurn.h"
#include "platform/media/posix/HoleFinder.h"
#include "platform/media/posix/LentDescriptor.h"
#include "platform/system/posix/ErrnoMap.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <limits>
#include <linux/fs.h>
#include <optional>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace thntfs {

namespace {

constexpr std::uint64_t kMaxBytes = static_cast<std::uint64_t>(std::numeric_limits<off_t>::max());
constexpr std::size_t kBounceBytes = 4096;
constexpr std::uint32_t kImageSectorBytes = 512;

/// pread of the whole buffer. Gives an errno value, 0 for success; `got` is short only at the end of the
/// file.
int ReadFully(int descriptor, std::uint64_t offset, Bytes buffer, std::size_t& got) {
    got = 0;
    while (got < buffer.size()) {
        const ssize_t moved =
            ::pread(descriptor, buffer.data() + got, buffer.size() - got, static_cast<off_t>(offset + got));
        if (moved == 0) {
            return 0;
        }
        if (moved > 0) {
            got += static_cast<std::size_t>(moved);
        } else if (errno != EINTR) {
            return errno;
        }
    }
    return 0;
}

/// The road past the kernel's page cache, a sector at a time. Opened at its first use, but for a lent disk,
/// which can't be opened again.
class DirectReader {
public:
    DirectReader(std::string path, std::uint32_t sectorBytes)
        : path_(std::move(path))
        , sectorBytes_(sectorBytes) {}

    /// Reads the sectors that the request touches, each by itself. Gives an errno value; EINVAL means that
    /// this road does not exist here. `got` is short only at the end of the medium.
    int Read(const LentDisk& medium, std::uint64_t offset, Bytes buffer, std::size_t& got) {
        got = 0;
        if (medium.Turns.IsOpen()) {
            const DiskTurn turn(medium, DiskRoad::PastCache);
            return turn.Stands() ? ReadSectorwise(medium.Disk.Get(), offset, buffer, got) : EINVAL;
        }
        return Open(medium.Disk) ? ReadSectorwise(descriptor_.Get(), offset, buffer, got) : EINVAL;
    }

private:
    int ReadSectorwise(int descriptor, std::uint64_t offset, Bytes buffer, std::size_t& got) {
        while (got < buffer.size()) {
            const std::uint64_t position = offset + got;
            const auto skipped = static_cast<std::size_t>(position % sectorBytes_);
            std::size_t sectorGot = 0;
            const Bytes sector(bounce_.data(), sectorBytes_);
            const int error = ReadFully(descriptor, position - skipped, sector, sectorGot);
            if (error != 0) {
                return error;
            }
            if (sectorGot <= skipped) {
                return 0;
            }
            const std::size_t count = std::min(sectorGot - skipped, buffer.size() - got);
            std::memcpy(buffer.data() + got, bounce_.data() + skipped, count);
            got += count;
        }
        return 0;
    }

    bool Open(const FileDescriptor& buffered) {
        if (!tried_) {
            tried_ = true;
            descriptor_ = OpenDescriptor(path_.c_str(), O_RDONLY | O_DIRECT | O_NOCTTY | O_NONBLOCK);
            if (descriptor_.IsOpen() && !IsSameFile(buffered.Get(), descriptor_.Get())) {
                descriptor_.Close();
            }
        }
        return descriptor_.IsOpen();
    }

    /// The name may have gone to another file or device since the medium was opened.
    static bool IsSameFile(int left, int right) {
        struct stat l {};
        struct stat r {};
        if (::fstat(left, &l) != 0 || ::fstat(right, &r) != 0 || l.st_mode != r.st_mode) {
            return false;
        }
        return S_ISBLK(l.st_mode) ? l.st_rdev == r.st_rdev : l.st_dev == r.st_dev && l.st_ino == r.st_ino;
    }

    std::string path_;
    std::uint32_t sectorBytes_;
    FileDescriptor descriptor_;
    bool tried_ = false;
    alignas(kBounceBytes) std::array<std::uint8_t, kBounceBytes> bounce_{};
};

class PosixMedium final : public Medium {
public:
    PosixMedium(LentDisk medium, const std::string& path, std::uint64_t sizeBytes, std::uint32_t sectorBytes)
        : medium_(std::move(medium))
        , holes_(medium_.Disk.Get())
        , sizeBytes_(sizeBytes)
        , sectorBytes_(sectorBytes)
        , direct_(path, sectorBytes != 0 ? sectorBytes : kImageSectorBytes) {}

    ErrorCode ReadAt(std::uint64_t offset, Bytes buffer) override {
        if (offset >= sizeBytes_) {
            return kErrorNone;
        }
        const std::uint64_t left = sizeBytes_ - offset;
        const Bytes wanted =
            buffer.first(static_cast<std::size_t>(std::min<std::uint64_t>(buffer.size(), left)));
        std::size_t got = 0;
        const int error = IsDevice() ? ReadDevice(offset, wanted, got) : ReadImage(offset, wanted, got);
        return error == 0 && got == wanted.size() ? kErrorNone : Judge(error);
    }

    void ExpectScatteredReads(bool scattered) override {
        ::posix_fadvise(medium_.Disk.Get(), 0, 0, scattered ? POSIX_FADV_RANDOM : POSIX_FADV_SEQUENTIAL);
    }

    [[nodiscard]] std::uint64_t SizeBytes() const override { return sizeBytes_; }
    [[nodiscard]] std::uint32_t DeviceSectorBytes() const override { return sectorBytes_; }
    [[nodiscard]] const LentDisk* Lent() const override {
        return medium_.Turns.IsOpen() ? &medium_ : nullptr;
    }

private:
    [[nodiscard]] bool IsDevice() const { return sectorBytes_ != 0; }

    /// The kernel fills its cache by whole pages, so a bad sector takes its neighbours with it. Who asks for
    /// one sector wants that one, bad neighbours or not.
    int ReadDevice(std::uint64_t offset, Bytes buffer, std::size_t& got) {
        if (buffer.size() <= sectorBytes_ && sectorBytes_ <= kBounceBytes) {
            const int error = direct_.Read(medium_, offset, buffer, got);
            if (error != EINVAL) {
                return error;
            }
        }
        std::optional<DiskTurn> turn;
        if (Lent() != nullptr) {
            turn.emplace(medium_, DiskRoad::ByCache);
        }
        return ReadFully(medium_.Disk.Get(), offset, buffer, got);
    }

    /// An image may lie on a failing disk itself. Its good sectors are mostly cached, so the direct road is
    /// only the second try.
    int ReadImage(std::uint64_t offset, Bytes buffer, std::size_t& got) {
        if (holes_.IsHole(offset, buffer.size())) {
            std::fill(buffer.begin(), buffer.end(), std::uint8_t{0});
            got = buffer.size();
            return 0;
        }
        const int error = ReadFully(medium_.Disk.Get(), offset, buffer, got);
        if (error == 0 || buffer.size() > kBounceBytes) {
            return error;
        }
        const int directError = direct_.Read(medium_, offset, buffer, got);
        return directError == EINVAL ? error : directError;
    }

    /// A failed read, or one that ended (0) before the size that the medium had when it was opened.
    [[nodiscard]] ErrorCode Judge(int error) const {
        if ((error == 0 || error == EIO) && IsDevice() && IsGone()) {
            return kErrorNotReady;
        }
        return error == 0 ? kErrorCrc : MediumErrorOfErrno(error);
    }

    /// An unplugged disk answers reads with EIO or with an end at 0, like a bad sector or a short disk.
    [[nodiscard]] bool IsGone() const {
        std::uint64_t size = 0;
        return ::ioctl(medium_.Disk.Get(), BLKGETSIZE64, &size) != 0 || size == 0;
    }

    LentDisk medium_; ///< its turns are open where it was lent
    HoleFinder holes_;
    std::uint64_t sizeBytes_;
    std::uint32_t sectorBytes_;
    DirectReader direct_;
};

struct MediumShape {
    std::uint64_t SizeBytes = 0;
    std::uint32_t SectorBytes = 0;
};

ErrorCode ErrorOfKind(mode_t mode) {
    if (S_ISDIR(mode)) {
        return kErrorDirectory;
    }
    return S_ISBLK(mode) || S_ISREG(mode) ? kErrorNone : kErrorInvalidParameter;
}

ErrorCode DeviceShape(int descriptor, MediumShape& shape) {
    int sectorBytes = 0;
    if (::ioctl(descriptor, BLKGETSIZE64, &shape.SizeBytes) != 0 ||
        ::ioctl(descriptor, BLKSSZGET, &sectorBytes) != 0) {
        return MediumErrorOfErrno(errno);
    }
    // A card reader without a card.
    if (shape.SizeBytes == 0 || sectorBytes <= 0) {
        return kErrorNotReady;
    }
    shape.SectorBytes = static_cast<std::uint32_t>(sectorBytes);
    return kErrorNone;
}

ErrorCode ShapeOf(int descriptor, MediumShape& shape) {
    struct stat status {};
    if (::fstat(descriptor, &status) != 0) {
        return MediumErrorOfErrno(errno);
    }
    const ErrorCode error = ErrorOfKind(status.st_mode);
    if (error != kErrorNone || S_ISBLK(status.st_mode)) {
        return error != kErrorNone ? error : DeviceShape(descriptor, shape);
    }
    shape.SizeBytes = static_cast<std::uint64_t>(status.st_size);
    return kErrorNone;
}

/// Opening some devices has effects of its own (a tape rewinds), so the kind is looked at before.
ErrorCode OpenForReading(const std::string& path, FileDescriptor& descriptor) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0) {
        return MediumErrorOfErrno(errno);
    }
    const ErrorCode error = ErrorOfKind(status.st_mode);
    if (error != kErrorNone) {
        return error;
    }
    // Without O_NONBLOCK an empty drive says so at once. With it a pipe that took the name of the image
    // just now can't hold us.
    const int waiting = S_ISBLK(status.st_mode) ? 0 : O_NONBLOCK;
    descriptor = OpenDescriptor(path.c_str(), O_RDONLY | O_NOCTTY | waiting);
    return descriptor.IsOpen() ? kErrorNone : MediumErrorOfErrno(errno);
}

/// Turns aren't open where the path can be opened again.
MediumResult MediumOf(LentDisk medium, const std::string& path) {
    MediumShape shape;
    if (const ErrorCode error = ShapeOf(medium.Disk.Get(), shape); error != kErrorNone) {
        return {nullptr, error};
    }
    ::posix_fadvise(medium.Disk.Get(), 0, 0, POSIX_FADV_SEQUENTIAL);
    shape.SizeBytes = std::min(shape.SizeBytes, kMaxBytes);
    return {std::make_unique<PosixMedium>(std::move(medium), path, shape.SizeBytes, shape.SectorBytes),
            kErrorNone};
}

} // namespace

DiskSize QueryDiskBytes(const std::string& devicePath) {
    FileDescriptor descriptor;
    MediumShape shape;
    DiskSize size;
    size.OpenError = OpenForReading(devicePath, descriptor);
    if (size.OpenError == kErrorNone) {
        size.AccessError = ShapeOf(descriptor.Get(), shape);
        size.Bytes = size.AccessError == kErrorNone ? shape.SizeBytes : 0;
    }
    return size;
}

MediumResult OpenMedium(const std::string& path) {
    FileDescriptor descriptor;
    const ErrorCode error = OpenForReading(path, descriptor);
    return error == kErrorNone ? MediumOf({std::move(descriptor), {}}, path) : MediumResult{nullptr, error};
}

MediumResult OpenMediumOn(FileDescriptor disk, const std::string& path, FileDescriptor turns) {
    if (!IsDiskAt(disk.Get(), path, O_RDONLY)) {
        return {nullptr, kErrorInvalidHandle};
    }
    LentDisk lent{std::move(disk), turns.IsOpen() ? std::move(turns) : NewTurns()};
    return lent.Turns.IsOpen() ? MediumOf(std::move(lent), path)
                               : MediumResult{nullptr, MediumErrorOfErrno(errno)};
}

} // namespace thntfs
