#pragma once

#include "cli/Options.h"
#include "cli/TerminalHost.h"
#include "platform/files/WorkFolder.h"
#include "scaninfo/ScanInfo.h"

#include <optional>
#include <string>

namespace thntfs {

/// One run of the terminal program on one medium: the steps from the medium to an open catalogue. Each step
/// gives an exit code, and has said on standard error what went wrong where it isn't kExitDone.
class Session {
public:
    explicit Session(const Options& options);
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    /// Opens the medium and reads its partition table, or searches it for lost volumes. A scan information
    /// file in its place is loaded; what it holds then needs no step of its own, and the later ones do
    /// nothing for it.
    int OpenMedium();

    /// Takes the wanted candidate into use and locates its Master File Table.
    int OpenVolume();

    /// Runs the scan and opens its catalogue for reading. A scan that was stopped, that met a fatal error or
    /// that could not read all records gives kExitDone too: what it found is there, and Complete is false.
    int ScanVolume();

    /// All three steps.
    int OpenCatalogueOfMedium();

    /// Path of the medium itself, also where a scan information file stands for it. Valid after OpenMedium.
    [[nodiscard]] const std::string& MediumPath() const;

    /// False where the search or the scan was stopped, met a fatal error or could not read all that it
    /// should.
    [[nodiscard]] bool Complete() const { return complete_; }

    TerminalHost Host;

private:
    int OpenWantedMedium();
    int SearchVolumes();
    int ReadTables();
    int TellNoVolume();
    int LoadSavedResult(ScanInfoKind kind);
    int LoadTree();
    int LoadPartitions();
    int MakeCatalogueFolder();
    int ReopenCatalogue();
    static int TellNoCatalogue();

    const Options& options_;
    WorkFolder folder_;
    ScanInfoProbe saved_;            ///< what the file in place of the medium is, if it is one
    std::optional<int> volumeTaken_; ///< exit code of taking a candidate, once that was done
    unsigned volumeNumber_ = 1;
    bool complete_ = true;
};

} // namespace thntfs
