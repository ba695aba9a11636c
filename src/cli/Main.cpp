#include "cli/Commands.h"
#include "cli/ExitCode.h"
#include "cli/LogFile.h"
#include "cli/Output.h"

#include <exception>

namespace {

int RunCommand(const thntfs::Options& options) {
    switch (options.Chosen) {
    case thntfs::Command::Partitions:
        return thntfs::RunPartitions(options);
    case thntfs::Command::Scan:
        return thntfs::RunScan(options);
    case thntfs::Command::List:
        return thntfs::RunList(options);
    case thntfs::Command::Find:
        return thntfs::RunFind(options);
    case thntfs::Command::Cat:
        return thntfs::RunCat(options);
    case thntfs::Command::Save:
        return thntfs::RunSave(options);
    case thntfs::Command::Disks:
        return thntfs::RunDisks(options);
    case thntfs::Command::Image:
        return thntfs::RunImage(options);
    case thntfs::Command::Clone:
        return thntfs::RunClone(options);
    case thntfs::Command::Mount:
        return thntfs::RunMount(options);
    case thntfs::Command::None:
        break;
    }
    return thntfs::kExitWrongWords;
}

// The log gets its end whatever becomes of the run.
int RunLogged(const thntfs::Options& options) {
    int code = thntfs::RunLog().Open(options);
    if (code != thntfs::kExitDone) {
        return code;
    }
    try {
        code = RunCommand(options);
    } catch (const std::exception& error) {
        thntfs::PrintMessage(std::string("Error: ") + error.what());
        code = thntfs::kExitFailed;
    }
    return thntfs::RunLog().Finish(code);
}

} // namespace

int main(int argc, char** argv) {
    try {
        int exitCode = thntfs::kExitDone;
        const auto options = thntfs::ReadOptions(argc, argv, exitCode);
        return options ? RunLogged(*options) : exitCode;
    } catch (const std::exception& error) {
        thntfs::PrintMessage(std::string("Error: ") + error.what());
        return thntfs::kExitFailed;
    }
}
