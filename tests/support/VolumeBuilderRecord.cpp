#include "support/VolumeBuilderRecord.h"

#include <algorithm>
#include <stdexcept>

namespace thntfs::test {

namespace {

constexpr std::size_t kResidentHeaderBytes = 24;
constexpr std::size_t kIndexArrayOffset = 40;
constexpr std::size_t kIndexNodeOffset = 24; ///< an index block's own numbers count from here

// What both forms of an attribute begin with; the place of what follows the name goes to `startAt`.
ByteVector EncodeAttribute(std::uint32_t type, std::size_t headerBytes, std::u16string_view name,
                           ConstBytes content, std::size_t startAt) {
    ByteVector bytes(headerBytes);
    AppendText(bytes, name);
    bytes.resize(RoundUp8(bytes.size()));
    PutNumber(bytes, startAt, static_cast<std::uint16_t>(bytes.size()));
    AppendBytes(bytes, content);
    bytes.resize(RoundUp8(bytes.size()));
    PutNumber(bytes, 0, type);
    PutNumber(bytes, 4, static_cast<std::uint32_t>(bytes.size()));
    PutNumber(bytes, 9, static_cast<std::uint8_t>(name.size()));
    PutNumber(bytes, 10, static_cast<std::uint16_t>(headerBytes));
    return bytes;
}

std::uint64_t ClustersOf(const std::vector<Run>& runs, bool holesToo) {
    std::uint64_t sum = 0;
    for (const Run& run : runs) {
        sum += run.Start || holesToo ? run.Clusters : 0;
    }
    return sum;
}

void PutTimes(Bytes bytes, std::size_t offset, const FileTimes& times) {
    PutNumber(bytes, offset, times.Created);
    PutNumber(bytes, offset + 8, times.Modified);
    PutNumber(bytes, offset + 16, times.Changed);
    PutNumber(bytes, offset + 24, times.Accessed);
}

ByteVector EncodeIndexEntry(const IndexEntry& entry) {
    const ByteVector key = EncodeFileName(entry.Key);
    ByteVector bytes(16);
    AppendBytes(bytes, key);
    bytes.resize(RoundUp8(bytes.size()));
    PutNumber(bytes, 0, entry.Reference);
    PutNumber(bytes, 8, static_cast<std::uint16_t>(bytes.size()));
    PutNumber(bytes, 10, static_cast<std::uint16_t>(key.size()));
    return bytes;
}

ByteVector EncodeEndEntry() {
    ByteVector bytes(16);
    PutNumber(bytes, 8, std::uint16_t{16});
    PutNumber(bytes, 12, std::uint16_t{2});
    return bytes;
}

} // namespace

ByteVector EncodeFileName(const FileNameValue& value) {
    ByteVector bytes(66);
    PutNumber(bytes, 0, value.Parent);
    PutTimes(bytes, 8, value.Times);
    PutNumber(bytes, 48, value.RealSize);
    PutNumber(bytes, 56, value.AttributeBits);
    PutNumber(bytes, 64, static_cast<std::uint8_t>(value.Name.size()));
    PutNumber(bytes, 65, value.Namespace);
    AppendText(bytes, value.Name);
    return bytes;
}

ByteVector EncodeAttributeList(const std::vector<ListEntry>& entries) {
    ByteVector list;
    for (const ListEntry& entry : entries) {
        ByteVector bytes(26);
        AppendText(bytes, entry.Name);
        bytes.resize(RoundUp8(bytes.size()));
        PutNumber(bytes, 0, entry.Type);
        PutNumber(bytes, 4, static_cast<std::uint16_t>(bytes.size()));
        PutNumber(bytes, 6, static_cast<std::uint8_t>(entry.Name.size()));
        PutNumber(bytes, 7, std::uint8_t{26});
        PutNumber(bytes, 8, entry.FirstVcn);
        PutNumber(bytes, 16, entry.Reference);
        PutNumber(bytes, 24, entry.AttributeId);
        AppendBytes(list, bytes);
    }
    return list;
}

RecordBuilder::RecordBuilder(const VolumeGeometry& geometry, std::uint32_t number, RecordForm form)
    : geometry_(geometry)
    , number_(number)
    , form_(form)
    , first_(RoundUp8(ArrayOffset() + 2 * (geometry.RecordBytes / geometry.SectorBytes + 1))) {}

RecordBuilder& RecordBuilder::AddStandardInformation(const FileTimes& times, std::uint32_t attributeBits) {
    ByteVector value(72);
    PutTimes(value, 0, times);
    PutNumber(value, 32, attributeBits);
    return AddResident(kStandardInformation, value);
}

RecordBuilder& RecordBuilder::AddIndexRoot(const std::vector<IndexEntry>& entries) {
    ByteVector bytes(32);
    for (const IndexEntry& entry : entries) {
        AppendBytes(bytes, EncodeIndexEntry(entry));
    }
    AppendBytes(bytes, EncodeEndEntry());
    const auto indexBytes = static_cast<std::uint32_t>(bytes.size() - 16);
    PutNumber(bytes, 0, kFileName);
    PutNumber(bytes, 4, std::uint32_t{1}); // collated as file names
    PutNumber(bytes, 8, geometry_.IndexBlockBytes);
    PutNumber(bytes, 12, geometry_.SizeCode(geometry_.IndexBlockBytes));
    PutNumber(bytes, 16, std::uint32_t{16});
    PutNumber(bytes, 20, indexBytes);
    PutNumber(bytes, 24, indexBytes);
    return AddResident(kIndexRoot, bytes, u"$I30");
}

RecordBuilder& RecordBuilder::AddResident(std::uint32_t type, ConstBytes value, std::u16string_view name,
                                          std::uint16_t flags) {
    ByteVector bytes = EncodeAttribute(type, kResidentHeaderBytes, name, value, 20);
    PutNumber(bytes, 12, flags);
    PutNumber(bytes, 14, static_cast<std::uint16_t>(offsets_.size()));
    PutNumber(bytes, 16, static_cast<std::uint32_t>(value.size()));
    PutNumber(bytes, 22, static_cast<std::uint8_t>(type == kFileName ? 1 : 0)); // indexed
    return AddRaw(bytes);
}

RecordBuilder& RecordBuilder::AddNonResident(std::uint32_t type, const NonResidentValue& value) {
    const bool compressed = value.CompressionExponent != 0;
    ByteVector bytes = EncodeAttribute(type, compressed ? 72 : 64, value.Name, EncodeRuns(value.Runs), 32);
    const std::uint64_t clusters = ClustersOf(value.Runs, true);
    const std::uint64_t allocated = clusters * geometry_.ClusterBytes();
    const std::uint64_t real = value.RealSize.value_or(allocated);
    PutNumber(bytes, 8, std::uint8_t{1});
    PutNumber(bytes, 12, value.Flags);
    PutNumber(bytes, 14, static_cast<std::uint16_t>(offsets_.size()));
    PutNumber(bytes, 16, value.FirstVcn);
    PutNumber(bytes, 24, value.LastVcn.value_or(value.FirstVcn + clusters - 1));
    PutNumber(bytes, 34, value.CompressionExponent);
    PutNumber(bytes, 40, allocated);
    PutNumber(bytes, 48, real);
    PutNumber(bytes, 56, value.InitializedSize.value_or(real));
    if (compressed) {
        PutNumber(bytes, 64, ClustersOf(value.Runs, false) * geometry_.ClusterBytes());
    }
    return AddRaw(bytes);
}

RecordBuilder& RecordBuilder::AddRaw(ConstBytes attribute) {
    if (first_ + attributes_.size() + attribute.size() > geometry_.RecordBytes) {
        throw std::length_error("attribute doesn't fit into the record");
    }
    offsets_.push_back(first_ + attributes_.size());
    AppendBytes(attributes_, attribute);
    return *this;
}

RecordBuilder& RecordBuilder::Poke(std::size_t offset, std::size_t width, std::uint64_t value) {
    if (offset + width > geometry_.RecordBytes) {
        throw std::length_error("poke beyond the record");
    }
    pokes_.push_back({offset, width, value});
    return *this;
}

void RecordBuilder::WriteHeader(Bytes record, std::size_t used) const {
    PutNumber(record, 0, std::uint32_t{0x454C4946}); // "FILE"
    PutNumber(record, 4, static_cast<std::uint16_t>(ArrayOffset()));
    PutNumber(record, 6, static_cast<std::uint16_t>(geometry_.RecordBytes / geometry_.SectorBytes + 1));
    PutNumber(record, 16, std::uint16_t{1}); // of its uses
    PutNumber(record, 18, std::uint16_t{1});
    PutNumber(record, 20, static_cast<std::uint16_t>(first_));
    PutNumber(record, 22, flags_);
    PutNumber(record, 24, static_cast<std::uint32_t>(used));
    PutNumber(record, 28, geometry_.RecordBytes);
    PutNumber(record, 32, base_);
    PutNumber(record, 40, static_cast<std::uint16_t>(offsets_.size()));
    if (form_ == RecordForm::Newer) {
        PutNumber(record, 44, number_);
    }
}

ByteVector RecordBuilder::RawBytes() const {
    const std::size_t end = first_ + attributes_.size();
    if (endMarker_ && end + 8 > geometry_.RecordBytes) {
        throw std::length_error("end marker doesn't fit into the record");
    }
    ByteVector record(geometry_.RecordBytes);
    std::copy(attributes_.begin(), attributes_.end(), record.begin() + static_cast<std::ptrdiff_t>(first_));
    if (endMarker_) {
        PutNumber(record, end, std::uint32_t{0xFFFFFFFF});
    }
    WriteHeader(record, endMarker_ ? end + 8 : end);
    ApplyPokes(record, pokes_);
    return record;
}

ByteVector RecordBuilder::Finish() const {
    ByteVector record = RawBytes();
    ProtectBlock(record, ArrayOffset(), geometry_.SectorBytes, 0x0107);
    return record;
}

IndexBlockBuilder::IndexBlockBuilder(const VolumeGeometry& geometry)
    : geometry_(geometry)
    , first_(RoundUp8(kIndexArrayOffset + 2 * (geometry.IndexBlockBytes / geometry.SectorBytes + 1))) {}

IndexBlockBuilder& IndexBlockBuilder::Add(const IndexEntry& entry) { return AddRaw(EncodeIndexEntry(entry)); }

IndexBlockBuilder& IndexBlockBuilder::AddRaw(ConstBytes entry) {
    AppendBytes(entries_, entry);
    return *this;
}

IndexBlockBuilder& IndexBlockBuilder::Poke(std::size_t offset, std::size_t width, std::uint64_t value) {
    pokes_.push_back({offset, width, value});
    return *this;
}

ByteVector IndexBlockBuilder::Finish() const {
    ByteVector content = entries_;
    AppendBytes(content, EncodeEndEntry());
    if (first_ + content.size() > geometry_.IndexBlockBytes) {
        throw std::length_error("entries don't fit into the index block");
    }
    ByteVector block(geometry_.IndexBlockBytes);
    std::copy(content.begin(), content.end(), block.begin() + static_cast<std::ptrdiff_t>(first_));
    PutNumber(block, 0, std::uint32_t{0x58444E49}); // "INDX"
    PutNumber(block, 4, static_cast<std::uint16_t>(kIndexArrayOffset));
    PutNumber(block, 6, static_cast<std::uint16_t>(geometry_.IndexBlockBytes / geometry_.SectorBytes + 1));
    PutNumber(block, 24, static_cast<std::uint32_t>(first_ - kIndexNodeOffset));
    PutNumber(block, 28, static_cast<std::uint32_t>(first_ + content.size() - kIndexNodeOffset));
    PutNumber(block, 32, static_cast<std::uint32_t>(geometry_.IndexBlockBytes - kIndexNodeOffset));
    ApplyPokes(block, pokes_);
    ProtectBlock(block, kIndexArrayOffset, geometry_.SectorBytes, 0x0203);
    return block;
}

} // namespace thntfs::test
