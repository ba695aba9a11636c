#include "cli/EntryText.h"

#include "catalogue/Conditions.h"
#include "cli/Output.h"
#include "platform/system/Dates.h"
#include "platform/system/Text.h"

#include <array>
#include <charconv>

namespace thntfs {

namespace {

constexpr std::size_t kSizeColumns = 14;
constexpr std::size_t kDateColumns = 10;
constexpr std::size_t kConditionColumns = 11; // "overwritten"

void AppendPadded(std::string& out, const std::string& text, std::size_t columns) {
    out.append(columns - std::min(columns, text.size()), ' ');
    out += text;
}

void AppendNumberField(std::string& out, std::string_view start, std::uint64_t number) {
    std::array<char, 20> digits{};
    out += start;
    out.append(digits.data(), std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr);
}

void AppendTextField(std::string& out, std::string_view start, std::string_view text) {
    out += start;
    out += '"';
    AppendJsonText(out, text);
    out += '"';
}

void AppendConditionFields(std::string& out, Condition condition) {
    if (condition.Kind == ConditionKind::None) {
        out += R"(,"condition":null)";
        return;
    }
    ((out += R"(,"condition":")") += ConditionWord(condition.Kind)) += '"';
    if (condition.Kind == ConditionKind::Partly) {
        AppendNumberField(out, R"(,"share":)", condition.Share);
    }
}

// Nothing is said of a live file that is whole.
void AppendConditionColumn(std::string& out, const CatalogueItem& item) {
    const std::string text = ConditionText(ConditionOf(item), item.IsLive());
    out += text;
    out.append(kConditionColumns - std::min(kConditionColumns, text.size()), ' ');
}

void AppendDateField(std::string& out, std::string_view start, std::uint16_t dosDate) {
    if (const std::string date = IsoDate(dosDate); date.empty()) {
        (out += start) += "null";
    } else {
        AppendTextField(out, start, date);
    }
}

} // namespace

void AppendEntryLine(std::string& out, const CatalogueItem& item, const std::string& path) {
    out += item.IsLive() ? "  " : "D ";
    AppendPadded(out, item.IsFolder() ? "-" : std::to_string(item.Size), kSizeColumns);
    out += "  ";
    AppendPadded(out, IsoDate(item.CreatedDate), kDateColumns);
    out += "  ";
    AppendConditionColumn(out, item);
    out += "  ";
    AppendPrintable(out, path);
    out += item.IsFolder() ? "/\n" : "\n";
}

// Field by field: objects of the JSON library took three times as long as all the rest of a listing.
void AppendEntryJson(std::string& out, const CatalogueItem& item, const std::string& path) {
    AppendNumberField(out, R"({"id":)", item.EntryId);
    AppendTextField(out, R"(,"path":)", path);
    AppendTextField(out, R"(,"name":)", NarrowText(item.Name));
    out += item.IsFolder() ? R"(,"folder":true)" : R"(,"folder":false)";
    out += item.IsLive() ? R"(,"live":true)" : R"(,"live":false)";
    AppendNumberField(out, R"(,"size":)", item.Size);
    AppendNumberField(out, R"(,"record":)", item.RecordNumber);
    AppendNumberField(out, R"(,"parent":)", item.ParentNumber);
    AppendNumberField(out, R"(,"recordSector":)", item.RecordSector);
    AppendNumberField(out, R"(,"flags":)", item.Flags);
    AppendDateField(out, R"(,"created":)", item.CreatedDate);
    AppendDateField(out, R"(,"accessed":)", item.AccessedDate);
    AppendConditionFields(out, ConditionOf(item));
    out += "}\n";
}

} // namespace thntfs
