#pragma once

#include "content/ContentDigest.h"
#include "platform/files/ForwardingFile.h"

namespace thntfs {

/// An output file whose bytes, written one behind the other, go through a digest on their way.
class HashedFile : public ForwardingFile {
public:
    /// `digest` may be null. Both outlive the file.
    HashedFile(File& inner, ContentDigest* digest)
        : ForwardingFile(inner)
        , digest_(digest) {}

    ErrorCode Write(ConstBytes bytes) override {
        if (digest_ != nullptr) {
            digest_->Add(bytes);
        }
        return ForwardingFile::Write(bytes);
    }

private:
    ContentDigest* digest_;
};

} // namespace thntfs
