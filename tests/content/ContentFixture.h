#pragma once

#include "content/EntryContent.h"
#include "support/EngineFixture.h"
#include "support/MemoryFile.h"

namespace thntfs::test {

inline ByteVector Join(std::initializer_list<ByteVector> parts) {
    ByteVector bytes;
    for (const ByteVector& part : parts) {
        AppendBytes(bytes, part);
    }
    return bytes;
}

using DataRun = Run; // a test class has a Run of its own

/// A volume with one file in record 40, and a job that takes it out.
class ContentFixture : public EngineFixture {
protected:
    ContentFixture() {
        OpenVolume(Volume);
        Engine.ScanRunFlag = 1;
    }

    RecordBuilder Record(std::uint32_t number = 40) {
        RecordBuilder record = Volume.NewRecord(number);
        return record.AddStandardInformation().AddFileName(NameIn(5, u"file"));
    }

    /// Puts bytes into fresh clusters and gives their run.
    DataRun PutRun(const ByteVector& bytes) {
        const std::uint64_t count = (bytes.size() + 4095) / 4096;
        const std::uint64_t start = Volume.AllocateClusters(count);
        Volume.PutClusters(start, bytes);
        return {count, start};
    }

    CatalogueItem ItemOf(std::uint32_t number, std::uint64_t size) {
        CatalogueItem item;
        item.RecordSector = Volume.RecordSector(number);
        item.Size = size;
        return item;
    }

    /// Places the record and reads its content with a size in the catalogue; the file is in Out.
    bool Read(const RecordBuilder& record, std::uint64_t size) {
        Volume.PlaceRecord(record);
        return Read(ItemOf(record.Number(), size));
    }
    bool Read(const CatalogueItem& item) {
        MissingData missing;
        Out.Clear();
        Engine.BytesWritten = 0;
        Reports.Progress.clear();
        return ReadEntryContent(item, Out, missing);
    }

    VolumeBuilder Volume;
    MemoryFile Out;
};

inline ByteVector FirstOf(const ByteVector& bytes, std::size_t count) {
    return {bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(count)};
}

} // namespace thntfs::test
