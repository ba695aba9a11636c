#include "catalogue/FolderTree.h"

#include "catalogue/NaiveFolderTree.h"

#include <functional>
#include <gtest/gtest.h>
#include <random>

namespace thntfs::test {

namespace {

std::vector<std::uint32_t> PreOrder(const FolderTree& tree) {
    std::vector<std::uint32_t> keys;
    for (FolderIndexNode* node = tree.FolderRoot(); node != nullptr;
         node = FolderTree::NextInPreOrder(node)) {
        keys.push_back(node->RecordNumber);
    }
    return keys;
}

/// Height of a subtree, with its links and balances checked on the way.
int CheckedHeight(const FolderIndexNode* node) {
    if (node == nullptr) {
        return 0;
    }
    for (const FolderIndexNode* child : {node->Left, node->Right}) {
        EXPECT_TRUE(child == nullptr || child->Parent == node);
    }
    const int left = CheckedHeight(node->Left);
    const int right = CheckedHeight(node->Right);
    EXPECT_EQ(node->Balance, left - right) << node->RecordNumber;
    return 1 + std::max(left, right);
}

} // namespace

TEST(FolderTreeTest, HasTheShapeOfTheTextbook) {
    std::mt19937 random(7);
    struct Sequence {
        const char* Name;
        std::function<std::uint32_t(std::uint32_t)> KeyOf;
    };
    const Sequence sequences[] = {
        {"rising", [](std::uint32_t i) { return i; }},
        {"falling", [](std::uint32_t i) { return 100000 - i; }},
        {"from both ends", [](std::uint32_t i) { return i % 2 == 0 ? i : 0xFFFFFFFF - i; }},
        {"inwards", [](std::uint32_t i) { return i % 2 == 0 ? 50000 + i : 150000 - i; }},
        {"anywhere", [&random](std::uint32_t) { return static_cast<std::uint32_t>(random()); }},
        {"often the same", [&random](std::uint32_t) { return static_cast<std::uint32_t>(random() % 2000); }},
        {"same low bits", [](std::uint32_t i) { return i << 18U; }},
    };
    for (const Sequence& sequence : sequences) {
        SCOPED_TRACE(sequence.Name);
        FolderTree tree;
        NaiveFolderTree model;
        for (std::uint32_t i = 0; i < 6000; ++i) {
            const std::uint32_t key = sequence.KeyOf(i);
            tree.FindOrAddFolder(key);
            model.Insert(key);
            if (i < 100 || i == 5999) {
                ASSERT_EQ(PreOrder(tree), model.PreOrder()) << i;
            }
        }
        EXPECT_EQ(CheckedHeight(tree.FolderRoot()), model.Height());
        EXPECT_EQ(tree.Count(), model.PreOrder().size());
        EXPECT_EQ(tree.FolderRoot()->Parent, nullptr);
    }
}

TEST(FolderTreeTest, FindsWhatItHas) {
    FolderTree tree;
    EXPECT_EQ(tree.FolderRoot(), nullptr);
    const FolderTree::Found placed = tree.FindOrAddPlaceholder(9);
    EXPECT_TRUE(placed.Added);
    EXPECT_EQ(placed.Node->Placeholder, 1);
    placed.Node->BlockOffset = 256;
    for (std::uint32_t key = 10; key < 5000; ++key) {
        ASSERT_TRUE(tree.FindOrAddFolder(key).Added);
    }
    const FolderTree::Found again = tree.FindOrAddFolder(9);
    EXPECT_FALSE(again.Added);
    EXPECT_EQ(again.Node, placed.Node) << "nodes never move";
    EXPECT_EQ(again.Node->BlockOffset, 256U);
    EXPECT_EQ(again.Node->Placeholder, 1) << "its finder decides";
    EXPECT_FALSE(tree.FindOrAddPlaceholder(10).Added);
    EXPECT_EQ(tree.FindOrAddPlaceholder(10).Node->Placeholder, 0) << "a known folder stays one";
}

} // namespace thntfs::test
