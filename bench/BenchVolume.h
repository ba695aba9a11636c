#pragma once

#include "BenchLayout.h"
#include "SparseImage.h"
#include "support/VolumeBuilderRecord.h"

#include <string>
#include <vector>

namespace thntfs::bench {

struct VolumeOptions {
    std::string Path;
    LayoutPlan Plan; ///< UserRecords and Folders are set from the numbers below
    std::uint32_t Records = 1'000'000;
    std::uint32_t Folders = 100'000;
    std::uint32_t Extents = 1;
    bool WideNames = false;
    std::uint64_t SizeBytes = 0; ///< of the volume, 0 for as large as needed
    std::uint64_t BigFileBytes = 0;
    std::uint64_t TextBytes = 0;
    std::uint64_t RandomBytes = 0;
    std::uint32_t Lookalikes = 0;
};

/// A file that is listed in the root folder.
struct SpecialFile {
    std::uint32_t Number = 0;
    std::u16string Name;
    test::NonResidentValue Data;
};

/// Writes an image of a disk with one partition, which holds a volume of many records, as a stream: neither
/// the table nor the data is ever in memory as a whole.
class BenchVolume {
public:
    explicit BenchVolume(const VolumeOptions& options);

    /// Writes all. A volume size that can't hold the table throws std::length_error.
    void Write();
    /// What a script needs to know of the finished image, as NAME=VALUE lines.
    [[nodiscard]] std::string Facts() const;

private:
    void PlanTable();
    void WriteBigFile();
    void WriteTextFiles();
    SpecialFile WriteTextFile(std::uint32_t index, std::uint64_t bytes);
    void WriteTable();
    void WriteFreeSpace();
    void WriteLookalikes();
    test::ByteVector MakeRecord(std::uint32_t number);
    test::ByteVector MakeFolder(std::uint32_t number, const RecordRole& role) const;
    test::ByteVector MakeFile(std::uint32_t number, const RecordRole& role);
    test::ByteVector MakeSpecial(const SpecialFile& file) const;
    [[nodiscard]] std::uint32_t NextSpecialNumber() const;
    [[nodiscard]] bool HasRoom(std::uint64_t clusters) const;

    VolumeOptions options_;
    SparseImage image_;
    test::VolumeGeometry geometry_;
    std::vector<SpecialFile> specials_;
    std::uint64_t nextCluster_ = 0;
    std::uint64_t lastCluster_ = 0; ///< first cluster that no file may take
    std::uint64_t files_ = 0;
    std::uint64_t folders_ = 0;
};

} // namespace thntfs::bench
