#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

namespace thntfs {

/// A piece of a deleted file's data, in one of the records that its attribute list led to.
struct DataPiece {
    std::uint64_t BaseReference = 0; ///< of the file's own record
    std::uint64_t FirstVcn = 0;
    std::uint64_t EndVcn = 0;
    std::uint64_t NeededVcns = 0; ///< of the whole stream, as its first piece tells
    std::uint64_t Sectors = 0;
    std::uint32_t FirstRun = 0; ///< of its runs, in the order in which they were met
    std::uint32_t Runs = 0;
    bool Named = false; ///< of the stream with the compressed data
};

/// What the pieces of a file add up to.
struct JoinedPieces {
    std::vector<DataPiece> Pieces;
    bool Whole = false; ///< none is missing, none comes twice
};

/// Deleted files with an attribute list, whose pieces a scan meets before and after them, in any order.
class SplitFiles {
public:
    /// Takes a piece; past a bound it is left, and so its file lacks it.
    void AddPiece(const DataPiece& piece);
    /// Takes a file by the reference that its record has now that it is deleted.
    void AddFile(std::uint32_t file, std::uint64_t reference);

    /// Hands over each file with its pieces. Once.
    void Join(const std::function<void(std::uint32_t file, const JoinedPieces& joined)>& visit);

private:
    struct SplitFile {
        std::uint32_t Place; ///< as AddFile was given it
        std::uint64_t Reference;
    };

    [[nodiscard]] JoinedPieces PiecesOf(std::uint64_t reference);

    std::vector<DataPiece> pieces_;
    std::vector<SplitFile> files_;
    std::size_t looks_ = 0; ///< at pieces: records that share them could hold a scan up for hours
};

} // namespace thntfs
