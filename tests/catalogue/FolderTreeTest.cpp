#include "catalogue/FolderTree.h"

#include <functional>
#include <gtest/gtest.h>
#include <random>

namespace thntfs::test {

namespace {

// FNV-1a over the keys in pre-order, which tell the tree's shape.
std::uint64_t Digest(FolderTree& tree, std::uint64_t digest) {
    for (FolderIndexNode* node = tree.FolderRoot(); node != nullptr;
         node = FolderTree::NextInPreOrder(node)) {
        digest = (digest ^ node->RecordNumber) * 0x100000001B3;
    }
    return digest;
}

} // namespace

// The shape is an order on the disk, so that it must never change. These are the digests of a textbook's
// height-balanced tree, whose nodes know their heights and which rebalances on the way back up.
TEST(FolderTreeTest, HasTheShapeOfTheTextbook) {
    std::mt19937 random(7);
    const std::pair<std::function<std::uint32_t(std::uint32_t)>, std::uint64_t> sequences[] = {
        {[](std::uint32_t i) { return i; }, 0x3EB7A7A9A06116EC},
        {[](std::uint32_t i) { return 100000 - i; }, 0x97A2FFA3F2C247C2},
        {[](std::uint32_t i) { return i % 2 == 0 ? i : 0xFFFFFFFF - i; }, 0x4D6A62FDD9085900},
        {[](std::uint32_t i) { return i % 2 == 0 ? 50000 + i : 150000 - i; }, 0xE7BD7D3BB0D0FF18},
        {[&random](std::uint32_t) { return static_cast<std::uint32_t>(random()); }, 0xEE695538BAF25023},
        {[&random](std::uint32_t) { return static_cast<std::uint32_t>(random() % 2000); },
         0x2D73D3119C0E6421},
        {[](std::uint32_t i) { return i / 2; }, 0xDCBDFE21C3E24408},
        {[](std::uint32_t i) { return i << 18U; }, 0x28A92DE9B96B5076},
    };
    for (const auto& [keyOf, expected] : sequences) {
        FolderTree tree;
        std::uint64_t digest = 0;
        for (std::uint32_t i = 0; i < 6000; ++i) {
            tree.FindOrAddFolder(keyOf(i));
            if (i < 100 || i % 1000 == 999) {
                digest = Digest(tree, digest) ^ tree.Count();
            }
        }
        EXPECT_EQ(digest, expected) << std::hex << digest;
    }
}

TEST(FolderTreeTest, FindsWhatItHas) {
    FolderTree tree;
    EXPECT_EQ(tree.FolderRoot(), nullptr);
    const FolderTree::Found placed = tree.FindOrAddPlaceholder(9);
    EXPECT_TRUE(placed.Added);
    EXPECT_EQ(placed.Node->Placeholder, 1);
    for (std::uint32_t key = 10; key < 5000; ++key) {
        ASSERT_TRUE(tree.FindOrAddFolder(key).Added);
    }
    const FolderTree::Found again = tree.FindOrAddFolder(9);
    EXPECT_FALSE(again.Added);
    EXPECT_EQ(again.Node, placed.Node) << "nodes never move";
    EXPECT_EQ(again.Node->Placeholder, 1) << "its finder decides";
    EXPECT_FALSE(tree.FindOrAddPlaceholder(10).Added);
    EXPECT_EQ(tree.FindOrAddPlaceholder(10).Node->Placeholder, 0) << "a known folder stays one";
}

} // namespace thntfs::test
