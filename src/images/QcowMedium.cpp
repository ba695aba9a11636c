#include "images/ImageFault.h"
#include "images/ImageLibrary.h"
#include "platform/system/CoreText.h"

#ifdef THNTFS_LIBQCOW
#include "images/LibraryFile.h"
#include "images/QcowClusters.h"

#include <algorithm>
#include <libqcow.h>
#include <utility>
#endif

namespace thntfs {

#ifdef THNTFS_LIBQCOW

namespace {

constexpr unsigned kLeastClusterBits = 9;
constexpr unsigned kMostClusterBits = 21;
constexpr std::uint32_t kMostNameBytes = 4096;

// Marks that tell of the image's state, not of its form: it wasn't closed, or some of it is known to be
// wrong.
constexpr std::uint64_t kStateFeatures = 3;
constexpr std::uint64_t kDataElsewhere = 4;

// The image as the library is to see it: one that builds on nothing and was closed as it should be. What lies
// below is read here. Behind the file's end are zeros for some clusters more: the library takes for whole
// what it has read in part.
class LoneImage final : public Medium {
public:
    LoneImage(Medium& file, const QcowHeader& header)
        : file_(file)
        , isThree_(header.Version >= 3)
        , clusterBytes_(std::uint64_t{1} << header.ClusterBits) {}

    ErrorCode ReadAt(std::uint64_t offset, Bytes buffer) override {
        constexpr std::uint64_t kNamePlace = 8;
        constexpr std::uint64_t kNamePlaceEnd = 20;
        constexpr std::uint64_t kStateByte = 79;
        ErrorCode code = kErrorNone;
        const std::uint64_t left = file_.SizeBytes() - std::min(offset, file_.SizeBytes());
        if (left < buffer.size()) {
            std::fill(buffer.begin(), buffer.end(), std::uint8_t{0});
        }
        if (left != 0) {
            code = file_.ReadAt(offset, buffer);
        }
        for (std::uint64_t place = offset;
             place < std::min<std::uint64_t>(kStateByte + 1, offset + buffer.size()); ++place) {
            std::uint8_t& byte = buffer[static_cast<std::size_t>(place - offset)];
            if (place >= kNamePlace && place < kNamePlaceEnd) {
                byte = 0;
            } else if (place == kStateByte && isThree_) {
                byte = static_cast<std::uint8_t>(byte & ~kStateFeatures);
            }
        }
        return code;
    }

    [[nodiscard]] std::uint64_t SizeBytes() const override {
        return (file_.SizeBytes() / clusterBytes_ + 4) * clusterBytes_;
    }
    [[nodiscard]] std::uint32_t DeviceSectorBytes() const override { return 0; }

private:
    Medium& file_;
    bool isThree_;
    std::uint64_t clusterBytes_;
};

class QcowMedium final : public LibraryMedium {
public:
    QcowMedium(ImageSource source, const QcowHeader& header)
        : source_(std::move(source))
        , clusters_(*source_.File, header)
        , file_(std::make_unique<LoneImage>(*source_.File, header), Reads) {
        OpenBelow(header);
        if (libqcow_file_initialize(&handle_, nullptr) != 1 ||
            libqcow_file_open_file_io_handle(handle_, file_.Handle(), LIBQCOW_OPEN_READ, nullptr) != 1 ||
            libqcow_file_get_media_size(handle_, &MediaBytes, nullptr) != 1 ||
            !clusters_.Covers(MediaBytes)) {
            libqcow_file_free(&handle_, nullptr);
            throw DamagedImage(source_.Kind);
        }
    }

    ~QcowMedium() override { libqcow_file_free(&handle_, nullptr); }

protected:
    ssize_t Read(std::uint64_t offset, Bytes buffer) override {
        const ClusterStretch stretch = clusters_.StretchAt(offset, buffer.size());
        const Bytes part = buffer.first(static_cast<std::size_t>(stretch.Bytes));
        switch (stretch.Place) {
        case ClusterPlace::Stored:
            Reads.Code = source_.File->ReadAt(stretch.FileOffset, part);
            return Reads.Code == kErrorNone ? static_cast<ssize_t>(part.size()) : -1;
        case ClusterPlace::Packed:
            return libqcow_file_read_buffer_at_offset(handle_, part.data(), part.size(),
                                                      static_cast<off64_t>(offset), nullptr);
        case ClusterPlace::Below:
            return ReadBelow(offset, part);
        case ClusterPlace::Zeros:
            std::fill(part.begin(), part.end(), std::uint8_t{0});
            return static_cast<ssize_t>(part.size());
        default:
            Reads.Code = stretch.Error;
            return -1;
        }
    }

private:
    // It may be shorter than the image, whose rest is zeros then.
    ssize_t ReadBelow(std::uint64_t offset, Bytes part) {
        const std::uint64_t end = below_ != nullptr ? below_->SizeBytes() : 0;
        const std::uint64_t left = end - std::min(offset, end);
        const Bytes there = part.first(static_cast<std::size_t>(std::min<std::uint64_t>(left, part.size())));
        std::fill(part.begin() + static_cast<std::ptrdiff_t>(there.size()), part.end(), std::uint8_t{0});
        Reads.Code = there.empty() ? kErrorNone : below_->ReadAt(offset, there);
        return Reads.Code == kErrorNone ? static_cast<ssize_t>(part.size()) : -1;
    }

    void OpenBelow(const QcowHeader& header) {
        if (header.NameOffset == 0 || header.NameBytes == 0) {
            return;
        }
        if (header.NameBytes > kMostNameBytes) {
            throw DamagedImage(source_.Kind);
        }
        std::string name(header.NameBytes, '\0');
        const Bytes bytes(reinterpret_cast<std::uint8_t*>(name.data()), name.size());
        if (source_.File->ReadAt(header.NameOffset, bytes) != kErrorNone) {
            throw DamagedImage(source_.Kind);
        }
        const std::string path = PathNamedBy(source_, name.substr(0, name.find('\0')));
        below_ = OpenLayerBelow(path, source_.Layer + 1);
        Further = below_->FurtherFiles();
        Further.push_back(path);
    }

    ImageSource source_;
    QcowClusters clusters_;
    LibraryFile file_;
    std::unique_ptr<Medium> below_;
    libqcow_file_t* handle_ = nullptr;
};

void RefuseUnknown(const QcowHeader& header) {
    if (header.Version < 2 || header.ClusterBits < kLeastClusterBits ||
        header.ClusterBits > kMostClusterBits) {
        throw DamagedImage(ImageKind::Qcow);
    }
    if (header.Encryption != 0) {
        throw ImageFault{
            CoreText("Core", "It is an encrypted QCOW2 image. Decrypt it by the program that has made it.")};
    }
    if ((header.Features & kDataElsewhere) != 0) {
        throw ImageFault{CoreText(
            "Core", "It is a QCOW2 image that keeps its data in another file, which can't be read. That file "
                    "can be opened by itself if it is a raw one.")};
    }
    if ((header.Features & ~kStateFeatures) != 0) {
        throw ImageFault{CoreText(
            "Core", "It is a QCOW2 image with features that this program doesn't know, such as a newer "
                    "compression. Convert it to a raw image first.")};
    }
}

} // namespace

std::unique_ptr<Medium> OpenQcow(ImageSource source) {
    const QcowHeader header = ReadQcowHeader(*source.File);
    RefuseUnknown(header);
    return std::make_unique<QcowMedium>(std::move(source), header);
}

#else

std::unique_ptr<Medium> OpenQcow(ImageSource source) { throw MissingLibrary(source.Kind, "libqcow"); }

#endif

} // namespace thntfs
