#include "mount/FillIndex.h"

#include "catalogue/EntryWalk.h"
#include "content/ExactFile.h"
#include "content/FolderChains.h"
#include "content/FreeName.h"
#include "content/FurtherEntries.h"
#include "content/SaveOptions.h"
#include "engine/AttributeList.h"
#include "engine/EngineState.h"
#include "mount/MountIndex.h"

#include <optional>
#include <unordered_map>
#include <unordered_set>

namespace thntfs {

namespace {

using Node = MountIndex::Node;

class IndexFiller {
public:
    IndexFiller(MountIndex& index, const SaveOptions& options)
        : index_(index)
        , options_(options)
        , nodes_(static_cast<std::size_t>(CatalogueEntryCount())) {
        for (const FurtherParent& noted : Engine.FurtherParents) {
            further_.insert(noted.EntryId);
        }
    }

    // In the order of the catalogue, which mostly is that of the records on the medium.
    void LookForFurtherNames() {
        CatalogueItem item;
        for (std::uint32_t id = kRootEntryId + 1; id < nodes_.size() && Engine.ScanRunFlag != 0; ++id) {
            if (LoadEntryInto(id, item) != 0 && !item.IsFolder() && item.RecordSector != 0 &&
                reader_.Open(item) && reader_.Names().size() > 1) {
                further_.insert(id);
            }
        }
    }

    bool Fill() {
        EntryWalk walk(WalkStart{}, WalkReach::Whole);
        while (walk.Next()) {
            if (Engine.ScanRunFlag == 0) {
                return false;
            }
            way_.resize(walk.Depth());
            Take(walk.Item());
        }
        return true;
    }

private:
    void Take(const CatalogueItem& item) {
        const bool wanted = WishFor(options_, item) == SaveWish::Wanted;
        if (!item.IsFolder()) {
            if (wanted) {
                TakeFile(item);
            }
            return;
        }
        way_.push_back(item);
        if (wanted && item.EntryId != kRootEntryId) {
            FolderAt(way_);
        }
    }

    // The folder that a chain leads to, made where it isn't there. What is in " Root" stands in the root.
    Node FolderAt(const std::vector<CatalogueItem>& chain) {
        Node folder = MountIndex::kRoot;
        for (const CatalogueItem& item : chain) {
            if (item.EntryId == kRootEntryId) {
                continue;
            }
            Node& made = nodes_[item.EntryId];
            if (made == 0) {
                made = AddFree(folder, item.Name, [&](const std::string& name) {
                    return index_.AddFolder(folder, name, item.EntryId);
                });
            }
            folder = made;
        }
        return folder;
    }

    void TakeFile(const CatalogueItem& item) {
        const Node folder = FolderAt(way_);
        const Node file = AddFree(folder, item.Name, [&](const std::string& name) {
            return index_.AddFile(folder, name, item.EntryId);
        });
        if (file != 0 && further_.contains(item.EntryId)) {
            AddFurtherNames(item, file);
        }
    }

    void AddFurtherNames(const CatalogueItem& item, Node file) {
        if (!reader_.Open(item)) {
            return;
        }
        for (const ExactName& name : reader_.Names()) {
            if (IsListedName(item, name)) {
                continue;
            }
            const std::vector<CatalogueItem>& chain = chains_.ChainTo(name.Parent);
            if (!chain.empty() && chains_.IsFolderOf(chain.back(), SequenceOf(name.Parent))) {
                const Node folder = FolderAt(chain);
                AddFree(folder, name.Name,
                        [&](const std::string& free) { return index_.AddLink(folder, free, file); });
            }
        }
    }

    // Adds by the first name that is free; 0 where a stop came before it was found.
    template <typename AddName>
    Node AddFree(Node folder, const std::u16string& wanted, AddName add) {
        std::optional<Node> added;
        std::string name = TargetName(wanted);
        const auto take = [&](const std::string& free) {
            added = add(free);
            return added ? kErrorNone : kErrorFileExists;
        };
        if (take(name) != kErrorNone) {
            TakeFreeName(numbers_[folder], name, take);
        }
        return added.value_or(0);
    }

    MountIndex& index_;
    const SaveOptions& options_;
    std::vector<CatalogueItem> way_;            ///< folders down to the entry in hand
    std::vector<Node> nodes_;                   ///< of folders that have been made, by EntryId
    std::unordered_set<std::uint32_t> further_; ///< EntryIds of files that are noted to have further names
    std::unordered_map<Node, NextNumbers> numbers_; ///< of folders where a name was taken
    FolderChains chains_;
    ExactFile reader_;
};

} // namespace

bool FillIndex(MountIndex& index, const SaveOptions& options, FurtherNamesBy by) {
    IndexFiller filler(index, options);
    if (by == FurtherNamesBy::Records) {
        filler.LookForFurtherNames();
    }
    return filler.Fill();
}

} // namespace thntfs
