#include "content/Lznt1Chunks.h"
#include "content/SaveFixture.h"
#include "mount/FillIndex.h"
#include "mount/MountHost.h"
#include "mount/MountedVolume.h"

namespace thntfs::test {

namespace {

using Node = MountIndex::Node;

/// A scanned volume, and its tree as it would be mounted.
class MountTest : public SaveFixture {
protected:
    void Show(const SaveOptions& options = {}, FurtherNamesBy by = FurtherNamesBy::Scan) {
        Scan();
        if (by == FurtherNamesBy::Records) {
            Engine.FurtherParents = {};
        }
        EXPECT_TRUE(FillIndex(Index.emplace(), options, by));
        Mounted.emplace(*Index);
    }

    /// As PathsIn gives what a save has made: all paths, folders with a slash behind them, sorted.
    [[nodiscard]] std::string Paths() const {
        std::set<std::string> paths;
        for (Node node = 1; node < Index->Count(); ++node) {
            std::string path(Index->NameOf(node));
            path += Index->IsFolder(node) ? "/" : "";
            for (Node above = Index->ParentOf(node); above != 0; above = Index->ParentOf(above)) {
                path.insert(0, std::string(Index->NameOf(above)) + "/");
            }
            paths.insert(path);
        }
        std::string all;
        for (const std::string& path : paths) {
            all += path + " ";
        }
        return all;
    }

    [[nodiscard]] Node NodeAt(std::string_view name) const { return Index->Find(0, name).value(); }

    /// What comes of a read: "N bytes" that are right, "!" behind it where it failed.
    std::string Read(MountedFile& file, const ByteVector& content, std::uint64_t offset, std::size_t size) {
        ByteVector buffer(size, 7);
        const MountedPiece piece = Mounted->Read(file, offset, buffer);
        const auto from = content.begin() + static_cast<std::ptrdiff_t>(offset);
        const bool right =
            std::equal(buffer.begin(), buffer.begin() + static_cast<std::ptrdiff_t>(piece.Bytes), from);
        return (right ? "" : "wrong ") + std::to_string(piece.Bytes) + (piece.Failed ? "!" : "");
    }

    /// "name=value" of each attribute, a blank behind.
    std::string Attributes(Node node, std::size_t most = 100) {
        std::string text;
        for (const std::string& name : Mounted->AttributesOf(node)) {
            std::string value = "too large";
            EXPECT_NE(Mounted->Attribute(node, name, most, value), MountedVolume::Got::NoSuch);
            text += name + "=" + value + " ";
        }
        return text;
    }

