#include "BenchMetafiles.h"

#include "support/VolumeBuilderDisk.h"

#include <algorithm>

namespace thntfs::bench {

using namespace test;

namespace {

constexpr std::size_t kRootEntriesThatFit = 5;
constexpr std::uint32_t kSecureNumber = 9;
constexpr std::uint32_t kHiddenSystem = 6;
constexpr std::uint32_t kVolumeName = 0x60;
constexpr std::uint32_t kVolumeInformation = 0x70;
constexpr std::size_t kSequenceAt = 16; // in a record

FileNameValue RootName(std::u16string name, std::uint32_t bits) {
    return {.Parent = FileReference(kRootNumber, kRootNumber),
            .Name = std::move(name),
            .Namespace = kNamespaceBoth,
            .AttributeBits = bits};
}

RecordBuilder Metafile(const VolumeGeometry& geometry, std::uint32_t number, std::u16string name) {
    RecordBuilder record(geometry, number);
    record.Poke16(kSequenceAt, static_cast<std::uint16_t>(std::max(number, 1U)));
    record.AddStandardInformation(EqualTimes(), kHiddenSystem);
    record.AddFileName(RootName(std::move(name), kHiddenSystem));
    return record;
}

ByteVector RootFolder(const MetafilePlan& plan) {
    std::vector<IndexEntry> entries = {
        {.Reference = FileReference(kSecureNumber, kSecureNumber),
         .Key = RootName(u"$Secure", kHiddenSystem)}}; // drivers look for it here
    for (const SpecialFile& file : plan.RootFiles) {
        if (entries.size() < kRootEntriesThatFit) {
            FileNameValue key = RootName(file.Name, kArchiveBit);
            key.RealSize = file.Data.RealSize.value_or(0);
            entries.push_back({.Reference = FileReference(file.Number), .Key = key});
        }
    }
    RecordBuilder record(plan.Geometry, kRootNumber);
    record.Poke16(kSequenceAt, kRootNumber)
        .SetFolder(true)
        .AddStandardInformation(EqualTimes(), kHiddenSystem);
    return record.AddFileName(RootName(u".", kHiddenSystem | kFolderBit)).AddIndexRoot(entries).Finish();
}

ByteVector VolumeRecord(const VolumeGeometry& geometry) {
    ByteVector name;
    AppendText(name, u"Bench");
    ByteVector information(12);
    information[8] = 3;
    information[9] = 1;
    return Metafile(geometry, 3, u"$Volume")
        .AddResident(kVolumeName, name)
        .AddResident(kVolumeInformation, information)
        .AddData(ConstBytes{})
        .Finish();
}

ByteVector TableRecord(const MetafilePlan& plan) {
    const std::uint64_t bytes = std::uint64_t{plan.Records} * plan.Geometry.RecordBytes;
    return Metafile(plan.Geometry, 0, u"$MFT")
        .AddData({.Runs = plan.Geometry.MftRuns, .RealSize = bytes})
        .AddNonResident(kBitmap, {.Runs = {{plan.TableBitmapClusters, kTableBitmapCluster}},
                                  .RealSize = RoundUp8((plan.Records + 7) / 8)})
        .Finish();
}

ByteVector InOneRun(const VolumeGeometry& geometry, std::uint32_t number, std::u16string name,
                    std::uint64_t cluster, std::uint64_t bytes) {
    const std::uint64_t clusters = (bytes + geometry.ClusterBytes() - 1) / geometry.ClusterBytes();
    return Metafile(geometry, number, std::move(name))
        .AddData({.Runs = {{clusters, cluster}}, .RealSize = bytes})
        .Finish();
}

// An empty index that isn't over file names; `collation` is how its keys are ordered.
ByteVector EmptyIndex(const VolumeGeometry& geometry, std::uint32_t collation) {
    ByteVector root(48);
    PutNumber(root, 4, collation);
    PutNumber(root, 8, geometry.IndexBlockBytes);
    PutNumber(root, 12, geometry.SizeCode(geometry.IndexBlockBytes));
    PutNumber(root, 16, std::uint32_t{16}); // the first entry, from here on
    PutNumber(root, 20, std::uint32_t{32});
    PutNumber(root, 24, std::uint32_t{32});
    PutNumber(root, 40, std::uint16_t{16}); // the end entry's length
    PutNumber(root, 44, std::uint16_t{2});
    return root;
}

ByteVector SecureRecord(const VolumeGeometry& geometry) {
    constexpr std::uint32_t kByNumber = 0x10;
    constexpr std::uint32_t kByHash = 0x12;
    return Metafile(geometry, kSecureNumber, u"$Secure")
        .AddData(ConstBytes{}, u"$SDS")
        .AddResident(kIndexRoot, EmptyIndex(geometry, kByHash), u"$SDH")
        .AddResident(kIndexRoot, EmptyIndex(geometry, kByNumber), u"$SII")
        .Poke16(22, 9) // in use, with an index that isn't a folder's
        .Finish();
}

// Records 12 to 15 are kept for later metafiles, 16 to 23 are never used.
ByteVector ReservedRecord(const VolumeGeometry& geometry, std::uint32_t number) {
    RecordBuilder record(geometry, number);
    record.SetInUse(number < 16);
    if (number < 16) {
        record.AddStandardInformation(EqualTimes(), kHiddenSystem).AddData(ConstBytes{});
    }
    return record.Finish();
}

ByteVector UpCaseTable() {
    ByteVector table(65536 * 2);
    for (std::uint32_t unit = 0; unit < 65536; ++unit) {
        const bool lower = (unit >= u'a' && unit <= u'z') || (unit >= 0xE0 && unit <= 0xFE && unit != 0xF7) ||
                           (unit >= 0x430 && unit <= 0x44F);
        PutNumber(table, unit * 2, static_cast<std::uint16_t>(lower ? unit - 32 : unit));
    }
    return table;
}

void WriteBootSectors(const SparseImage& image, const VolumeGeometry& geometry) {
    image.WriteAt(0, EncodePartitionTable({{0x07, static_cast<std::uint32_t>(geometry.StartSector),
                                            static_cast<std::uint32_t>(geometry.TotalSectors + 1)}}));
    const ByteVector boot = EncodeBootSector(BootFieldsOf(geometry));
    image.WriteAt(geometry.StartSector * geometry.SectorBytes, boot);
    image.WriteAt((geometry.StartSector + geometry.TotalSectors) * geometry.SectorBytes, boot);
}

} // namespace

ByteVector MakeMetafileRecords(const MetafilePlan& plan) {
    const VolumeGeometry& geometry = plan.Geometry;
    const std::uint64_t cluster = geometry.ClusterBytes();
    const std::uint64_t allClusters = geometry.TotalSectors / geometry.SectorsPerCluster;
    ByteVector records;
    AppendBytes(records, TableRecord(plan));
    AppendBytes(records, InOneRun(geometry, 1, u"$MFTMirr", kMirrorCluster, cluster));
    AppendBytes(records, InOneRun(geometry, 2, u"$LogFile", kLogCluster, kLogClusters * cluster));
    AppendBytes(records, VolumeRecord(geometry));
    AppendBytes(records, InOneRun(geometry, 4, u"$AttrDef", kAttrDefCluster, 2560));
    AppendBytes(records, RootFolder(plan));
    AppendBytes(records, InOneRun(geometry, 6, u"$Bitmap", plan.VolumeBitmapCluster, plan.VolumeBitmapBytes));
    AppendBytes(records, InOneRun(geometry, 7, u"$Boot", 0, 2 * cluster));
    AppendBytes(records, Metafile(geometry, 8, u"$BadClus")
                             .AddData(ConstBytes{})
                             .AddData({.Runs = {{allClusters, {}}}, .Name = u"$Bad", .InitializedSize = 0})
                             .Finish());
    AppendBytes(records, SecureRecord(geometry));
    AppendBytes(records, InOneRun(geometry, 10, u"$UpCase", kUpCaseCluster, kUpCaseClusters * cluster));
    AppendBytes(records, Metafile(geometry, 11, u"$Extend").SetFolder(true).AddIndexRoot({}).Finish());
    for (std::uint32_t number = 12; number < kFirstUserRecord; ++number) {
        AppendBytes(records, ReservedRecord(geometry, number));
    }
    return records;
}

void WriteMetafileContent(const SparseImage& image, const MetafilePlan& plan, ConstBytes records) {
    const VolumeGeometry& geometry = plan.Geometry;
    WriteBootSectors(image, geometry);
    image.WriteAt(geometry.OffsetOf(kMirrorCluster), records.first(4 * std::size_t{geometry.RecordBytes}));
    image.WriteAt(geometry.OffsetOf(kUpCaseCluster), UpCaseTable());
    image.WriteAt(geometry.OffsetOf(kLogCluster), ByteVector(kLogClusters * geometry.ClusterBytes(), 0xFF));
    image.WriteAt(geometry.OffsetOf(kTableBitmapCluster), ByteVector((plan.Records + 7) / 8, 0xFF));
    image.WriteAt(geometry.OffsetOf(plan.VolumeBitmapCluster),
                  ByteVector(plan.VolumeBitmapCluster / 8, 0xFF));
}

} // namespace thntfs::bench
