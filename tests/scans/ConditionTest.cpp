#include "catalogue/Conditions.h"
#include "partitions/ExamineVolumes.h"
#include "scans/BasicScan.h"
#include "scans/ScanFixture.h"
#include "scans/TurboScan.h"

#include <map>

namespace thntfs::test {

namespace {

using Texts = std::map<std::uint32_t, std::string>;
using DataRuns = std::vector<Run>;

/// A volume of 2,047 clusters, whose bitmap calls those below 512, 900 to 999 and 2,000 to 2,009 used.
class ConditionTest : public ScanFixture {
protected:
    ConditionTest() {
        ByteVector bits(256);
        for (const auto& [first, end] :
             std::vector<std::pair<std::size_t, std::size_t>>{{0, 512}, {900, 1000}, {2000, 2010}}) {
            for (std::size_t cluster = first; cluster < end; ++cluster) {
                bits[cluster / 8] |= static_cast<std::uint8_t>(1U << cluster % 8);
            }
        }
        Volume.PutClusters(kBitmapCluster, bits);
        Volume.PlaceRecord(BitmapRecord());
    }

    RecordBuilder BitmapRecord() {
        return Record(6, 5, u"$Bitmap").AddData({.Runs = {{1, kBitmapCluster}}, .RealSize = 256});
    }
    /// A deleted file, last changed on a day of January, without data.
    RecordBuilder Deleted(std::uint32_t number, unsigned day = 10) {
        FileTimes times = EqualTimes(FileTimeOfDay(2020, 1, 1));
        times.Changed = FileTimeOfDay(2020, 1, day);
        return Volume.NewRecord(number).SetInUse(false).AddStandardInformation(times).AddFileName(
            NameIn(5, u"f" + std::u16string(1, static_cast<char16_t>(number))));
    }
    void Add(std::uint32_t number, DataRuns runs, unsigned day = 10, std::uint64_t sequence = 0) {
        Volume.PlaceRecord(Deleted(number, day).AddData({.Runs = std::move(runs)}).Poke(8, 8, sequence));
    }
    RecordBuilder Extension(std::uint32_t number, bool live, DataRuns runs, std::uint64_t first = 0) {
        return Volume.NewRecord(number)
            .SetInUse(live)
            .SetBase(FileReference(number - 1))
            .AddStandardInformation()
            .AddData({.Runs = std::move(runs), .FirstVcn = first});
    }

    /// By record number, with what nothing is said of left out.
    static Texts Conditions(int (*scan)() = Basic) {
        EXPECT_EQ(RunScan(scan), 1);
        Texts texts;
        EntryWalk walk({});
        while (walk.Next()) {
            const CatalogueItem& item = walk.Item();
            if (const std::string text = ConditionText(ConditionOf(item), item.IsLive()); !text.empty()) {
                texts[item.RecordNumber] += (texts.count(item.RecordNumber) != 0 ? "+" : "") + text;
            }
        }
        return texts;
    }
    static int Basic() { return BasicScan(); }
    static int Turbo() { return static_cast<int>(TurboScan()); }

