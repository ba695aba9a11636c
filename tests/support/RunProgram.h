#pragma once

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace thntfs::test {

namespace fs = std::filesystem;

/// How a program ended and what it printed.
struct RunResult {
    int Status = -1; ///< exit status; 128 and the signal's number where a signal ended it
    std::string Out;
    std::string Err;
};

/// What is out of the ordinary with a run.
struct RunSetup {
    std::string OutPath = {}; ///< standard output goes to this file or device, not to Out
    bool BrokenPipe = false;  ///< standard output is a pipe that nobody reads
    std::map<std::string, std::string> Environment = {}; ///< variables that are set for it
    std::uint64_t MaxFileBytes = 0;                      ///< no file may grow beyond this; 0 for no limit
    bool AsNobody = false;                               ///< runs without any rights
    std::function<bool()> Interrupt = {}; ///< asked again and again; once it says yes, Ctrl+C comes
};

/// Runs a program to its end. One that takes longer than two minutes is killed, which shows in Status.
RunResult RunProgram(const std::string& program, const std::vector<std::string>& words,
                     const RunSetup& setup = {});

/// The whole of a file; empty where it can't be read.
std::string ReadWholeFile(const std::string& path);

/// A folder in the temporary folder that goes away, with all that is in it, at the end.
class ScratchFolder {
public:
    ScratchFolder();
    ~ScratchFolder();
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    [[nodiscard]] const std::string& Path() const { return path_; }
    /// Path of something in it.
    [[nodiscard]] std::string operator/(const std::string& name) const { return path_ + "/" + name; }

private:
    std::string path_;
};

/// Gives a variable of the environment another value for a while.
class EnvironmentVariable {
public:
    EnvironmentVariable(std::string name, const std::string& value)
        : name_(std::move(name)) {
        if (const char* old = std::getenv(name_.c_str())) {
            old_ = old;
        }
        ::setenv(name_.c_str(), value.c_str(), 1);
    }
    ~EnvironmentVariable() { old_ ? ::setenv(name_.c_str(), old_->c_str(), 1) : ::unsetenv(name_.c_str()); }
    EnvironmentVariable(const EnvironmentVariable&) = delete;
    EnvironmentVariable& operator=(const EnvironmentVariable&) = delete;

private:
    std::string name_;
    std::optional<std::string> old_;
};

} // namespace thntfs::test
