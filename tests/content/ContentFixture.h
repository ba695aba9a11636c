#pragma once

#include "content/EntryContent.h"
#include "engine/EngineFixture.h"
#include "platform/files/File.h"

namespace thntfs::test {

using DataRun = Run; // a test class has a Run of its own

/// An output file that keeps what is written to it, and fails from a chosen write on.
class KeptFile final : public File {
public:
    ErrorCode Write(ConstBytes bytes) override {
        if (Sizes.size() == FailingWrite) {
            return kErrorDiskFull;
        }
        Sizes.push_back(bytes.size());
        AppendBytes(Content, bytes);
        return kErrorNone;
    }
    ErrorCode WriteAt(std::uint64_t, ConstBytes) override { return kErrorInvalidHandle; }
    ErrorCode ReadAt(std::uint64_t, Bytes, std::size_t&) override { return kErrorInvalidHandle; }
    ErrorCode Size(std::uint64_t& bytes) override {
        bytes = Content.size();
        return kErrorNone;
    }
    ErrorCode Sync() override { return kErrorNone; }

    void Forget() {
        Content.clear();
        Sizes.clear();
    }

    ByteVector Content;
    std::vector<std::size_t> Sizes;
    std::size_t FailingWrite = ~std::size_t{0};
};

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
    int Read(const RecordBuilder& record, std::uint64_t size) {
        Volume.PlaceRecord(record);
        Out.Forget();
        Engine.BytesWritten = 0;
        Engine.BytesBehindEnd = 0;
        Reports.Progress.clear();
        return ReadEntryContent(ItemOf(record.Number(), size), Out);
    }

    VolumeBuilder Volume;
    KeptFile Out;
};

inline ByteVector FirstOf(const ByteVector& bytes, std::size_t count) {
    return {bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(count)};
}

} // namespace thntfs::test
