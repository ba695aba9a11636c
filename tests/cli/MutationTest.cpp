#include "CliHelpers.h"
#include "cli/Commands.h"

#include <array>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <random>
#include <sys/resource.h>
#include <unistd.h>

namespace thntfs::test {

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

constexpr std::uint64_t kMaxFileBytes = 2U << 20U; ///< what claims more is written to here and taken back
constexpr unsigned kMaxSecondsOfOneRound = 60;
constexpr std::size_t kRecordsOfOneRound = 80;
constexpr std::size_t kRounds = 160; ///< of all images together: over 12,000 broken records
constexpr auto kEnoughTime = std::chrono::seconds(45);

/// While it lives, what the program prints goes nowhere, no file grows beyond a bound, and a round that hangs
/// ends the test program.
class Muzzle {
public:
    Muzzle() {
        std::fflush(nullptr);
        const int nowhere = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
        for (std::size_t i = 0; i < saved_.size(); ++i) {
            saved_[i] = ::dup(static_cast<int>(i) + 1);
            ::dup2(nowhere, static_cast<int>(i) + 1);
        }
        ::close(nowhere);
        ::signal(SIGXFSZ, SIG_IGN);
        ::getrlimit(RLIMIT_FSIZE, &limit_);
        const rlimit small{kMaxFileBytes, limit_.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &small);
        ::alarm(kMaxSecondsOfOneRound);
    }
    ~Muzzle() {
        ::alarm(0);
        ::setrlimit(RLIMIT_FSIZE, &limit_);
        for (std::size_t i = 0; i < saved_.size(); ++i) {
            ::dup2(saved_[i], static_cast<int>(i) + 1);
            ::close(saved_[i]);
        }
    }
    Muzzle(const Muzzle&) = delete;
    Muzzle& operator=(const Muzzle&) = delete;

private:
    std::array<int, 2> saved_{};
    rlimit limit_{};
};

/// A copy of a real image whose file records can be broken and mended.
class BreakableImage {
public:
    BreakableImage(const std::string& source, const std::string& copy, std::uint32_t recordBytes)
        : path_(copy)
        , recordBytes_(recordBytes) {
        fs::copy_file(source, copy);
        file_ = ::open(copy.c_str(), O_RDWR | O_CLOEXEC);
        FindRecords(ReadWholeFile(source));
    }
    ~BreakableImage() { ::close(file_); }
    BreakableImage(const BreakableImage&) = delete;
    BreakableImage& operator=(const BreakableImage&) = delete;

    void Break(std::mt19937_64& random, std::size_t records) {
        for (std::size_t i = 0; i < records; ++i) {
            const std::uint64_t place = places_[random() % places_.size()];
            ByteVector record(recordBytes_);
            static_cast<void>(::pread(file_, record.data(), record.size(), static_cast<off_t>(place)));
            before_.emplace_back(place, record);
            Mangle(record, random);
            static_cast<void>(::pwrite(file_, record.data(), record.size(), static_cast<off_t>(place)));
        }
    }

    void Mend() {
        for (auto saved = before_.rbegin(); saved != before_.rend(); ++saved) {
            static_cast<void>(::pwrite(file_, saved->second.data(), saved->second.size(),
                                       static_cast<off_t>(saved->first)));
        }
        before_.clear();
    }

    [[nodiscard]] std::size_t RecordCount() const { return places_.size(); }

private:
    void FindRecords(const std::string& bytes) {
        for (std::size_t at = bytes.find("FILE"); at != std::string::npos; at = bytes.find("FILE", at + 4)) {
            if (at % 512 == 0 && at + recordBytes_ <= bytes.size()) {
                places_.push_back(at);
            }
        }
    }

