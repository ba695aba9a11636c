#include "scaninfo/CatalogueRepair.h"

#include "catalogue/Catalogue.h"
#include "engine/EngineState.h"
#include "platform/files/File.h"
#include "scaninfo/ScanInfoIo.h"

#include <algorithm>
#include <cstdint>
#include <functional>
#include <vector>

namespace thntfs {

namespace {

// Places of fields in the stored records.
constexpr std::uint64_t kEntryBlockOffsetAt = 28;
constexpr std::uint64_t kEntryNameLengthAt = 36;
constexpr std::uint64_t kEntryFlagsAt = 38;
constexpr std::uint64_t kBlockNextAt = 4;
constexpr std::uint64_t kBlockSlotsAt = 8;

constexpr std::uint16_t kMaxNameUnits = 255;

// Behind the end of every catalogue, where a chain reads as empty.
constexpr auto kEmptyChain = static_cast<std::uint32_t>(kMaxCatalogueFileBytes);

/// Looks at one record, which may be cut short by the end of the file, and says whether it has changed it.
using RecordVisitor = std::function<bool(Bytes record)>;

/// A catalogue file as a row of records.
class RecordFile {
public:
    RecordFile(const char* name, std::size_t recordBytes)
        : recordBytes_(recordBytes) {
        CheckScanInfo(Files().Open(Engine.CatalogueFolder + name, FileMode::OpenOwnReadWrite, file_));
        CheckScanInfo(file_->Size(size_));
    }

    [[nodiscard]] std::uint64_t Count() const { return (size_ + recordBytes_ - 1) / recordBytes_; }

    void Visit(const RecordVisitor& visit) {
        const auto records =
            static_cast<std::size_t>(std::min<std::uint64_t>(kCopyBytes / recordBytes_, Count()));
        std::vector<std::uint8_t> buffer(records * recordBytes_);
        for (std::uint64_t offset = 0; offset < size_; offset += buffer.size()) {
            std::size_t got = 0;
            CheckScanInfo(file_->ReadAt(offset, buffer, got));
            bool changed = false;
            for (Bytes left = Bytes(buffer).first(got); !left.empty();) {
                const Bytes record = left.first(std::min(recordBytes_, left.size()));
                changed = visit(record) || changed;
                left = left.subspan(record.size());
            }
            if (changed) {
                CheckScanInfo(file_->WriteAt(offset, Bytes(buffer).first(got)));
            }
        }
    }

private:
    std::size_t recordBytes_;
    std::unique_ptr<File> file_;
    std::uint64_t size_ = 0;
};

/// Remembers what has been linked to. Only the first link to a thing counts.
class Links {
public:
    explicit Links(std::uint64_t count)
        : linked_(static_cast<std::size_t>(count)) {}

    [[nodiscard]] bool Holds(std::uint64_t index) const { return index < linked_.size(); }
    bool Take(std::uint64_t index) {
        const auto at = static_cast<std::size_t>(index);
        const bool isFirst = !linked_[at];
        linked_[at] = true;
        return isFirst;
    }

private:
    std::vector<bool> linked_;
};

// A chain that begins or goes on behind the end of the file is empty from there on.
bool TakeBlock(Links& blocks, std::uint32_t offset) {
    const std::uint64_t index = offset / kStoredBlockBytes;
    return !blocks.Holds(index) || (offset % kStoredBlockBytes == 0 && blocks.Take(index));
}

// The top's chain is the one at 0, whatever its entry says: every walk over the whole begins there.
bool IsTopChain(std::uint64_t entryId, std::uint32_t blockOffset) { return entryId == 0 && blockOffset == 0; }

bool RepairEntry(std::uint64_t entryId, Bytes entry, Links& blocks) {
    bool changed = false;
    if (U16At(entry, kEntryNameLengthAt) > kMaxNameUnits) {
        PutNumber(entry, kEntryNameLengthAt, kMaxNameUnits);
        changed = true;
    }
    const bool isFolder = (U16At(entry, kEntryFlagsAt) & kFlagFolder) != 0;
    const std::uint32_t blockOffset = U32At(entry, kEntryBlockOffsetAt);
    if (isFolder && !IsTopChain(entryId, blockOffset) && !TakeBlock(blocks, blockOffset)) {
        PutNumber(entry, kEntryBlockOffsetAt, kEmptyChain);
        changed = true;
    }
    return changed;
}

bool RepairBlock(Bytes block, Links& blocks, Links& entries) {
    bool changed = false;
    const std::uint32_t next = U32At(block, kBlockNextAt);
    if (next != 0 && !TakeBlock(blocks, next)) {
        PutNumber(block, kBlockNextAt, std::uint32_t{0});
        changed = true;
    }
    for (std::size_t i = 0; i < kSlotsPerBlock; ++i) {
        const std::uint64_t at = kBlockSlotsAt + 4 * i;
        const std::uint32_t child = U32At(block, at);
        if (child != 0 && entries.Holds(child) && !entries.Take(child)) {
            PutNumber(block, at, std::uint32_t{0});
            changed = true;
        }
    }
    return changed;
}

} // namespace

void RepairCatalogue() {
    RecordFile treeFile(kTreeFileName, kStoredBlockBytes);
    RecordFile entryFile(kEntryFileName, kStoredEntryBytes);
    Links blocks(treeFile.Count());
    Links entries(entryFile.Count());
    TakeBlock(blocks, 0);
    std::uint64_t entryId = 0;
    entryFile.Visit([&](Bytes entry) { return RepairEntry(entryId++, entry, blocks); });
    treeFile.Visit([&blocks, &entries](Bytes block) { return RepairBlock(block, blocks, entries); });
}

} // namespace thntfs
