#include "engine/LocateMft.h"
#include "partitions/ExamineVolumes.h"
#include "partitions/PartitionSearch.h"
#include "partitions/VolumeList.h"
#include "support/EngineFixture.h"

#include <functional>

namespace thntfs::test {

namespace {

enum class Layout { MirrorBehind, MirrorBefore };

/// A disk with one volume at sector 2048, its table before the mirror or behind it, which a test wrecks.
class LostStartsTest : public EngineFixture {
protected:
    static VolumeGeometry GeometryOf(Layout layout) {
        VolumeGeometry geometry;
        geometry.StartSector = 2048;
        geometry.MirrorCluster = layout == Layout::MirrorBehind ? 1024 : 2;
        geometry.MftRuns = {{64, layout == Layout::MirrorBehind ? 4U : 1500U}};
        return geometry;
    }

    explicit LostStartsTest(Layout layout = Layout::MirrorBehind) { Build(layout, EqualTimes()); }

    void Build(Layout layout, const FileTimes& times) {
        Disk = std::make_unique<VolumeBuilder>(GeometryOf(layout));
        const std::uint64_t mirror = Disk->Geometry().MirrorCluster;
        Disk->PlaceRecord(Record(0, u"$MFT", times)
                              .AddData({.Runs = Disk->Geometry().MftRuns})
                              .AddNonResident(kBitmap, {.Runs = {{1, 100}}, .RealSize = 32}));
        Disk->PlaceRecord(Record(1, u"$MFTMirr", times).AddData({.Runs = {{1, mirror}}}));
        Disk->PlaceRecord(
            Record(3, u"$Volume", times).AddResident(0x60, BytesOf(std::string("L\0\xE4\0", 4))));
        Disk->PlaceRecord(Record(4, u"$AttrDef", times));
        Disk->PlaceRecord(Record(8, u"$BadClus", times)
                              .AddData(ByteVector())
                              .AddNonResident(kData, {.Runs = {{2047, std::nullopt}}, .Name = u"$Bad"}));
        Disk->PutSectors(0, ByteVector(512));
    }
    [[nodiscard]] RecordBuilder Record(std::uint32_t number, const char16_t* name,
                                       const FileTimes& times) const {
        return Disk->NewRecord(number).AddStandardInformation(times).AddFileName(NameIn(5, name));
    }

    void WipeBoot() { Disk->PutSectors(2048, ByteVector(512)); }
    void WipeBackup() { Disk->PutSectors(2048 + 16383, ByteVector(512)); }
    void WipeTable() { Disk->PutClusters(Disk->Geometry().MftCluster(), ByteVector(4096)); }
    void WipeMirror() { Disk->PutClusters(Disk->Geometry().MirrorCluster, ByteVector(4096)); }

    /// "start+sectors !" of each volume shown, without those that aren't verified.
    std::string Search(SearchMethod method, std::size_t cutSectors = 0) {
        const auto from = Disk->Image().begin() + static_cast<std::ptrdiff_t>(512 * cutSectors);
        OpenDisk(ByteVector(from, Disk->Image().end()));
        Engine.ScanRunFlag = 1;
        EXPECT_EQ(SearchVolumes(method, 0, Engine.SourceDisk.TotalSectors), 1U);
        std::string text;
        bool verified = true;
        for (const ListedVolume& volume : ListVolumes()) {
            EXPECT_TRUE(verified || !volume.Facts.Verified) << "verified ones come first";
            verified = volume.Facts.Verified;
            if (verified) {
                text += std::to_string(static_cast<std::int64_t>(volume.Candidate->StartSector)) + "+" +
                        std::to_string(volume.Candidate->TotalSectors) + " ";
                EXPECT_EQ(volume.Facts.Records, 256U);
                EXPECT_EQ(volume.Facts.Label, u"L\u00E4");
            }
        }
        return text;
    }

