#pragma once

#include "wizard/InfoListBox.h"

#include <array>

namespace thntfs {

struct DiskInfo;

// What the info lists of the pages say; one line a row, as RowsOf takes it. Translators leave "HDR" and "* ".
extern const char* const kMainPageText;
extern const std::array<const char*, 4> kTaskTexts; ///< by WizardTask
extern const char* const kDiskPageSteps;
extern const char* const kImagePageText;
extern const char* const kClonePageSteps;
extern const char* const kImagingPageSteps;

/// Shows the properties of a disk, or the page's steps where there is none.
void ShowDisk(CInfoListBox& list, const DiskInfo* disk, const char* steps);

/// The same on the clone page, which has fewer properties under a header that begins with `title`.
void ShowCloneDisk(CInfoListBox& list, const QString& title, const DiskInfo* disk);

} // namespace thntfs
