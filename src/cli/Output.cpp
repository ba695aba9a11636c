#include "cli/Output.h"

#include "cli/ExitCode.h"
#include "cli/ProgressBar.h"
#include "platform/files/File.h"

#include <array>
#include <cstdio>
#include <vector>

namespace thntfs {

namespace {

constexpr std::uint64_t kKilobyte = 1024;
constexpr std::uint64_t kMegabyte = 1048576;
constexpr std::uint64_t kGigabyte = 1073741824;

std::string Scaled(std::uint64_t bytes, std::uint64_t unit, const char* name) {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%.1f %s", static_cast<double>(bytes) / static_cast<double>(unit),
                  name);
    return text.data();
}

} // namespace

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

std::string ByteText(std::uint64_t bytes) {
    if (bytes < kKilobyte) {
        return std::to_string(bytes) + (bytes == 1 ? " byte" : " bytes");
    }
    if (bytes < kMegabyte) {
        return Scaled(bytes, kKilobyte, "KB");
    }
    return bytes < kGigabyte ? Scaled(bytes, kMegabyte, "MB") : Scaled(bytes, kGigabyte, "GB");
}

std::string CountText(std::uint64_t count, const std::string& one, const std::string& more) {
    return std::to_string(count) + " " + (count == 1 ? one : more);
}

} // namespace thntfs
