#include "catalogue/CountBelow.h"

#include "catalogue/CatalogueFixture.h"
#include "catalogue/CatalogueReader.h"

#include <deque>
#include <random>

namespace thntfs::test {

using CountBelowTest = CatalogueFixture;

TEST_F(CountBelowTest, IsWhatListsAddUpTo) {
    std::mt19937 random(3);
    HandWritten catalogue;
    std::vector<FolderIndexNode*> nodes{&HandWritten::Root()};
    for (std::uint32_t i = 0; i < 40000; ++i) {
        FolderIndexNode& parent = *nodes[random() % nodes.size()];
        if (random() % 40 == 0) {
            nodes.push_back(&catalogue.AddFolder(parent, 100 + i, u"folder", true, random() % 5));
        } else {
            catalogue.AddFile(parent, u"file", random());
        }
    }
    FolderIndexNode& damaged = *nodes[7]; // a list shows twice what is in it twice
    AddChild(damaged, damaged.EntryId);
    AddChild(damaged, catalogue.AddFile(damaged, u"twice", 7));
    std::vector<std::uint32_t> starts;
    for (const FolderIndexNode* node : nodes) {
        starts.push_back(node->BlockOffset);
    }
    catalogue.Finish();
    for (std::size_t i = 8; i < starts.size(); ++i) {
        std::uint64_t bytes = 0;
        std::uint32_t files = 0;
        std::uint32_t folders = 0;
        for (std::deque<std::uint32_t> left{starts[i]}; !left.empty(); left.pop_front()) {
            for (const CatalogueItem& folder : ListFolder(left.front(), bytes, files, folders, false)) {
                left.push_back(folder.BlockOffset);
            }
        }
        const BelowCounts below = CountBelow(starts[i], [](const BelowCounts&) { return true; });
        EXPECT_TRUE(below.Bytes == bytes && below.Files == files && below.Folders == folders) << i;
    }
    const auto counted = [&](int steps) {
        return CountBelow(starts[0], [&steps](const BelowCounts&) { return steps-- != 0; }).Files;
    };
    EXPECT_EQ(counted(0), 0U);
    EXPECT_TRUE(counted(1) > 0 && counted(1) < 20000) << counted(1);
    EXPECT_EQ(counted(-1) + nodes.size() - 1, 40001U);
}

} // namespace thntfs::test
