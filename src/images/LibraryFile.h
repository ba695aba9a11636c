#pragma once

#include "platform/media/Medium.h"

#include <cstdint>
#include <deque>
#include <functional>
#include <libbfio.h>
#include <memory>
#include <string>
#include <vector>

namespace thntfs {

class LibraryFile;

/// What the files of one image share.
struct LibraryReads {
    ErrorCode Code = kErrorNone; ///< how a read below the library failed, which its own answer doesn't tell
    std::deque<LibraryFile*> Open = {}; ///< those that can be closed, the one opened longest ago first
};

/// A file as the libraries read it: through our own medium, so that no library opens anything by itself, and
/// that a failing disk under an image is known as such. Lives longer than what the library opens on it.
class LibraryFile {
public:
    /// A medium that is open. `reads` lives longer.
    LibraryFile(std::unique_ptr<Medium> medium, LibraryReads& reads);

    /// One of many, which the process may not have open all at once: it is opened now, closed, and opened
    /// again when the library reads from it. The opener throws ImageFault, and so does this.
    LibraryFile(std::function<std::unique_ptr<Medium>()> opener, LibraryReads& reads);

    ~LibraryFile();
    LibraryFile(const LibraryFile&) = delete;
    LibraryFile& operator=(const LibraryFile&) = delete;

    /// For the library's call, which doesn't own it.
    [[nodiscard]] libbfio_handle_t* Handle() { return handle_; }

    /// It is somebody else's from now on.
    void GiveHandle() { handle_ = nullptr; }

    // What the library asks for.
    ssize_t Read(std::uint8_t* buffer, std::size_t size);
    std::int64_t Seek(std::int64_t offset, int whence);
    [[nodiscard]] std::uint64_t Size() const { return bytes_; }

private:
    void MakeHandle();
    bool Reopen();

    std::function<std::unique_ptr<Medium>()> opener_; ///< empty where the medium stays open
    std::unique_ptr<Medium> medium_;
    LibraryReads& reads_;
    std::uint64_t bytes_;
    libbfio_handle_t* handle_ = nullptr;
    std::uint64_t offset_ = 0;
};

/// Gives a file's handle to a pool. Throws ImageFault.
void AppendToPool(libbfio_pool_t* pool, LibraryFile& file);

/// A medium behind a library. What the library can't give is error 23, unless the file below has failed in
/// another way.
class LibraryMedium : public Medium {
public:
    ErrorCode ReadAt(std::uint64_t offset, Bytes buffer) override;
    [[nodiscard]] std::uint64_t SizeBytes() const override { return MediaBytes; }
    [[nodiscard]] std::uint32_t DeviceSectorBytes() const override { return 0; }
    [[nodiscard]] std::uint32_t ImageSectorBytes() const override { return SectorBytes; }
    [[nodiscard]] std::vector<std::string> FurtherFiles() const override { return Further; }

protected:
    /// Bytes read into the buffer from its beginning on, all of which lies within the medium; 0 or less where
    /// that failed.
    virtual ssize_t Read(std::uint64_t offset, Bytes buffer) = 0;

    std::uint64_t MediaBytes = 0;
    std::uint32_t SectorBytes = 0;
    std::vector<std::string> Further;
    LibraryReads Reads;
};

} // namespace thntfs
