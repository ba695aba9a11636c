#include "platform/files/posix/FileDescriptor.h"
#include "platform/media/DiskHelper.h"
#include "platform/media/posix/DiskSocket.h"
#include "platform/system/Interrupt.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <optional>
#include <poll.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <system_error>
#include <termios.h>
#include <unistd.h>
#include <vector>

namespace thntfs {

namespace {

constexpr int kAgentMilliseconds = 5000; // for it to say that it is there

/// A program that runs until the end of the block.
class ChildProgram {
public:
    /// `handed` becomes the child's descriptor kHelperSocket. A name without a slash is looked for in PATH.
    ChildProgram(std::vector<std::string> words, int handed) {
        std::vector<char*> arguments;
        arguments.reserve(words.size() + 1);
        for (std::string& word : words) {
            arguments.push_back(word.data());
        }
        arguments.push_back(nullptr);
        posix_spawn_file_actions_t actions;
        ::posix_spawn_file_actions_init(&actions);
        ::posix_spawn_file_actions_adddup2(&actions, handed, kHelperSocket);
        if (::posix_spawnp(&process_, arguments[0], &actions, nullptr, arguments.data(), environ) != 0) {
            process_ = 0;
        }
        ::posix_spawn_file_actions_destroy(&actions);
    }
    ~ChildProgram() {
        if (!Runs()) {
            return;
        }
        ::kill(process_, SIGTERM);
        while (::waitpid(process_, nullptr, 0) < 0 && errno == EINTR) {
        }
    }
    ChildProgram(const ChildProgram&) = delete;
    ChildProgram& operator=(const ChildProgram&) = delete;

    [[nodiscard]] bool Runs() const { return process_ > 0; }
    [[nodiscard]] std::string Number() const { return std::to_string(process_); }

private:
    pid_t process_ = 0;
};

/// Empty where there is none.
std::string HelperPath() {
    std::error_code failure;
    const std::filesystem::path folder =
        std::filesystem::read_symlink("/proc/self/exe", failure).parent_path();
    for (const char* place : {".", THNTFS_HELPER_FOLDER}) {
        const std::filesystem::path path = folder / place / kDiskHelper;
        if (!failure && ::access(path.c_str(), X_OK) == 0) {
            return path.lexically_normal().string();
        }
    }
    return {};
}

/// Waits for one of two descriptors, -1 for none, and says whether the first has something.
bool AwaitFirst(int first, int second, int milliseconds) {
    std::array<pollfd, 2> waiting = {{{first, POLLIN, 0}, {second, POLLIN, 0}}};
    int found = 0;
    do {
        found = ::poll(waiting.data(), waiting.size(), milliseconds);
    } while (found < 0 && errno == EINTR && !WasInterrupted());
    return found > 0 && waiting[0].revents != 0;
}

/// Asks for passwords in the terminal, where the user is, for one process. As a mere fallback for the
/// session's own agent it would be passed over where there is no session.
class TerminalAgent {
public:
    explicit TerminalAgent(const ChildProgram& asking) {
        std::array<int, 2> ends{};
        if (::tcgetattr(STDIN_FILENO, &before_) != 0 || ::pipe2(ends.data(), O_CLOEXEC) != 0) {
            return;
        }
        const FileDescriptor ready(ends[0]);
        FileDescriptor tell(ends[1]);
        agent_.emplace(std::vector<std::string>{"pkttyagent", "--process", asking.Number(), "--notify-fd",
                                                std::to_string(kHelperSocket)},
                       tell.Get());
        tell.Close();
        AwaitFirst(ready.Get(), InterruptDescriptor(), kAgentMilliseconds); // it closes its end
    }

    ~TerminalAgent() {
        if (agent_) { // one that was interrupted leaves the terminal without an echo
            agent_.reset();
            ::tcsetattr(STDIN_FILENO, TCSANOW, &before_);
            EndPrompt();
        }
    }
    TerminalAgent(const TerminalAgent&) = delete;
    TerminalAgent& operator=(const TerminalAgent&) = delete;

private:
    static void EndPrompt() {
        if (WasInterrupted() && ::isatty(STDERR_FILENO) != 0) {
            [[maybe_unused]] const auto written = ::write(STDERR_FILENO, "\n", 1);
        }
    }

    termios before_{};
    std::optional<ChildProgram> agent_;
};

DiskAnswer AnswerOf(int socket) {
    DiskAnswer answer;
    const bool asked = ::send(socket, "?", 1, MSG_NOSIGNAL) == 1;
    const bool told = asked && AwaitFirst(socket, InterruptDescriptor(), -1);
    if (WasInterrupted()) {
        return {{}, kErrorCancelled};
    }
    return told && ReceiveAnswer(socket, answer) ? std::move(answer) : DiskAnswer{};
}

} // namespace

DiskAnswer AskDiskHelper(const std::string& devicePath, DiskUse use) {
    const std::string helper = HelperPath();
    std::array<int, 2> ends{};
    if (helper.empty() || ::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()) != 0) {
        return {};
    }
    const FileDescriptor ours(ends[0]);
    FileDescriptor theirs(ends[1]);
    const ChildProgram asking({helper, WordOf(use), devicePath}, theirs.Get());
    theirs.Close();
    const TerminalAgent agent(asking);
    return asking.Runs() ? AnswerOf(ours.Get()) : DiskAnswer{};
}

} // namespace thntfs
