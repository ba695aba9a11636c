#pragma once

#include "engine/CatalogueRecords.h"
#include "engine/ListReads.h"
#include "engine/ScanLosses.h"
#include "engine/ScanYield.h"
#include "engine/StoredRecords.h"
#include "engine/TableVolume.h"
#include "engine/VolumeFacts.h"
#include "platform/system/BigBlock.h"
#include "platform/system/ErrorCodes.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace thntfs {

class ChainWords;
class FolderTree;
class FoundRecords;
class PagedFile;
struct TableMap;

/// A fatal failure of the medium or of the catalogue. The user has seen its text in a box before it is
/// thrown. Decoding passes it on, scans catch it.
struct CUserException {
    ErrorCode Code = kErrorNone;
};

/// All that the engine works on. One exists, `Engine`. One job at a time uses it, on one thread.
struct EngineState {
    EngineState();
    ~EngineState();

    std::atomic<std::uint32_t> ScanRunFlag{0}; ///< 1 while a job may run, 0 to stop it

    /// The progress pair, written by a job before it calls EngineHost::JobProgress.
    std::uint64_t ProgressTotal = 0;
    std::uint64_t ProgressDone = 0;

    DiskRecord TargetDisk; ///< the target of a copy; only WriteHandle is used
    DiskRecord SourceDisk; ///< the medium under recovery
    thntfs::VolumeParams VolumeParams;
    std::vector<TableVolume>
        TableVolumes; ///< of SourceDisk's partition tables, in their order, the usable ones
                      ///< among them its first candidates; of a search the encrypted ones
    std::vector<thntfs::VolumeFacts> VolumeFacts; ///< of the candidates, by position; may hold fewer
    std::optional<std::uint64_t> UnreadLook;      ///< first sector of a single look (LookAt) that failed
    std::uint8_t SearchLimits = 0; ///< bits kLimit… of the search that the candidates come from

    // The catalogue: three files and the folder tree, which exists only while a scan writes.
    std::string CatalogueFolder; ///< where the three files lie, without a slash at the end
    std::unique_ptr<PagedFile> TreeFile;
    std::unique_ptr<PagedFile> EntryFile;
    std::unique_ptr<PagedFile> NameFile;
    std::uint32_t NamesEnd = 0;           ///< next free byte of NameFile
    std::uint32_t TreeEnd = 0;            ///< byte offset of the block begun last
    std::shared_ptr<FolderTree> Folders;  ///< holds FolderRoot
    std::shared_ptr<ChainWords> Chains;   ///< in a large catalogue, words of TreeFile yet to be written
    std::vector<std::uint8_t> Conditions; ///< of its entries, by EntryId, as far as any were put down

    std::vector<FurtherParent> FurtherParents; ///< in the order of its entries; a scan notes them

    // Equal while the three files hold the volume in work, or are about to.
    std::uint64_t VolumeInWork = 1;    ///< another number with each medium and each volume taken into use
    std::uint64_t CatalogueVolume = 0; ///< VolumeInWork when the files were made; 0 for none

    // The selected image.
    std::string ImagePath;
    std::string ImageFolder;
    std::string OpenFault; ///< why the medium that was opened last can't be, where its code doesn't tell

    // Content of one file on its way out.
    std::uint64_t BytesWritten = 0; ///< bytes of the current file put out so far
    BigBlock ContentBlock;          ///< see ContentBuffer
    bool PreviewActive = false;     ///< the writers send no progress
    std::vector<std::uint8_t> PreviewBuffer;
    std::uint64_t PreviewLength = 0; ///< valid bytes of PreviewBuffer

    ScanLosses Losses; ///< of the last scan or search
    ScanYield Yield;   ///< of the last scan
    ListReads Lists;

    // What LocateMft learns of the table beside its runs.
    std::uint64_t TableBytes = 0; ///< bytes of it that hold records, as it says itself; 0 where unknown
    bool TableCut = false;        ///< a piece of it could not be had

    std::shared_ptr<TableMap> Table;     ///< its exact runs, once they have been asked for (RecordTable.h)
    std::shared_ptr<FoundRecords> Found; ///< records that a search of the whole volume has met

    std::optional<PartitionCandidate> OverlaidBy; ///< what was formatted over the volume in work, if known

    std::vector<std::uint32_t> MarkedEntries; ///< EntryIds that the next save is to take
};

extern EngineState Engine;

/// Fills VolumeParams from a candidate, with defaults for what it leaves open. MftExtents and MftRecordCount
/// are not touched. A candidate with 0 sectors per cluster leaves 0 there, and LocateMft refuses it.
void LoadVolumeParams(const PartitionCandidate& candidate);

/// Closes both media, frees both candidate lists and the extents, and clears SourceDisk, TargetDisk and
/// VolumeParams; what is known of losses, of the table and of found records goes with them. The catalogue and
/// ScanRunFlag are not touched, but the catalogue is no longer that of the volume in work.
void ResetEngineState();

/// Takes note that the catalogue's files are those of the volume in work.
void ClaimCatalogue();

/// False once another medium or volume has been taken into use since the catalogue's files were made, and
/// where there are none.
bool CatalogueIsOfVolumeInWork();

/// Absolute sector of a logical cluster of the volume in work.
std::uint64_t SectorOfCluster(std::uint64_t cluster);

/// Whole records in a run of the table, with the product in 32 bits; SectorsPerFileRecord isn't 0.
std::uint32_t RecordsInExtent(const MftExtent& extent);

} // namespace thntfs