    std::unique_ptr<VolumeBuilder> Disk;
};

TEST_F(LostStartsTest, WhatIsLeftOfTheFirstStructuresTellsTheStart) {
    struct Case {
        Layout Layout_;
        std::string Wiped; // boot, copy, table, mirror
        std::string Quick, Thorough;
    };
    // What the boot sector or its copy tells has 16383 sectors, $BadClus 16376; the mirror in the middle of
    // the volume, as a given pair takes it, 16384.
    const std::string boot = "2048+16383 ";
    const std::string bad = "2048+16376 ";
    const std::string pair = "2048+16384 ";
    const Case cases[] = {
        {Layout::MirrorBehind, "b", boot, pair},  {Layout::MirrorBehind, "bc", bad, pair},
        {Layout::MirrorBehind, "bct", bad, pair}, {Layout::MirrorBehind, "bcm", bad, bad},
        {Layout::MirrorBehind, "bt", boot, pair}, {Layout::MirrorBehind, "tm", "", ""},
        {Layout::MirrorBefore, "b", boot, boot},  {Layout::MirrorBefore, "bc", bad, bad},
        {Layout::MirrorBefore, "bct", bad, bad},  {Layout::MirrorBefore, "bcm", bad, bad},
        {Layout::MirrorBefore, "bm", boot, boot},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.Wiped + (c.Layout_ == Layout::MirrorBefore ? " mirror before" : ""));
        Build(c.Layout_, EqualTimes());
        for (const char what : c.Wiped) {
            what == 'b' ? WipeBoot() : what == 'c' ? WipeBackup() : what == 't' ? WipeTable() : WipeMirror();
        }
        EXPECT_EQ(Search(SearchMethod::Quick), c.Quick);
        EXPECT_EQ(Search(SearchMethod::Thorough), c.Thorough);
    }
}

TEST_F(LostStartsTest, AVolumeMayBeginBeforeTheMediumAndTimesMayDiffer) {
    FileTimes times = EqualTimes();
    times.Created += 1;
    Build(Layout::MirrorBefore, times);
    EXPECT_EQ(Search(SearchMethod::Thorough, 2048 + 300), "-300+16383 ");
    EXPECT_EQ(SectorsBeforeMedium(Engine.SourceDisk.Partitions.back()), 300U);
    EXPECT_EQ(Search(SearchMethod::Quick, 2048 + 5), "-5+16383 ");
    WipeBackup();
    EXPECT_EQ(Search(SearchMethod::Thorough, 2048 + 300), "-300+16376 ");
    LoadVolumeParams(Engine.SourceDisk.Partitions.back());
    EXPECT_FALSE(LocateMft());
    EXPECT_TRUE(LocateTable());
    EXPECT_EQ(RunsIn(Engine.VolumeParams.MftExtents), RunsIn({{64, 1500}}));
    EXPECT_EQ(Engine.VolumeParams.MftSector, std::uint64_t{1500} * 8 - 300);
    EXPECT_EQ(Engine.TableBytes, 256U * 1024);
    Engine.VolumeParams.MftSector = 0;
    Engine.VolumeParams.MftCluster += 100;
    EXPECT_FALSE(LocateTable());
}

// Copies of the first records everywhere make neither volumes nor endless work.
TEST_F(LostStartsTest, GhostsAreNotVerified) {
    const ByteVector head(Disk->Image().begin() + (2048 + 32) * 512,
                          Disk->Image().begin() + (2048 + 40) * 512);
    for (std::uint64_t sector = 6000; sector < 7600; sector += 8) {
        Disk->PutSectors(sector, head);
    }
    Disk->PutSectors(15000, ConstBytes(Disk->Image()).subspan(2048 * 512, 512));
    EXPECT_EQ(Search(SearchMethod::Thorough), "2048+16383 ");
    EXPECT_GT(Engine.SourceDisk.Partitions.size(), 1U);
    const auto volumes = ListVolumes();
    ASSERT_NE(OnlyVerified(volumes), nullptr);
    EXPECT_EQ(OnlyVerified(volumes)->Number, 1U);
    Engine.VolumeFacts[0] = VolumeFacts();
    EXPECT_EQ(OnlyVerified(ListVolumes()), nullptr);
}

TEST_F(LostStartsTest, AStopAndAFaultWhileTheTracesAreFollowed) {
    WipeBoot();
    Plan->OnRead = [this](std::uint64_t, const ReadRequest&) {
        if (!Reports.SearchPositions.empty() &&
            Reports.SearchPositions.back().first == Reports.SearchPositions.back().second) {
            Engine.ScanRunFlag = 0;
        }
    };
    OpenDisk(Disk->SharedImage());
    Engine.ScanRunFlag = 1;
    EXPECT_EQ(SearchVolumes(SearchMethod::Quick, 0, 16384), 0U);
    EXPECT_TRUE(Engine.SourceDisk.Partitions.empty());
    Plan->OnRead = nullptr;
    Plan->Rules = {{.FirstSector = 2048 + 16383}};
    EXPECT_EQ(Search(SearchMethod::Quick), "2048+16376 ");
    EXPECT_EQ(Engine.Losses.Sectors, 1U) << "the copy of the boot sector can't be read";
}

} // namespace

} // namespace thntfs::test
