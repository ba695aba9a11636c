#pragma once

#include "cli/ExitCode.h"
#include "platform/system/Bytes.h"
#include "platform/system/ErrorCodes.h"
#include "platform/system/EscapedText.h"
#include "platform/system/SizeText.h"

#include <memory>
#include <string>
#include <string_view>

namespace thntfs {

class File;

/// Standard output in big pieces. A reader that has gone away (a closed pipe) ends the output without a word;
/// any other failure is told by Finish.
class Output {
public:
    Output();
    ~Output();
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;

    void Put(std::string_view text) {
        text_ += text;
        if (text_.size() >= kPieceBytes) {
            Flush();
        }
    }
    /// The buffer itself, for callers that append many small parts; they call Check now and then.
    std::string& Buffer() { return text_; }
    void Check() {
        if (text_.size() >= kPieceBytes) {
            Flush();
        }
    }
    void Flush();

    /// Flushes, and gives the exit code that a command is to end with: `code`, or kExitFailed, with a
    /// message, where the data could not be written.
    int Finish(int code);

    /// True where nothing that is still to come can be written.
    [[nodiscard]] bool Closed() const { return failure_ != kErrorNone; }
    [[nodiscard]] File& Handle() { return *file_; }

private:
    static constexpr std::size_t kPieceBytes = 1U << 16U;

    std::unique_ptr<File> file_;
    std::string text_;
    ErrorCode failure_ = kErrorNone;
};

/// Prints one line to standard error, after wiping the progress bar if one stands there. Control characters
/// in it (it may hold a name from the medium), line ends too, are shown as \xNN.
void PrintMessage(std::string_view text);

/// Prints a message and gives an exit code.
int Refuse(const std::string& text, int code = kExitFailed);

} // namespace thntfs
