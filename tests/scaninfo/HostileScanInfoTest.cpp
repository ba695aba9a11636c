#include "catalogue/FindEntry.h"
#include "scaninfo/ScanInfoFixture.h"

namespace thntfs::test {

namespace {

class HostileScanInfoTest : public ScanInfoFixture {};

TEST_F(HostileScanInfoTest, EveryCutIsRefused) {
    laid_.Candidates = {{1, 1, 8}, {2, 2, 8}};
    ByteVector bytes = LayTreeInfo(laid_);
    for (std::size_t length = 0; length < bytes.size(); length += 7) {
        ExpectFailedLoad(ConstBytes(bytes).first(length));
    }
    bytes.resize(bytes.size() + 100); // what lies behind the end is nobody's
    EXPECT_TRUE(LoadTree(bytes).Done);
}

TEST_F(HostileScanInfoTest, SizesThatCannotBeTrue) {
    const ByteVector good = LayTreeInfo(laid_);
    const std::size_t tree = 620 + 76 + 16 + 4;
    const std::size_t entries = tree + 8 + laid_.Tree.size() + 4;
    const std::size_t names = entries + 8 + laid_.Entries.size() + 4;
    for (const std::size_t at : {tree, entries, names}) {
        for (const std::uint64_t size :
             {~std::uint64_t{0}, std::uint64_t{1} << 32U, std::uint64_t{good.size()}}) {
            ByteVector bytes = good;
            Lay(bytes, at, 8, size);
            ExpectFailedLoad(bytes);
        }
    }
    ByteVector large = good;
    Lay(large, tree, 8, kMaxCatalogueFileBytes + 1);
    WriteFileBytes(At("large.tht"), large);
    fs::resize_file(At("large.tht"), kMaxCatalogueFileBytes * 2); // it is there
    EXPECT_FALSE(LoadTreeInfo(At("large.tht")).Done);
    EXPECT_EQ(Stored(kTreeFileName).size(), laid_.Tree.size()) << "of the file before";
}

TEST_F(HostileScanInfoTest, SectorAndRecordSizes) {
    for (const unsigned sectorBytes : {0U, 1U, 256U, 513U, 0xFFFFU}) {
        laid_.BytesPerSector = static_cast<std::uint16_t>(sectorBytes);
        ExpectFailedLoad(LayTreeInfo(laid_));
        EXPECT_FALSE(LoadPartitions(LayPartitionInfo(laid_)).Done);
    }
    laid_.BytesPerSector = 4096;
    for (const std::uint32_t recordBytes : {0x100001U, 0x80000000U, 0xFFFFFFFFU}) {
        laid_.FileRecordBytes = recordBytes;
        ExpectFailedLoad(LayTreeInfo(laid_));
    }
    for (const std::uint32_t recordBytes : {0U, 47U, 0x100000U}) {
        laid_.FileRecordBytes = recordBytes;
        EXPECT_TRUE(LoadTree(LayTreeInfo(laid_)).Done);
    }
}

TEST_F(HostileScanInfoTest, DescriptionsWithoutAnEnd) {
    ByteVector bytes = LayTreeInfo(laid_);
    std::fill_n(bytes.begin() + 4, 512, 'x');
    EXPECT_EQ(LoadTree(bytes).Medium.size(), 3U * 255);
    for (std::size_t i = 4; i < 516; i += 2) {
        Lay(bytes, i, 2, 0xD800); // halves of pairs
    }
    EXPECT_NE(LoadTree(bytes).Code, kErrorNone);
    ExpectReset();
}

TEST_F(HostileScanInfoTest, ChainsThatLoopOrBelongToAnotherFolder) {
    struct ChainCase {
        const char* What;
        std::size_t At; ///< in TreeFile
        std::uint32_t Value;
    };
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
        EXPECT_EQ(Paths(), kPaths);
    }
}

TEST_F(HostileScanInfoTest, FoldersThatShareAChainKeepOne) {
    LayEntry(laid_, 42, 5, 256, true, u"thief");
    LayEntry(laid_, 43, 5, 0, true, u"top again");
    LayEntry(laid_, 44, 5, 130, true, u"askew");
    LayEntry(laid_, 45, 5, 0x7FFFFF80, true, u"beyond");
    for (std::uint32_t child = 4; child < 8; ++child) {
        Lay(laid_.Tree, 128 + 12 + 4 * (child - 4), 4, child);
    }
    EXPECT_TRUE(LoadTree(LayTreeInfo(laid_)).Done);
    EXPECT_EQ(Paths(), (std::vector<std::string>{"", "/folder", "/folder/file.txt", "/thief", "/top again",
                                                 "/askew", "/beyond"}));
    EXPECT_TRUE(FindEntries("/top again/top again").empty());
}

TEST_F(HostileScanInfoTest, NamesAndEntriesThatLieOutside) {
    Laid laid = laid_;
    Lay(laid.Entries, 3 * 44 + 32, 4, 0xFFFFFFF0); // the file's name
    Lay(laid.Entries, 2 * 44 + 36, 2, 256);        // a unit more than a name has
    laid.Names.resize(600000, 'n');
    EXPECT_TRUE(LoadTree(LayTreeInfo(laid)).Done);
    const std::vector<std::string> paths = Paths();
    ASSERT_EQ(paths.size(), 3U);
    EXPECT_EQ(paths[1].size(), 1U + 6 + 8 + 3 * 241) << "255 units, most of them three bytes";
    EXPECT_EQ(paths[2], paths[1] + "/");

    for (std::size_t cut = 0; cut < laid_.Entries.size(); cut += 5) {
        laid = laid_;
        laid.Entries.resize(cut); // most of them no multiple of 44
        laid.Tree.resize(laid.Tree.size() - cut);
        EXPECT_TRUE(LoadTree(LayTreeInfo(laid)).Done);
        EXPECT_LE(Paths().size(), 4U);
    }
}

} // namespace

} // namespace thntfs::test
