#pragma once

#include "partitions/DiskEnumeration.h"
#include "wizard/InfoListBox.h"

#include <array>

namespace thntfs {

// What the info lists of the pages say; one line a row, as RowsOf takes it.
extern const char* const kMainPageText;
extern const std::array<const char*, 4> kTaskTexts; ///< by WizardTask
extern const char* const kDiskPageSteps;
extern const char* const kImagePageText;
extern const char* const kClonePageSteps;
extern const char* const kImagingPageSteps;

/// The properties of a disk, under a header that begins with `title`.
InfoRows DiskRows(const QString& title, const DiskInfo& disk);

/// The same for the clone page, where they are fewer.
InfoRows CloneDiskRows(const QString& title, const DiskInfo& disk);

inline constexpr int kDiskHeaderHeight = 20;

} // namespace thntfs
