#include "views/FolderListing.h"

#include "catalogue/CatalogueReader.h"
#include "catalogue/EntryBatch.h"
#include "shell/ShownName.h"

#include <algorithm>
#include <span>

namespace thntfs {

namespace {

constexpr std::size_t kEntriesAtATime = 4096;

using Waiting = std::function<void(std::size_t done, std::size_t total)>;

std::vector<std::uint32_t> ChildrenOf(std::uint32_t blockOffset, const Waiting& waiting) {
    std::vector<bool> seen(static_cast<std::size_t>(CatalogueEntryCount()));
    std::vector<std::uint32_t> ids;
    ChildWalk children(blockOffset);
    for (std::uint32_t child = children.Next(); child != 0; child = children.Next()) {
        if (child < seen.size() && !seen[child]) {
            seen[child] = true;
            ids.push_back(child);
            if (ids.size() % kEntriesAtATime == 0) {
                waiting(0, 0);
            }
        }
    }
    return ids;
}

} // namespace

std::u16string_view FileRows::Name(std::size_t row) const {
    return std::u16string_view(Names).substr(Rows[row].NameStart, Rows[row].NameUnits);
}

void AppendRow(const CatalogueItem& item, std::uint32_t entryId, FileRows& rows) {
    FileRow row;
    row.Size = item.Size;
    row.NameStart = rows.Names.size();
    row.EntryId = entryId;
    row.RecordNumber = item.RecordNumber;
    row.ParentNumber = item.ParentNumber;
    row.CreatedDate = item.CreatedDate;
    row.AccessedDate = item.AccessedDate;
    row.NameUnits = KeepName(item.Name, rows.Names);
    row.Folder = item.IsFolder();
    row.Live = item.IsLive();
    row.State = ConditionOf(entryId, row.Folder, row.Live);
    rows.Rows.push_back(row);
}

FileRows ListRows(std::uint32_t blockOffset, const Waiting& waiting) {
    const std::vector<std::uint32_t> ids = ChildrenOf(blockOffset, waiting);
    FileRows rows;
    EntryBatch batch;
    CatalogueItem item;
    for (std::size_t from = 0; from < ids.size(); from += kEntriesAtATime) {
        const std::size_t count = std::min(kEntriesAtATime, ids.size() - from);
        const auto part = std::span(ids).subspan(from, count);
        batch.Load(part);
        for (std::size_t place = 0; place < part.size(); ++place) {
            if (batch.Take(place, item) != 0) {
                AppendRow(item, part[place], rows);
            }
        }
        waiting(from + count, ids.size());
    }
    std::stable_partition(rows.Rows.begin(), rows.Rows.end(), [](const FileRow& row) { return row.Folder; });
    return rows;
}

} // namespace thntfs