    static constexpr std::uint64_t kBitmapCluster = 500;
};

TEST_F(ConditionTest, BitmapLiveFilesAndLaterOnesDecide) {
    Volume.PlaceRecord(Record(40, 5, u"live")
                           .AddData({.Runs = {{2, 600}, {3, {}}, {2, 639}}})
                           .AddData({.Runs = {{2, 602}}, .Name = u"stream"}));
    Volume.PlaceRecord(Extension(42, true, {{2, 610}}, 5));
    Volume.AddFolder({.Number = 43, .Name = u"gone folder", .Live = false});
    Add(50, {{10, 700}, {1, 990}, {1, 680}});
    Add(51, {{4, 995}, {12, 1000}});
    Add(52, {{100, 900}});
    Add(53, {{8, 600}});
    Add(54, {{2, 610}});
    Add(55, {{10, 710}}, 3);
    Add(56, {{10, 715}}, 4);
    Add(57, {{10, 730}}, 5, 9);
    Add(58, {{10, 737}}, 5, 8);
    Add(59, {{10, 750}}, 5, 7);
    Add(60, {{10, 755}}, 5, 7);
    Add(61, {{10, 765}}, 2); // five of 60, which 61 was before
    Add(62, {{100, {}}, {4, 780}}, 30);
    Add(63, {{20, 2037}});
    Volume.PlaceRecord(Deleted(64).AddData(BytesOf("resident")));
    Volume.PlaceRecord(Deleted(65));
    Add(66, {{30, 785}}, 2);
    Add(67, {{10, 790}}, 3);
    Add(68, {{10, 795}}, 4);
    Add(69, {{1, 640}});
    EXPECT_EQ(Conditions(),
              (Texts{{50, "partly 91 %"}, {51, "partly 75 %"}, {52, "overwritten"}, {53, "partly 50 %"},
                     {54, "overwritten"}, {55, "partly 50 %"}, {56, "whole"},       {57, "whole"},
                     {58, "partly 70 %"}, {59, "partly 50 %"}, {60, "partly 50 %"}, {61, "whole"},
                     {62, "whole"},       {63, "partly 50 %"}, {64, "whole"},       {65, "unknown"},
                     {66, "partly 50 %"}, {67, "partly 50 %"}, {68, "whole"},       {69, "overwritten"}}));
    ClearConditions();
    EXPECT_EQ(ConditionOf(3, false, false).Kind, ConditionKind::Unknown);
    EXPECT_EQ(ConditionOf(3, false, true).Kind, ConditionKind::Whole);
}

// A volume of larger clusters was formatted over this one: its bitmap counts, for live files too.
TEST_F(ConditionTest, WhatWasFormattedOverTheVolumeDecides) {
    VolumeGeometry other = Volume.Geometry();
    other.SectorsPerCluster = 16;
    other.MirrorCluster = 900;
    other.MftRuns = {{1, 600}};
    ByteVector table(8192);
    const auto place = [&table](std::size_t number, const RecordBuilder& record) {
        std::ranges::copy(record.Finish(), table.begin() + static_cast<std::ptrdiff_t>(number * 1024));
    };
    const auto named = [&other](std::uint32_t number, const char16_t* name) {
        return RecordBuilder(other, number).AddStandardInformation().AddFileName(NameIn(5, name));
    };
    place(0, named(0, u"$MFT").AddData({.Runs = {{1, 600}}, .RealSize = 8192}));
    place(6, named(6, u"$Bitmap").AddData({.Runs = {{1, 602}}, .RealSize = 128}));
    Volume.PutClusters(1200, table);
    ByteVector bits(128);
    bits[350 / 8] = 0xC0; // 350 and 351, which are 700 to 703 here
    Volume.PutClusters(1204, bits);
    Volume.PutSectors(other.StartSector, EncodeBootSector(BootFieldsOf(other)));
    Volume.PlaceRecord(Record(40, 5, u"live").AddData({.Runs = {{10, 702}}}));
    Volume.PlaceRecord(Record(41, 5, u"other").AddData({.Runs = {{10, 300}}}));
    Add(50, {{10, 900}});
    Add(51, {{1, 703}});
    LocateTable();
    SetTableRuns(Volume.Geometry().MftRuns);
    EXPECT_EQ(Conditions(), (Texts{{40, "partly 80 %"}, {50, "whole"}, {51, "overwritten"}}));
    EXPECT_EQ(Engine.VolumeParams.ClusterBytes, 4096U);
    LoadVolumeParams(CandidateOf(Volume.Geometry()));
    SetTableRuns(Volume.Geometry().MftRuns);
    EXPECT_EQ(Conditions(), (Texts{{50, "overwritten"}, {51, "overwritten"}}));
}

TEST_F(ConditionTest, OnlyTheFilesOwnBytesCount) {
    Volume.PlaceRecord(Deleted(50).AddData({.Runs = {{4, 896}, {4, 900}}, .RealSize = 4 * 4096 - 1}));
    Volume.PlaceRecord(Deleted(51).AddData({.Runs = {{4, 740}, {4, 900}}, .InitializedSize = 4 * 4096 + 1}));
    Volume.PlaceRecord(Deleted(52).AddData(
        {.Runs = {{4, 990}, {12, {}}}, .Flags = 1, .CompressionExponent = 4, .RealSize = 5000}));
    Volume.PlaceRecord(Deleted(53).AddData(BytesOf("r")).AddData({.Runs = {{4, 900}}, .Name = u"other"}));
    Volume.PlaceRecord(Deleted(54)
                           .AddData({.Runs = {{9, {}}}})
                           .AddData({.Runs = {{1, 511}, {1, 512}}, .Name = u"WofCompressedData"}));
    RecordBuilder small = Deleted(55).AddData({.Runs = {{4, 1999}}}); // clusters of 2,048, the first in 999
    Volume.PlaceRecord(small.Poke(small.LastAttributeOffset() + 40, 8, 4 * 2048)
                           .Poke(small.LastAttributeOffset() + 48, 8, 4 * 2048));
    RecordBuilder odd = Deleted(56).AddData({.Runs = {{4, 700}}});
    Volume.PlaceRecord(odd.Poke(odd.LastAttributeOffset() + 40, 8, 4 * 5000));
    RecordBuilder cut = Deleted(57).AddData({.Runs = {{4, 700}, {4, 720}}});
    Volume.PlaceRecord(cut.Poke8(cut.LastAttributeOffset() + 64 + 3 + 1, 0));
    EXPECT_EQ(Conditions(), (Texts{{50, "whole"},
                                   {51, "partly 80 %"},
                                   {52, "overwritten"},
                                   {53, "whole"},
                                   {54, "partly 50 %"},
                                   {55, "partly 75 %"},
                                   {56, "unknown"},
                                   {57, "unknown"}}));
}

TEST_F(ConditionTest, PiecesOfASplitFileAreFoundWhereverTheyStand) {
    const auto addBase = [this](std::uint32_t number, std::uint16_t sequence) {
        Volume.PlaceRecord(Deleted(number)
                               .AddAttributeList({{kData, FileReference(number), 0, 3},
                                                  {kData, FileReference(number + 1), 4, 1}})
                               .AddData({.Runs = {{4, 1010 + 20ULL * number}}, .RealSize = 8 * 4096})
                               .Poke16(16, sequence));
    };
    for (std::uint32_t number = 20; number < 40; number += 4) {
        addBase(number, number == 20 ? 1 : 2);
    }
    Volume.PlaceRecord(Extension(21, false, {{4, 902}}, 4));
    Volume.PlaceRecord(Extension(25, false, {{4, 700}}, 4));
    Volume.PlaceRecord(Extension(29, false, {{4, 710}}, 5));
    Volume.PlaceRecord(Extension(33, false, {{4, 720}}, 4).SetBase(FileReference(32, 3)));
    EXPECT_EQ(Conditions(),
              (Texts{{20, "partly 50 %"}, {24, "whole"}, {28, "unknown"}, {32, "unknown"}, {36, "unknown"}}));
}

TEST_F(ConditionTest, WithoutABelievableBitmapOnlyLossesAreSure) {
    Volume.PlaceRecord(Record(40, 5, u"live").AddData({.Runs = {{20, 600}}}));
    Add(50, {{4, 700}});
    Add(51, {{4, 604}});
    Add(52, {{4, 618}});
    const Texts unsure = {{50, "unknown"}, {51, "overwritten"}, {52, "unknown"}};
    Volume.PutClusters(kBitmapCluster, ByteVector(256));
    EXPECT_EQ(Conditions(), unsure) << "zeros where live files stand";
    Volume.PlaceRecord(6, Record(6, 5, u"$Bitmab").AddData({.Runs = {{1, 500}}}).Finish());
    EXPECT_EQ(Conditions(), unsure);

    Volume.PutClusters(kBitmapCluster, ByteVector(256, 0xFF));
    Volume.PlaceRecord(Record(6, 5, u"$Bitmap").AddAttributeList({{kData, FileReference(7), 0, 1}}));
    RecordBuilder piece = Extension(7, true, {{1, kBitmapCluster}}).SetBase(FileReference(6));
    Volume.PlaceRecord(
        piece.Poke(piece.LastAttributeOffset() + 48, 8, 256).Poke(piece.LastAttributeOffset() + 56, 8, 256));
    EXPECT_EQ(Conditions(), (Texts{{50, "overwritten"}, {51, "overwritten"}, {52, "overwritten"}}));
    Volume.PlaceRecord(piece.SetBase(FileReference(8)));
    EXPECT_EQ(Conditions(), unsure) << "a piece of another file by now";
}

TEST_F(ConditionTest, WhatLiesBehindTheEndIsLostToLiveFilesToo) {
    Volume.PlaceRecord(Record(40, 5, u"live").AddData({.Runs = {{3, 2046}}}));
    Volume.PlaceRecord(Record(41, 5, u"far").AddData({.Runs = {{std::uint64_t{1} << 40U, 2046}}}));
    Volume.PlaceRecord(Record(42, 5, u"behind").AddData({.Runs = {{2, 600}, {2, 3000}}}));
    EXPECT_EQ(Conditions(), (Texts{{40, "partly 33 %"}, {41, "partly 1 %"}, {42, "partly 50 %"}}));
    Volume.Image().resize(Volume.Geometry().OffsetOf(2000)); // the medium ends first
    Add(50, {{3, 1998}});
    EXPECT_EQ(Conditions(),
              (Texts{{40, "overwritten"}, {41, "overwritten"}, {42, "partly 50 %"}, {50, "partly 66 %"}}));
}

TEST_F(ConditionTest, RecordsOfAnOlderTableAreJudgedThoughTheyCallThemselvesLive) {
    const RecordBuilder old = Record(70, 5, u"old").AddData({.Runs = {{2, 899}}});
    Volume.PutClusters(1500, old.Finish());
    Volume.PutClusters(1501, old.Finish());
    Volume.PutClusters(1502, Record(71, 5, u"older").AddData({.Runs = {{4, 700}}}).Finish());
    Volume.PlaceRecord(Record(72, 5, u"in its place").AddData({.Runs = {{2, 703}}}));
    EXPECT_EQ(Conditions(Turbo), (Texts{{70, "partly 50 %+partly 50 %"}, {71, "partly 75 %"}}));
    Engine.TableBytes = 72 * 1024; // what lies behind in its clusters is of an older one too
    EXPECT_EQ(Conditions(Turbo)[72], "partly 50 %");
    Engine.TableCut = true;
    EXPECT_EQ(Conditions(Turbo).count(72), 0U);
    Engine.TableCut = false;
    SetTableRuns({});
    EXPECT_EQ(Conditions(Turbo), Texts()) << "no table to tell";
}

} // namespace

} // namespace thntfs::test
