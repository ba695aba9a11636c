#include "catalogue/FolderTree.h"

#include <functional>
#include <gtest/gtest.h>
#include <random>

namespace thntfs::test {

namespace {

using Keys = std::vector<std::uint32_t>;

/// A height-balanced tree as a textbook has it: every node knows its height, and insertion rebalances on the
/// way back up. Its shape, which its pre-order tells, is what FolderTree's must be.
struct PlainNode {
    std::uint32_t Key;
    int Height = 1;
    std::unique_ptr<PlainNode> Child[2] = {};
};
using PlainTree = std::unique_ptr<PlainNode>;

int HeightOf(const PlainTree& tree) { return tree ? tree->Height : 0; }
void Measure(PlainNode& node) {
    node.Height = 1 + std::max(HeightOf(node.Child[0]), HeightOf(node.Child[1]));
}

// Brings the child on a side to the top.
void Rotate(PlainTree& tree, int side) {
    PlainTree child = std::move(tree->Child[side]);
    tree->Child[side] = std::move(child->Child[1 - side]);
    Measure(*tree);
    child->Child[1 - side] = std::move(tree);
    tree = std::move(child);
    Measure(*tree);
}

void Insert(PlainTree& tree, std::uint32_t key) {
    if (!tree) {
        tree = std::make_unique<PlainNode>(key);
    }
    if (key == tree->Key) {
        return;
    }
    const int side = key < tree->Key ? 0 : 1;
    PlainTree& deep = tree->Child[side];
    Insert(deep, key);
    Measure(*tree);
    if (HeightOf(deep) > HeightOf(tree->Child[1 - side]) + 1) {
        if (HeightOf(deep->Child[1 - side]) > HeightOf(deep->Child[side])) {
            Rotate(deep, 1 - side);
        }
        Rotate(tree, side);
    }
}

void AppendPreOrder(const PlainTree& tree, Keys& keys) {
    if (tree) {
        keys.push_back(tree->Key);
        AppendPreOrder(tree->Child[0], keys);
        AppendPreOrder(tree->Child[1], keys);
    }
}

Keys PreOrder(FolderTree& tree) {
    Keys keys;
    for (FolderIndexNode* node = tree.FolderRoot(); node != nullptr;
         node = FolderTree::NextInPreOrder(node)) {
        keys.push_back(node->RecordNumber);
    }
    return keys;
}

} // namespace

TEST(FolderTreeTest, HasTheShapeOfTheTextbook) {
    std::mt19937 random(7);
    const std::function<std::uint32_t(std::uint32_t)> sequences[] = {
        [](std::uint32_t i) { return i; },
        [](std::uint32_t i) { return 100000 - i; },
        [](std::uint32_t i) { return i % 2 == 0 ? i : 0xFFFFFFFF - i; },
        [](std::uint32_t i) { return i % 2 == 0 ? 50000 + i : 150000 - i; },
        [&random](std::uint32_t) { return static_cast<std::uint32_t>(random()); },
        [&random](std::uint32_t) { return static_cast<std::uint32_t>(random() % 2000); },
        [](std::uint32_t i) { return i / 2; },
        [](std::uint32_t i) { return i << 18U; },
    };
    for (const auto& keyOf : sequences) {
        SCOPED_TRACE(&keyOf - sequences);
        FolderTree tree;
        PlainTree model;
        for (std::uint32_t i = 0; i < 6000; ++i) {
            const std::uint32_t key = keyOf(i);
            tree.FindOrAddFolder(key);
            Insert(model, key);
            if (i < 100 || i % 1000 == 999) {
                Keys keys;
                AppendPreOrder(model, keys);
                ASSERT_EQ(PreOrder(tree), keys) << i;
                ASSERT_EQ(tree.Count(), keys.size());
            }
        }
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
