// A disk with a volume, as the commands take it: the volume is found, located, scanned both ways, listed and
// read, and what would be saved gets a name that leads nowhere else.

#include "FuzzSupport.h"
#include "catalogue/Catalogue.h"
#include "catalogue/EntryWalk.h"
#include "content/TargetName.h"
#include "engine/LocateMft.h"
#include "partitions/PartitionTable.h"
#include "platform/files/TargetFolder.h"
#include "scans/BasicScan.h"
#include "scans/TurboScan.h"

#include <cstdlib>

using namespace thntfs;

namespace {

void CheckTargetNames() {
    EntryWalk walk(WalkStart{}, WalkReach::Whole);
    while (walk.Next()) {
        if (!IsPlainName(TargetName(walk.Item().Name))) {
            std::abort();
        }
    }
}

void ListAndRead() {
    if (OpenCatalogue() != 0) {
        fuzz::WalkCatalogue();
        CheckTargetNames();
        fuzz::ReadContents();
    }
    CloseCatalogue();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::KeepFilesInMemory();
    fuzz::OpenPlainVolume(ConstBytes(data, std::min<std::size_t>(size, 1U << 18U)));
    if (!ReadPartitionTable()) {
        return 0;
    }
    LoadVolumeParams(Engine.SourceDisk.Partitions.front());
    const bool located = LocateMft();
    for (const bool turbo : {false, true}) {
        if (CreateCatalogue() != 0 && (turbo || located)) {
            turbo ? TurboScan() : static_cast<std::uint32_t>(BasicScan());
        }
        CloseCatalogue();
        ListAndRead();
    }
    return 0;
}
