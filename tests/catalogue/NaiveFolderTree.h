#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>
#include <vector>

namespace thntfs::test {

/// A height-balanced tree as a textbook has it: every node knows its height, and insertion rebalances on the
/// way back up. Its shape is what FolderTree's must be.
class NaiveFolderTree {
public:
    void Insert(std::uint32_t key) { InsertBelow(root_, key); }

    [[nodiscard]] std::vector<std::uint32_t> PreOrder() const {
        std::vector<std::uint32_t> keys;
        Visit(root_, keys);
        return keys;
    }
    [[nodiscard]] int Height() const { return HeightOf(root_); }

private:
    struct Node {
        std::uint32_t Key;
        int Height = 1;
        std::unique_ptr<Node> Left;
        std::unique_ptr<Node> Right;
    };
    using Link = std::unique_ptr<Node>;

    static int HeightOf(const Link& link) { return link ? link->Height : 0; }
    static int Lean(const Link& link) { return HeightOf(link->Left) - HeightOf(link->Right); }
    static void Measure(const Link& link) {
        link->Height = 1 + std::max(HeightOf(link->Left), HeightOf(link->Right));
    }

    static void RotateRight(Link& top) {
        Link left = std::move(top->Left);
        top->Left = std::move(left->Right);
        Measure(top);
        left->Right = std::move(top);
        top = std::move(left);
        Measure(top);
    }

    static void RotateLeft(Link& top) {
        Link right = std::move(top->Right);
        top->Right = std::move(right->Left);
        Measure(top);
        right->Left = std::move(top);
        top = std::move(right);
        Measure(top);
    }

    static void InsertBelow(Link& link, std::uint32_t key) {
        if (!link) {
            link = std::make_unique<Node>();
            link->Key = key;
            return;
        }
        if (key == link->Key) {
            return;
        }
        InsertBelow(key < link->Key ? link->Left : link->Right, key);
        Measure(link);
        if (Lean(link) > 1) {
            if (Lean(link->Left) < 0) {
                RotateLeft(link->Left);
            }
            RotateRight(link);
        } else if (Lean(link) < -1) {
            if (Lean(link->Right) > 0) {
                RotateRight(link->Right);
            }
            RotateLeft(link);
        }
    }

    static void Visit(const Link& link, std::vector<std::uint32_t>& keys) {
        if (link) {
            keys.push_back(link->Key);
            Visit(link->Left, keys);
            Visit(link->Right, keys);
        }
    }

    Link root_;
};

} // namespace thntfs::test
