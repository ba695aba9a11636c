#include "catalogue/CountBelow.h"

#include "catalogue/CatalogueFixture.h"
#include "catalogue/CatalogueReader.h"

#include <deque>
#include <random>

namespace thntfs::test {

namespace {

using CountBelowTest = CatalogueFixture;
using Counts = std::array<std::uint64_t, 3>;

Counts Counted(std::uint32_t blockOffset, std::uint64_t steps = ~std::uint64_t{0}) {
    const BelowCounts below =
        CountBelow(blockOffset, [&steps](const BelowCounts& /*soFar*/) { return steps-- != 0; });
    return {below.Bytes, below.Files, below.Folders};
}

// Folder by folder, as lists show them.
Counts ListedBelow(std::uint32_t blockOffset) {
    Counts counts{};
    std::uint32_t files = 0;
    std::uint32_t folders = 0;
    for (std::deque<std::uint32_t> left{blockOffset}; !left.empty(); left.pop_front()) {
        for (const CatalogueItem& folder : ListFolder(left.front(), counts[0], files, folders, false)) {
            left.push_back(folder.BlockOffset);
        }
    }
    return {counts[0], files, folders};
}

} // namespace

TEST_F(CountBelowTest, IsWhatListsAddUpTo) {
    std::mt19937 random(3);
    HandWritten catalogue;
    std::vector<FolderIndexNode*> folders{&HandWritten::Root()};
    for (std::uint32_t i = 0; i < 40000; ++i) {
        FolderIndexNode& parent = *folders[random() % folders.size()];
        if (random() % 40 == 0) {
            folders.push_back(&catalogue.AddFolder(parent, 100 + i, u"folder", true, random() % 5));
        } else {
            catalogue.AddFile(parent, u"file", random());
        }
    }
    std::vector<std::uint32_t> starts;
    for (const FolderIndexNode* folder : folders) {
        starts.push_back(folder->BlockOffset);
    }
    const FolderIndexNode& loop = catalogue.AddFolder(HandWritten::Top(), 99, u"loop");
    FolderIndexNode& damaged = *Engine.Folders->FindOrAddFolder(99).Node;
    AddChild(damaged, loop.EntryId);
    AddChild(damaged, catalogue.AddFile(damaged, u"twice", 7));
    const std::uint32_t loopStart = loop.BlockOffset;
    catalogue.Finish();
    for (const std::uint32_t start : starts) {
        EXPECT_EQ(Counted(start), ListedBelow(start));
    }
    EXPECT_EQ(Counted(loopStart), (Counts{7, 1, 1}));
    EXPECT_EQ(Counted(starts[0], 0), Counts{});
    const Counts part = Counted(starts[0], 1);
    EXPECT_TRUE(part[1] > 0 && part[1] < 20000) << part[1];
}

} // namespace thntfs::test
