#pragma once

#include "engine/EngineState.h"
#include "platform/system/Bytes.h"
#include "scans/ScanReach.h"

#include <cstdint>
#include <functional>
#include <string>

namespace thntfs::fuzz {

/// All that a scan can do.
inline constexpr ScanReach kFarReach{.Exact = true, .Deep = true};

/// A plain volume as the engine knows it: 512-byte sectors, clusters of 4 KiB, records of 1 KiB, index blocks
/// of 4 KiB, starting at sector 0, with its Master File Table in clusters 1 to 4. The medium holds `bytes`.
void OpenPlainVolume(ConstBytes bytes);

/// Puts a scan information file, made from an input, in memory, with the medium's path in it replaced by that
/// of an image that opens. Gives the file's path.
std::string WriteInfoFile(ConstBytes input);

/// Takes each volume that was found into use and looks for its table.
void TakeEachIntoUse();

/// Makes the catalogue of the volume in use by a scan, and does WalkAndRead.
void ScanAndRead(const std::function<void()>& scan);

/// Walks all of the catalogue that is open, as a listing, a sum and a look for a path do, sees that what
/// would be saved gets a name that leads nowhere else, and reads the content of its files, up to some number,
/// into nothing. Then closes it.
void WalkAndRead();

} // namespace thntfs::fuzz
