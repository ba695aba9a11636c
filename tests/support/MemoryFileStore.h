#pragma once

#include "platform/files/File.h"

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace thntfs::test {

/// Files in memory, by path; folders are neither made nor asked for. The store takes kMaxBytes a file, then
/// it is full.
///
///     MemoryFileStore store;
///     SetFileStore(&store);
class MemoryFileStore final : public FileStore {
public:
    static constexpr std::uint64_t kMaxBytes = 16U << 20U;

    /// Takes itself out of use if it is in use.
    ~MemoryFileStore() override;

    /// What a file holds, to be looked at or replaced; the file is made where there is none.
    std::vector<std::uint8_t>& Content(const std::string& path);

    ErrorCode Open(const std::string& path, FileMode mode, std::unique_ptr<File>& file) override;
    ErrorCode Delete(const std::string& path) override;

private:
    std::map<std::string, std::shared_ptr<std::vector<std::uint8_t>>> files_;
};

} // namespace thntfs::test
