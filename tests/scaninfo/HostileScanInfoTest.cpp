#include "catalogue/FindEntry.h"
#include "content/EntryContent.h"
#include "engine/LocateMft.h"
#include "scaninfo/ScanInfoFixture.h"
#include "support/MemoryFile.h"

#include <random>

namespace thntfs::test {

namespace {

constexpr const char* kInvalid = "Not a valid Partition scan information.";

class HostileScanInfoTest : public ScanInfoFixture {
protected:
    void ExpectInvalid(ConstBytes bytes) {
        const ScanInfoResult result = LoadTree(bytes);
        EXPECT_FALSE(result.Done);
        EXPECT_EQ(result.Text, kInvalid);
        ExpectReset();
    }

    /// All that is done with a loaded result: the walk with its totals, finding by path, listing of folders
    /// as the views do it, the content of each file. Gives the number of entries walked.
    static std::size_t UseLoaded() {
        Engine.ScanRunFlag = 1;
        std::vector<CatalogueItem> files;
        std::size_t count = 0;
        try {
            EntryWalk walk({}, WalkReach::Whole);
            while (walk.Next()) {
                ++count;
                std::uint64_t bytes = 0;
                std::uint32_t fileCount = 0;
                std::uint32_t folderCount = 0;
                ListFolder(walk.Item().BlockOffset, bytes, fileCount, folderCount, count % 2 == 0);
                if (count < 50) {
                    FindEntries(walk.Path());
                }
                if (!walk.Item().IsFolder() && files.size() < 10) {
                    files.push_back(ItemCopy(walk.Item()));
                }
            }
        } catch (const CUserException&) {
        }
        for (const CatalogueItem& item : files) {
            ReadContent(item);
        }
        Engine.ScanRunFlag = 0;
        return count;
    }

    static CatalogueItem ItemCopy(const CatalogueItem& item) {
        CatalogueItem copy;
        copy.RecordSector = item.RecordSector;
        copy.Size = item.Size;
        copy.Flags = item.Flags;
        return copy;
    }

