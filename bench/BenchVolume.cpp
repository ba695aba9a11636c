#include "BenchVolume.h"

#include "BenchMetafiles.h"
#include "BenchText.h"
#include "Lznt1Compressor.h"

#include <algorithm>
#include <sstream>
#include <stdexcept>

namespace thntfs::bench {

using namespace test;

namespace {

constexpr std::uint32_t kRecordBytes = 1024;
constexpr std::uint64_t kTailSectors = 2032;       ///< of the medium, more than the builders leave
constexpr std::uint64_t kGapClusters = 256;        ///< between two extents of the table
constexpr std::uint64_t kTextFileBytes = 4U << 20; ///< more would not fit into one record
constexpr std::uint64_t kUnitBytes = 64U << 10;    ///< a compression unit of 16 clusters
constexpr std::uint64_t kFreeBytes = 64U << 20;    ///< left free behind the files where no size is given
constexpr std::uint64_t kMaxSmallClusters = 16;
constexpr std::size_t kMaxResidentBytes = 500;

std::uint64_t CeilDiv(std::uint64_t value, std::uint64_t divisor) { return (value + divisor - 1) / divisor; }

FileTimes TimesOf(std::uint64_t random) {
    static const std::uint64_t first = FileTimeOfDay(2005, 1, 1);
    constexpr std::uint64_t kDay = 864000000000;
    const std::uint64_t created = first + random % 7000 * kDay + (random >> 32);
    return {created, created + kDay, created + kDay, created + random % 300 * kDay};
}

void WriteRandom(const SparseImage& image, std::uint64_t offset, std::uint64_t bytes, std::uint64_t seed) {
    GatheringWriter writer(image, offset);
    ByteVector piece(65536);
    for (std::uint64_t done = 0; done < bytes; done += piece.size()) {
        for (std::size_t place = 0; place < piece.size(); place += 8) {
            PutNumber(piece, place, Mix(seed, (done + place) / 8));
        }
        writer.Append(ConstBytes(piece).first(
            static_cast<std::size_t>(std::min<std::uint64_t>(piece.size(), bytes - done))));
    }
    writer.Flush();
}

std::u16string TextName(std::uint32_t index) {
    std::u16string name = u"text-0000.txt";
    for (std::size_t place = 8; place >= 5; --place, index /= 10) {
        name[place] = static_cast<char16_t>(u'0' + index % 10);
    }
    return name;
}

} // namespace

BenchVolume::BenchVolume(const VolumeOptions& options)
    : options_(options)
    , image_(options.Path) {
    geometry_.StartSector = 2048;
    geometry_.RecordBytes = kRecordBytes;
    geometry_.MirrorCluster = kMirrorCluster;
}

void BenchVolume::PlanTable() {
    const std::uint64_t bitmapClusters = CeilDiv(CeilDiv(options_.Records, 8), geometry_.ClusterBytes());
    const std::uint64_t tableClusters =
        CeilDiv(std::uint64_t{options_.Records} * kRecordBytes, geometry_.ClusterBytes());
    const std::uint64_t extents = std::min<std::uint64_t>(options_.Extents, tableClusters);
    nextCluster_ = kTableBitmapCluster + bitmapClusters;
    geometry_.MftRuns.clear();
    for (std::uint64_t extent = 0; extent < extents; ++extent) {
        const std::uint64_t begin = tableClusters * extent / extents;
        const std::uint64_t end = tableClusters * (extent + 1) / extents;
        geometry_.MftRuns.push_back({end - begin, nextCluster_});
        nextCluster_ += end - begin + kGapClusters;
    }
    lastCluster_ = ~std::uint64_t{0} / geometry_.ClusterBytes() / 2;
    if (options_.SizeBytes != 0) {
        const std::uint64_t clusters = options_.SizeBytes / geometry_.ClusterBytes();
        const std::uint64_t reserved = CeilDiv(clusters, 8ULL * geometry_.ClusterBytes()) + 1;
        lastCluster_ = clusters > reserved ? clusters - reserved : 0;
    }
    if (!HasRoom(0)) {
        throw std::length_error("the table doesn't fit into a volume of this size");
    }
}

bool BenchVolume::HasRoom(std::uint64_t clusters) const { return nextCluster_ + clusters <= lastCluster_; }

std::uint32_t BenchVolume::NextSpecialNumber() const {
    return kFirstUserRecord + options_.Plan.UserRecords + static_cast<std::uint32_t>(specials_.size());
}

void BenchVolume::WriteBigFile() {
    const std::uint64_t clusters = CeilDiv(options_.BigFileBytes, geometry_.ClusterBytes());
    if (!HasRoom(clusters)) {
        throw std::length_error("the big file doesn't fit into a volume of this size");
    }
    WriteRandom(image_, geometry_.OffsetOf(nextCluster_), options_.BigFileBytes, options_.Plan.Seed + 10);
    specials_.push_back({.Number = NextSpecialNumber(),
                         .Name = u"big.bin",
                         .Data = {.Runs = {{clusters, nextCluster_}}, .RealSize = options_.BigFileBytes}});
    nextCluster_ += clusters;
}

void BenchVolume::WriteTextFiles() {
    std::uint32_t index = 0;
    for (std::uint64_t done = 0; done < options_.TextBytes; done += kTextFileBytes) {
        specials_.push_back(WriteTextFile(index++, std::min(kTextFileBytes, options_.TextBytes - done)));
    }
}

// Each compression unit is a run of the clusters that its data fills, then a hole up to 16 clusters. A unit
// that saves no cluster stands uncompressed.
SpecialFile BenchVolume::WriteTextFile(std::uint32_t index, std::uint64_t bytes) {
    const ByteVector text = MakeText(bytes, options_.Plan.Seed + 100 + index);
    NonResidentValue data = {.Runs = {}, .Flags = 1, .CompressionExponent = 4, .RealSize = bytes};
    const std::uint64_t unitClusters = kUnitBytes / geometry_.ClusterBytes();
    for (std::uint64_t begin = 0; begin < bytes; begin += kUnitBytes) {
        const ConstBytes unit = Part(text, begin, kUnitBytes);
        const ByteVector packed = CompressLznt1(unit, true);
        const std::uint64_t clusters = CeilDiv(packed.size(), geometry_.ClusterBytes());
        const bool saves = clusters < unitClusters;
        image_.WriteAt(geometry_.OffsetOf(nextCluster_), saves ? ConstBytes(packed) : unit);
        data.Runs.push_back({saves ? clusters : unitClusters, nextCluster_});
        nextCluster_ += data.Runs.back().Clusters;
        if (saves) {
            data.Runs.push_back({unitClusters - clusters, {}});
        }
    }
    return {.Number = NextSpecialNumber(), .Name = TextName(index), .Data = data};
}

ByteVector BenchVolume::MakeSpecial(const SpecialFile& file) const {
    const FileNameValue name = {.Name = file.Name, .RealSize = file.Data.RealSize.value_or(0)};
    RecordBuilder record(geometry_, file.Number);
    const std::uint32_t bits = file.Data.CompressionExponent != 0 ? 0x820 : kArchiveBit;
    return record.AddStandardInformation(EqualTimes(), bits).AddFileName(name).AddData(file.Data).Finish();
}

// The first key names the record behind the folder: only its parent matters to a scan.
ByteVector BenchVolume::MakeFolder(std::uint32_t number, const RecordRole& role) const {
    const FileTimes times = TimesOf(Mix(options_.Plan.Seed + 3, number));
    RecordBuilder record(geometry_, number);
    record.SetFolder(true).AddStandardInformation(times, 0);
    record.AddFileName({.Parent = FileReference(role.Parent),
                        .Name = NameOf(options_.Plan.Seed, number, options_.WideNames),
                        .AttributeBits = kFolderBit,
                        .Times = times});
    record.AddIndexRoot({{.Reference = FileReference(number + 1),
                          .Key = {.Parent = FileReference(number),
                                  .Name = NameOf(options_.Plan.Seed, number + 1, options_.WideNames),
                                  .Times = times}}});
    return record.Finish();
}

ByteVector BenchVolume::MakeFile(std::uint32_t number, const RecordRole& role) {
    const std::uint64_t random = Mix(options_.Plan.Seed + 4, number);
    const FileTimes times = TimesOf(random);
    const std::uint64_t clusters = 1 + (random >> 8) % kMaxSmallClusters;
    const bool resident = random % 10 < 3 || !HasRoom(clusters);
    const std::uint64_t size =
        resident ? (random >> 16) % kMaxResidentBytes
                 : clusters * geometry_.ClusterBytes() - (random >> 16) % geometry_.ClusterBytes();
    RecordBuilder record(geometry_, number);
    record.SetInUse(role.Live).AddStandardInformation(times);
    record.AddFileName({.Parent = FileReference(role.Parent),
                        .Name = NameOf(options_.Plan.Seed, number, options_.WideNames),
                        .Times = times,
                        .RealSize = size});
    if (resident) {
        return record.AddData(ByteVector(size, static_cast<std::uint8_t>(random))).Finish();
    }
    record.AddData({.Runs = {{clusters, nextCluster_}}, .RealSize = size});
    nextCluster_ += clusters;
    return record.Finish();
}

ByteVector BenchVolume::MakeRecord(std::uint32_t number) {
    if (number < kFirstUserRecord) {
        return ByteVector(kRecordBytes); // written once the volume's size is known
    }
    const std::uint32_t slot = number - kFirstUserRecord;
    if (slot >= options_.Plan.UserRecords) {
        return MakeSpecial(specials_.at(slot - options_.Plan.UserRecords));
    }
    const RecordRole role = RoleOf(options_.Plan, number);
    ++(role.Folder ? folders_ : files_);
    return role.Folder ? MakeFolder(number, role) : MakeFile(number, role);
}

void BenchVolume::WriteTable() {
    std::uint32_t number = 0;
    for (const Run& run : geometry_.MftRuns) {
        GatheringWriter writer(image_, geometry_.OffsetOf(run.Start.value()));
        const std::uint64_t slots = run.Clusters * geometry_.ClusterBytes() / kRecordBytes;
        for (std::uint64_t slot = 0; slot < slots && number < options_.Records; ++slot) {
            writer.Append(MakeRecord(number++));
        }
        writer.Flush();
    }
}

void BenchVolume::WriteFreeSpace() {
    const std::uint64_t freeClusters = CeilDiv(kFreeBytes + options_.RandomBytes, geometry_.ClusterBytes());
    std::uint64_t clusters = options_.SizeBytes / geometry_.ClusterBytes();
    if (options_.SizeBytes == 0) {
        clusters = nextCluster_ + freeClusters;
        clusters += CeilDiv(clusters, 8ULL * geometry_.ClusterBytes()) + 1;
    }
    geometry_.TotalSectors = clusters * geometry_.SectorsPerCluster;
    MetafilePlan plan = {.Geometry = geometry_,
                         .Records = options_.Records,
                         .TableBitmapClusters = geometry_.MftCluster() - kTableBitmapCluster,
                         .VolumeBitmapCluster = nextCluster_,
                         .VolumeBitmapBytes = CeilDiv(clusters, 64) * 8,
                         .RootFiles = specials_};
    nextCluster_ += CeilDiv(plan.VolumeBitmapBytes, geometry_.ClusterBytes());
    const ByteVector records = MakeMetafileRecords(plan);
    image_.SetSize((geometry_.MediumSectors() + kTailSectors) * geometry_.SectorBytes);
    image_.WriteAt(geometry_.OffsetOf(geometry_.MftCluster()), records);
    WriteMetafileContent(image_, plan, records);
    const std::uint64_t freeBytes = (clusters - nextCluster_) * geometry_.ClusterBytes();
    WriteRandom(image_, geometry_.OffsetOf(nextCluster_), std::min(options_.RandomBytes, freeBytes),
                options_.Plan.Seed + 11);
}

// Spread over the free clusters, at any sector, as left by older volumes and moved tables.
void BenchVolume::WriteLookalikes() {
    const ByteVector record =
        RecordBuilder(geometry_, 0)
            .AddStandardInformation(EqualTimes(), 6)
            .AddFileName({.Name = u"$MFT", .Namespace = kNamespaceBoth, .AttributeBits = 6})
            .AddData({.Runs = geometry_.MftRuns})
            .Finish();
    const std::uint64_t first = geometry_.SectorOf(nextCluster_);
    const std::uint64_t last = geometry_.StartSector + geometry_.TotalSectors - 16;
    const std::uint64_t step = (last - first) / std::max(options_.Lookalikes, 1U);
    for (std::uint64_t index = 0; step > 2 && index < options_.Lookalikes; ++index) {
        const std::uint64_t sector = first + index * step + Mix(options_.Plan.Seed + 12, index) % (step - 2);
        image_.WriteAt(sector * geometry_.SectorBytes, record);
    }
}

void BenchVolume::Write() {
    const std::uint32_t specials = (options_.BigFileBytes != 0 ? 1U : 0U) +
                                   static_cast<std::uint32_t>(CeilDiv(options_.TextBytes, kTextFileBytes));
    if (options_.Records < kFirstUserRecord + specials + options_.Folders || options_.Folders == 0) {
        throw std::length_error("too few records");
    }
    options_.Plan.UserRecords = options_.Records - kFirstUserRecord - specials;
    options_.Plan.Folders = options_.Folders;
    PlanTable();
    if (options_.BigFileBytes != 0) {
        WriteBigFile();
    }
    WriteTextFiles();
    WriteTable();
    WriteFreeSpace();
    WriteLookalikes();
}

std::string BenchVolume::Facts() const {
    std::ostringstream facts;
    facts << "RECORDS=" << options_.Records << "\nFOLDERS=" << folders_
          << "\nFILES=" << files_ + specials_.size() << "\nTABLE_RANGES=\"";
    for (const Run& run : geometry_.MftRuns) {
        facts << geometry_.OffsetOf(run.Start.value()) << ' ' << run.Clusters * geometry_.ClusterBytes()
              << ' ';
    }
    facts << "\"\n";
    if (options_.BigFileBytes != 0) {
        facts << "BIG_OFFSET=" << geometry_.OffsetOf(specials_.front().Data.Runs.front().Start.value())
              << "\nBIG_BYTES=" << options_.BigFileBytes << '\n';
    }
    return facts.str();
}

} // namespace thntfs::bench
