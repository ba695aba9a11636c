// Runs a command and appends "SECONDS PEAK_KIB" to a file: wall time and largest resident size of the
// command.

#include <chrono>
#include <cstdio>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

int main(int argc, char** argv) {
    if (argc < 3) {
        std::fputs("usage: measure RESULT_FILE COMMAND [ARGUMENT]...\n", stderr);
        return 2;
    }
    const auto start = std::chrono::steady_clock::now();
    const pid_t child = ::fork();
    if (child == 0) {
        ::execvp(argv[2], argv + 2);
        std::perror(argv[2]);
        ::_exit(127);
    }
    int status = 0;
    rusage usage{};
    if (child < 0 || ::wait4(child, &status, 0, &usage) != child) {
        std::perror("measure");
        return 1;
    }
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
    std::FILE* result = std::fopen(argv[1], "a");
    if (result == nullptr) {
        std::perror(argv[1]);
        return 1;
    }
    std::fprintf(result, "%.6f %ld\n", seconds.count(), usage.ru_maxrss);
    std::fclose(result);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 1;
}
