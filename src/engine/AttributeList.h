#pragma once

#include "engine/Attribute.h"
#include "engine/StoredRecords.h"

#include <functional>

namespace thntfs {

struct ReadOutcome;

/// One entry of an attribute list, read where it lies.
class AttributeListEntry {
public:
    explicit AttributeListEntry(ConstBytes entry)
        : entry_(entry) {}

    [[nodiscard]] std::uint32_t Type() const { return U32At(entry_, 0); }
    [[nodiscard]] std::uint16_t Length() const { return U16At(entry_, 4); }
    [[nodiscard]] bool Named() const { return U8At(entry_, 6) != 0 && U8At(entry_, 7) != 0; }
    /// First cluster of the piece within the attribute.
    [[nodiscard]] std::uint64_t StartVcn() const { return U64At(entry_, 8); }
    /// Low 32 bits of the reference to the record that holds the piece.
    [[nodiscard]] std::uint32_t RecordNumber() const { return U32At(entry_, 16); }
    [[nodiscard]] std::uint16_t AttributeId() const { return U16At(entry_, 24); }

private:
    ConstBytes entry_;
};

/// One element of a decoded attribute list.
struct AttributeListNode {
    std::uint32_t AttributeType = 0;
    std::uint64_t StartVcn = 0;
    std::uint32_t RecordNumber = 0;
    std::uint16_t AttributeId = 0;
};

AttributeListNode MakeListNode(const AttributeListEntry& entry);

/// What a visitor of list entries answers: go on with the next entry, or end this walk.
enum class ListStep { GoOn, End };
using ListVisitor = std::function<ListStep(const AttributeListEntry&)>;

/// Walks the entries in a span of bytes, by each entry's own length. An entry too short to hold its fields
/// ends the walk, so it always ends.
void WalkListEntries(ConstBytes bytes, const ListVisitor& visit);

/// Entries of a resident attribute list: from its value's start to the attribute's end.
void WalkResidentList(ConstBytes record, const Attribute& list, const ListVisitor& visit);

/// Told of each cluster's read once its entries have been visited; false ends the walk.
using ClusterVisitor = std::function<bool(const ReadOutcome&)>;

/// Entries of a non-resident attribute list, cluster by cluster, each read into a cleared buffer of
/// ClusterBytes; an entry doesn't reach into the next cluster. NTFS bounds an attribute list to 256 KiB: of a
/// larger cluster no more is read, nor are clusters beyond that. Passes CUserException on.
void WalkListRuns(const std::vector<MftExtent>& runs, const ListVisitor& visit,
                  const ClusterVisitor& afterCluster);

/// Entries of an attribute list of either form.
void WalkAttributeList(ConstBytes record, const Attribute& list, const ListVisitor& visit,
                       const ClusterVisitor& afterCluster);

} // namespace thntfs
