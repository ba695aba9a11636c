#include "VolumeManifest.h"

#include <algorithm>
#include <functional>
#include <gtest/gtest.h>
#include <set>

namespace thntfs::test {

namespace {

using Disk = std::string; // bytes of an image

constexpr std::size_t kSector = 512;
constexpr std::uint64_t kStart = 2048; // of the volume on the image "basic"
constexpr std::uint64_t kBackup = kStart + 49151;
constexpr std::uint64_t kClusterSectors = 8;

void Wipe(Disk& disk, std::uint64_t sector, std::uint64_t count) {
    std::fill_n(disk.begin() + static_cast<std::ptrdiff_t>(kSector * sector), kSector * count, '\0');
}

void WipeTable(Disk& disk) { Wipe(disk, 0, 1); }

void WipeBoot(Disk& disk) {
    WipeTable(disk);
    Wipe(disk, kStart, 1);
}

void WipeBootAndBackup(Disk& disk) {
    WipeBoot(disk);
    Wipe(disk, kBackup, 1);
}

// The whole table goes with it. Of the mirror's two records one doesn't bear the time of the formatting, so
// they don't make a pair.
void OverwriteFirstMegabyte(Disk& disk) {
    WipeTable(disk);
    std::fill_n(disk.begin() + static_cast<std::ptrdiff_t>(kSector * kStart), 1U << 20U, '\xE5');
}

void MoveToOddSector(Disk& disk) {
    WipeTable(disk);
    disk = disk.substr(0, kSector) + disk.substr(kSector * (kStart - 1234 + 1));
}

void WipeFirstTableCluster(Disk& disk) { Wipe(disk, kStart + 4 * kClusterSectors, kClusterSectors); }

// Another volume, of smaller clusters, was made over this one: its boot sector and its first records stand
// over the old ones, and the rest of the old records lie where the new table goes on.
void FormatAgain(Disk& disk) {
    WipeTable(disk);
    const Disk other = ReadWholeFile(ImagePath("names"));
    constexpr std::size_t kWritten = (16 + 27) * 1024;
    std::copy_n(other.begin() + 63 * kSector, kWritten,
                disk.begin() + static_cast<std::ptrdiff_t>(kSector * kStart));
}

struct WreckCase {
    const char* Name;
    std::function<void(Disk&)> Wreck;
    Lines Quick; ///< "start e flags" of each candidate
    Lines Thorough;
    Lines Words;           ///< behind `save`, for the way back
    std::size_t Recovered; ///< files of the manifest that come back with their bytes
};

void PrintTo(const WreckCase& wreck, std::ostream* out) { *out << wreck.Name; }

class LostVolumeTest : public testing::TestWithParam<WreckCase> {
protected:
    LostVolumeTest() {
        Disk disk = ReadWholeFile(ImagePath("basic"));
        GetParam().Wreck(disk);
        std::ofstream(scratch_ / "disk.img", std::ios::binary) << disk;
    }

    Lines Candidates(const std::string& method) const {
        const RunResult run =
            RunProgram(CliPath(), {"partitions", scratch_ / "disk.img", "--search", method, "--json"});
        Lines lines;
        for (const json& candidate : json::parse(run.Out)) {
            lines.push_back(std::to_string(candidate["startSector"].get<std::uint64_t>()) + " e" +
                            std::to_string(candidate["evidence"].get<unsigned>()));
        }
        return lines;
    }

    std::set<std::string> SavedHashes() const {
        Lines words = {"save", scratch_ / "disk.img", "--to", scratch_ / "out"};
        words.insert(words.end(), GetParam().Words.begin(), GetParam().Words.end());
        const RunResult run = RunProgram(CliPath(), words);
        // Records of two volumes are mixed, or the table is overwritten.
        const bool inPart = run.Out.find("damaged") != std::string::npos ||
                            run.Err.find("records could not be read") != std::string::npos;
        EXPECT_EQ(run.Status, inPart ? 3 : 0) << run.Err;
        std::set<std::string> hashes;
        for (const auto& [path, hash] : HashesBelow(scratch_ / "out")) {
            hashes.insert(hash);
        }
        return hashes;
    }

    ScratchFolder scratch_;
};

std::size_t CountBack(const std::set<std::string>& hashes) {
    const json rows = ManifestOf("basic")["volumes"][0];
    return static_cast<std::size_t>(std::count_if(rows.begin(), rows.end(), [&](const json& row) {
        return row["size"] > 0 && hashes.contains(row["sha256"]);
    }));
}

TEST_P(LostVolumeTest, SearchesFindItAndItsFilesComeBack) {
    EXPECT_EQ(Candidates("quick"), GetParam().Quick);
    EXPECT_EQ(Candidates("thorough"), GetParam().Thorough);
    EXPECT_EQ(CountBack(SavedHashes()), GetParam().Recovered) << "of 56";
}

const Lines kThorough = {"--search", "thorough"};
const Lines kOlderVolume = {"--search", "thorough", "--partition", "2"};
const Lines kNewerVolume = {"--search", "thorough", "--partition", "1", "--turbo"};

INSTANTIATE_TEST_SUITE_P(
    Wreckage, LostVolumeTest,
    testing::Values(
        WreckCase{"NoPartitionTable", WipeTable, {"2048 e8"}, {"2048 e3"}, kThorough, 54},
        WreckCase{"NoBootSector", WipeBoot, {"2048 e8"}, {"2048 e2"}, kThorough, 54},
        WreckCase{"NoBootSectorNoBackup", WipeBootAndBackup, {}, {"2048 e2"}, kThorough, 54},
        WreckCase{"FirstMegabyteOverwritten", OverwriteFirstMegabyte, {"2048 e8"}, {"2048 e4"}, kThorough, 2},
        WreckCase{"OddSector", MoveToOddSector, {"1234 e8"}, {"1234 e3"}, kThorough, 54},
        WreckCase{"NoFirstTableCluster", WipeFirstTableCluster, {"2048 e8"}, {"2048 e5"}, {}, 54},
        WreckCase{"FormattedAgain", FormatAgain, {"2048 e8"}, {"2048 e1", "2048 e4"}, kOlderVolume, 54},
        WreckCase{"FormattedAgainTurbo", FormatAgain, {"2048 e8"}, {"2048 e1", "2048 e4"}, kNewerVolume, 48}),
    [](const auto& wreck) { return std::string(wreck.param.Name); });

} // namespace

} // namespace thntfs::test
