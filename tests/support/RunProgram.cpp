#include "support/RunProgram.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <fstream>
#include <grp.h>
#include <sstream>
#include <stdexcept>
#include <sys/resource.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace thntfs::test {

namespace {

using Clock = std::chrono::steady_clock;

constexpr auto kLimit = std::chrono::seconds(120);
constexpr auto kPoll = std::chrono::milliseconds(2);
constexpr unsigned kNobody = 65534;

int OpenOutput(const RunSetup& setup, const std::string& plain) {
    if (setup.BrokenPipe) {
        std::array<int, 2> ends{};
        if (::pipe(ends.data()) == 0) {
            ::close(ends[0]);
            return ends[1];
        }
    }
    const std::string& path = setup.OutPath.empty() ? plain : setup.OutPath;
    return ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
}

// Runs in the child; what fails here shows as status 127.
void Prepare(const RunSetup& setup, int out, int err) {
    ::dup2(::open("/dev/null", O_RDONLY | O_CLOEXEC), STDIN_FILENO);
    ::dup2(out, STDOUT_FILENO);
    ::dup2(err, STDERR_FILENO);
    ::signal(SIGINT, SIG_DFL);
    ::signal(SIGXFSZ, SIG_IGN);
    for (const auto& [name, value] : setup.Environment) {
        ::setenv(name.c_str(), value.c_str(), 1);
    }
    if (setup.MaxFileBytes != 0) {
        const rlimit limit{setup.MaxFileBytes, setup.MaxFileBytes};
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    if (setup.AsNobody &&
        (::setgroups(0, nullptr) != 0 || ::setgid(kNobody) != 0 || ::setuid(kNobody) != 0)) {
        ::_exit(127);
    }
}

pid_t Start(const std::string& program, const std::vector<std::string>& words, const RunSetup& setup, int out,
            int err) {
    std::vector<char*> arguments{const_cast<char*>(program.c_str())};
    for (const std::string& word : words) {
        arguments.push_back(const_cast<char*>(word.c_str()));
    }
    arguments.push_back(nullptr);
    const pid_t child = ::fork();
    if (child == 0) {
        Prepare(setup, out, err);
        ::execv(program.c_str(), arguments.data());
        ::_exit(127);
    }
    return child;
}

int Await(pid_t child, const RunSetup& setup) {
    const auto start = Clock::now();
    bool interrupted = !setup.Interrupt;
    int raw = 0;
    while (::waitpid(child, &raw, WNOHANG) == 0) {
        if (!interrupted && setup.Interrupt()) {
            interrupted = true;
            ::kill(child, SIGINT);
        }
        if (Clock::now() - start > kLimit) {
            ::kill(child, SIGKILL);
        }
        std::this_thread::sleep_for(kPoll);
    }
    return WIFEXITED(raw) ? WEXITSTATUS(raw) : 128 + WTERMSIG(raw);
}

} // namespace

RunResult RunProgram(const std::string& program, const std::vector<std::string>& words,
                     const RunSetup& setup) {
    const ScratchFolder scratch;
    const int out = OpenOutput(setup, scratch / "out");
    const int err = ::open((scratch / "err").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    const pid_t child = Start(program, words, setup, out, err);
    ::close(out);
    ::close(err);
    if (child < 0) {
        throw std::runtime_error("cannot start " + program);
    }
    RunResult result;
    result.Status = Await(child, setup);
    result.Out = ReadWholeFile(scratch / "out");
    result.Err = ReadWholeFile(scratch / "err");
    return result;
}

std::string ReadWholeFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return std::move(text).str();
}

ScratchFolder::ScratchFolder() {
    std::string path = (fs::temp_directory_path() / "th-test-XXXXXX").string();
    if (::mkdtemp(path.data()) == nullptr) {
        throw std::runtime_error("cannot make a folder like " + path);
    }
    path_ = path;
}

ScratchFolder::~ScratchFolder() {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
}

} // namespace thntfs::test
