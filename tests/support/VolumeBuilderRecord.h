#pragma once

#include "support/VolumeBuilderDisk.h"

namespace thntfs::test {

inline constexpr std::uint32_t kStandardInformation = 0x10;
inline constexpr std::uint32_t kAttributeList = 0x20;
inline constexpr std::uint32_t kFileName = 0x30;
inline constexpr std::uint32_t kData = 0x80;
inline constexpr std::uint32_t kIndexRoot = 0x90;
inline constexpr std::uint32_t kBitmap = 0xB0;

inline constexpr std::uint8_t kNamespaceWin32 = 1;
inline constexpr std::uint8_t kNamespaceDos = 2;
inline constexpr std::uint8_t kNamespaceBoth = 3;

inline constexpr std::uint32_t kArchiveBit = 0x20;
inline constexpr std::uint32_t kFolderBit = 0x10000000; ///< bit 28 of the attribute bits in a file name

/// Value of a file name attribute, which is also the key of a folder's index.
struct FileNameValue {
    std::uint64_t Parent = FileReference(5, 5);
    std::u16string Name;
    std::uint8_t Namespace = kNamespaceWin32;
    std::uint32_t AttributeBits = kArchiveBit;
    FileTimes Times = EqualTimes();
    std::uint64_t RealSize = 0;
};

ByteVector EncodeFileName(const FileNameValue& value);

/// A non-resident attribute. What is left open is computed from the runs.
struct NonResidentValue {
    std::vector<Run> Runs;
    std::u16string Name = {};
    std::uint16_t Flags = 0; ///< 1 compressed, 0x4000 encrypted, 0x8000 sparse
    std::uint8_t CompressionExponent =
        0; ///< log2 of clusters per compression unit; not 0 adds the field at 64
    std::uint64_t FirstVcn = 0;
    std::optional<std::uint64_t> LastVcn = {};
    std::optional<std::uint64_t> RealSize = {};
    std::optional<std::uint64_t> InitializedSize = {};
};

/// One entry of an attribute list.
struct ListEntry {
    std::uint32_t Type = kData;
    std::uint64_t Reference = 0; ///< file reference of the record that holds the attribute
    std::uint64_t FirstVcn = 0;
    std::uint16_t AttributeId = 0;
    std::u16string Name = {};
};

ByteVector EncodeAttributeList(const std::vector<ListEntry>& entries);

/// One entry of a folder's index.
struct IndexEntry {
    std::uint64_t Reference = 0; ///< file reference of the named file
    FileNameValue Key;
};

/// The newer form has its update sequence array at 48 and the record's own number at 44, the older form has
/// the array at 42 and no number.
enum class RecordForm { Newer, Older };

/// Builds one FILE record. Attributes stand in the order of the calls and get the ids 0, 1, 2, …
/// An attribute that doesn't fit throws std::length_error.
class RecordBuilder {
public:
    RecordBuilder(const VolumeGeometry& geometry, std::uint32_t number, RecordForm form = RecordForm::Newer);

    RecordBuilder& SetInUse(bool inUse) { return SetFlag(1, inUse); }
    RecordBuilder& SetFolder(bool folder) { return SetFlag(2, folder); }
    RecordBuilder& SetBase(std::uint64_t baseReference) {
        base_ = baseReference;
        return *this;
    }

    RecordBuilder& AddStandardInformation(const FileTimes& times = EqualTimes(),
                                          std::uint32_t attributeBits = kArchiveBit);
    RecordBuilder& AddFileName(const FileNameValue& value) {
        return AddResident(kFileName, EncodeFileName(value));
    }
    RecordBuilder& AddData(ConstBytes value, std::u16string_view name = {}, std::uint16_t flags = 0) {
        return AddResident(kData, value, name, flags);
    }
    RecordBuilder& AddData(const NonResidentValue& value) { return AddNonResident(kData, value); }
    RecordBuilder& AddAttributeList(const std::vector<ListEntry>& entries) {
        return AddResident(kAttributeList, EncodeAttributeList(entries));
    }
    RecordBuilder& AddAttributeList(const NonResidentValue& value) {
        return AddNonResident(kAttributeList, value);
    }
    /// Resident index root "$I30" over file names with these entries and the end entry.
    RecordBuilder& AddIndexRoot(const std::vector<IndexEntry>& entries);
    RecordBuilder& AddResident(std::uint32_t type, ConstBytes value, std::u16string_view name = {},
                               std::uint16_t flags = 0);
    RecordBuilder& AddNonResident(std::uint32_t type, const NonResidentValue& value);
    /// Bytes taken as a whole attribute, header included, as they are.
    RecordBuilder& AddRaw(ConstBytes attribute);

    /// Byte offset in the record of the attribute added `index` calls after the first.
    [[nodiscard]] std::size_t AttributeOffset(std::size_t index) const { return offsets_.at(index); }
    [[nodiscard]] std::size_t LastAttributeOffset() const { return offsets_.back(); }
    [[nodiscard]] std::uint32_t Number() const { return number_; }

    /// Puts a number at a byte offset of the record once all else is laid out, before the protection.
    RecordBuilder& Poke8(std::size_t offset, std::uint8_t value) { return Poke(offset, 1, value); }
    RecordBuilder& Poke16(std::size_t offset, std::uint16_t value) { return Poke(offset, 2, value); }
    RecordBuilder& Poke32(std::size_t offset, std::uint32_t value) { return Poke(offset, 4, value); }
    RecordBuilder& Poke(std::size_t offset, std::size_t width, std::uint64_t value);
    /// No end marker; bytes in use end with the last attribute.
    RecordBuilder& OmitEndMarker() {
        endMarker_ = false;
        return *this;
    }

    /// The record without protection, as it stands after a check.
    [[nodiscard]] ByteVector RawBytes() const;
    /// The record as it stands on the medium.
    [[nodiscard]] ByteVector Finish() const;

private:
    RecordBuilder& SetFlag(unsigned bit, bool set) {
        flags_ = static_cast<std::uint16_t>(set ? flags_ | bit : flags_ & ~bit);
        return *this;
    }
    void WriteHeader(Bytes record, std::size_t used) const;
    [[nodiscard]] std::size_t ArrayOffset() const { return form_ == RecordForm::Newer ? 48 : 42; }

    VolumeGeometry geometry_;
    std::uint32_t number_;
    RecordForm form_;
    std::size_t first_;
    std::uint16_t flags_ = 1;
    std::uint64_t base_ = 0;
    bool endMarker_ = true;
    ByteVector attributes_;
    std::vector<std::size_t> offsets_;
    std::vector<PokedBytes> pokes_;
};

/// Builds one INDX block: entries in the order of the calls, then the end entry.
/// An entry that doesn't fit throws std::length_error.
class IndexBlockBuilder {
public:
    explicit IndexBlockBuilder(const VolumeGeometry& geometry);

    IndexBlockBuilder& Add(const IndexEntry& entry);
    /// Bytes taken as a whole entry as they are.
    IndexBlockBuilder& AddRaw(ConstBytes entry);
    /// Puts a number at a byte offset of the block once all else is laid out, before the protection.
    IndexBlockBuilder& Poke(std::size_t offset, std::size_t width, std::uint64_t value);

    [[nodiscard]] ByteVector Finish() const;

private:
    VolumeGeometry geometry_;
    std::size_t first_;
    ByteVector entries_;
    std::vector<PokedBytes> pokes_;
};

} // namespace thntfs::test
