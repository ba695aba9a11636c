#include "mount/posix/MountWatch.h"

#include <array>
#include <fcntl.h>
#include <filesystem>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ; // NOLINT: the system's

namespace thntfs {

namespace {

// A line means that all is done. The end of input without one is the end of whoever should have sent it.
constexpr const char* kWatch = "read -r line || fusermount3 -u -z -q -- \"$1\" || umount -l -- \"$1\"; "
                               "$2 -- \"$1\"";

// In a session of its own, so that what ends the program by its terminal doesn't end it too.
int StartWatch(int input, const std::string& folder, bool remove) {
    std::string shell = "sh";
    std::string option = "-c";
    std::string script = kWatch;
    std::string path = std::filesystem::absolute(folder);
    std::string last = remove ? "rmdir" : "true";
    std::array<char*, 7> words{shell.data(), option.data(), script.data(), shell.data(),
                               path.data(),  last.data(),   nullptr};
    posix_spawn_file_actions_t files{};
    posix_spawnattr_t attributes{};
    posix_spawn_file_actions_init(&files);
    posix_spawn_file_actions_adddup2(&files, input, 0);
    posix_spawn_file_actions_addopen(&files, 1, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&files, 2, "/dev/null", O_WRONLY, 0);
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSID);
    pid_t process = 0;
    const int code = ::posix_spawn(&process, "/bin/sh", &files, &attributes, words.data(), environ);
    posix_spawn_file_actions_destroy(&files);
    posix_spawnattr_destroy(&attributes);
    return code == 0 ? process : 0;
}

} // namespace

MountWatch::MountWatch(const std::string& folder, bool remove) {
    std::array<int, 2> pipe{};
    if (::pipe2(pipe.data(), O_CLOEXEC) == 0) {
        process_ = StartWatch(pipe[0], folder, remove);
        ::close(pipe[0]);
        end_ = pipe[1];
    }
}

MountWatch::~MountWatch() { End(); }

void MountWatch::Dismiss() {
    [[maybe_unused]] const auto written = ::write(end_, "\n", 1);
    End();
}

void MountWatch::End() {
    if (end_ >= 0) {
        ::close(end_);
        end_ = -1;
    }
    if (process_ != 0) {
        ::waitpid(process_, nullptr, 0);
        process_ = 0;
    }
}

} // namespace thntfs
