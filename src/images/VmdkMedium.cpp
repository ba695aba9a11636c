#include "images/ImageFault.h"
#include "images/ImageLibrary.h"
#include "platform/system/CoreText.h"

#ifdef THNTFS_LIBVMDK
#include "images/LibraryFile.h"
#include "images/RawImage.h"
#include "images/VmdkHeader.h"
#include "images/ZeroGrains.h"

#include <libvmdk.h>
#include <utility>
#endif

namespace thntfs {

#ifdef THNTFS_LIBVMDK

namespace {

constexpr int kMostExtents = 10000;
constexpr std::uint32_t kNoParent = 0xFFFFFFFF;

struct ExtentCloser {
    void operator()(libvmdk_extent_descriptor_t* extent) const {
        libvmdk_extent_descriptor_free(&extent, nullptr);
    }
};

// A string of the library: it is asked for the size with the closing 0, then for the bytes.
template <typename Object, typename SizeCall, typename TextCall>
std::string VmdkText(Object* object, SizeCall sizeCall, TextCall textCall) {
    std::size_t size = 0;
    if (sizeCall(object, &size, nullptr) != 1 || size == 0) {
        return {};
    }
    std::string text(size, '\0');
    if (textCall(object, reinterpret_cast<std::uint8_t*>(text.data()), size, nullptr) != 1) {
        return {};
    }
    return text.substr(0, text.find('\0'));
}

class VmdkMedium final : public LibraryMedium {
public:
    explicit VmdkMedium(ImageSource source)
        : file_(std::move(source.File), Reads) {
        try {
            Open(source);
        } catch (...) {
            Free();
            throw;
        }
    }

    ~VmdkMedium() override { Free(); }

protected:
    ssize_t Read(std::uint64_t offset, Bytes buffer) override {
        return libvmdk_handle_read_buffer_at_offset(handle_, buffer.data(), buffer.size(),
                                                    static_cast<off64_t>(offset), nullptr);
    }

private:
    void Open(const ImageSource& source) {
        if (libvmdk_handle_initialize(&handle_, nullptr) != 1 ||
            libbfio_pool_initialize(&pool_, 0, LIBBFIO_POOL_UNLIMITED_NUMBER_OF_OPEN_HANDLES, nullptr) != 1) {
            throw NoMemoryForImage();
        }
        if (libvmdk_handle_open_file_io_handle(handle_, file_.Handle(), LIBVMDK_OPEN_READ, nullptr) != 1) {
            throw DamagedImage(source.Kind);
        }
        std::uint32_t parent = kNoParent;
        libvmdk_handle_get_parent_content_identifier(handle_, &parent, nullptr);
        if (parent != kNoParent) {
            OpenParent(source, parent);
        }
        AddExtents(source);
        if (libvmdk_handle_open_extent_data_files_file_io_pool(handle_, pool_, nullptr) != 1 ||
            libvmdk_handle_get_media_size(handle_, &MediaBytes, nullptr) != 1) {
            throw DamagedImage(source.Kind);
        }
    }

    // A file that holds the text itself is its only extent, whatever name it had when it was made.
    void AddExtents(const ImageSource& source) {
        int count = 0;
        if (libvmdk_handle_get_number_of_extents(handle_, &count, nullptr) != 1 || count < 1 ||
            count > kMostExtents || (source.Kind == ImageKind::Vmdk && count != 1)) {
            throw DamagedImage(source.Kind);
        }
        for (int i = 0; i < count; ++i) {
            const std::string path = source.Kind == ImageKind::Vmdk ? source.Path : ExtentPath(source, i);
            if (source.Kind != ImageKind::Vmdk) {
                Further.push_back(path);
            }
            AddExtent(path);
        }
    }

