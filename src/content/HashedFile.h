#pragma once

#include "content/ContentDigest.h"
#include "platform/files/File.h"

namespace thntfs {

/// An output file whose bytes, written one behind the other, go through a digest on their way.
class HashedFile : public File {
public:
    /// `digest` may be null. Both outlive the file.
    HashedFile(File& inner, ContentDigest* digest)
        : inner_(inner)
        , digest_(digest) {}

    ErrorCode Write(ConstBytes bytes) override {
        if (digest_ != nullptr) {
            digest_->Add(bytes);
        }
        return inner_.Write(bytes);
    }
    ErrorCode WriteAt(std::uint64_t offset, ConstBytes bytes) override {
        return inner_.WriteAt(offset, bytes);
    }
    ErrorCode ReadAt(std::uint64_t offset, Bytes buffer, std::size_t& got) override {
        return inner_.ReadAt(offset, buffer, got);
    }
    ErrorCode Size(std::uint64_t& bytes) override { return inner_.Size(bytes); }
    ErrorCode Sync() override { return inner_.Sync(); }
    void StartSync(std::uint64_t offset, std::uint64_t bytes) override { inner_.StartSync(offset, bytes); }

private:
    File& inner_;
    ContentDigest* digest_;
};

} // namespace thntfs