    std::optional<MountIndex> Index;
    std::optional<MountedVolume> Mounted;
};

} // namespace

TEST(MountIndexTest, ManyNamesInFewFolders) {
    MountIndex index;
    const Node folder = *index.AddFolder(MountIndex::kRoot, index.Keep("folder"), 10);
    for (std::uint32_t i = 0; i < 1000; ++i) {
        const std::string name = "n" + std::to_string(i);
        ASSERT_TRUE(index.AddFile(i % 2 == 0 ? folder : 0, index.Keep(name), 100 + i));
        EXPECT_FALSE(index.AddFolder(i % 2 == 0 ? folder : 0, index.Keep(name), 5));
    }
    std::uint32_t wanted = 0;
    for (Node node = index.FirstIn(folder); node != 0; node = index.NextOf(node), wanted += 2) {
        EXPECT_EQ(index.NameOf(node), "n" + std::to_string(wanted));
        EXPECT_EQ(index.EntryOf(node), 100 + wanted);
        EXPECT_EQ(index.Find(folder, index.NameOf(node)), node);
        EXPECT_EQ(index.Find(0, index.NameOf(node)), std::nullopt);
    }
    EXPECT_EQ(wanted, 1000U);
    const Node file = *index.Find(0, "n7");
    const Node link = *index.AddLink(folder, index.Keep("link"), file);
    EXPECT_EQ(index.TargetOf(link), file);
    EXPECT_EQ(index.EntryOf(link), 107U);
    EXPECT_EQ(index.NamesOf(file), 2U);
    EXPECT_EQ(index.FirstIn(*index.AddFolder(link, index.Keep("empty"), 1)), 0U);
}

// Two of one name, one that no file system takes, further names before and behind their folders, lost
// folders.
TEST_F(MountTest, TheTreeIsWhatASaveMakes) {
    Volume.AddFolder({.Number = 40, .Name = u"gone", .Live = false});
    Volume.AddFile({.Number = 41, .Parent = 40, .Name = u"a:b", .Content = BytesOf("text"), .Live = false});
    Volume.AddFile({.Number = 42, .Name = u"two.txt", .Content = BytesOf("1")});
    Volume.AddFile({.Number = 43, .Name = u"two.txt", .Content = BytesOf("2"), .Live = false});
    Volume.AddFile({.Number = 44, .Parent = 900, .Name = u"lost", .Content = BytesOf("3"), .Live = false});
    Volume.AddFile({.Number = 45, .Name = u"two (2).txt", .Content = BytesOf("4"), .Live = false});
    Volume.PlaceRecord(Record(46, 48, u"x").AddFileName(NameIn(5, u"two.txt")).AddData(BytesOf("5")));
    Volume.PlaceRecord(Record(47, 5, u"y").AddFileName(NameIn(48, u"z")).AddData(BytesOf("6")));
    Volume.AddFolder({.Number = 48, .Name = u"later"});
    for (const SaveReach reach : {SaveReach::All, SaveReach::DeletedOnly, SaveReach::ExistingOnly}) {
        const SaveOptions options{.Reach = reach};
        Show(options);
        fs::remove_all(Target);
        (void)SaveLoose(options);
        EXPECT_EQ(Paths(), PathsIn(Saved()));
        Show(options, FurtherNamesBy::Records);
        EXPECT_EQ(Paths(), PathsIn(Saved()));
        EXPECT_EQ(Paths().find("#900/lost") != std::string::npos, reach != SaveReach::ExistingOnly);
    }
    EXPECT_EQ(Index->NamesOf(Index->TargetOf(NodeAt("y"))), 2U);
    Engine.ScanRunFlag = 0;
    MountIndex stopped;
    EXPECT_FALSE(FillIndex(stopped, {}, FurtherNamesBy::Records));
}

TEST_F(MountTest, WhatAFileIsToldOf) {
    const ByteVector stream = PatternBytes(101);
    Volume.PlaceRecord(Record(40, 5, u"file")
                           .AddData(BytesOf("text"))
                           .AddData(BytesOf("[zone]"), u"Zone.Identifier")
                           .AddData(stream, u"large"));
    Volume.AddFile(
        {.Number = 41, .Name = u"gone", .Content = PatternBytes(5000), .InClusters = true, .Live = false});
    Volume.AddFile({.Number = 42, .Name = u"damaged", .Content = BytesOf("12345")});
    Show();
    const Node file = NodeAt("file");
    const MountedFacts facts = Mounted->FactsOf(file);
    EXPECT_TRUE(facts.Known && facts.Size == 4 && facts.Times.Modified == EqualTimes().Modified);
    EXPECT_EQ(Attributes(file),
              "user.Zone.Identifier=[zone] user.large=too large user.th-ntfs.condition=whole ");
    std::string value;
    EXPECT_EQ(Mounted->Attribute(file, "user.large", 100, value), MountedVolume::Got::TooLarge);
    EXPECT_EQ(Mounted->Attribute(file, "user.large", 101, value), MountedVolume::Got::Value);
    EXPECT_EQ(value, std::string(stream.begin(), stream.end()));
    for (const char* name : {"user.", "user.other", "security.capability"}) {
        EXPECT_EQ(Mounted->Attribute(file, name, 100, value), MountedVolume::Got::NoSuch) << name;
    }
    EXPECT_EQ(Mounted->FactsOf(NodeAt("gone")).Allocated, 5000U);
    EXPECT_EQ(Attributes(NodeAt("gone")), "user.th-ntfs.condition=unknown user.th-ntfs.deleted=yes ");
    EXPECT_EQ(Attributes(0), "");

    Volume.Image()[Volume.RecordSector(42) * 512] ^= 0xFFU;
    const MountedFacts damaged = Mounted->FactsOf(NodeAt("damaged"));
    EXPECT_TRUE(!damaged.Known && damaged.Size == 5);
    EXPECT_EQ(Mounted->Open(NodeAt("damaged")), nullptr);
    EXPECT_EQ(Attributes(NodeAt("damaged")), "user.th-ntfs.condition=whole ");
}

TEST_F(MountTest, OnlyWhatCannotBeHadFails) {
    const ByteVector plain = PatternBytes(20000);
    const ByteVector text(40000, 'a');
    ByteVector packed = CompressLznt1(text);
    const std::uint64_t clusters = Volume.AllocateClusters(40);
    Volume.PutClusters(clusters, plain);
    Volume.PutClusters(clusters + 8, packed);
    Volume.PutClusters(clusters + 12, packed);
    const std::uint64_t packedClusters = (packed.size() + 4095) / 4096;
    ByteVector units = text;
    units.resize(65536);
    units.insert(units.end(), text.begin(), text.end());
    Volume.PlaceRecord(Record(40, 5, u"plain").AddData({.Runs = {{5, clusters}}, .RealSize = 20000}));
    Volume.PlaceRecord(Record(41, 5, u"units")
                           .AddData({.Runs = {{packedClusters, clusters + 8},
                                              {16 - packedClusters, {}},
                                              {packedClusters, clusters + 12},
                                              {16 - packedClusters, {}}},
                                     .Flags = 1,
                                     .CompressionExponent = 4,
                                     .RealSize = units.size()}));
    Volume.PlaceRecord(
        Record(42, 5, u"behind").AddData({.Runs = {{1, clusters}, {1, 1U << 30U}}, .RealSize = 8000}));
    Show();
    const MountHost host;
    const std::uint64_t sector = SectorOfCluster(clusters);
    Plan->Rules = {{.FirstSector = sector + 10},
                   {.FirstSector = SectorOfCluster(clusters + 12), .Code = kErrorIoDevice}};

    const auto file = Mounted->Open(NodeAt("plain"));
    EXPECT_EQ(Read(*file, plain, 0, 5120), "5120");
    EXPECT_EQ(Read(*file, plain, 1000, 9000), "4120!");
    EXPECT_EQ(Read(*file, plain, 5120, 512), "0!");
    EXPECT_EQ(Read(*file, plain, 5632, 30000), "14368");
    EXPECT_EQ(Read(*file, plain, 20000, 10), "0");
    for (int again = 0; again < 2; ++again) {
        const auto compressed = Mounted->Open(NodeAt("units"));
        EXPECT_EQ(Read(*compressed, units, 60000, 9000), "5536!");
        EXPECT_EQ(Read(*compressed, units, 65536, 10), "0!");
        EXPECT_EQ(Read(*compressed, units, 70000, 10), "0!") << "a unit that is kept";
        EXPECT_EQ(Read(*compressed, units, 0, 65536), "65536");
    }
    const auto behind = Mounted->Open(NodeAt("behind"));
    EXPECT_EQ(Read(*behind, plain, 0, 8000), "4096");
    EXPECT_EQ(Read(*behind, plain, 4096, 8000), "0!");
    EXPECT_EQ(Mounted->NextHole(*behind, 0), 8000U) << "no program is to take it for a hole";
    EXPECT_EQ(Reports.Pauses + Reports.Boxes.size(), 0U);

    Plan->Rules = {{.FirstSector = 0, .SectorCount = 1U << 30U, .Code = kErrorNotReady}};
    EXPECT_EQ(Read(*file, plain, 0, 512), "0!");
    EXPECT_EQ(Mounted->Open(NodeAt("plain")), nullptr);
    EXPECT_FALSE(Mounted->FactsOf(NodeAt("plain")).Known);
    EXPECT_EQ(Reports.Boxes.size(), 0U);
}

} // namespace thntfs::test
