#pragma once

#include "content/ExactStream.h"
#include "engine/SectorReader.h"

namespace thntfs {

/// A stream whose bytes lie in its record.
class ResidentStream : public ExactStream {
public:
    explicit ResidentStream(StreamLayout layout);

protected:
    void Fill(std::uint64_t offset, Bytes buffer, std::size_t wanted, MissingData& missing) override;

private:
    std::vector<std::uint8_t> value_;
};

/// A stream in clusters, as they lie.
class RunStream : public ExactStream {
public:
    explicit RunStream(StreamLayout layout);

    [[nodiscard]] std::uint64_t NextData(std::uint64_t offset) const override;
    [[nodiscard]] std::uint64_t NextHole(std::uint64_t offset) const override;
    [[nodiscard]] std::uint64_t BytesBehindEnd() const override { return Layout.BytesBehindEnd; }
    [[nodiscard]] std::uint64_t AllocatedBytes() const override {
        return Layout.Runs.AllocatedClusters() * Layout.ClusterBytes;
    }

protected:
    void Fill(std::uint64_t offset, Bytes buffer, std::size_t wanted, MissingData& missing) override;

    /// The same without a look at the initialised size.
    void FillFromRuns(std::uint64_t offset, Bytes buffer, std::size_t wanted, MissingData& missing);

    StreamLayout Layout;

private:
    virtual void FillInitialised(std::uint64_t offset, Bytes buffer, std::size_t wanted,
                                 MissingData& missing) {
        FillFromRuns(offset, buffer, wanted, missing);
    }
    void ReadBytes(std::uint64_t lcn, std::uint64_t within, Bytes buffer, std::size_t wanted,
                   MissingData& missing);
    void ReadPartOfSector(std::uint64_t sector, std::size_t within, Bytes part, MissingData& missing);

    std::vector<std::uint8_t> sector_; ///< one that is wanted in part
};

/// A compressed stream: units of clusters, each stored as it is, or compressed with clusters saved, or a
/// hole.
class CompressedStream : public RunStream {
public:
    explicit CompressedStream(StreamLayout layout);

    [[nodiscard]] std::uint64_t NextData(std::uint64_t offset) const override;
    [[nodiscard]] std::uint64_t NextHole(std::uint64_t offset) const override;
    [[nodiscard]] std::uint64_t UnitBytes() const override;

private:
    void FillInitialised(std::uint64_t offset, Bytes buffer, std::size_t wanted,
                         MissingData& missing) override;
    /// A read of stored clusters, with its place in the unit.
    struct StoredPart {
        ReadOutcome Outcome;
        std::uint64_t Sector = 0;
        std::uint64_t Offset = 0;
        std::uint64_t Bytes = 0;
    };

    std::vector<StoredPart> ReadStored(std::uint64_t vcn, std::uint64_t clusters);
    void LoadUnit(std::uint64_t unit, std::uint64_t clusters, MissingData& missing);
    [[nodiscard]] std::uint64_t ClustersOfUnit(std::uint64_t unit) const;

    std::uint64_t unit_ = ~std::uint64_t{0}; ///< that plain_ holds
    std::vector<std::uint8_t> plain_;
    std::vector<std::uint8_t> stored_;
};

} // namespace thntfs
