#include "catalogue/FindEntry.h"

#include "platform/system/Text.h"

#include <algorithm>
#include <map>
#include <memory>
#include <set>

namespace thntfs {

namespace {

constexpr std::size_t kMaxDepth = 4096;

// Looks below one folder for the entries whose path goes on as `rest`. A name that holds a slash is matched
// by comparing texts rather than cutting the path at its slashes.
class PathSearch {
public:
    explicit PathSearch(std::string_view path)
        : path_(path) {}

    void SearchFolder(std::uint32_t blockOffset, std::string_view rest) {
        // Each block once for each part of the path: names that repeat below themselves would multiply.
        ChildWalk children(blockOffset, &seen_.try_emplace(rest.size()).first->second);
        for (std::uint32_t child = children.Next(); child != 0; child = children.Next()) {
            const std::unique_ptr<CatalogueItem> item = LoadEntry(child);
            if (item != nullptr && child != kRootEntryId) {
                item->EntryId = child;
                SearchItem(*item, rest);
            }
        }
    }

    std::vector<LocatedEntry> Found;

private:
    void SearchItem(CatalogueItem& item, std::string_view rest) {
        const std::string name = NarrowText(item.Name);
        if (name.empty() || rest.substr(0, name.size()) != name) {
            return;
        }
        const std::string_view behind = rest.substr(name.size());
        if (behind.empty() || behind == "/") {
            LocatedEntry located;
            located.Folders = folders_;
            located.Path = path_.substr(0, path_.size() - behind.size());
            located.Item = std::move(item);
            Found.push_back(std::move(located));
        } else if (behind.front() == '/' && item.IsFolder() && folders_.size() < kMaxDepth) {
            folders_.push_back(item);
            SearchFolder(item.BlockOffset, behind.substr(1));
            folders_.pop_back();
        }
    }

    std::string path_;
    std::map<std::size_t, SeenBlocks> seen_; ///< by the length of the rest of the path
    std::vector<CatalogueItem> folders_;
};

void AddSeed(std::uint32_t entryId, const char* path, std::vector<LocatedEntry>& found) {
    if (std::unique_ptr<CatalogueItem> item = LoadEntry(entryId); item != nullptr) {
        LocatedEntry located;
        located.Path = path;
        located.Item = std::move(*item);
        found.push_back(std::move(located));
    }
}

std::vector<CatalogueItem> FoldersBelowRoot(const std::vector<CatalogueItem>& folders) {
    const bool underRoot = !folders.empty() && folders.front().EntryId == kRootEntryId;
    return {folders.begin() + (underRoot ? 1 : 0), folders.end()};
}

} // namespace

std::vector<LocatedEntry> FindEntries(std::string_view path) {
    PathSearch search(path);
    if (path.empty()) {
        AddSeed(kTopEntryId, "", search.Found);
    } else if (path == "/") {
        AddSeed(kRootEntryId, "/", search.Found);
    } else if (path.front() == '/') {
        const std::unique_ptr<CatalogueItem> root = LoadEntry(kRootEntryId);
        if (root != nullptr) {
            search.SearchFolder(root->BlockOffset, path.substr(1));
        }
    } else {
        search.SearchFolder(0, path);
    }
    return std::move(search.Found);
}

std::vector<LocatedEntry> LocateEntries(const std::vector<std::uint32_t>& entryIds) {
    std::set<std::uint32_t> missing(entryIds.begin(), entryIds.end());
    std::vector<LocatedEntry> found;
    if (missing.erase(kTopEntryId) != 0) {
        AddSeed(kTopEntryId, "", found);
    }
    EntryWalk walk({}, WalkReach::Whole);
    std::vector<CatalogueItem> folders;
    while (!missing.empty() && walk.Next()) {
        const CatalogueItem& item = walk.Item();
        folders.resize(std::min(folders.size(), walk.Depth()));
        if (missing.erase(item.EntryId) != 0) {
            found.push_back(
                {item, FoldersBelowRoot(folders), item.EntryId == kRootEntryId ? "/" : walk.Path()});
        }
        if (item.IsFolder()) {
            folders.push_back(item);
        }
    }
    return found;
}

WalkStart StartAt(const LocatedEntry& folder) {
    return {folder.Item.BlockOffset, folder.Path == "/" ? "" : folder.Path,
            folder.Item.EntryId == kTopEntryId};
}

} // namespace thntfs
