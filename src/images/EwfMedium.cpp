#include "images/ImageFault.h"
#include "images/ImageLibrary.h"

#ifdef THNTFS_LIBEWF
#include "images/LibraryFile.h"
#include "images/RawImage.h"

#include <algorithm>
#include <libewf.h>
#include <utility>
#endif

namespace thntfs {

#ifdef THNTFS_LIBEWF

namespace {

struct SectorRange {
    std::uint64_t First = 0;
    std::uint64_t Count = 0;
};

class EwfMedium final : public LibraryMedium {
public:
    explicit EwfMedium(const ImageSource& source) {
        try {
            AddSegments(SegmentsOf(source));
            Open(source);
        } catch (...) {
            Free();
            throw;
        }
    }

    ~EwfMedium() override { Free(); }

protected:
    // A chunk whose sum is wrong comes all the same, and is only noted. So do sectors that could not be read
    // when the image was made: they are zeros in it.
    ssize_t Read(std::uint64_t offset, Bytes buffer) override {
        const ssize_t got = libewf_handle_read_random(handle_, buffer.data(), buffer.size(),
                                                      static_cast<off64_t>(offset), nullptr);
        return got > 0 && IsBad(offset, static_cast<std::uint64_t>(got)) ? -1 : got;
    }

private:
    static std::vector<std::string> SegmentsOf(const ImageSource& source) {
        char** names = nullptr;
        int count = 0;
        std::vector<std::string> paths;
        if (libewf_glob(source.Path.c_str(), source.Path.size(), LIBEWF_FORMAT_UNKNOWN, &names, &count,
                        nullptr) == 1) {
            paths.assign(names, names + count);
            libewf_glob_free(names, count, nullptr);
        }
        return paths.empty() ? std::vector{source.Path} : paths;
    }

    void AddSegments(const std::vector<std::string>& paths) {
        if (libewf_handle_initialize(&handle_, nullptr) != 1 ||
            libbfio_pool_initialize(&pool_, 0, LIBBFIO_POOL_UNLIMITED_NUMBER_OF_OPEN_HANDLES, nullptr) != 1) {
            throw NoMemoryForImage();
        }
        for (const std::string& path : paths) {
            segments_.push_back(
                std::make_unique<LibraryFile>([path] { return OpenImageFilePart(path, "segment"); }, Reads));
            AppendToPool(pool_, *segments_.back());
        }
        Further.assign(paths.begin() + 1, paths.end());
    }

    void Open(const ImageSource& source) {
        const bool open = libewf_handle_open_file_io_pool(handle_, pool_, LIBEWF_OPEN_READ, nullptr) == 1 &&
                          libewf_handle_get_media_size(handle_, &MediaBytes, nullptr) == 1;
        if (!open) {
            throw ImageFault{std::string("It is an image in the format ") + NameOfKind(source.Kind) +
                             " that can't be opened: it is damaged or encrypted, or one of its segments is "
                             "missing (" +
                             std::to_string(segments_.size()) + " found)."};
        }
        if (libewf_handle_segment_files_corrupted(handle_, nullptr) == 1) {
            throw ImageFault{"It is not whole: its segments (" + std::to_string(segments_.size()) +
                             " found) don't end where the image ends. Put all of them into one folder."};
        }
        if (libewf_handle_get_bytes_per_sector(handle_, &SectorBytes, nullptr) != 1) {
            SectorBytes = 0;
        }
        NoteAcquiryErrors();
    }

    void NoteAcquiryErrors() {
        std::uint32_t count = 0;
        libewf_handle_get_number_of_acquiry_errors(handle_, &count, nullptr);
        for (std::uint32_t i = 0; i < count; ++i) {
            SectorRange range;
            if (libewf_handle_get_acquiry_error(handle_, i, &range.First, &range.Count, nullptr) == 1) {
                unread_.push_back(range);
            }
        }
    }

    [[nodiscard]] bool IsBad(std::uint64_t offset, std::uint64_t count) {
        if (SectorBytes == 0) {
            return false;
        }
        const std::uint64_t first = offset / SectorBytes;
        const std::uint64_t last = (offset + count - 1) / SectorBytes;
        return HasWrongChunk(first, last) ||
               std::any_of(unread_.begin(), unread_.end(), [&](const SectorRange& range) {
                   return first < range.First + range.Count && last >= range.First;
               });
    }

    // The library keeps the chunks whose sum was wrong as ranges in rising order: one more may be a new range
    // in the middle, or make a known one longer.
    [[nodiscard]] bool HasWrongChunk(std::uint64_t first, std::uint64_t last) {
        std::uint32_t low = 0;
        std::uint32_t high = 0;
        libewf_handle_get_number_of_checksum_errors(handle_, &high, nullptr);
        while (low < high) {
            const std::uint32_t middle = low + (high - low) / 2;
            SectorRange range;
            if (libewf_handle_get_checksum_error(handle_, middle, &range.First, &range.Count, nullptr) != 1) {
                return true;
            }
            if (range.First > last) {
                high = middle;
            } else if (range.First + range.Count <= first) {
                low = middle + 1;
            } else {
                return true;
            }
        }
        return false;
    }

    void Free() {
        libewf_handle_close(handle_, nullptr); // frees what an open that has failed leaves
        libewf_handle_free(&handle_, nullptr);
        libbfio_pool_free(&pool_, nullptr);
    }

    std::vector<std::unique_ptr<LibraryFile>> segments_;
    libbfio_pool_t* pool_ = nullptr;
    libewf_handle_t* handle_ = nullptr;
    std::vector<SectorRange> unread_; ///< when the image was made
};

} // namespace

std::unique_ptr<Medium> OpenEwf(ImageSource source) { return std::make_unique<EwfMedium>(source); }

#else

std::unique_ptr<Medium> OpenEwf(ImageSource source) { throw MissingLibrary(source.Kind, "libewf"); }

#endif

} // namespace thntfs
