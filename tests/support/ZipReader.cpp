#include "support/ZipReader.h"

#include "platform/system/Utf8Scope.h"

#include <archive.h>
#include <archive_entry.h>
#include <memory>
#include <stdexcept>

namespace thntfs::test {

ZipItems ReadZip(const std::string& path) {
    const Utf8Scope names;
    const std::unique_ptr<archive, int (*)(archive*)> reader(::archive_read_new(), ::archive_read_free);
    const auto check = [&](la_ssize_t result) {
        if (result < ARCHIVE_OK) {
            throw std::runtime_error(path + ": " + ::archive_error_string(reader.get()));
        }
        return result;
    };
    check(::archive_read_support_format_zip_seekable(reader.get()));
    check(::archive_read_open_filename(reader.get(), path.c_str(), 1U << 16U));
    ZipItems contents;
    archive_entry* entry = nullptr;
    while (check(::archive_read_next_header(reader.get(), &entry)) != ARCHIVE_EOF) {
        const auto [place, isNew] = contents.try_emplace(::archive_entry_pathname(entry));
        place->second.Modified = ::archive_entry_mtime(entry);
        char piece[1U << 16U];
        while (const la_ssize_t got = check(::archive_read_data(reader.get(), piece, sizeof piece))) {
            place->second.Bytes.append(piece, static_cast<std::size_t>(got));
        }
        if (!isNew) {
            throw std::runtime_error(path + ": twice " + place->first);
        }
    }
    return contents;
}

} // namespace thntfs::test
