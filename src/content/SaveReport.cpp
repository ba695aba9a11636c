#include "content/SaveReport.h"

#include "content/SavedFile.h"
#include "platform/files/File.h"
#include "platform/system/EscapedText.h"
#include "platform/system/Text.h"

#include <vector>

namespace thntfs {

namespace {

void AppendQuoted(std::string& line, std::string_view text) {
    line += '"';
    AppendJsonText(line, text);
    line += '"';
}

void AppendOrNull(std::string& line, std::string_view text) {
    if (text.empty()) {
        line += "null";
    } else {
        AppendQuoted(line, text);
    }
}

std::string JoinedReasons(const SavedFile& file) {
    std::string joined;
    for (const std::string& reason : file.Reasons) {
        (joined += joined.empty() ? "" : "; ") += reason;
    }
    return joined;
}

} // namespace

SaveReport::SaveReport() = default;

SaveReport::~SaveReport() {
    if (file_ != nullptr && end_ == 0 && !finished_) {
        file_.reset();
        (void)Files().Delete(path_);
    }
}

ErrorCode SaveReport::Create(const std::string& path) {
    path_ = path;
    return Files().Open(path, FileMode::CreateNew, file_);
}

void SaveReport::Add(const SavedFile& file) {
    if (failure_ != kErrorNone) {
        return;
    }
    const std::string line = ReportLine(file);
    failure_ = file_->WriteAt(end_, TextBytes(line));
    if (failure_ == kErrorNone) {
        end_ += line.size();
    } else {
        (void)file_->SetSize(end_);
    }
}

ErrorCode SaveReport::Finish() {
    finished_ = true;
    const ErrorCode synced = file_->Sync();
    const ErrorCode closed = file_->Close();
    for (const ErrorCode code : {failure_, synced, closed}) {
        if (code != kErrorNone) {
            return code;
        }
    }
    return kErrorNone;
}

std::string ReportLine(const SavedFile& file) {
    std::string line = R"({"path":)";
    AppendQuoted(line, file.Path);
    line += R"(,"record":)" + std::to_string(file.Record);
    line += R"(,"size":)" + std::to_string(file.Size);
    line += R"(,"bytes":)" + std::to_string(file.Bytes);
    line += R"(,"condition":")" + std::string(file.Condition) + R"(","reason":)";
    AppendOrNull(line, JoinedReasons(file));
    line += R"(,"sha256":)";
    AppendOrNull(line, file.Sha256);
    line += R"(,"links":[)";
    for (std::size_t i = 0; i < file.Links.size(); ++i) {
        line += i == 0 ? "" : ",";
        AppendQuoted(line, file.Links[i]);
    }
    return line += "]}\n";
}

} // namespace thntfs
