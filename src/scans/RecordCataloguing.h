#pragma once

#include "engine/DecodeRecord.h"
#include "engine/EngineState.h"

#include <cstdint>

namespace thntfs {

/// Gives an entry without a name the name "#" and its number.
void NameNameless(DecodedEntry& entry);

/// Catalogues a checked and decoded record whose RecordNumber and RecordSector are set: writes the entry and
/// links it under its parent. `nextEntryId` advances if an entry was written: a folder whose number has been
/// catalogued already writes nothing. Passes CUserException on.
void CatalogueRecord(DecodedEntry& entry, bool directory, std::uint32_t& nextEntryId);

/// The same for a folder that is known by number, parent and name alone.
void CatalogueFolder(DecodedEntry& entry, std::uint32_t& nextEntryId);

/// While one lives a scan runs: losses, what is met and the cost of lists are counted anew.
class ScanAccount {
public:
    ScanAccount() {
        Engine.Losses = ScanLosses();
        Engine.Yield = ScanYield();
        Engine.Lists = ListReads();
        Engine.Lists.InScan = true;
    }
    ~ScanAccount() { Engine.Lists.InScan = false; }
    ScanAccount(const ScanAccount&) = delete;
    ScanAccount& operator=(const ScanAccount&) = delete;
};

/// Runs a step of a scan. A fatal error of the medium or of the catalogue, whose box the user has seen, ends
/// the step and not the scan: what was found up to then makes the catalogue.
template <typename Step>
void UpToFatalError(Step step) {
    try {
        step();
    } catch (const CUserException&) {
    }
}

} // namespace thntfs
