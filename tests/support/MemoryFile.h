#pragma once

#include "platform/system/Bytes.h"
#include "platform/system/ErrorCodes.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace thntfs {
class File;
}

namespace thntfs::test {

/// A file in memory, with an account of what was done to it. Its handle is good for as long as it stands.
class MemoryFile {
public:
    struct Stretch {
        std::uint64_t Offset = 0; ///< bytes
        std::uint64_t Size = 0;
    };

    MemoryFile();
    ~MemoryFile();
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    operator File&() { return *handle_; } // NOLINT(google-explicit-constructor): it is the file

    /// Another handle, as of a file that is opened once more.
    std::unique_ptr<File> Open();

    /// Forgets what it holds and what was done to it.
    void Clear();

    std::vector<std::uint8_t> Content;
    std::vector<std::uint8_t> Synced;  ///< what would be left if the machine stopped
    std::vector<Stretch> Writes;       ///< those that succeeded
    std::uint64_t Room = 16U << 20U;   ///< bytes that it takes; then the disk is full
    std::uint64_t Reserved = 0;        ///< end of what was set aside and not given back
    std::function<ErrorCode()> OnCall; ///< before each write and sync; its failure is theirs, and half of
                                       ///< what was to be written stands, but for kErrorInvalidUserBuffer

private:
    class Handle;
    std::unique_ptr<File> handle_;
};

/// Puts a store of files in memory, by path, in the place of the system's. What is deleted must not be open.
void UseFilesInMemory();

/// A file of that store; it is made where there is none.
MemoryFile& FileInMemory(const std::string& path);

} // namespace thntfs::test
