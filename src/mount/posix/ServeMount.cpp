#include "mount/ServeMount.h"

#include "mount/Mount.h"
#include "mount/posix/FuseAnswers.h"
#include "mount/posix/MountWatch.h"
#include "platform/files/posix/FileDescriptor.h"
#include "platform/system/Interrupt.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fuse3/fuse_log.h>
#include <memory>
#include <string_view>
#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <system_error>
#include <thread>
#include <unistd.h>
#include <vector>

namespace thntfs {

namespace {

namespace fs = std::filesystem;

constexpr unsigned kThreads =
    12; // more than reads that may wait for their turn, so that one is left for the tree

constexpr std::chrono::microseconds kLookAgain{100};

std::string libraryLine; ///< what the library said last

void KeepLine(fuse_log_level /*level*/, const char* format, va_list words) {
    std::array<char, 512> line{};
    (void)std::vsnprintf(line.data(), line.size(), format, words);
    libraryLine = line.data();
    while (libraryLine.ends_with('\n')) {
        libraryLine.pop_back();
    }
}

// In the library's options a comma begins the next one.
std::string OptionValue(std::string_view text) {
    std::string escaped;
    for (const char letter : text) {
        escaped += letter == ',' || letter == '\\' ? "\\" : "";
        escaped += letter;
    }
    return escaped;
}

std::string OptionsFor(const MountPlace& place) {
    return "ro,nosuid,nodev,noexec,default_permissions,subtype=th-ntfs,fsname=" + OptionValue(place.Source);
}

struct EndSession {
    void operator()(fuse_session* session) const { fuse_session_destroy(session); }
};
using Session = std::unique_ptr<fuse_session, EndSession>;

Session NewSession(const std::string& options, FuseTree& tree) {
    std::string program = "th-ntfs";
    std::string word = "-o" + options;
    std::array<char*, 3> words{program.data(), word.data(), nullptr};
    fuse_args arguments = FUSE_ARGS_INIT(2, words.data());
    Session session(fuse_session_new(&arguments, &FuseAnswers(), sizeof(fuse_lowlevel_ops), &tree));
    fuse_opt_free_args(&arguments);
    return session;
}

/// A mount, and the threads that answer. A question wakes one of those that wait; none wakes another, which
/// would cost more than most answers do.
class Server {
public:
    explicit Server(fuse_session* session)
        : session_(session) {
        const int questions = fuse_session_fd(session_);
        ::fcntl(questions, F_SETFL, ::fcntl(questions, F_GETFL) | O_NONBLOCK);
        Await(EPOLL_CTL_ADD, questions, EPOLLIN | EPOLLONESHOT);
        Await(EPOLL_CTL_ADD, InterruptDescriptor(), EPOLLIN);
        Await(EPOLL_CTL_ADD, end_.Get(), EPOLLIN);
    }

    void Run() {
        std::vector<std::jthread> threads;
        for (unsigned i = 0; i < kThreads; ++i) {
            threads.emplace_back([this] { Work(); });
        }
    }

private:
    void Await(int how, int descriptor, std::uint32_t events) const {
        epoll_event event{.events = events, .data = {}};
        ::epoll_ctl(waits_.Get(), how, descriptor, &event);
    }

    void Work() {
        fuse_buf question{};
        while (Take(question)) {
            fuse_session_process_buf(session_, &question);
        }
        std::free(question.mem); // NOLINT: the library allocates it so
        constexpr std::uint64_t kEnded = 1;
        [[maybe_unused]] const auto written = ::write(end_.Get(), &kEnded, sizeof kEnded);
    }

    // A program that walks through folders asks again within microseconds of an answer. To sleep and be woken
    // costs more than to look again for so long; who else waits for the processor gets it.
    int Receive(fuse_buf& question) {
        const auto end = std::chrono::steady_clock::now() + kLookAgain;
        int got = fuse_session_receive_buf(session_, &question);
        while (got == -EAGAIN && std::chrono::steady_clock::now() < end) {
            std::this_thread::yield();
            got = fuse_session_receive_buf(session_, &question);
        }
        return got;
    }

    // One thread is told of questions at a time. Only when it has taken one is the next told, if there are
    // more.
    bool Take(fuse_buf& question) {
        bool told = false;
        while (fuse_session_exited(session_) == 0 && !WasInterrupted()) {
            const int got = Receive(question);
            if (told) {
                Await(EPOLL_CTL_MOD, fuse_session_fd(session_), EPOLLIN | EPOLLONESHOT);
            }
            if (got > 0) {
                return true;
            }
            told = got == -EAGAIN;
            if (told) {
                epoll_event event{};
                ::epoll_wait(waits_.Get(), &event, 1, -1);
            } else if (got != -EINTR) {
                fuse_session_exit(session_);
            }
        }
        return false;
    }

    fuse_session* session_;
    FileDescriptor waits_{::epoll_create1(EPOLL_CLOEXEC)};
    FileDescriptor end_{::eventfd(0, EFD_CLOEXEC)}; ///< readable when one thread has ended, so that all do
};

} // namespace

bool CanMount() { return true; }

std::string MountObstacle(const std::string& folder) {
    std::error_code error;
    if (!fs::is_directory(folder, error)) {
        return folder + " is no folder. Give an empty one.";
    }
    if (!fs::is_empty(folder, error)) {
        return folder +
               (error ? " can't be looked into: " + error.message() : " is not empty. Give an empty folder.");
    }
    return {};
}

std::string ServeMount(const MountPlace& place, const MountIndex& index, MountedVolume& volume,
                       const std::function<void()>& begun) {
    FuseTree tree{index, volume, ::getuid(), ::getgid()};
    fuse_set_log_func(KeepLine);
    const Session session = NewSession(OptionsFor(place), tree);
    if (session != nullptr && fuse_session_mount(session.get(), place.Folder.c_str()) == 0) {
        MountWatch watch(place.Folder, place.OwnFolder);
        begun();
        Server(session.get()).Run();
        fuse_session_unmount(session.get());
        watch.Dismiss();
        return {};
    }
    return place.Folder + " can't be mounted at: " +
           (libraryLine.empty() ? "the system has no file systems of programs (fuse3)" : libraryLine);
}

} // namespace thntfs
