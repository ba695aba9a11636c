#pragma once

#include "platform/files/File.h"

#include <cstdint>

namespace thntfs::test {

/// Takes what is written and forgets it, up to a number of bytes: then it is full.
class NullFile : public File {
public:
    explicit NullFile(std::uint64_t room)
        : room_(room) {}

    ErrorCode Write(ConstBytes bytes) override {
        written_ += bytes.size();
        return written_ < room_ ? kErrorNone : kErrorDiskFull;
    }
    ErrorCode WriteAt(std::uint64_t /*offset*/, ConstBytes bytes) override { return Write(bytes); }
    ErrorCode ReadAt(std::uint64_t /*offset*/, Bytes /*buffer*/, std::size_t& got) override {
        got = 0;
        return kErrorNone;
    }
    ErrorCode Size(std::uint64_t& bytes) override {
        bytes = written_;
        return kErrorNone;
    }
    ErrorCode Sync() override { return kErrorNone; }

private:
    std::uint64_t room_;
    std::uint64_t written_ = 0;
};

} // namespace thntfs::test
