#include "support/FaultyMount.h"

#include "support/BuildPaths.h"

#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <sys/mount.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace thntfs::test {

namespace {

constexpr auto kPoll = std::chrono::milliseconds(5);
constexpr int kPolls = 2000;

std::vector<std::string> WordsOf(const std::string& image, const std::string& folder,
                                 const FaultyMount::Setup& setup) {
    std::vector<std::string> words = {FaultyFusePath(), image, folder};
    for (const auto& [offset, size] : setup.BadBytes) {
        words.insert(words.end(), {"--bad", std::to_string(offset) + ":" + std::to_string(size)});
    }
    if (setup.SlowMicroseconds != 0) {
        words.insert(words.end(), {"--slow", std::to_string(setup.SlowMicroseconds)});
    }
    if (!setup.LogPath.empty()) {
        words.insert(words.end(), {"--log", setup.LogPath});
    }
    return words;
}

pid_t StartProgram(std::vector<std::string> words) {
    std::vector<char*> pointers;
    for (std::string& word : words) {
        pointers.push_back(word.data());
    }
    pointers.push_back(nullptr);
    const pid_t child = ::fork();
    if (child == 0) {
        const int null = ::open("/dev/null", O_RDWR | O_CLOEXEC);
        for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
            ::dup2(null, stream);
        }
        ::execv(pointers[0], pointers.data());
        ::_exit(127);
    }
    return child;
}

} // namespace

std::unique_ptr<FaultyMount> FaultyMount::Start(const std::string& image, const std::string& folder,
                                                const Setup& setup) {
    if (::access(FaultyFusePath().c_str(), X_OK) != 0 || ::access("/dev/fuse", R_OK | W_OK) != 0) {
        return nullptr;
    }
    const pid_t process = StartProgram(WordsOf(image, folder, setup));
    if (process < 0) {
        return nullptr;
    }
    auto mount = std::make_unique<FaultyMount>(folder, process);
    for (int i = 0; i < kPolls; ++i) {
        std::error_code ignored;
        if (std::filesystem::exists(mount->Path(), ignored)) {
            return mount;
        }
        if (::waitpid(process, nullptr, WNOHANG) == process) {
            mount->process_ = -1;
            return nullptr;
        }
        std::this_thread::sleep_for(kPoll);
    }
    return nullptr;
}

FaultyMount::FaultyMount(std::string folder, int process)
    : folder_(std::move(folder))
    , process_(process) {}

// An ordinary user has no right to umount, so the program itself is told to end, which unmounts as well.
FaultyMount::~FaultyMount() {
    if (process_ < 0) {
        return;
    }
    if (::umount2(folder_.c_str(), MNT_DETACH) != 0) {
        ::kill(process_, SIGTERM);
    }
    for (int i = 0; i < kPolls; ++i) {
        if (::waitpid(process_, nullptr, WNOHANG) == process_) {
            return;
        }
        std::this_thread::sleep_for(kPoll);
    }
    ::kill(process_, SIGKILL);
    ::waitpid(process_, nullptr, 0);
}

} // namespace thntfs::test
