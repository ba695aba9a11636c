#include "content/EntryFacts.h"

#include "content/FolderChains.h"
#include "engine/FileRecord.h"
#include "platform/system/Text.h"

namespace thntfs {

namespace {

// What stands under " Root" begins with a slash, what stands under the top with its name.
std::string PathOfChain(const std::vector<CatalogueItem>& chain) {
    std::string path;
    for (const CatalogueItem& folder : chain) {
        if (folder.EntryId != kRootEntryId) {
            path += (path.empty() && &folder == &chain.front() ? "" : "/") + NarrowText(folder.Name);
        }
    }
    return path;
}

// Empty where nothing leads to the folder.
std::string PathIn(FolderChains& chains, std::uint32_t folder, const std::u16string& name) {
    const std::vector<CatalogueItem>& chain = chains.ChainTo(folder);
    return chain.empty() ? std::string() : PathOfChain(chain) + '/' + NarrowText(name);
}

std::string PathOfItem(FolderChains& chains, const CatalogueItem& item) {
    if (item.EntryId == kRootEntryId) {
        return "/";
    }
    const bool underTop = item.ParentNumber == 0;
    return underTop ? NarrowText(item.Name) : PathIn(chains, item.ParentNumber, item.Name);
}

// Where another folder has the record by now, nobody knows the name's own.
std::string PathOfName(FolderChains& chains, const ExactName& name) {
    const std::vector<CatalogueItem>& chain = chains.ChainTo(name.Parent);
    const bool known = !chain.empty() && chains.IsFolderOf(chain.back(), SequenceOf(name.Parent));
    return (known ? PathOfChain(chain) : "?") + '/' + NarrowText(name.Name);
}

void ReadRecordFacts(ExactFile& file, FolderChains& chains, EntryFacts& facts) {
    facts.Times = file.Times();
    facts.AttributeBits = file.AttributeBits();
    for (const ExactName& name : file.Names()) {
        facts.Names.push_back(PathOfName(chains, name));
    }
    for (ExactStreamInfo& stream : file.Streams()) {
        if (!stream.Name.empty()) {
            facts.Streams.push_back(std::move(stream));
        }
    }
    facts.Data = file.Place();
}

} // namespace

EntryFacts GatherEntryFacts(const CatalogueItem& item, const std::function<bool()>& mayGoOn) {
    EntryFacts facts;
    facts.Condition = ConditionOf(item);
    FolderChains chains(mayGoOn);
    facts.Path = PathOfItem(chains, item);
    ExactFile file;
    file.ReadWhile(mayGoOn);
    facts.RecordRead = mayGoOn() && item.RecordSector != 0 && file.Open(item);
    if (facts.RecordRead) {
        ReadRecordFacts(file, chains, facts);
    }
    return facts;
}

} // namespace thntfs
