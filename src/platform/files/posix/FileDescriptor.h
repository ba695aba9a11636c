#pragma once

namespace thntfs {

/// Owner of a file descriptor; the destructor closes it. -1 is none.
class FileDescriptor {
public:
    FileDescriptor() = default;
    explicit FileDescriptor(int number)
        : number_(number) {}
    ~FileDescriptor() { Close(); }
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;
    FileDescriptor(FileDescriptor&& other) noexcept
        : number_(other.Release()) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept;

    [[nodiscard]] int Get() const { return number_; }
    [[nodiscard]] bool IsOpen() const { return number_ >= 0; }

    /// Gives the descriptor away: the caller closes it.
    int Release();

    void Close();

private:
    int number_ = -1;
};

/// A further descriptor of the same open file, with O_CLOEXEC. Not open where `number` isn't.
FileDescriptor DuplicateOf(int number);

/// open(2) with O_CLOEXEC, tried again when a signal interrupts it. Where the result is not open, errno tells
/// why.
FileDescriptor OpenDescriptor(const char* path, int flags, unsigned mode = 0);

/// The same under an open folder, openat(2).
FileDescriptor OpenDescriptorAt(int folder, const char* name, int flags, unsigned mode = 0);

} // namespace thntfs
