#pragma once

#include "platform/system/Bytes.h"

#include <cstdint>
#include <string>
#include <vector>

namespace thntfs::bench {

/// A new image file whose unwritten parts stay holes. Every failure throws std::system_error.
class SparseImage {
public:
    explicit SparseImage(const std::string& path);
    ~SparseImage();
    SparseImage(const SparseImage&) = delete;
    SparseImage& operator=(const SparseImage&) = delete;

    void WriteAt(std::uint64_t offset, ConstBytes bytes) const;
    void SetSize(std::uint64_t bytes) const;

private:
    int handle_;
};

/// Writes a row of pieces that follow each other on the image, gathered to large writes.
class GatheringWriter {
public:
    GatheringWriter(const SparseImage& image, std::uint64_t offset);

    void Append(ConstBytes bytes);
    /// Writes what is gathered; the destructor doesn't.
    void Flush();

private:
    const SparseImage& image_;
    std::uint64_t offset_;
    std::vector<std::uint8_t> pending_;
};

} // namespace thntfs::bench