    static void ReadContent(const CatalogueItem& item) {
        Engine.BytesWritten = 0;
        try {
            MemoryFile file;
            MissingData missing;
            ReadEntryContent(item, file, missing);
        } catch (const CUserException&) {
        }
    }
};

TEST_F(HostileScanInfoTest, EveryCutIsRefused) {
    laid_.Candidates = {{1, 1, 8}, {2, 2, 8}};
    const ByteVector good = LayTreeInfo(laid_);
    for (std::size_t length = 0; length < good.size(); length += length < 800 ? 1 : 7) {
        ExpectInvalid(ConstBytes(good).first(length));
    }
    ByteVector longer = good;
    longer.resize(good.size() + 100); // what lies behind the end is nobody's
    EXPECT_TRUE(LoadTree(longer).Done);
}

TEST_F(HostileScanInfoTest, LinksThatPromiseMoreThanTheFileHolds) {
    laid_.Candidates = {{1, 1, 8}};
    laid_.Extents = {{1, 1}};
    const ByteVector good = LayTreeInfo(laid_);
    for (const std::size_t link : {546U + 72U, 620U + 76U + 12U}) {
        ByteVector bytes = good;
        Lay(bytes, link, 4, 1);
        ExpectInvalid(bytes);
    }
    // Records to the end of the file, each with a link.
    ByteVector endless = good;
    endless.resize(546 + 76 * 100000 + 30, 0xFF);
    Lay(endless, 546 + 72, 4, 1);
    ExpectInvalid(endless);
}

TEST_F(HostileScanInfoTest, SizesThatCannotBeTrue) {
    const ByteVector good = LayTreeInfo(laid_);
    const std::size_t tree = 620 + 76 + 16 + 4;
    const std::size_t entries = tree + 8 + laid_.Tree.size() + 4;
    const std::size_t names = entries + 8 + laid_.Entries.size() + 4;
    for (const std::size_t at : {tree, entries, names}) {
        for (const std::uint64_t size : {std::uint64_t{1} << 63U, ~std::uint64_t{0}, std::uint64_t{1} << 32U,
                                         std::uint64_t{good.size()}}) {
            ByteVector bytes = good;
            Lay(bytes, at, 8, size);
            ExpectInvalid(bytes);
        }
    }
}

TEST_F(HostileScanInfoTest, SectorAndRecordSizes) {
    for (const unsigned sectorBytes : {0U, 1U, 3U, 256U, 511U, 513U, 0x1FFU, 0xFFFFU}) {
        laid_.BytesPerSector = static_cast<std::uint16_t>(sectorBytes);
        ExpectInvalid(LayTreeInfo(laid_));
        EXPECT_FALSE(LoadPartitions(LayPartitionInfo(laid_)).Done);
    }
    for (const unsigned sectorBytes : {512U, 1024U, 2048U, 4096U}) {
        laid_.BytesPerSector = static_cast<std::uint16_t>(sectorBytes);
        EXPECT_TRUE(LoadTree(LayTreeInfo(laid_)).Done);
    }
    for (const std::uint32_t recordBytes : {0x80000000U, 0xFFFFFFFFU, 0x1000000U}) {
        laid_.FileRecordBytes = recordBytes;
        ExpectInvalid(LayTreeInfo(laid_));
    }
    for (const std::uint32_t recordBytes : {0U, 1U, 47U, 4096U, 65536U}) {
        laid_.FileRecordBytes = recordBytes;
        EXPECT_TRUE(LoadTree(LayTreeInfo(laid_)).Done);
        UseLoaded();
    }
}

TEST_F(HostileScanInfoTest, DescriptionsWithoutAnEnd) {
    ByteVector bytes = LayTreeInfo(laid_);
    for (std::size_t i = 4; i < 516; ++i) {
        bytes[i] = 'x';
    }
    EXPECT_EQ(LoadTree(bytes).Medium.size(), 3U * 255);
    for (std::size_t i = 4; i < 516; i += 2) {
        Lay(bytes, i, 2, 0xD800); // halves of pairs
    }
    EXPECT_NE(LoadTree(bytes).Code, kErrorNone);
    ExpectReset();
}

TEST_F(HostileScanInfoTest, LongListsAreBoundedByTheFile) {
    laid_.Candidates.assign(200000, {1, 1, 8});
    laid_.Extents.assign(300000, {0, 0});
    EXPECT_TRUE(LoadTree(LayTreeInfo(laid_)).Done);
    EXPECT_EQ(Engine.SourceDisk.Partitions.size(), 200000U);
    EXPECT_EQ(Engine.VolumeParams.MftExtents.size(), 300000U);
    UseLoaded();
}

TEST_F(HostileScanInfoTest, ChainsThatLoopOrBelongToAnotherFolder) {
    struct ChainCase {
        const char* What;
        std::size_t At; ///< in TreeFile
        std::uint32_t Value;
    };
    const std::vector<std::string> all = {"", "/folder", "/folder/file.txt"};
    for (const ChainCase& damage : {ChainCase{"block that follows itself", 256 + 4, 256},
                                    {"chain that goes back to the top", 256 + 4, 0x80000000},
                                    {"chain that goes on in another's", 256 + 4, 128},
                                    {"chain that goes on between blocks", 256 + 4, 130},
                                    {"folder within itself", 256 + 12, 2},
                                    {"root within a folder", 256 + 12, 1},
                                    {"a child twice", 256 + 12, 3},
                                    {"a child that doesn't exist", 256 + 12, 0xFFFFFFFF}}) {
        SCOPED_TRACE(damage.What);
        Laid laid = laid_;
        Lay(laid.Tree, damage.At, 4, damage.Value);
        EXPECT_TRUE(LoadTree(LayTreeInfo(laid)).Done);
        EXPECT_EQ(Paths(), all);
        UseLoaded();
    }
}

TEST_F(HostileScanInfoTest, FoldersThatShareAChainKeepOne) {
    LayEntry(laid_, 42, 5, 256, true, u"thief");
    LayEntry(laid_, 43, 5, 0, true, u"top again");
    LayEntry(laid_, 44, 5, 130, true, u"askew");
    LayEntry(laid_, 45, 5, 0x7FFFFF80, true, u"beyond");
    Lay(laid_.Tree, 128 + 12, 4, 4);
    Lay(laid_.Tree, 128 + 16, 4, 5);
    Lay(laid_.Tree, 128 + 20, 4, 6);
    Lay(laid_.Tree, 128 + 24, 4, 7);
    EXPECT_TRUE(LoadTree(LayTreeInfo(laid_)).Done);
    EXPECT_EQ(Paths(), (std::vector<std::string>{"", "/folder", "/folder/file.txt", "/thief", "/top again",
                                                 "/askew", "/beyond"}));
    EXPECT_TRUE(FindEntries("/top again/top again").empty());
}

// Without the cut links this would take a walk of thousands of millions of blocks.
TEST_F(HostileScanInfoTest, ManyFoldersOnOneLongChain) {
    constexpr std::uint32_t kFolders = 20000;
    constexpr std::uint32_t kBlocks = 100000;
    Laid laid = laid_;
    laid.Tree.clear();
    laid.Entries.clear();
    laid.Tree.reserve(128 * kBlocks);
    for (std::uint32_t i = 0; i < kBlocks; ++i) {
        std::vector<std::uint32_t> slots;
        for (std::uint32_t child = 30 * i + 1; child <= 30 * i + 30 && child < kFolders; ++child) {
            slots.push_back(child);
        }
        LayBlock(laid.Tree, 0, 128 * (i + 1), slots);
    }
    for (std::uint32_t i = 0; i < kFolders; ++i) {
        LayEntry(laid, i, 0, i == 0 ? 0 : 128 * (kBlocks / 2), true, u"a");
    }
    EXPECT_TRUE(LoadTree(LayTreeInfo(laid)).Done);
    EXPECT_EQ(UseLoaded(), kFolders - 1);
    EXPECT_EQ(FindEntries("a/a/a/a/a/a/a/a").size(), 0U);
}

TEST_F(HostileScanInfoTest, NamesAndEntriesThatLieOutside) {
    Laid laid = laid_;
    Lay(laid.Entries, 3 * 44 + 32, 4, 0xFFFFFFF0); // the file's name
    Lay(laid.Entries, 2 * 44 + 36, 2, 0xFFFF);     // the folder's name is endless
    laid.Names.resize(600000, 'n');
    EXPECT_TRUE(LoadTree(LayTreeInfo(laid)).Done);
    const std::vector<std::string> paths = Paths();
    ASSERT_EQ(paths.size(), 3U);
    EXPECT_LE(paths[1].size(), 1U + 3 * 255);
    EXPECT_EQ(paths[2], paths[1] + "/");

    for (std::size_t cut = 0; cut < laid_.Entries.size(); ++cut) {
        laid = laid_;
        laid.Entries.resize(cut); // most of them no multiple of 44
        laid.Tree.resize(laid.Tree.size() - cut);
        EXPECT_TRUE(LoadTree(LayTreeInfo(laid)).Done);
        EXPECT_LE(UseLoaded(), 4U);
    }
}

class MutatedScanInfoTest : public HostileScanInfoTest {
protected:
    /// A file of a real volume in memory: folders, files in clusters and a compressed look-alike.
    ByteVector MakeGood() {
        VolumeBuilder volume;
        for (std::uint32_t i = 0; i < 8; ++i) {
            const std::u16string name(3, static_cast<char16_t>(u'a' + i));
            volume.AddFolder({.Number = 40 + i, .Parent = i == 0 ? 5 : 39 + i, .Name = name});
            volume.AddFile({.Number = 60 + i,
                            .Parent = 40 + i,
                            .Name = name + u".bin",
                            .Content = PatternBytes(i % 2 == 0 ? 3000 * (i + 1) : 300),
                            .InClusters = i % 2 == 0});
        }
        volume.WriteTo(ImagePath());
        const std::uint64_t sectors = volume.Geometry().MediumSectors();
        laid_ = Laid{};
        laid_.Description = ImagePath();
        laid_.TotalSectors = sectors;
        laid_.Candidates = {{128, 16383, 8}, {128, 1, 8}};
        laid_.Extents = {{64, 4}, {0, 0}};
        LayBlock(laid_.Tree, 0, 0, {1});
        LayBlock(laid_.Tree, 5, 0, {2});
        LayEntry(laid_, 0, 0, 0, true, u"#");
        LayEntry(laid_, 5, 0, 128, true, u" Root");
        for (std::uint32_t i = 0; i < 8; ++i) {
            LayBlock(laid_.Tree, 40 + i, 0, {3 + 2 * i, i < 7 ? 4 + 2 * i : 0});
            LayEntry(laid_, 40 + i, i == 0 ? 5 : 39 + i, 256 + 128 * i, true, u"folder");
            LayEntry(laid_, 60 + i, 40 + i, 0, false, u"file", 3000 * (i + 1));
        }
        return LayTreeInfo(laid_);
    }
};

TEST_F(MutatedScanInfoTest, NothingCrashesHangsOrGrows) {
    const ByteVector good = MakeGood();
    ASSERT_TRUE(LoadTree(good).Done);
    ASSERT_EQ(UseLoaded(), 17U);
    std::mt19937 random(20261119);
    const auto below = [&random](std::size_t end) { return static_cast<std::size_t>(random() % end); };
    std::size_t loaded = 0;
    for (int round = 0; round < 4000; ++round) {
        ByteVector bytes = good;
        for (std::size_t changes = 1 + below(6); changes > 0; --changes) {
            // The path is left alone in most rounds: without a medium nothing loads.
            const std::size_t first = round % 16 == 0 ? 0 : 516;
            const std::size_t at = first + below(bytes.size() - first - 8);
            switch (below(4)) {
            case 0:
                bytes[at] = static_cast<std::uint8_t>(random());
                break;
            case 1:
                bytes[at] = static_cast<std::uint8_t>(bytes[at] ^ (1U << below(8)));
                break;
            case 2:
                Lay(bytes, at / 4 * 4, 4, below(2) == 0 ? 0xFFFFFFFF : below(2000));
                break;
            default:
                std::copy_n(bytes.begin() + static_cast<std::ptrdiff_t>(below(bytes.size() - 8)), 8,
                            bytes.begin() + static_cast<std::ptrdiff_t>(at));
            }
        }
        if (LoadTree(bytes).Done) {
            ++loaded;
            EXPECT_LE(UseLoaded(), 18U);
        } else {
            ExpectReset();
        }
    }
    EXPECT_GT(loaded, 1000U);
    EXPECT_LT(loaded, 4000U);
}

TEST_F(MutatedScanInfoTest, PartitionListsToo) {
    MakeGood();
    const ByteVector good = LayPartitionInfo(laid_);
    std::mt19937 random(7);
    for (int round = 0; round < 3000; ++round) {
        ByteVector bytes = good;
        bytes.resize(round % 5 == 0 ? random() % bytes.size() : bytes.size());
        for (std::size_t changes = random() % 6; changes > 0 && bytes.size() > 520; --changes) {
            bytes[516 + random() % (bytes.size() - 516)] = static_cast<std::uint8_t>(random());
        }
        const auto useEach = [] {
            for (const PartitionCandidate& candidate : Engine.SourceDisk.Partitions) {
                LoadVolumeParams(candidate);
                LocateMft();
            }
        };
        if (!LoadPartitions(bytes, useEach).Done) {
            ExpectReset();
        }
    }
}

} // namespace

} // namespace thntfs::test
