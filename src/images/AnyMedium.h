#pragma once

#include "platform/media/Medium.h"

#include <string>
#include <vector>

namespace thntfs {

/// Opens whatever holds a disk, for reading only: a device, a raw image, a raw image in pieces (NAME.001,
/// NAME.002, …), or an image in a format of its own: E01, Ex01 and S01, VHD and VHDX, VMDK, QCOW2. What it is
/// is told by the file's contents, never by its name, save that pieces follow each other by theirs. Devices
/// and all files that aren't known as anything else open as OpenMedium opens them.
///
/// Fails as OpenMedium does, and with kErrorImage where an image can't be read as a whole: `Why` tells.
/// The caller owns the handle.
MediumResult OpenAnyMedium(const std::string& path);

/// Paths of all files that reading the medium would read: the path itself, and behind it pieces, extents and
/// the images that it builds on. Only the path where it can't be opened.
std::vector<std::string> FilesOfMedium(const std::string& path);

} // namespace thntfs
