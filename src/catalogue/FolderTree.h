#pragma once

#include "platform/system/BigBlock.h"

#include <cstdint>
#include <vector>

namespace thntfs {

/// One folder that a scan has met, or has been told of by a child. It fills one memory line: with many
/// folders a lookup costs what fetching it costs.
struct alignas(64) FolderIndexNode {
    FolderIndexNode* Parent = nullptr;
    FolderIndexNode* Left = nullptr;  ///< keys below
    FolderIndexNode* Right = nullptr; ///< keys above
    std::uint32_t RecordNumber = 0;   ///< the key
    std::uint32_t EntryId = 0;        ///< the folder's entry; 0 while it is a placeholder
    std::uint32_t BlockOffset = 0;    ///< first block of its chain in TreeFile, bytes
    std::uint32_t LastBlock = 0;  ///< last block of the chain, which saves the walk along it for each child
    std::uint8_t UsedSlots = 0;   ///< of the last block
    std::uint8_t Placeholder = 0; ///< 1: named as a parent, its own record not met yet
    std::int8_t Balance = 0;      ///< +1 left subtree deeper, -1 right subtree deeper
};

/// The height-balanced tree of folders, keyed on the record number. Its shape matters beyond speed: lost
/// folders are catalogued in the pre-order of this tree. It follows from the order in which the nodes were
/// added, so that they are hung in when somebody asks for the root; a scan that lost no folder never does.
/// Nodes live as long as the tree and never move.
class FolderTree {
public:
    struct Found {
        FolderIndexNode* Node; ///< never null
        bool Added;
    };

    /// The node with a key, added and balanced in where it was missing. Throws std::bad_alloc.
    Found FindOrAddFolder(std::uint32_t recordNumber);
    /// The same; an added node is marked as a placeholder.
    Found FindOrAddPlaceholder(std::uint32_t recordNumber);

    /// Hints that a key will be looked up soon: the first fetches its place in the index, the second, called
    /// some lookups later, its node.
    void PrefetchSlot(std::uint32_t recordNumber) const;
    void PrefetchNode(std::uint32_t recordNumber) const;

    /// The node with a key, null where there is none.
    [[nodiscard]] FolderIndexNode* FindFolder(std::uint32_t recordNumber) const;

    [[nodiscard]] bool HasPlaceholders() const;

    /// The root of the tree of all nodes added so far; null of an empty one.
    FolderIndexNode* FolderRoot();
    [[nodiscard]] std::size_t Count() const { return nodes_.Count(); }

    /// The node that follows in the order node, left subtree, right subtree; null behind the last.
    static FolderIndexNode* NextInPreOrder(FolderIndexNode* node);

private:
    FolderIndexNode& NewNode(std::uint32_t recordNumber);
    void GrowSlots();
    void EnterSlot(std::uint32_t recordNumber, std::uint32_t place);
    [[nodiscard]] std::uint32_t PlaceOf(std::uint32_t recordNumber) const;
    void LinkIn(FolderIndexNode& added);
    void Rebalance(FolderIndexNode& pivot, FolderIndexNode& added);
    void TakePlace(FolderIndexNode& oldTop, FolderIndexNode& newTop);

    FolderIndexNode* root_ = nullptr;
    std::size_t hungIn_ = 0;               ///< of the nodes, those in the tree
    FolderIndexNode* lastFound_ = nullptr; ///< children of one folder often come in a row
    BigBlockPool<FolderIndexNode> nodes_;
    /// Open hashing beside the tree. A lookup touches one node in place of a path of them.
    struct Slot {
        std::uint32_t Key = 0;
        std::uint32_t Place = 0; ///< index of the node + 1, 0 for a free slot
    };
    std::vector<Slot> slots_;
};

} // namespace thntfs
