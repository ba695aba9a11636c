#pragma once

#include <cstdint>
#include <map>
#include <string>

namespace thntfs::test {

struct ZipItem {
    std::string Bytes;
    std::int64_t Modified = 0; ///< seconds since 1970

    bool operator==(const ZipItem&) const = default;
};

using ZipItems = std::map<std::string, ZipItem>;

/// All entries of a ZIP archive by path, folders with '/' behind them. An archive that can't be read whole
/// throws std::runtime_error, and so does one with two entries of a path.
ZipItems ReadZip(const std::string& path);

} // namespace thntfs::test
