#include "cli/Output.h"

#include "cli/ExitCode.h"
#include "cli/ProgressBar.h"
#include "platform/files/File.h"
#include "platform/system/Text.h"

#include <cstdio>

namespace thntfs {

Output::Output()
    : file_(OpenStandardOutput()) {}

Output::~Output() = default;

void Output::Flush() {
    if (failure_ == kErrorNone && !text_.empty()) {
        failure_ = file_->Write(TextBytes(text_));
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

} // namespace thntfs
