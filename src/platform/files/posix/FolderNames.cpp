#include "platform/files/posix/FolderNames.h"

#include "platform/files/posix/FileDescriptor.h"

#include <fcntl.h>
#include <memory>

namespace thntfs {

std::vector<std::string> NamesIn(int folder, const std::function<bool(const dirent&)>& wanted) {
    std::vector<std::string> names;
    FileDescriptor again =
        OpenDescriptorAt(folder, ".", O_RDONLY | O_DIRECTORY); // with a position of its own
    const std::unique_ptr<DIR, int (*)(DIR*)> listing(again.IsOpen() ? ::fdopendir(again.Get()) : nullptr,
                                                      ::closedir);
    if (listing == nullptr) {
        return names;
    }
    again.Release(); // the listing closes it
    while (const dirent* entry = ::readdir(listing.get())) {
        if (wanted(*entry)) {
            names.emplace_back(entry->d_name);
        }
    }
    return names;
}

} // namespace thntfs
