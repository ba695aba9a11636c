#pragma once

#include "engine/EngineState.h"
#include "platform/system/Bytes.h"

#include <cstdint>
#include <string>
#include <vector>

namespace thntfs::fuzz {

/// A plain volume as the engine knows it: 512-byte sectors, clusters of 4 KiB, records of 1 KiB, index blocks
/// of 4 KiB, starting at sector 0, with its Master File Table in clusters 1 to 4. The medium holds `bytes`.
void OpenPlainVolume(ConstBytes bytes);

/// From here on all files lie in memory, the engine's catalogue among them.
void KeepFilesInMemory();

/// Puts a scan information file there, made from an input, with the medium's path in it replaced by that of
/// an image that opens. Gives the file's path.
std::string WriteInfoFile(ConstBytes input);

/// Walks all of the catalogue that is open, as a listing, a sum and a look for a path do.
void WalkCatalogue();

/// Reads the content of every file of the catalogue that is open, up to some number, into nothing.
void ReadContents();

} // namespace thntfs::fuzz
