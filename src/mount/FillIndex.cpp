#include "mount/FillIndex.h"

#include "catalogue/EntryWalk.h"
#include "content/ExactFile.h"
#include "content/FolderChains.h"
#include "content/FreeName.h"
#include "content/FurtherEntries.h"
#include "content/SaveOptions.h"
#include "engine/AttributeList.h"
#include "engine/EngineState.h"
#include "mount/EntryNames.h"
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
        , names_(options, index)
        , nodes_(names_.Count()) {
        for (const FurtherParent& noted : Engine.FurtherParents) {
            further_.insert(noted.EntryId);
        }
    }

    // In the order of the catalogue, which mostly is that of the records on the medium.
    void LookForFurtherNames() {
        CatalogueItem item;
        for (std::uint32_t id = kRootEntryId + 1; id < nodes_.size() && Engine.ScanRunFlag != 0; ++id) {
            if (!names_.IsFolder(id) && Open(id, item) && reader_.Names().size() > 1) {
                further_.insert(id);
            }
        }
    }

    bool Fill() {
        Descent descent(WalkStart{}.BlockOffset);
        for (std::uint32_t id = descent.Next(); id != 0; id = descent.Next()) {
            if (Engine.ScanRunFlag == 0) {
                return false;
            }
            way_.resize(descent.Depth());
            if (names_.IsIn(id)) {
                Take(id);
                if (names_.IsFolder(id)) {
                    descent.Enter(names_.BlockOffsetOf(id));
                }
            }
        }
        return Engine.ScanRunFlag != 0;
    }

private:
    void Take(std::uint32_t id) {
        if (!names_.IsFolder(id)) {
            if (names_.IsWanted(id)) {
                TakeFile(id);
            }
            return;
        }
        way_.push_back(id);
        if (names_.IsWanted(id) && id != kRootEntryId) {
            FolderAt(way_);
        }
    }

    // The folder that a chain of EntryIds leads to, made where it isn't there. What is in " Root" stands in
    // the root.
    Node FolderAt(const std::vector<std::uint32_t>& chain) {
        Node folder = MountIndex::kRoot;
        for (const std::uint32_t id : chain) {
            if (id == kRootEntryId) {
                continue;
            }
            Node& made = nodes_[id];
            if (made == 0) {
                made = AddFree(folder, names_.NameOf(id),
                               [&](MountIndex::KeptName name) { return index_.AddFolder(folder, name, id); });
            }
            folder = made;
        }
        return folder;
    }

    void TakeFile(std::uint32_t id) {
        const Node folder = way_.empty() ? MountIndex::kRoot : FolderAt(way_);
        const Node file = AddFree(folder, names_.NameOf(id), [&](MountIndex::KeptName name) {
            return index_.AddFile(folder, name, id);
        });
        if (file != 0 && further_.contains(id)) {
            AddFurtherNames(id, file);
        }
    }

    void AddFurtherNames(std::uint32_t id, Node file) {
        CatalogueItem item;
        if (!Open(id, item)) {
            return;
        }
        for (const ExactName& name : reader_.Names()) {
            if (IsListedName(item, name)) {
                continue;
            }
            const std::vector<CatalogueItem>& chain = chains_.ChainTo(name.Parent);
            if (!chain.empty() && chains_.IsFolderOf(chain.back(), SequenceOf(name.Parent))) {
                const Node folder = FolderAt(IdsOf(chain));
                AddFree(folder, index_.KeepTargetName(name.Name),
                        [&](MountIndex::KeptName free) { return index_.AddLink(folder, free, file); });
            }
        }
    }

    bool Open(std::uint32_t id, CatalogueItem& item) {
        const bool loaded = LoadEntryInto(id, item) != 0;
        item.EntryId = id;
        return loaded && item.RecordSector != 0 && reader_.Open(item);
    }

    static std::vector<std::uint32_t> IdsOf(const std::vector<CatalogueItem>& chain) {
        std::vector<std::uint32_t> ids;
        ids.reserve(chain.size());
        for (const CatalogueItem& item : chain) {
            ids.push_back(item.EntryId);
        }
        return ids;
    }

    // Adds by the first name that is free; 0 where a stop came before it was found.
    template <typename AddName>
    Node AddFree(Node folder, MountIndex::KeptName wanted, AddName add) {
        std::optional<Node> added = add(wanted);
        if (!added) {
            std::string name(index_.TextOf(wanted));
            TakeFreeName(numbers_[folder], name, [&](const std::string& free) {
                added = add(index_.Keep(free));
                return added ? kErrorNone : kErrorFileExists;
            });
        }
        return added.value_or(0);
    }

    MountIndex& index_;
    EntryNames names_;
    std::vector<std::uint32_t> way_;            ///< EntryIds of the folders down to the entry in hand
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
