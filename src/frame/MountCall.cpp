#include "frame/MountCall.h"

#include "catalogue/Catalogue.h"
#include "content/WorkPlace.h"
#include "engine/EngineState.h"
#include "engine/Host.h"
#include "mount/Mount.h"
#include "platform/media/LentDisk.h"
#include "platform/system/Interrupt.h"
#include "scaninfo/TreeInfoFile.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <thread>
#include <utility>

namespace thntfs {

namespace {

/// Whoever has started this process has had the disk opened already.
class HeirOfDisk : public EngineHost {
public:
    explicit HeirOfDisk(LentDisk disk)
        : disk_(std::move(disk)) {}

    DiskAnswer AskForDisk(const std::string& /*devicePath*/, DiskUse /*use*/) override {
        if (!disk_.Disk.IsOpen()) {
            return {};
        }
        return {DuplicateOf(disk_.Disk.Get()), kErrorNone, {}, DuplicateOf(disk_.Turns.Get())};
    }

private:
    LentDisk disk_;
};

// Nothing is sent: the end of standard input is the end of whoever has started this.
void WatchForEnd() {
    std::thread([] {
        while (std::getchar() != EOF) {
        }
        (void)std::raise(SIGTERM);
    }).detach();
}

std::string MountScan(const std::string& file, const std::string& folder) {
    WorkFolder work;
    const std::string medium = ProbeScanInfo(file).Medium;
    const WorkPlace place = MakeWorkFolder(work, medium);
    if (place.Code != kErrorNone) {
        return place.Told;
    }
    Engine.CatalogueFolder = work.Path();
    const ScanInfoResult loaded = LoadTreeInfo(file);
    if (!loaded.Done) {
        return "What was scanned can't be opened for a second time: " +
               (loaded.Code == kErrorNone ? loaded.Text : SystemErrorText(loaded.Code));
    }
    SetUnlessInterrupted(Engine.ScanRunFlag);
    std::string problem =
        MountCatalogue({.Folder = folder, .Source = medium, .Loaded = true, .OwnFolder = true}, [] {
            (void)std::fputs(kMountedLine, stdout);
            (void)std::fflush(stdout);
        });
    CloseCatalogue();
    ResetEngineState();
    return problem;
}

} // namespace

bool IsMountCall(int argc, char** argv) {
    return (argc == 4 || argc == 5) && std::string_view(argv[1]) == kMountWord;
}

void RunMountCall(int argc, char** argv) {
    HeirOfDisk host(argc == 5 ? LentDiskOf(argv[4]) : LentDisk{});
    SetHost(&host);
    OnInterrupt(Engine.ScanRunFlag);
    WatchForEnd();
    const std::string problem = MountScan(argv[2], argv[3]);
    (void)std::fputs(problem.c_str(), stderr);
    std::_Exit(problem.empty() ? 0 : 1); // the watching thread is still there
}

} // namespace thntfs
