#pragma once

#include "engine/Host.h"
#include "partitions/DiskEnumeration.h"

#include <QString>
#include <cstdint>
#include <memory>
#include <vector>

namespace thntfs {

struct CopyJob;

// Values of WizardTask.
inline constexpr std::uint8_t kTaskRecoverDisk = 0;
inline constexpr std::uint8_t kTaskRecoverImage = 1;
inline constexpr std::uint8_t kTaskClone = 2;
inline constexpr std::uint8_t kTaskImage = 3;
inline constexpr std::uint8_t kNoTask = 0xFF;

/// A position in Disks that means none.
inline constexpr std::uint8_t kNoDisk = 255;

/// What has been chosen in one run of the wizard. The sheet has it, and its pages share it.
struct WizardState {
    /// The disk at a position, null for kNoDisk. Valid as long as Disks isn't changed.
    [[nodiscard]] const DiskInfo* DiskAt(std::uint8_t index) const {
        return index == kNoDisk ? nullptr : &Disks.at(index);
    }

    std::vector<DiskInfo> Disks; ///< which the disk pages offer, at most 255
    std::uint8_t WizardTask = kNoTask;
    std::uint8_t ProcessingMode = 0;        ///< 0 partition table, 1 search
    std::uint8_t SourceDiskIndex = kNoDisk; ///< of the clone and the image page
    std::uint8_t TargetDiskIndex = kNoDisk; ///< of the clone page
    QString ImageDestination;               ///< path of the image file to make
    std::shared_ptr<CopyJob> Copy;          ///< that a page has prepared, both media open
    bool PagesFresh = true;                 ///< the disk page is to start afresh
    bool RunAtStartup = false;              ///< the wizard shows at the program's start
    bool ListPageOnly = false;              ///< the sheet offers the list of partitions and nothing else

    /// What the frame's log lines call the volume in work: a click in the list of partitions writes its row
    /// here, and Finish the last digit of the chosen volume's number.
    std::uint8_t LogicalDriveNumber = 0;
    /// Names the chosen partition, or the copy, once the sheet has finished.
    ProcessLogEntry WizardLogEntry;
};

} // namespace thntfs