    std::string ExtentPath(const ImageSource& source, int index) {
        libvmdk_extent_descriptor_t* opened = nullptr;
        int type = 0;
        if (libvmdk_handle_get_extent_descriptor(handle_, index, &opened, nullptr) != 1) {
            throw DamagedImage(source.Kind);
        }
        const std::unique_ptr<libvmdk_extent_descriptor_t, ExtentCloser> extent(opened);
        if (libvmdk_extent_descriptor_get_type(opened, &type, nullptr) != 1) {
            throw DamagedImage(source.Kind);
        }
        if (type != LIBVMDK_EXTENT_TYPE_FLAT && type != LIBVMDK_EXTENT_TYPE_SPARSE &&
            type != LIBVMDK_EXTENT_TYPE_VMFS_FLAT && type != LIBVMDK_EXTENT_TYPE_VMFS_SPARSE) {
            throw ImageFault{CoreText(
                "Core", "It stands for a device, or for something else that is no file: open that itself.")};
        }
        RefuseLaterStart(source, opened, type);
        return PathNamedBy(source, VmdkText(opened, libvmdk_extent_descriptor_get_utf8_filename_size,
                                            libvmdk_extent_descriptor_get_utf8_filename));
    }

    // The library takes the sector at which an extent begins in its file for a byte.
    static void RefuseLaterStart(const ImageSource& source, libvmdk_extent_descriptor_t* extent, int type) {
        off64_t start = 0;
        size64_t bytes = 0;
        if (libvmdk_extent_descriptor_get_range(extent, &start, &bytes, nullptr) != 1) {
            throw DamagedImage(source.Kind);
        }
        if (start != 0 && (type == LIBVMDK_EXTENT_TYPE_FLAT || type == LIBVMDK_EXTENT_TYPE_VMFS_FLAT)) {
            throw ImageFault{CoreText(
                "Core", "It is a VMDK image with a piece that begins in the middle of a file, which can't be "
                        "read. That file can be opened by itself if it is a raw one.")};
        }
    }

    void AddExtent(const std::string& path) {
        extents_.push_back(std::make_unique<LibraryFile>(
            [path] { return ShowZeroGrains(OpenImageFilePart(path, "file with its data")); }, Reads));
        AppendToPool(pool_, *extents_.back());
    }

    void OpenParent(const ImageSource& source, std::uint32_t wanted) {
        const std::string path =
            PathNamedBy(source, VmdkText(handle_, libvmdk_handle_get_utf8_parent_filename_size,
                                         libvmdk_handle_get_utf8_parent_filename));
        if (source.Layer + 1 == kMostLayers) {
            throw TooManyLayers();
        }
        auto file = OpenImageFilePart(path, "image that it builds on");
        const ImageKind kind = KindOfImage(*file);
        if (kind != ImageKind::Vmdk && kind != ImageKind::VmdkText) {
            throw ImageFault{"The image that it builds on, " + path + ", is no VMDK."};
        }
        parent_ = std::make_unique<VmdkMedium>(ImageSource{path, kind, std::move(file), source.Layer + 1});
        std::uint32_t found = kNoParent;
        libvmdk_handle_get_content_identifier(parent_->handle_, &found, nullptr);
        if (found != wanted || libvmdk_handle_set_parent_handle(handle_, parent_->handle_, nullptr) != 1) {
            throw ImageFault{"The image that it builds on, " + path +
                             ", has changed since, or is another one than it was made from."};
        }
        Further = parent_->FurtherFiles();
        Further.push_back(path);
    }

    void Free() {
        libvmdk_handle_free(&handle_, nullptr);
        libbfio_pool_free(&pool_, nullptr);
    }

    LibraryFile file_;
    std::vector<std::unique_ptr<LibraryFile>> extents_;
    std::unique_ptr<VmdkMedium> parent_;
    libbfio_pool_t* pool_ = nullptr;
    libvmdk_handle_t* handle_ = nullptr;
};

} // namespace

std::unique_ptr<Medium> OpenVmdk(ImageSource source) {
    if (source.Kind == ImageKind::Vmdk && ReadVmdkHeader(*source.File).DescriptorSector == 0) {
        throw ImageFault{
            CoreText("Core", "It is one piece of a VMDK image. Open the small file that names all of them.")};
    }
    return std::make_unique<VmdkMedium>(std::move(source));
}

#else

std::unique_ptr<Medium> OpenVmdk(ImageSource source) { throw MissingLibrary(source.Kind, "libvmdk"); }

#endif

} // namespace thntfs
