#pragma once

#include "platform/system/Bytes.h"
#include "platform/system/Dates.h"
#include "platform/system/ErrorCodes.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace thntfs {

/// An open ordinary file: a catalogue file, a recovered file, an image being written, standard output.
/// The destructor closes it.
class File {
public:
    File() = default;
    virtual ~File() = default;
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    /// Writes all bytes at the current position and moves it. The position starts at 0 and only Write moves
    /// it.
    virtual ErrorCode Write(ConstBytes bytes) = 0;

    /// Writes all bytes at a byte offset; the current position stays.
    virtual ErrorCode WriteAt(std::uint64_t offset, ConstBytes bytes) = 0;

    /// Reads up to buffer.size() bytes at a byte offset. `got` is the number read: less than asked only at
    /// the end of the file.
    virtual ErrorCode ReadAt(std::uint64_t offset, Bytes buffer, std::size_t& got) = 0;

    /// Size in bytes now.
    virtual ErrorCode Size(std::uint64_t& bytes) = 0;

    /// Sets the size in bytes. What is cut off is gone, what is added is zeros, which take no room where the
    /// file system has holes. Not every file has it: fails with kErrorInvalidParameter by default.
    virtual ErrorCode SetSize(std::uint64_t bytes);

    /// False where a path leads to nothing or to something else than this file, as when the file system that
    /// it is on has been unmounted. Where that can't be told it is true, as by default.
    [[nodiscard]] virtual bool StandsAt(const std::string& path) const;

    /// Waits until what was written has reached the device.
    virtual ErrorCode Sync() = 0;

    /// Closes the file and gives what the system says at that, which may be the first word of a write that
    /// failed. No call may follow. The destructor closes without a word.
    virtual ErrorCode Close();

    /// Sets the dates that are known, as near as the file system keeps them. To be called behind the last
    /// write, which sets them too. Where they can't be set nothing happens, as by default.
    virtual void SetDates(const FileDates& dates);

    /// Told before the first write, where it is known: how many bytes will come at the most, and what
    /// SetDates will be called with. Does nothing by default.
    virtual void Expect(std::uint64_t bytes, const FileDates& dates);

    // Hints for a file that is written from end to end. They change no byte and no size, and do nothing by
    // default.

    /// Sets room aside for bytes still to be written.
    virtual void Reserve(std::uint64_t offset, std::uint64_t bytes);

    /// Gives back what was set aside behind the end of the file.
    virtual void ReleaseReserve();

    /// Has what was written to a range go to the device from now on, so that Sync has less to wait for.
    virtual void StartSync(std::uint64_t offset, std::uint64_t bytes);
};

enum class FileMode {
    CreateNew,     ///< write; fails with kErrorFileExists where anything stands under the name
    CreateAlways,  ///< read and write; an old file is cut to nothing
    OpenRead,      ///< read an existing file
    OpenReadWrite, ///< read and write an existing file

    // For a file of the program's own, in a folder that others may look into. No link is followed.

    CreateOwn,       ///< read and write a new file, which no other user may read; an old one goes first
    OpenOwn,         ///< read an existing file
    OpenOwnReadWrite ///< read and write an existing file
};

/// The one road to ordinary files. Tests put a store in its place that fails at a chosen call.
class FileStore {
public:
    FileStore() = default;
    virtual ~FileStore() = default;
    FileStore(const FileStore&) = delete;
    FileStore& operator=(const FileStore&) = delete;

    /// Opens a file. On success `file` holds the handle, which the caller owns; on failure it is null.
    virtual ErrorCode Open(const std::string& path, FileMode mode, std::unique_ptr<File>& file) = 0;

    /// Deletes a file.
    virtual ErrorCode Delete(const std::string& path) = 0;

    /// Sees a file that was created by another road (TargetFolder) before its user does, and may put another
    /// in its place. A failure makes that creation fail. The system's own store lets every file pass.
    virtual ErrorCode Admit(std::unique_ptr<File>& file);
};

/// The store in use: the system's own unless a test has put another in its place.
FileStore& Files();

/// Puts another store in place, null for the system's own. The caller keeps ownership.
void SetFileStore(FileStore* store);

/// Standard output as a File that can only be written.
std::unique_ptr<File> OpenStandardOutput();

} // namespace thntfs
