#include "cli/Output.h"

#include "cli/ExitCode.h"
#include "cli/ProgressBar.h"
#include "platform/files/File.h"

#include <cstdio>
#include <vector>

namespace thntfs {

Output::Output()
    : file_(OpenStandardOutput()) {}

Output::~Output() = default;

void Output::Flush() {
    if (failure_ == kErrorNone && !text_.empty()) {
        const std::vector<std::uint8_t> bytes(text_.begin(), text_.end());
        failure_ = file_->Write(bytes);
    }
    text_.clear();
}

int Output::Finish(int code) {
    Flush();
    if (failure_ == kErrorNone || failure_ == kErrorBrokenPipe) {
        return code;
    }
    PrintMessage("Cannot write to standard output: " + SystemErrorText(failure_));
    return kExitFailed;
}

void AppendPrintable(std::string& out, std::string_view text) {
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte >= 0x20 && byte != 0x7F) {
            out += c;
        } else {
            constexpr const char* kDigits = "0123456789abcdef";
            out += "\\x";
            out += kDigits[byte >> 4U];
            out += kDigits[byte & 15U];
        }
    }
}

void PrintMessage(std::string_view text) {
    ProgressBar::Wipe();
    std::string line;
    AppendPrintable(line, text);
    line += '\n';
    std::fwrite(line.data(), 1, line.size(), stderr);
}

int Refuse(const std::string& text, int code) {
    PrintMessage(text);
    return code;
}

std::string CountText(std::uint64_t count, const std::string& one, const std::string& more) {
    return std::to_string(count) + " " + (count == 1 ? one : more);
}

} // namespace thntfs
