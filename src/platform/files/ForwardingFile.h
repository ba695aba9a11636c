#pragma once

#include "platform/files/File.h"

namespace thntfs {

/// A file that hands what is done with it on to another, for those that look at the one or other call on its
/// way. Sizes, dates and reserves are for who opened the other.
class ForwardingFile : public File {
public:
    /// `inner` outlives the file.
    explicit ForwardingFile(File& inner)
        : inner_(inner) {}

    ErrorCode Write(ConstBytes bytes) override { return inner_.Write(bytes); }
    ErrorCode WriteAt(std::uint64_t offset, ConstBytes bytes) override {
        return inner_.WriteAt(offset, bytes);
    }
    ErrorCode ReadAt(std::uint64_t offset, Bytes buffer, std::size_t& got) override {
        return inner_.ReadAt(offset, buffer, got);
    }
    ErrorCode Size(std::uint64_t& bytes) override { return inner_.Size(bytes); }
    [[nodiscard]] bool StandsAt(const std::string& path) const override { return inner_.StandsAt(path); }
    ErrorCode Sync() override { return inner_.Sync(); }
    void StartSync(std::uint64_t offset, std::uint64_t bytes) override { inner_.StartSync(offset, bytes); }

private:
    File& inner_;
};

} // namespace thntfs
