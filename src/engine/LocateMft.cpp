#include "engine/LocateMft.h"

#include "engine/AttributeList.h"
#include "engine/DecodeRecord.h"
#include "engine/EngineState.h"
#include "engine/FileRecord.h"
#include "engine/RunList.h"
#include "engine/SectorReader.h"
#include "platform/system/Interrupt.h"

#include <algorithm>
#include <new>
#include <optional>
#include <vector>

namespace thntfs {

namespace {

using RecordBuffer = std::vector<std::uint8_t>;

// A table begins where its cluster begins; the sectors behind are tried for a start that was told wrong.
constexpr std::uint32_t kMaxSectorsTried = 128;

bool ReadMftRecord(RecordBuffer& record, std::uint64_t sector) {
    ReadSectorsCleared(record, sector);
    return IsMftRecord(record, Engine.VolumeParams.FileRecordBytes);
}

bool SearchMftRecord(RecordBuffer& record) {
    VolumeParams& volume = Engine.VolumeParams;
    const std::uint64_t table = SectorOfCluster(volume.MftCluster);
    const std::uint64_t mirror = SectorOfCluster(volume.MftMirrCluster);
    for (std::uint64_t i = 0; i < std::min(volume.SectorsPerCluster, kMaxSectorsTried); ++i) {
        for (const std::uint64_t sector : {table + i, mirror + i}) {
            if (WasInterrupted()) {
                return false;
            }
            if (ReadMftRecord(record, sector)) {
                volume.MftSector = sector;
                return true;
            }
        }
    }
    return false;
}

std::uint32_t RecordsInClusters(std::uint32_t clusters) {
    const VolumeParams& volume = Engine.VolumeParams;
    if (volume.SectorsPerCluster == 1 || volume.SectorsPerFileRecord == 0) {
        return clusters;
    }
    return clusters * (volume.SectorsPerCluster / volume.SectorsPerFileRecord);
}

// Bytes that the volume can hold at the most. What a record states beyond them can't be true.
std::uint64_t VolumeBytes() {
    const std::uint64_t sectors = std::min(Engine.VolumeParams.TotalSectors, ~std::uint64_t{0} >> 16U);
    return std::max(MediumBytes(), sectors * Engine.SourceDisk.BytesPerSector);
}

void TakeTableBytes(const Attribute& firstPiece) {
    const std::uint64_t bytes = std::min(firstPiece.RealBytes(), firstPiece.InitialisedBytes());
    if (firstPiece.NonResident() != 0 && bytes <= VolumeBytes()) {
        Engine.TableBytes = bytes;
    }
}

// Keeps the entries of data attributes. In the clusters of a non-resident list, unlike in a resident one, an
// invalid type is the padding behind the last entry.
ListVisitor DataNodeCollector(bool invalidTypeEnds, std::vector<AttributeListNode>& nodes) {
    return [invalidTypeEnds, &nodes](const AttributeListEntry& entry) {
        const std::uint32_t type = entry.Type();
        if (type > kTypeData || (invalidTypeEnds && !IsValidType(type))) {
            return ListStep::End;
        }
        if (type == kTypeData) {
            nodes.push_back(MakeListNode(entry));
        }
        return ListStep::GoOn;
    };
}

// Whatever goes wrong on the way, the nodes collected so far are used.
std::vector<AttributeListNode> ReadTableAttributeList(ConstBytes record, const Attribute& list) {
    std::vector<AttributeListNode> nodes;
    try {
        WalkAttributeList(record, list, DataNodeCollector(list.NonResident() != 0, nodes),
                          [](const ReadOutcome& outcome) {
                              Engine.TableCut = Engine.TableCut || !outcome.Whole();
                              return !WasInterrupted();
                          });
    } catch (const CUserException&) {
        Engine.TableCut = true;
    } catch (const std::bad_alloc&) {
        Engine.TableCut = true;
    }
    return nodes;
}

std::optional<Attribute> FindAttribute(ConstBytes record, std::uint32_t type, std::uint16_t id) {
    for (AttributeWalk walk(record); walk.Valid(); walk.Next()) {
        const Attribute attribute = walk.Current();
        if (attribute.Type() == kTypeEnd) {
            break;
        }
        if (attribute.Type() == type && attribute.Id() == id) {
            return attribute;
        }
    }
    return std::nullopt;
}

// Takes the piece of the table that a node leads to. Its extension record is expected in the first run of the
// table, since the runs aren't known yet.
bool TakePiece(const AttributeListNode& node, RecordBuffer& record) {
    VolumeParams& volume = Engine.VolumeParams;
    const std::uint64_t sectorsBefore = std::uint64_t{node.RecordNumber} * volume.SectorsPerFileRecord;
    if (!ReadFileRecord(record, SectorOfCluster(volume.MftCluster) + sectorsBefore)) {
        return false;
    }
    const auto piece = FindAttribute(record, node.AttributeType, node.AttributeId);
    if (!piece) {
        return false;
    }
    if (piece->FirstCluster() == 0) {
        TakeTableBytes(*piece);
    }
    const auto clusters = static_cast<std::uint32_t>(piece->LastCluster() - piece->FirstCluster() + 1);
    volume.MftRecordCount += RecordsInClusters(clusters);
    DecodeRunList(record, piece->RunListStart(), volume.MftExtents);
    return true;
}

// The table reaches into a piece that could not be had at least by one record.
void NoteLostPiece(const AttributeListNode& node, std::uint64_t& reach) {
    const VolumeParams& volume = Engine.VolumeParams;
    Engine.TableCut = true;
    if (node.StartVcn < VolumeBytes() / std::max(1U, volume.ClusterBytes)) {
        reach = std::max(reach, node.StartVcn * volume.ClusterBytes + volume.FileRecordBytes);
    }
}

// Clusters of the extents from one of them on. An empty one counts too: it takes memory.
std::uint64_t ClustersFrom(std::size_t first) {
    const std::vector<MftExtent>& extents = Engine.VolumeParams.MftExtents;
    std::uint64_t clusters = 0;
    for (std::size_t i = first; i < extents.size(); ++i) {
        clusters += std::max(1U, extents[i].Clusters);
    }
    return clusters;
}

// A table that has grown larger than its volume is damaged; its further pieces are left.
void CollectMftExtents(const std::vector<AttributeListNode>& nodes) try {
    const VolumeParams& volume = Engine.VolumeParams;
    RecordBuffer record(volume.FileRecordBytes);
    std::uint64_t clustersLeft = VolumeBytes() / std::max(1U, volume.ClusterBytes);
    std::uint64_t reach = 0;
    for (const AttributeListNode& node : nodes) {
        const std::size_t before = volume.MftExtents.size();
        if (WasInterrupted() || !TakePiece(node, record)) {
            NoteLostPiece(node, reach);
        }
        const std::uint64_t clusters = ClustersFrom(before);
        if (clusters > clustersLeft) {
            Engine.TableCut = true;
            break;
        }
        clustersLeft -= clusters;
    }
    Engine.TableBytes = Engine.TableBytes == 0 ? reach : Engine.TableBytes;
} catch (const CUserException&) {
    Engine.TableCut = true;
} catch (const std::bad_alloc&) {
    Engine.TableCut = true;
}

void TakeExtentsOfData(ConstBytes record, const Attribute& data) {
    VolumeParams& volume = Engine.VolumeParams;
    TakeTableBytes(data);
    volume.MftRecordCount = RecordsInClusters(static_cast<std::uint32_t>(data.LastCluster()) + 1);
    DecodeRunList(record, data.RunListStart(), volume.MftExtents);
}

// The first attribute is passed over unseen. The second, if it is an attribute list, decides; otherwise the
// first data attribute from the third on does.
void DecodeTableRuns(ConstBytes record) {
    AttributeWalk walk(record);
    walk.Next();
    const Attribute second = walk.Current();
    if (second.Type() == kTypeAttributeList) {
        CollectMftExtents(ReadTableAttributeList(record, second));
        return;
    }
    while (walk.Valid()) {
        walk.Next(); // the attribute that starts right behind the used bytes is still looked at
        const Attribute attribute = walk.Current();
        if (attribute.Type() == kTypeData) {
            TakeExtentsOfData(record, attribute);
            return;
        }
        if (attribute.Type() == 0 || attribute.Type() > kTypeData) {
            return;
        }
    }
}

void FindAndDecodeTable() {
    VolumeParams& volume = Engine.VolumeParams;
    RecordBuffer record(volume.FileRecordBytes);
    if ((volume.MftSector != 0 && ReadMftRecord(record, volume.MftSector)) || SearchMftRecord(record)) {
        DecodeTableRuns(record);
    }
}

} // namespace

bool LocateMft() {
    VolumeParams& volume = Engine.VolumeParams;
    volume.MftExtents.clear();
    volume.MftRecordCount = 0;
    Engine.TableBytes = 0;
    Engine.TableCut = false;
    Engine.Table.reset();
    if (volume.MftCluster == 0 || volume.FileRecordBytes == 0 || volume.SectorsPerCluster == 0) {
        return false;
    }
    try {
        FindAndDecodeTable();
    } catch (const CUserException&) {
    } catch (const std::exception&) {
    }
    return !volume.MftExtents.empty();
}

} // namespace thntfs
