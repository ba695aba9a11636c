#include "content/EntryListFile.h"

#include "catalogue/EntryBatch.h"
#include "catalogue/EntryWalk.h"
#include "catalogue/FindEntry.h"
#include "content/EntryLists.h"
#include "engine/EngineState.h"
#include "engine/Host.h"
#include "platform/files/File.h"
#include "platform/system/Text.h"

#include <algorithm>
#include <span>

namespace thntfs {

namespace {

constexpr std::size_t kBytesAtATime = std::size_t{1} << 16;
constexpr std::size_t kListedAtATime = 4096;
constexpr std::uint64_t kListedToReport = 256;

/// Takes entries one by one and writes them a piece at a time.
class ListWriter {
public:
    ListWriter(const EntryListWish& wish, File& file, std::uint64_t expected)
        : wish_(wish)
        , file_(file) {
        Engine.ProgressTotal = expected;
        Engine.ProgressDone = 0;
        text_ = wish.BodyFile ? std::string_view() : kEntryCsvHeader;
    }

    /// False once nothing more is wanted.
    bool Take(const CatalogueItem& item, const std::string& path) {
        if (Engine.ProgressDone++ % kListedToReport == 0) {
            Host().PassGate();
            Host().JobProgress();
        }
        outcome_.Stopped = Engine.ScanRunFlag == 0;
        if (item.EntryId != kRootEntryId && outcome_.Done()) {
            Append(item, path);
        }
        return outcome_.Done();
    }

    EntryListOutcome Finish() {
        Flush();
        return outcome_;
    }

private:
    void Append(const CatalogueItem& item, const std::string& path) {
        if (wish_.BodyFile) {
            bodyFile_.Append(text_, item, path);
        } else {
            AppendEntryCsv(text_, item, path);
        }
        ++outcome_.Entries;
        if (text_.size() >= kBytesAtATime) {
            Flush();
        }
    }

    void Flush() {
        if (outcome_.Code == kErrorNone) {
            outcome_.Code =
                file_.Write(ConstBytes(reinterpret_cast<const std::uint8_t*>(text_.data()), text_.size()));
        }
        text_.clear();
    }

    const EntryListWish& wish_;
    File& file_;
    std::string text_;
    BodyFileLines bodyFile_;
    EntryListOutcome outcome_;
};

void WriteBelow(std::uint32_t folderId, ListWriter& writer) {
    for (const LocatedEntry& folder : LocateEntries({folderId})) {
        EntryWalk walk(StartAt(folder));
        while (walk.Next() && writer.Take(walk.Item(), walk.Path())) {
        }
    }
}

void WriteRows(const EntryListWish& wish, ListWriter& writer) {
    EntryBatch batch;
    CatalogueItem item;
    const std::span<const std::uint32_t> ids(wish.EntryIds);
    for (std::size_t from = 0; from < ids.size(); from += kListedAtATime) {
        const std::size_t count = std::min(kListedAtATime, ids.size() - from);
        batch.Load(ids.subspan(from, count));
        for (std::size_t place = 0; place < count; ++place) {
            const std::string& folder = wish.FolderPaths[wish.FolderOf[from + place]];
            if (batch.Take(place, item) != 0 && !writer.Take(item, folder + NarrowText(item.Name))) {
                return;
            }
        }
    }
}

} // namespace

EntryListOutcome WriteEntryList(const EntryListWish& wish, File& file) {
    ListWriter writer(wish, file, wish.Below ? CatalogueEntryCount() : wish.EntryIds.size());
    if (wish.Below) {
        WriteBelow(*wish.Below, writer);
    } else {
        WriteRows(wish, writer);
    }
    return writer.Finish();
}

} // namespace thntfs
