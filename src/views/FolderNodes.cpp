#include "views/FolderNodes.h"

#include "catalogue/EntryWalk.h"
#include "engine/EngineState.h"
#include "engine/Host.h"
#include "shell/DesktopState.h"
#include "shell/ShownName.h"

#include <algorithm>

namespace thntfs {

namespace {

constexpr std::size_t kEntriesToReport = 1024;
constexpr std::size_t kMaxLevels = 16384; // no path of NTFS has more; to lay out a level takes stack

class Collector {
public:
    explicit Collector(FolderNodes& folders)
        : folders_(folders) {
        FolderNode top;
        top.NameUnits = KeepName(u"#", folders_.Names);
        folders_.Nodes.push_back(top);
    }

    void Walk() {
        const auto top = LoadEntry(kTopEntryId);
        if (top == nullptr) {
            return;
        }
        EntryWalk walk({.BlockOffset = top->BlockOffset, .Path = "", .IsTop = true}, WalkReach::Whole);
        for (std::size_t taken = 0; walk.Next(); ++taken) {
            if (taken % kEntriesToReport == 0) {
                Report();
            }
            Add(walk.Item(), walk.Depth());
            if (walk.Item().IsFolder() && walk.Depth() + 1 >= kMaxLevels) {
                walk.SkipFolder();
            }
        }
        Report();
    }

    void FindEnds() {
        auto& nodes = folders_.Nodes;
        for (auto place = static_cast<std::uint32_t>(nodes.size()); place-- > 0;) {
            nodes[place].End = std::max(nodes[place].End, place + 1);
            FolderNode& parent = nodes[nodes[place].Parent];
            parent.End = std::max(parent.End, nodes[place].End);
        }
    }

private:
    // The top and " Root" count as done from the start.
    void Report() const {
        Engine.ProgressDone = folders_.Nodes.size() + 1;
        Host().JobProgress();
        Host().PassGate();
    }

    void Add(const CatalogueItem& item, std::size_t depth) {
        above_.resize(depth + 1);
        Desktop.TotalBytes += item.Size;
        if (item.IsFolder()) {
            ++Desktop.TotalFolders;
            AddFolder(item);
        } else {
            ++Desktop.TotalFiles;
            FolderNode& parent = folders_.Nodes[above_.back()];
            ++parent.DirectFiles;
            parent.DirectBytes += item.Size;
        }
    }

    void AddFolder(const CatalogueItem& item) {
        FolderNode node;
        node.DirectBytes = item.Size;
        node.NameStart = folders_.Names.size();
        node.EntryId = item.EntryId;
        node.Parent = above_.back();
        node.NameUnits = KeepName(item.Name, folders_.Names);
        node.Live = item.IsLive();
        above_.push_back(static_cast<std::uint32_t>(folders_.Nodes.size()));
        folders_.Nodes.push_back(node);
    }

    FolderNodes& folders_;
    std::vector<std::uint32_t> above_{0}; ///< places of the folders that are being walked through
};

} // namespace

std::u16string_view FolderNodes::Name(std::uint32_t place) const {
    const FolderNode& node = Nodes[place];
    return std::u16string_view(Names).substr(node.NameStart, node.NameUnits);
}

FolderNodes CollectFolders() {
    Desktop.TotalFiles = 0;
    Desktop.TotalFolders = 0;
    Desktop.TotalBytes = 0;
    Engine.ProgressTotal = CatalogueEntryCount();
    FolderNodes folders;
    Collector collector(folders);
    try {
        collector.Walk();
    } catch (const CUserException&) {
        // The box has told why. What has been found is worth showing.
    }
    collector.FindEnds();
    return folders;
}

} // namespace thntfs
