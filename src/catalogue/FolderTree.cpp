#include "catalogue/FolderTree.h"

#include <bit>
namespace thntfs {

namespace {

constexpr std::size_t kFirstSlots = 1024;

std::size_t SlotOf(std::uint32_t recordNumber, std::size_t slots) {
    const std::uint64_t spread = recordNumber * std::uint64_t{0x9E3779B97F4A7C15};
    return static_cast<std::size_t>(spread >> (64 - std::countr_zero(slots)));
}

// The side on which a balance of +1 means deeper: +1 is left, -1 is right.
FolderIndexNode*& Child(FolderIndexNode& node, int side) { return side > 0 ? node.Left : node.Right; }

void SetChild(FolderIndexNode& node, int side, FolderIndexNode* child) {
    Child(node, side) = child;
    if (child != nullptr) {
        child->Parent = &node;
    }
}

int SideOf(std::uint32_t key, const FolderIndexNode& node) { return key < node.RecordNumber ? 1 : -1; }

void SetBalance(FolderIndexNode& node, int balance) { node.Balance = static_cast<std::int8_t>(balance); }

} // namespace

FolderTree::Found FolderTree::FindOrAddFolder(std::uint32_t recordNumber) {
    if (lastFound_ != nullptr && lastFound_->RecordNumber == recordNumber) {
        return {lastFound_, false};
    }
    if (FolderIndexNode* known = FindFolder(recordNumber); known != nullptr) {
        lastFound_ = known;
        return {known, false};
    }
    return {&NewNode(recordNumber), true};
}

FolderTree::Found FolderTree::FindOrAddPlaceholder(std::uint32_t recordNumber) {
    const Found found = FindOrAddFolder(recordNumber);
    if (found.Added) {
        found.Node->Placeholder = 1;
    }
    return found;
}

void FolderTree::PrefetchSlot(std::uint32_t recordNumber) const {
    if (!slots_.empty()) {
        __builtin_prefetch(&slots_[SlotOf(recordNumber, slots_.size())]);
    }
}

void FolderTree::PrefetchNode(std::uint32_t recordNumber) const {
    if (const std::uint32_t place = PlaceOf(recordNumber); place != 0) {
        __builtin_prefetch(&nodes_.At(place - 1), 1);
    }
}

bool FolderTree::HasPlaceholders() const {
    for (std::size_t i = 0; i < nodes_.Count(); ++i) {
        if (nodes_.At(i).Placeholder != 0) {
            return true;
        }
    }
    return false;
}

FolderIndexNode* FolderTree::FolderRoot() {
    for (; hungIn_ < nodes_.Count(); ++hungIn_) {
        LinkIn(nodes_.At(hungIn_));
    }
    return root_;
}

FolderIndexNode* FolderTree::NextInPreOrder(FolderIndexNode* node) {
    if (node->Left != nullptr) {
        return node->Left;
    }
    if (node->Right != nullptr) {
        return node->Right;
    }
    while (node->Parent != nullptr) {
        FolderIndexNode* parent = node->Parent;
        if (parent->Left == node && parent->Right != nullptr) {
            return parent->Right;
        }
        node = parent;
    }
    return nullptr;
}

FolderIndexNode* FolderTree::FindFolder(std::uint32_t recordNumber) const {
    const std::uint32_t place = PlaceOf(recordNumber);
    return place != 0 ? &nodes_.At(place - 1) : nullptr;
}

std::uint32_t FolderTree::PlaceOf(std::uint32_t recordNumber) const {
    if (slots_.empty()) {
        return 0;
    }
    std::size_t slot = SlotOf(recordNumber, slots_.size());
    while (slots_[slot].Place != 0 && slots_[slot].Key != recordNumber) {
        slot = (slot + 1) & (slots_.size() - 1);
    }
    return slots_[slot].Place;
}

FolderIndexNode& FolderTree::NewNode(std::uint32_t recordNumber) {
    if ((nodes_.Count() + 1) * 4 > slots_.size() * 3) {
        GrowSlots();
    }
    FolderIndexNode& node = nodes_.Add();
    node.RecordNumber = recordNumber;
    EnterSlot(recordNumber, static_cast<std::uint32_t>(nodes_.Count()));
    return node;
}

void FolderTree::GrowSlots() {
    const std::size_t grown = slots_.empty() ? kFirstSlots : slots_.size() * 2;
    std::vector<Slot> old(grown);
    old.swap(slots_);
    for (const Slot& slot : old) {
        if (slot.Place != 0) {
            EnterSlot(slot.Key, slot.Place);
        }
    }
}

void FolderTree::EnterSlot(std::uint32_t recordNumber, std::uint32_t place) {
    std::size_t slot = SlotOf(recordNumber, slots_.size());
    while (slots_[slot].Place != 0) {
        slot = (slot + 1) & (slots_.size() - 1);
    }
    slots_[slot] = {recordNumber, place};
}

// Hangs a new node in its place, remembering the last node on the way down that isn't in balance.
void FolderTree::LinkIn(FolderIndexNode& added) {
    if (root_ == nullptr) {
        root_ = &added;
        return;
    }
    FolderIndexNode* pivot = root_;
    FolderIndexNode* parent = nullptr;
    for (FolderIndexNode* node = root_; node != nullptr;
         node = Child(*node, SideOf(added.RecordNumber, *node))) {
        if (node->Balance != 0) {
            pivot = node;
        }
        parent = node;
    }
    SetChild(*parent, SideOf(added.RecordNumber, *parent), &added);
    Rebalance(*pivot, added);
}

void FolderTree::Rebalance(FolderIndexNode& pivot, FolderIndexNode& added) {
    const std::uint32_t key = added.RecordNumber;
    const int deep = SideOf(key, pivot);
    FolderIndexNode& child = *Child(pivot, deep);
    for (FolderIndexNode* node = &child; node != &added;) {
        const int side = SideOf(key, *node);
        SetBalance(*node, side);
        node = Child(*node, side);
    }
    if (pivot.Balance == 0) {
        SetBalance(pivot, deep);
        return;
    }
    if (pivot.Balance == -deep) {
        SetBalance(pivot, 0);
        return;
    }
    if (child.Balance == deep) {
        TakePlace(pivot, child);
        SetChild(pivot, deep, Child(child, -deep));
        SetChild(child, -deep, &pivot);
        SetBalance(pivot, 0);
        SetBalance(child, 0);
        return;
    }
    FolderIndexNode& top = *Child(child, -deep);
    TakePlace(pivot, top);
    SetChild(child, -deep, Child(top, deep));
    SetChild(pivot, deep, Child(top, -deep));
    SetChild(top, deep, &child);
    SetChild(top, -deep, &pivot);
    SetBalance(pivot, top.Balance == deep ? -deep : 0);
    SetBalance(child, top.Balance == -deep ? deep : 0);
    SetBalance(top, 0);
}

void FolderTree::TakePlace(FolderIndexNode& oldTop, FolderIndexNode& newTop) {
    FolderIndexNode* above = oldTop.Parent;
    newTop.Parent = above;
    if (above == nullptr) {
        root_ = &newTop;
    } else {
        (above->Left == &oldTop ? above->Left : above->Right) = &newTop;
    }
}

} // namespace thntfs
