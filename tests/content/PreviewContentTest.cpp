#include "content/PreviewContent.h"

#include "content/ContentFixture.h"

namespace thntfs::test {

namespace {

constexpr std::uint64_t kLimit = 31457280;

class PreviewContentTest : public ContentFixture {
protected:
    PreviewContentTest() { Engine.ScanRunFlag = 0; }

    bool Load(const RecordBuilder& record, std::uint64_t size) {
        Volume.PlaceRecord(record);
        return LoadPreviewBuffer(ItemOf(record.Number(), size));
    }

    [[nodiscard]] static ByteVector Loaded() {
        return FirstOf(Engine.PreviewBuffer, static_cast<std::size_t>(Engine.PreviewLength));
    }
};

} // namespace

TEST_F(PreviewContentTest, TheGuard) {
    const RecordBuilder record = Record().AddData(BytesOf("abc"));
    for (const std::uint64_t size :
         {std::uint64_t{0}, kLimit + 1, std::uint64_t{1} << 32U, ~std::uint64_t{0}}) {
        Engine.PreviewLength = 0;
        Plan->Log.clear();
        EXPECT_FALSE(Load(record, size)) << size;
        EXPECT_EQ(Engine.PreviewLength, 0U);
        EXPECT_TRUE(Plan->Log.empty());
    }
    EXPECT_TRUE(Load(record, kLimit));
    EXPECT_EQ(Loaded(), BytesOf("abc"));
    EXPECT_EQ(Engine.PreviewBuffer.size(), kLimit + 4096);
}

TEST_F(PreviewContentTest, ClustersUpToTheSize) {
    const ByteVector plain = PatternBytes(5 * 4096);
    const NonResidentValue data = {
        .Runs = {PutRun(FirstOf(plain, 8192)), {9, {}}, PutRun({plain.begin() + 8192, plain.end()})}};
    for (const std::size_t size : {1U, 4095U, 4096U, 4097U, 8192U, 8193U, 20479U, 20480U}) {
        EXPECT_TRUE(Load(Record().AddData(data), size));
        EXPECT_EQ(Loaded(), FirstOf(plain, size)) << size;
        EXPECT_GT(Engine.PreviewBuffer.size(), size);
    }
    EXPECT_TRUE(Load(Record().AddData(data), 56 * 1024));
    EXPECT_EQ(Loaded(), plain) << "the holes are missing at the end";
    EXPECT_TRUE(Load(Record().AddData({.Runs = {{1600, 200}}}), kLimit));
    EXPECT_EQ(Engine.PreviewLength, 1600U * 4096);
}

TEST_F(PreviewContentTest, WhatItDoesNotLoad) {
    EXPECT_TRUE(Load(Record().AddData({.Runs = {PutRun(PatternBytes(4096))}, .Flags = 1}), 100));
    EXPECT_EQ(Engine.PreviewLength, 0U);
    EXPECT_EQ(Reports.Boxes, (std::vector<std::string>{"Preview not available|Compressed data|!"}));
    EXPECT_TRUE(Load(Record().AddData({.Runs = {PutRun(PatternBytes(4096))}, .Flags = 0x8001}), 100));
    EXPECT_EQ(Engine.PreviewLength, 100U);
    EXPECT_EQ(Reports.Boxes.size(), 1U);

    const std::vector<ListEntry> elsewhere = {{kData, 41}};
    for (const RecordBuilder& record :
         {Volume.NewRecord(40).AddStandardInformation().AddAttributeList(elsewhere),
          Record().AddData(ByteVector{}), Record(), Record().AddData(BytesOf("x")).Poke8(0, 'X')}) {
        EXPECT_TRUE(Load(record, 100));
        EXPECT_EQ(Engine.PreviewLength, 0U);
    }
}

TEST_F(PreviewContentTest, TheFirstDataNamedOrNot) {
    const ByteVector stream = PatternBytes(4096, 8);
    Load(Record().AddData({.Runs = {PutRun(stream)}, .Name = u"s"}).AddData(BytesOf("own")), 4096);
    EXPECT_EQ(Loaded(), stream);
    Load(Record().AddData(BytesOf("stream"), u"s").AddData(BytesOf("own")), 100);
    EXPECT_EQ(Engine.PreviewLength, 0U) << "a named one in the record";
    Load(Record().AddData(PatternBytes(300)), 10);
    EXPECT_EQ(Loaded(), PatternBytes(300)) << "a whole resident value, as the block has room for it";
}

TEST_F(PreviewContentTest, ABadSectorCostsItsCluster) {
    const ByteVector plain = PatternBytes(3 * 4096);
    const DataRun run = PutRun(plain);
    Plan->Rules = {{Volume.Geometry().SectorOf(*run.Start) + 8, 1, kErrorCrc}};
    EXPECT_TRUE(Load(Record().AddData({.Runs = {run}}), plain.size()));
    ByteVector expected = plain;
    std::fill_n(expected.begin() + 4096, 4096, std::uint8_t{0});
    EXPECT_EQ(Loaded(), expected);
    EXPECT_EQ(Reports.Log.size(), 1U);

    Engine.ScanRunFlag = 1;
    Plan->Rules.front().Code = kErrorNotReady;
    EXPECT_THROW(Load(Record().AddData({.Runs = {run}}), plain.size()), CUserException);
}

} // namespace thntfs::test