    // Most changes fall on the first bytes, where headers, names and run lists stand. The words that guard
    // the sector ends are left alone, or hardly a record would pass its check.
    static void Mangle(ByteVector& record, std::mt19937_64& random) {
        static constexpr std::array<std::uint8_t, 8> kExtremes = {0x00, 0x01, 0x7F, 0x80,
                                                                  0xFE, 0xFF, 0x10, 0x44};
        const std::size_t changes = 1 + random() % 6;
        for (std::size_t i = 0; i < changes; ++i) {
            const std::size_t reach = random() % 4 == 0 ? record.size() : 640;
            const std::size_t at = 16 + random() % (reach - 24);
            const std::size_t width = std::size_t{1} << random() % 4;
            const bool extreme = random() % 2 == 0;
            const std::uint8_t value = kExtremes[random() % kExtremes.size()];
            for (std::size_t k = at; k < at + width; ++k) {
                const bool guarded = k % 512 >= 510 || (k >= 48 && k < 54);
                record[k] = guarded ? record[k] : extreme ? value : static_cast<std::uint8_t>(random());
            }
        }
    }

    std::string path_;
    std::uint32_t recordBytes_;
    int file_ = -1;
    std::vector<std::uint64_t> places_;
    std::vector<std::pair<std::uint64_t, ByteVector>> before_;
};

struct Source {
    const char* Name;
    unsigned Partition;
    std::uint32_t RecordBytes;
    std::size_t SaveEvery; ///< rounds from save to save: many small files take their time
};

// Scans, lists, reads one file and saves all where `target` is given, as the commands do it.
void RunCommands(const std::string& image, unsigned partition, const std::string& target,
                 std::mt19937_64& random) {
    Options options;
    options.Medium = image;
    options.Partition = partition;
    options.Files = true;
    RunScan(options);
    options.Recursive = true;
    options.Json = random() % 2 == 0;
    RunList(options);
    if (!target.empty()) {
        options.Target = target;
        RunSave(options);
    }
    options.Record = static_cast<std::uint32_t>(24 + random() % 100);
    RunCat(options);
}

// One level above the target there is nothing but the target.
bool NothingOutside(const std::string& ground) {
    std::size_t count = 0;
    for (const auto& entry : fs::directory_iterator(ground)) {
        ++count;
        if (entry.path().filename() != "target") {
            return false;
        }
    }
    return count <= 1;
}

TEST(MutationTest, BrokenRecordsOfRealVolumesDoNoHarm) {
    const std::vector<Source> sources = {{"names", 1, 1024, 4},
                                         {"mftfrag", 1, 1024, 16},
                                         {"compressed", 2, 1024, 1},
                                         {"record4k", 1, 4096, 1},
                                         {"logical", 3, 1024, 1}};
    const ScratchFolder scratch;
    std::mt19937_64 random(20240229);
    std::size_t rounds = 0;
    const auto start = Clock::now();
    for (const Source& source : sources) {
        const std::string copy = scratch / source.Name;
        BreakableImage image(PackedPath(source.Name), copy, source.RecordBytes);
        ASSERT_GT(image.RecordCount(), 50U);
        const std::string ground = scratch / (std::string("ground ") + source.Name);
        for (std::size_t i = 0; i < kRounds / sources.size() && Clock::now() - start < kEnoughTime;
             ++i, ++rounds) {
            fs::create_directories(ground);
            image.Break(random, kRecordsOfOneRound);
            {
                const Muzzle muzzle;
                RunCommands(copy, source.Partition, i % source.SaveEvery == 0 ? ground + "/target" : "",
                            random);
            }
            image.Mend();
            ASSERT_TRUE(NothingOutside(ground)) << source.Name << ", round " << i;
            fs::remove_all(ground);
        }
        fs::remove(copy);
    }
    EXPECT_GE(rounds, 20U) << "rounds of " << kRecordsOfOneRound << " broken records were too slow";
    std::printf("%zu rounds, %zu broken records\n", rounds, rounds * kRecordsOfOneRound);
    RecordProperty("broken_records", static_cast<int>(rounds * kRecordsOfOneRound));
}

} // namespace

} // namespace thntfs::test
