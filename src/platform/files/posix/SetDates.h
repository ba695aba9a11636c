#pragma once

namespace thntfs {

struct FileDates;

/// Sets the dates that are known of an open file or folder. What the file system refuses stays as it was.
void SetDatesOf(int descriptor, const FileDates& dates);

} // namespace thntfs
