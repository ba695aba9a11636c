#pragma once

namespace thntfs {

class MountIndex;
struct SaveOptions;

/// Where it is known from which files have further names: a scan has noted them, of a loaded one each file's
/// record tells.
enum class FurtherNamesBy { Scan, Records };

/// Hangs what a save of the whole catalogue by these options would make into an empty index: the same
/// folders, under the same names, in the same order, further names among them. Nothing of a file is read for
/// that but its record where it may have further names. A job: ScanRunFlag must be set; gives false where it
/// was cleared meanwhile. Passes CUserException on.
bool FillIndex(MountIndex& index, const SaveOptions& options, FurtherNamesBy by);

} // namespace thntfs
