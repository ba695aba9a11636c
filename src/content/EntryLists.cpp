#include "content/EntryLists.h"

#include "catalogue/Conditions.h"
#include "platform/system/Dates.h"
#include "platform/system/EscapedText.h"

#include <algorithm>

namespace thntfs {

namespace {

constexpr std::string_view kCsvSpecials = ",\"\r\n";
constexpr std::string_view kAllRights = "rwxrwxrwx";

// A line break within quotes is sound, but few programs read it.
void AppendCsvText(std::string& out, const std::string& text) {
    std::string printable;
    AppendPrintable(printable, text);
    if (printable.find_first_of(kCsvSpecials) == std::string::npos) {
        out += printable;
        return;
    }
    out += '"';
    for (const char letter : printable) {
        out.append(letter == '"' ? 2 : 1, letter);
    }
    out += '"';
}

void AppendNumber(std::string& out, char before, std::uint64_t number) {
    (out += before) += std::to_string(number);
}

// The format knows no way to write its own separator.
void AppendBodyName(std::string& out, const CatalogueItem& item, const std::string& path) {
    const std::size_t start = out.size();
    AppendPrintable(out, path);
    std::replace(out.begin() + static_cast<std::ptrdiff_t>(start), out.end(), '|', '^');
    out += item.IsLive() ? "" : " (deleted)";
}

} // namespace

void AppendEntryCsv(std::string& out, const CatalogueItem& item, const std::string& path) {
    const Condition condition = ConditionOf(item);
    AppendCsvText(out, path);
    out += item.IsFolder() ? ",1" : ",0";
    out += item.IsLive() ? ",0" : ",1";
    AppendNumber(out, ',', item.Size);
    (out += ',') += IsoDate(item.CreatedDate);
    (out += ',') += IsoDate(item.AccessedDate);
    out += ',';
    if (condition.Kind != ConditionKind::None) {
        out += ConditionWord(condition.Kind);
    }
    out += ',';
    if (condition.Kind == ConditionKind::Partly) {
        out += std::to_string(condition.Share);
    }
    AppendNumber(out, ',', item.RecordNumber);
    AppendNumber(out, ',', item.ParentNumber);
    out += "\r\n";
}

void BodyFileLines::Append(std::string& out, const CatalogueItem& item, const std::string& path) {
    const bool known = item.RecordSector != 0 && file_.Open(item);
    const ExactTimes times = known ? file_.Times() : ExactTimes();
    out += "0|";
    AppendBodyName(out, item, path);
    AppendNumber(out, '|', item.RecordNumber);
    const char kind = item.IsFolder() ? 'd' : 'r';
    ((((out += '|') += item.IsLive() ? kind : '-') += '/') += kind) += kAllRights;
    out += "|0|0";
    AppendNumber(out, '|', item.Size);
    for (const std::uint64_t time : {times.Accessed, times.Modified, times.Changed, times.Created}) {
        AppendNumber(out, '|', UnixSecondsOfFileTime(time));
    }
    out += '\n';
}

} // namespace thntfs
