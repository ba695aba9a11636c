// Reads a range of a file in 64 KiB pieces and prints the time it took in seconds.

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr std::uint64_t kPieceBytes = 64 * 1024;

bool ReadAll(int handle, std::uint64_t offset, std::uint64_t length) {
    std::vector<std::uint8_t> piece(kPieceBytes);
    while (length != 0) {
        const std::size_t wanted = static_cast<std::size_t>(std::min(length, kPieceBytes));
        if (::pread(handle, piece.data(), wanted, static_cast<off_t>(offset)) !=
            static_cast<ssize_t>(wanted)) {
            return false;
        }
        offset += wanted;
        length -= wanted;
    }
    return true;
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 4 || argc % 2 != 0) {
        std::fputs("usage: read-range FILE OFFSET LENGTH [OFFSET LENGTH]...\n", stderr);
        return 2;
    }
    const int handle = ::open(argv[1], O_RDONLY | O_CLOEXEC);
    const auto start = std::chrono::steady_clock::now();
    for (int index = 2; index < argc; index += 2) {
        if (handle < 0 || !ReadAll(handle, std::strtoull(argv[index], nullptr, 0),
                                   std::strtoull(argv[index + 1], nullptr, 0))) {
            std::perror(argv[1]);
            return 1;
        }
    }
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
    std::printf("%.6f\n", seconds.count());
    ::close(handle);
    return 0;
}
