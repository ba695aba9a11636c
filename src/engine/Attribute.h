#pragma once

#include "engine/FileRecord.h"
#include "engine/LittleEndian.h"

#include <algorithm>
#include <cstdint>
#include <string>

namespace thntfs {

inline constexpr std::uint32_t kTypeStandardInformation = 0x10;
inline constexpr std::uint32_t kTypeAttributeList = 0x20;
inline constexpr std::uint32_t kTypeFileName = 0x30;
inline constexpr std::uint32_t kTypeData = 0x80;
inline constexpr std::uint32_t kTypeIndexRoot = 0x90;
inline constexpr std::uint32_t kTypeBitmap = 0xB0;
inline constexpr std::uint32_t kTypeEnd = 0xFFFFFFFF;

/// The flags of an attribute whose data is compressed and nothing else.
inline constexpr std::uint16_t kFlagsCompressed = 1;

/// The sixteen attribute types of NTFS: the multiples of 16 from 0x10 to 0x100.
[[nodiscard]] inline bool IsValidType(std::uint32_t type) {
    return type >= 0x10 && type <= 0x100 && type % 16 == 0;
}

/// One attribute of a record, read where it lies. Fields that would lie outside the record read as 0.
class Attribute {
public:
    Attribute(ConstBytes record, std::uint64_t offset)
        : record_(record)
        , offset_(offset) {}

    [[nodiscard]] std::uint64_t Offset() const { return offset_; }
    [[nodiscard]] std::uint32_t Type() const { return U32(0); }
    [[nodiscard]] std::uint32_t Length() const { return U32(4); }
    [[nodiscard]] std::uint8_t NonResident() const { return U8At(record_, offset_ + 8); }
    [[nodiscard]] std::uint8_t NameLength() const { return U8At(record_, offset_ + 9); }
    [[nodiscard]] std::uint16_t NameOffset() const { return U16(10); }
    [[nodiscard]] std::uint16_t Flags() const { return U16(12); }
    [[nodiscard]] std::uint16_t Id() const { return U16(14); }

    // Resident form.
    [[nodiscard]] std::uint32_t ValueLength() const { return U32(16); }
    [[nodiscard]] std::uint16_t ValueOffset() const { return U16(20); }
    [[nodiscard]] std::uint64_t ValueStart() const { return offset_ + ValueOffset(); }
    /// The value, cut to what lies within the record.
    [[nodiscard]] ConstBytes Value() const { return Part(record_, ValueStart(), ValueLength()); }

    // Non-resident form. Clusters are counted within the attribute.
    [[nodiscard]] std::uint64_t FirstCluster() const { return U64(16); }
    [[nodiscard]] std::uint64_t LastCluster() const { return U64(24); }
    [[nodiscard]] std::uint16_t RunListOffset() const { return U16(32); }
    [[nodiscard]] std::uint64_t RunListStart() const { return offset_ + RunListOffset(); }
    [[nodiscard]] std::uint16_t CompressionUnit() const { return U16(34); }
    [[nodiscard]] std::uint64_t AllocatedBytes() const { return U64(40); }
    [[nodiscard]] std::uint64_t RealBytes() const { return U64(48); }
    [[nodiscard]] std::uint64_t InitialisedBytes() const { return U64(56); }

    /// An attribute counts as named only where both its name length and its name offset are set.
    [[nodiscard]] bool Named() const { return NameLength() != 0 && NameOffset() != 0; }

    [[nodiscard]] std::uint16_t U16(std::uint64_t at) const { return U16At(record_, offset_ + at); }
    [[nodiscard]] std::uint32_t U32(std::uint64_t at) const { return U32At(record_, offset_ + at); }
    [[nodiscard]] std::uint64_t U64(std::uint64_t at) const { return U64At(record_, offset_ + at); }

private:
    ConstBytes record_;
    std::uint64_t offset_;
};

/// The walk over a record's attributes: valid while the offset is below the bytes in use and inside the
/// record. What else ends a walk is each reader's own rule. An attribute of length 0 ends it, so every walk
/// ends.
class AttributeWalk {
public:
    explicit AttributeWalk(ConstBytes record)
        : record_(record)
        , offset_(FirstAttributeOffset(record))
        , limit_(std::min<std::uint64_t>(BytesInUse(record), record.size())) {}

    [[nodiscard]] bool Valid() const { return offset_ < limit_; }
    [[nodiscard]] Attribute Current() const { return {record_, offset_}; }
    void Next() {
        const std::uint32_t length = Current().Length();
        offset_ = length == 0 ? limit_ : offset_ + length;
    }

private:
    ConstBytes record_;
    std::uint64_t offset_;
    std::uint64_t limit_;
};

/// `units` UTF-16 units at a byte offset; units that lie outside the span read as 0.
std::u16string UnitsAt(ConstBytes bytes, std::uint64_t offset, std::size_t units);

} // namespace thntfs
