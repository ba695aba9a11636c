#include "platform/media/posix/SysfsFolders.h"

namespace fs = std::filesystem;

namespace thntfs {

std::vector<fs::path> FoldersIn(const fs::path& folder) {
    std::vector<fs::path> found;
    std::error_code failure;
    for (fs::directory_iterator entry(folder, failure), end; !failure && entry != end;
         entry.increment(failure)) {
        std::error_code ignored;
        if (entry->is_directory(ignored)) {
            found.push_back(entry->path());
        }
    }
    return found;
}

bool Exists(const fs::path& path) {
    std::error_code failure;
    return fs::exists(path, failure);
}

} // namespace thntfs
