#pragma once

#include "cli/Options.h"
#include "cli/TerminalHost.h"
#include "platform/WorkFolder.h"

namespace thntfs {

/// One run of the terminal program on one medium: the steps from the medium to an open catalogue. Each step gives
/// an exit code, and has said on standard error what went wrong where it isn't kExitDone.
class Session {
public:
    explicit Session(const Options& options);
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    /// Opens the medium and reads its partition table, or searches it for lost volumes.
    int OpenMedium();

    /// Takes the wanted candidate into use and locates its Master File Table.
    int OpenVolume();

    /// Runs the scan and opens its catalogue for reading. A scan that was stopped or that met a fatal error gives
    /// kExitDone too: what it found is there, and Complete is false.
    int ScanVolume();

    /// All three steps.
    int OpenCatalogueOfMedium();

    /// False where the scan was stopped or met a fatal error.
    [[nodiscard]] bool Complete() const { return complete_; }

    TerminalHost Host;

private:
    int FindVolumes();
    bool RunScan();

    const Options& options_;
    WorkFolder folder_;
    bool complete_ = true;
};

} // namespace thntfs
