#include "scaninfo/ProcessLog.h"

#include "platform/files/File.h"
#include "platform/system/Dates.h"
#include "platform/system/Text.h"

#include <string_view>
#include <utility>

namespace thntfs {

namespace {

// The tab within the version is a part of the layout.
constexpr std::string_view kHeader =
    "------------------------Tarnholt Volume Salvage (NTFS) v2\t.0.1  Process Log"
    "------------------------\n\n";
constexpr std::size_t kSeparatorHyphens = 68;
constexpr std::size_t kPieceBytes = 1U << 20U;

std::string SeparatorText() { return "\n" + std::string(kSeparatorHyphens, '-'); }

std::string WithLineEnds(std::string_view text) {
    std::string out;
    out.reserve(text.size() + 16);
    for (const char c : text) {
        if (c == '\n') {
            out += '\r';
        }
        out += c;
    }
    return out;
}

ErrorCode WriteText(File& file, std::string& text) {
    const ErrorCode code = file.Write(TextBytes(text));
    text.clear();
    return code;
}

} // namespace

void ProcessLog::Add(ProcessLogEntry entry) {
    entry.Time = LogTimeNow();
    rows_.push_back(std::move(entry));
}

std::string LogHeadText() { return WithLineEnds(std::string(kHeader) + SeparatorText()); }

std::string LogRowText(const ProcessLogEntry& row) {
    return WithLineEnds("\n" + row.Name + "\n\t\t" + row.Description + "\n\t\t" + row.Time + SeparatorText());
}

ErrorCode WriteLogText(const ProcessLog& log, File& file) {
    std::string text = LogHeadText();
    ErrorCode code = kErrorNone;
    for (const ProcessLogEntry& row : log.Rows()) {
        text += LogRowText(row);
        if (text.size() >= kPieceBytes) {
            code = WriteText(file, text);
        }
        if (code != kErrorNone) {
            return code;
        }
    }
    return WriteText(file, text);
}

} // namespace thntfs
