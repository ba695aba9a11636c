#include "cli/EntryText.h"

#include "cli/Output.h"
#include "platform/system/Dates.h"
#include "platform/system/Text.h"

#include <nlohmann/json.hpp>

namespace thntfs {

namespace {

constexpr std::size_t kSizeColumns = 14;
constexpr std::size_t kDateColumns = 10;

void AppendPadded(std::string& out, const std::string& text, std::size_t columns) {
    out.append(columns - std::min(columns, text.size()), ' ');
    out += text;
}

nlohmann::ordered_json DateJson(std::uint16_t dosDate) {
    const std::string date = IsoDate(dosDate);
    return date.empty() ? nlohmann::ordered_json(nullptr) : nlohmann::ordered_json(date);
}

} // namespace

void AppendEntryLine(std::string& out, const CatalogueItem& item, const std::string& path) {
    out += item.IsLive() ? "  " : "D ";
    AppendPadded(out, item.IsFolder() ? "-" : std::to_string(item.Size), kSizeColumns);
    out += "  ";
    AppendPadded(out, IsoDate(item.CreatedDate), kDateColumns);
    out += "  ";
    AppendPrintable(out, path);
    out += item.IsFolder() ? "/\n" : "\n";
}

void AppendEntryJson(std::string& out, const CatalogueItem& item, const std::string& path) {
    const nlohmann::ordered_json object = {{"id", item.EntryId},
                                           {"path", path},
                                           {"name", NarrowText(item.Name)},
                                           {"folder", item.IsFolder()},
                                           {"live", item.IsLive()},
                                           {"size", item.Size},
                                           {"record", item.RecordNumber},
                                           {"parent", item.ParentNumber},
                                           {"recordSector", item.RecordSector},
                                           {"flags", item.Flags},
                                           {"created", DateJson(item.CreatedDate)},
                                           {"accessed", DateJson(item.AccessedDate)}};
    out += object.dump();
    out += '\n';
}

} // namespace thntfs
