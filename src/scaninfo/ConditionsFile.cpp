#include "scaninfo/ConditionsFile.h"

#include "catalogue/CatalogueReader.h"
#include "catalogue/Conditions.h"
#include "engine/EngineState.h"
#include "platform/files/ReplacementFile.h"
#include "scaninfo/ScanInfoIo.h"

#include <algorithm>
#include <bit>
#include <new>

namespace thntfs {

namespace {

constexpr std::uint32_t kConditionsMagic = 0x01010002;
constexpr std::uint64_t kChecksumFactor = 0x9E3779B97F4A7C15;

/// Sum over bytes as little-endian words of 8, the last filled up with zeros. Begins with their count.
class Checksum {
public:
    explicit Checksum(std::uint64_t bytes)
        : sum_(bytes) {}

    /// All pieces but the last have whole words.
    void Add(ConstBytes piece) {
        std::size_t at = 0;
        for (; piece.size() - at >= sizeof(std::uint64_t); at += sizeof(std::uint64_t)) {
            AddWord(U64At(piece, at));
        }
        if (at < piece.size()) {
            std::uint64_t word = 0;
            std::memcpy(&word, piece.data() + at, piece.size() - at);
            AddWord(word);
        }
    }

    [[nodiscard]] std::uint64_t Sum() const { return sum_; }

private:
    void AddWord(std::uint64_t word) { sum_ = std::rotl(sum_ ^ word, 29) * kChecksumFactor; }

    std::uint64_t sum_;
};

/// What ties the conditions to their file.
struct FileMark {
    std::uint64_t Size = 0;
    std::uint64_t Sum = 0;

    bool operator==(const FileMark&) const = default;
};

FileMark MarkOf(const std::string& path) {
    ScanInfoReader reader(path);
    const std::uint64_t size = reader.Left();
    Checksum checksum(size);
    std::vector<std::uint8_t> piece(static_cast<std::size_t>(std::min<std::uint64_t>(size, kCopyBytes)));
    while (reader.Left() != 0) {
        const Bytes part = Bytes(piece).first(
            static_cast<std::size_t>(std::min<std::uint64_t>(reader.Left(), piece.size())));
        reader.Take(part);
        checksum.Add(part);
    }
    return {size, checksum.Sum()};
}

std::uint64_t SumOf(ConstBytes bytes) {
    Checksum checksum(bytes.size());
    checksum.Add(bytes);
    return checksum.Sum();
}

// What has its name and isn't one is somebody else's.
bool MayBeReplaced(const std::string& path) {
    try {
        return ScanInfoReader(path).TakeU32() == kConditionsMagic;
    } catch (const ScanInfoFault& fault) {
        return fault.Code == kErrorFileNotFound;
    }
}

void WriteConditions(const std::string& path, const FileMark& mark) {
    ReplacementFile target;
    CheckScanInfo(target.Create(path));
    ScanInfoWriter writer(target.Handle());
    writer.PutU32(kConditionsMagic);
    writer.PutU64(mark.Size);
    writer.PutU64(mark.Sum);
    writer.PutU32(static_cast<std::uint32_t>(Engine.Conditions.size()));
    for (ConstBytes left = Engine.Conditions; !left.empty();) {
        const ConstBytes piece = left.first(std::min(left.size(), kCopyBytes));
        writer.Put(piece);
        left = left.subspan(piece.size());
    }
    writer.PutU64(SumOf(Engine.Conditions));
    writer.Flush();
    CheckScanInfo(target.Commit());
}

std::vector<std::uint8_t> ReadConditions(const std::string& treeInfoPath) {
    ScanInfoReader reader(treeInfoPath + kConditionsExtension);
    FileMark mark;
    if (reader.TakeU32() != kConditionsMagic) {
        return {};
    }
    mark.Size = reader.TakeU64();
    mark.Sum = reader.TakeU64();
    const std::uint32_t count = reader.TakeU32();
    if (count > CatalogueEntryCount() || reader.Left() != std::uint64_t{count} + sizeof(std::uint64_t)) {
        return {};
    }
    std::vector<std::uint8_t> conditions(count);
    reader.Take(conditions);
    const bool sound = reader.TakeU64() == SumOf(conditions) && MarkOf(treeInfoPath) == mark;
    return sound ? conditions : std::vector<std::uint8_t>();
}

} // namespace

ErrorCode SaveConditions(const std::string& treeInfoPath) try {
    if (Engine.Conditions.empty()) {
        return kErrorNone;
    }
    const std::string path = treeInfoPath + kConditionsExtension;
    if (!MayBeReplaced(path)) {
        return kErrorFileExists;
    }
    WriteConditions(path, MarkOf(treeInfoPath));
    return kErrorNone;
} catch (const ScanInfoFault& fault) {
    return fault.Code != kErrorNone ? fault.Code : kErrorGeneralFailure;
} catch (const std::bad_alloc&) {
    return kErrorNotEnoughMemory;
}

void LoadConditions(const std::string& treeInfoPath) {
    ClearConditions();
    Engine.FurtherParents = {};
    try {
        Engine.Conditions = ReadConditions(treeInfoPath);
    } catch (const ScanInfoFault&) {
        // None of this file's.
    } catch (const std::bad_alloc&) {
    }
}

} // namespace thntfs
