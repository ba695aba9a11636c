#include "images/ImageFault.h"
#include "images/ImageLibrary.h"
#include "platform/system/CoreText.h"

#ifdef THNTFS_LIBVHDI
#include "images/LibraryFile.h"
#include "images/RawImage.h"
#include "images/VhdBlocks.h"
#include "images/VhdSize.h"
#include "images/VhdxLog.h"

#include <array>
#include <libvhdi.h>
#include <optional>
#include <utility>
#endif

namespace thntfs {

#ifdef THNTFS_LIBVHDI

namespace {

constexpr std::size_t kGuidBytes = 16;
using Guid = std::array<std::uint8_t, kGuidBytes>;

std::unique_ptr<Medium> FileForLibrary(ImageSource& source) {
    if (source.Kind == ImageKind::Vhdx && HasVhdxLogPending(*source.File)) {
        throw ImageFault{CoreText(
            "Core",
            "It is a VHDX image that wasn't closed as it should be: its last changes stand in its log "
            "alone. Open it once in the system that made it, or let \"qemu-img check -r all\" "
            "repair a copy of it.")};
    }
    return source.Kind == ImageKind::Vhdx ? std::move(source.File)
                                          : ShowPresentVhdSize(std::move(source.File));
}

class VhdMedium final : public LibraryMedium {
public:
    explicit VhdMedium(ImageSource source)
        : blocks_(source.Kind == ImageKind::Vhd ? std::make_optional<VhdBlocks>(*source.File) : std::nullopt)
        , file_(FileForLibrary(source), Reads) {
        if (libvhdi_file_initialize(&handle_, nullptr) != 1) {
            throw NoMemoryForImage();
        }
        try {
            Open(source);
        } catch (...) {
            Free();
            throw;
        }
    }

    ~VhdMedium() override { Free(); }

protected:
    ssize_t Read(std::uint64_t offset, Bytes buffer) override {
        if (blocks_) {
            buffer = buffer.first(static_cast<std::size_t>(blocks_->SoundBytes(offset, buffer.size())));
        }
        return libvhdi_file_read_buffer_at_offset(handle_, buffer.data(), buffer.size(),
                                                  static_cast<off64_t>(offset), nullptr);
    }

private:
    void Open(const ImageSource& source) {
        std::uint32_t type = 0;
        if (libvhdi_file_open_file_io_handle(handle_, file_.Handle(), LIBVHDI_OPEN_READ, nullptr) != 1 ||
            libvhdi_file_get_media_size(handle_, &MediaBytes, nullptr) != 1 ||
            libvhdi_file_get_disk_type(handle_, &type, nullptr) != 1) {
            throw DamagedImage(source.Kind);
        }
        // A VHD tells no sectors, and the library 512.
        if (source.Kind == ImageKind::Vhdx &&
            libvhdi_file_get_bytes_per_sector(handle_, &SectorBytes, nullptr) != 1) {
            SectorBytes = 0;
        }
        if (type == LIBVHDI_DISK_TYPE_DIFFERENTIAL) {
            OpenParent(source);
        }
    }

    void OpenParent(const ImageSource& source) {
        const std::string path = PathNamedBy(source, ParentName(source));
        if (source.Layer + 1 == kMostLayers) {
            throw TooManyLayers();
        }
        auto file = OpenImageFilePart(path, "image that it builds on");
        const ImageKind kind = KindOfImage(*file);
        if (kind != ImageKind::Vhd && kind != ImageKind::Vhdx && kind != ImageKind::FixedVhd) {
            throw ImageFault{"The image that it builds on, " + path + ", is no VHD or VHDX."};
        }
        parent_ = std::make_unique<VhdMedium>(ImageSource{path, kind, std::move(file), source.Layer + 1});
        Guid wanted{};
        Guid found{};
        if (libvhdi_file_get_parent_identifier(handle_, wanted.data(), wanted.size(), nullptr) != 1 ||
            libvhdi_file_get_identifier(parent_->handle_, found.data(), found.size(), nullptr) != 1 ||
            wanted != found || libvhdi_file_set_parent_file(handle_, parent_->handle_, nullptr) != 1) {
            throw ImageFault{"The image that it builds on, " + path +
                             ", is another one than it was made from."};
        }
        Further = parent_->FurtherFiles();
        Further.push_back(path);
    }

    std::string ParentName(const ImageSource& source) {
        std::size_t size = 0;
        std::string name;
        if (libvhdi_file_get_utf8_parent_filename_size(handle_, &size, nullptr) == 1 && size > 0) {
            name.resize(size);
            if (libvhdi_file_get_utf8_parent_filename(handle_, reinterpret_cast<std::uint8_t*>(name.data()),
                                                      size, nullptr) != 1) {
                throw DamagedImage(source.Kind);
            }
        }
        return name.substr(0, name.find('\0'));
    }

    void Free() { libvhdi_file_free(&handle_, nullptr); }

    std::optional<VhdBlocks> blocks_; ///< of a dynamic VHD
    LibraryFile file_;
    std::unique_ptr<VhdMedium> parent_;
    libvhdi_file_t* handle_ = nullptr;
};

} // namespace

std::unique_ptr<Medium> OpenVhd(ImageSource source) { return std::make_unique<VhdMedium>(std::move(source)); }

#else

std::unique_ptr<Medium> OpenVhd(ImageSource source) { throw MissingLibrary(source.Kind, "libvhdi"); }

#endif

} // namespace thntfs
