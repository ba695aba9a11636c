// Times the engine in its own process: a Basic Scan against plain reading of the table, and the decompressor.
// Usage: engine-bench IMAGE [Google Benchmark's options]. The image holds one volume.

#include "BenchText.h"
#include "Lznt1Compressor.h"
#include "catalogue/Catalogue.h"
#include "content/Lznt1.h"
#include "engine/EngineState.h"
#include "engine/LocateMft.h"
#include "partitions/OpenSource.h"
#include "partitions/PartitionTable.h"
#include "platform/media/Medium.h"
#include "scans/BasicScan.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <system_error>

using namespace thntfs;

namespace {

constexpr std::uint64_t kPieceBytes = 64 * 1024;

bool OpenVolume(const std::string& imagePath) {
    if (OpenImageFile(imagePath) != kErrorNone || !ReadPartitionTable()) {
        return false;
    }
    LoadVolumeParams(Engine.SourceDisk.Partitions.front());
    return LocateMft();
}

/// Gives the bytes read, 0 where a read failed.
std::uint64_t ReadTable() {
    std::vector<std::uint8_t> piece(kPieceBytes);
    std::uint64_t sum = 0;
    const std::uint64_t sectorBytes = Engine.SourceDisk.BytesPerSector;
    for (const MftExtent& run : Engine.VolumeParams.MftExtents) {
        const std::uint64_t first = SectorOfCluster(run.StartCluster) * sectorBytes;
        const std::uint64_t bytes = std::uint64_t{run.Clusters} * Engine.VolumeParams.ClusterBytes;
        for (std::uint64_t done = 0; done < bytes; done += kPieceBytes) {
            const std::size_t wanted = static_cast<std::size_t>(std::min(kPieceBytes, bytes - done));
            if (Engine.SourceDisk.MediaHandle->ReadAt(first + done, Bytes(piece).first(wanted)) !=
                kErrorNone) {
                return 0;
            }
            sum += wanted;
        }
    }
    return sum;
}

void TableRead(benchmark::State& state) {
    std::uint64_t bytes = 0;
    for (auto round : state) {
        static_cast<void>(round);
        bytes = ReadTable();
        if (bytes == 0) {
            state.SkipWithError("the table can't be read");
            break;
        }
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes));
}

bool ScanOnce(bool conditions) {
    Engine.ScanRunFlag = 1;
    const bool created = CreateCatalogue() != 0;
    const bool scanned = created && BasicScan({.Conditions = conditions}) != 0;
    CloseCatalogue();
    return scanned;
}

// The count of entries goes out as the label: a scan that finds nothing is fast and worth nothing.
void FullBasicScan(benchmark::State& state, bool conditions) {
    for (auto round : state) {
        static_cast<void>(round);
        if (!ScanOnce(conditions)) {
            state.SkipWithError("the scan failed");
            break;
        }
    }
    std::error_code none;
    const auto bytes = std::filesystem::file_size(Engine.CatalogueFolder + kEntryFileName, none);
    state.SetLabel("entries=" + std::to_string(none ? 0 : bytes / kStoredEntryBytes));
}

void Lznt1OfText(benchmark::State& state) {
    const std::vector<std::uint8_t> text = bench::MakeText(4U << 20, 7);
    const std::vector<std::uint8_t> packed = test::CompressLznt1(text);
    std::vector<std::uint8_t> unpacked(text.size());
    for (auto round : state) {
        static_cast<void>(round);
        benchmark::DoNotOptimize(DecompressLznt1(packed, unpacked));
        benchmark::ClobberMemory();
    }
    if (unpacked != text) {
        state.SkipWithError("the text came out changed");
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}

std::string MakeCatalogueFolder() {
    std::string path = (std::filesystem::temp_directory_path() / "th-ntfs-bench-XXXXXX").string();
    return ::mkdtemp(path.data()) == nullptr ? std::string() : path;
}

} // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (argc != 2 || !OpenVolume(argv[1])) {
        std::fputs("usage: engine-bench IMAGE [Google Benchmark's options]; the image holds an NTFS volume\n",
                   stderr);
        return 2;
    }
    Engine.CatalogueFolder = MakeCatalogueFolder();
    ScanOnce(true); // the first scan of a process pays for memory that the next ones find ready
    benchmark::RegisterBenchmark("TableRead", TableRead)->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("BasicScan", FullBasicScan, true)->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("UnjudgedScan", FullBasicScan, false)->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("Lznt1", Lznt1OfText)->Unit(benchmark::kMillisecond);
    benchmark::RunSpecifiedBenchmarks();
    ResetEngineState();
    std::filesystem::remove_all(Engine.CatalogueFolder);
    return 0;
}
