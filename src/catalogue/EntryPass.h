#pragma once

#include "catalogue/CatalogueReader.h"
#include "engine/EngineState.h"
#include "platform/files/PagedFile.h"

#include <algorithm>
#include <cstdint>
#include <type_traits>
#include <vector>

namespace thntfs {

/// Passes along EntryFile and calls visit(id, entry) for each entry of the open catalogue. Those that can't
/// be read come as zeros. Gives false where there were such. A visit that gives a bool ends it by false.
template <typename Visit>
bool PassEntries(Visit visit) {
    constexpr std::size_t kEntriesAtATime = 1024;
    const std::uint64_t count = CatalogueEntryCount();
    std::vector<std::uint8_t> piece(kEntriesAtATime * kStoredEntryBytes);
    bool whole = true;
    for (std::uint64_t id = 0; id < count;) {
        std::size_t got = 0;
        std::fill(piece.begin(), piece.end(), std::uint8_t{0});
        whole = Engine.EntryFile->ReadAt(id * kStoredEntryBytes, piece, got) == kErrorNone && whole;
        const std::uint64_t end = std::min<std::uint64_t>(count, id + kEntriesAtATime);
        for (std::size_t at = 0; id < end; ++id, at += kStoredEntryBytes) {
            const CatalogueEntry entry = DecodeEntry(ConstBytes(piece).subspan(at, kStoredEntryBytes));
            if constexpr (std::is_same_v<decltype(visit(std::uint32_t{}, entry)), bool>) {
                if (!visit(static_cast<std::uint32_t>(id), entry)) {
                    return whole;
                }
            } else {
                visit(static_cast<std::uint32_t>(id), entry);
            }
        }
    }
    return whole;
}

} // namespace thntfs
