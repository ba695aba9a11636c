#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace thntfs {

/// Why the bytes of a file can't be vouched for, although each sector of it was read.
enum class Doubt : std::uint8_t {
    ListDamaged,      ///< its attribute list can't be had whole, or breaks off
    PieceMissing,     ///< a record with a piece of its runs can't be had
    PieceForeign,     ///< another file's record stands there by now
    RunsDamaged,      ///< a run list that isn't one, or that tells of more than the volume holds
    RunsMissing,      ///< the runs leave out clusters in front of its end
    SizeImpossible,   ///< no file is that large
    ClusterSize,      ///< laid out in clusters of another size, and these don't fit the volume
    CompressionUnit,  ///< units of a size that no driver makes
    DataDamaged,      ///< compressed data that isn't
    Encrypted,        ///< the bytes as they lie are put out
    SystemCompressed, ///< compressed by the system in a way that this build doesn't know
    Elsewhere,        ///< what stands here only points to its bytes
};

/// A set of doubts.
class Doubts {
public:
    void Add(Doubt doubt) { bits_ |= Bit(doubt); }
    void Add(const Doubts& others) { bits_ |= others.bits_; }

    [[nodiscard]] bool None() const { return bits_ == 0; }
    [[nodiscard]] bool Has(Doubt doubt) const { return (bits_ & Bit(doubt)) != 0; }

    /// One phrase each, without a capital and a full stop.
    [[nodiscard]] std::vector<std::string> Reasons() const;

private:
    static std::uint32_t Bit(Doubt doubt) { return 1U << static_cast<unsigned>(doubt); }

    std::uint32_t bits_ = 0;
};

} // namespace thntfs
