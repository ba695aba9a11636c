#include "cli/CopyReport.h"

#include "disktools/CopySums.h"
#include "engine/EngineState.h"
#include "platform/system/SizeText.h"

#include <nlohmann/json.hpp>

namespace thntfs {

namespace {

constexpr std::size_t kShownRanges = 20;

/// Bad sectors that follow each other.
struct SectorRange {
    std::uint64_t First = 0;
    std::uint64_t Count = 0;
};

template <typename Take>
void ForEachBadRange(const CopyMap& map, Take take) {
    map.ForEach([&take](const Area& area) {
        if (area.State == AreaState::Bad) {
            const std::uint64_t first = area.First / Engine.SourceDisk.BytesPerSector;
            take(SectorRange{first, SectorsOf(area.End()) - first});
        }
    });
}

std::string RangeText(const SectorRange& range) {
    if (range.Count == 1) {
        return "sector " + std::to_string(range.First);
    }
    return "sectors " + std::to_string(range.First) + " to " + std::to_string(range.First + range.Count - 1) +
           " (" + std::to_string(range.Count) + ")";
}

void PutBadRanges(Output& output, const CopyReport& report, const CopyMap& map) {
    std::size_t ranges = 0;
    ForEachBadRange(map, [&](const SectorRange& range) {
        if (++ranges <= kShownRanges) {
            output.Put("  " + RangeText(range) + "\n");
        }
    });
    if (ranges > kShownRanges) {
        output.Put("  and " + CountText(ranges - kShownRanges, "more place", "more places") +
                   (report.MapPath.empty() ? "" : ", all of which the map names") + "\n");
    }
}

void PutText(Output& output, const CopyReport& report, const CopyMap& map) {
    const CopySums sums = SumsOf(map);
    std::string text = report.Work + (report.Failed || report.Stopped ? " Aborted\n" : " Completed\n");
    text += std::to_string(sums.Copied()) + " of " + CountText(sums.Total, "sector", "sectors") + " (" +
            ByteText(map.TotalBytes()) + ") copied to ";
    AppendPrintable(text, report.Target);
    text += "\n";
    if (sums.Unread != 0) {
        text += CountText(sums.Unread, "sector has", "sectors have") + " not been read yet";
        text += report.MapPath.empty() ? "\n" : "; --resume goes on from here\n";
    }
    if (sums.Bad != 0) {
        text += CountText(sums.Bad, "sector", "sectors") + " could not be read and " +
                (sums.Bad == 1 ? "is" : "are") + " zeros in the copy:\n";
    }
    output.Put(text);
    PutBadRanges(output, report, map);
    if (!report.MapPath.empty()) {
        std::string line = "Map: ";
        AppendPrintable(line, report.MapPath);
        output.Put(line + "\n");
    }
}

void PutReportJson(Output& output, const CopyReport& report, const CopyMap& map) {
    const CopySums sums = SumsOf(map);
    auto ranges = nlohmann::ordered_json::array();
    ForEachBadRange(map, [&ranges](const SectorRange& range) {
        ranges.push_back({{"first", range.First}, {"count", range.Count}});
    });
    const auto none = nlohmann::ordered_json(nullptr);
    const nlohmann::ordered_json object = {
        {"source", report.Source},
        {"target", report.Target},
        {"bytesPerSector", Engine.SourceDisk.BytesPerSector},
        {"sectors", sums.Total},
        {"copiedSectors", sums.Copied()},
        {"badSectors", sums.Bad},
        {"unreadSectors", sums.Unread},
        {"badRanges", ranges},
        {"complete", sums.Unread == 0 && !report.Failed},
        {"map", report.MapPath.empty() ? none : nlohmann::ordered_json(report.MapPath)}};
    output.Put(object.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\n");
}

} // namespace

void PrintCopyReport(Output& output, const CopyReport& report, const CopyMap& map, bool asJson) {
    if (asJson) {
        PutReportJson(output, report, map);
    } else {
        PutText(output, report, map);
    }
}

} // namespace thntfs
