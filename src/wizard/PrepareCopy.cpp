#include "wizard/PrepareCopy.h"

#include "disktools/CloneTarget.h"
#include "disktools/CopySums.h"
#include "disktools/ImageTarget.h"
#include "engine/EngineState.h"
#include "partitions/DiskContents.h"
#include "partitions/OpenSource.h"
#include "platform/system/SizeText.h"
#include "shell/Boxes.h"
#include "shell/WaitCursor.h"
#include "wizard/SourceSteps.h"

#include <vector>

namespace thntfs {

namespace {

constexpr std::size_t kMostLines = 16; // of what will be lost

void Refuse(const std::string& text) {
    ShowBox(QString::fromStdString(text), QStringLiteral("Warning"), BoxIcon::Warning);
}

bool Pass(const CopyVerdict& verdict, const std::string& source, const std::string& advice = {}) {
    if (!verdict.Allowed()) {
        Refuse(CopyRefusalText(verdict, source) + advice);
    }
    return verdict.Allowed();
}

bool AskUser(const std::string& text, BoxAnswer preset) {
    return AskYesNo(QString::fromStdString(text), QStringLiteral("Confirm"), preset);
}

bool OpenCopySource(const std::string& path) {
    ErrorCode code = kErrorNone;
    {
        const WaitCursor slow;
        code = OpenSource(path);
    }
    if (code == kErrorNone) {
        return Pass(CheckSource(path), path);
    }
    std::string text;
    for (const std::string& line : OpenFailureLines(path, code)) {
        text += (text.empty() ? "" : "\n") + line;
    }
    Refuse(text);
    return false;
}

bool AcceptMounted(const std::string& source) {
    const std::string remark = MountedRemark(source);
    return remark.empty() || AskUser(remark + "\n\nDo you want to go on?", BoxAnswer::Yes);
}

bool OpenImage(ImageTarget& target, const std::string& source) {
    CopyVerdict verdict;
    {
        const WaitCursor slow; // what was copied is compared with the disk
        verdict = target.Open(true, false);
    }
    return Pass(verdict, source,
                target.IsOld()
                    ? "\n\nWhat is there is never written over. Choose another path for a new image."
                    : "");
}

std::string StateText(const CopySums& sums) {
    std::string text =
        std::to_string(sums.Copied()) + " of " + CountText(sums.Total, "sector", "sectors") + " are in it";
    text += sums.Bad == 0 ? "" : ", " + std::to_string(sums.Bad) + " could not be read";
    return text + (sums.Unread == 0 ? "." : ", " + std::to_string(sums.Unread) + " have not been tried yet.");
}

bool AcceptOld(const ImageTarget& target, const std::string& image) {
    if (!target.IsOld()) {
        return true;
    }
    std::string text = image + " is an image of this disk:\n" + StateText(SumsOf(target.Map()));
    if (const std::string remark = target.OriginRemark(); !remark.empty()) {
        text += "\n\n" + remark;
    }
    return AskUser(text + "\n\nDo you want to continue it?", BoxAnswer::Yes);
}

std::string CloneLossText(const CloneTarget& target, const std::vector<std::string>& contents) {
    std::string text = "Cloning to " + target.Path() + " (" + ByteText(target.SizeBytes()) +
                       ") destroys all that is on it:\n";
    for (std::size_t i = 0; i < contents.size() && i < kMostLines; ++i) {
        text += "\n    " + contents[i];
    }
    if (contents.size() > kMostLines) {
        text += "\n    and " + std::to_string(contents.size() - kMostLines) + " more";
    }
    return text;
}

bool AcceptLoss(const CloneTarget& target, const std::string& source,
                const std::vector<std::string>& contents) {
    std::string text = CloneLossText(target, contents);
    if (const std::string remark = target.SectorRemark(); !remark.empty()) {
        text += "\n\n" + remark;
    }
    return AskUser(text + "\n\nDo you want to clone " + source + " to " + target.Path() + "?", BoxAnswer::No);
}

bool OpenForClone(const std::string& source, CloneTarget& target) {
    std::vector<std::string> contents;
    {
        const WaitCursor slow;
        contents = DiskContents(target.Path());
    }
    return OpenCopySource(source) && Pass(CheckTargetSize(target.Path(), target.SizeBytes()), source) &&
           AcceptLoss(target, source, contents) && Pass(target.Open(), source);
}

} // namespace

std::shared_ptr<CopyJob> PrepareImage(const std::string& source, const std::string& image, unsigned retries) {
    if (!Pass(CheckCopyPlaces(source, image), source) || !CloseOldMedium()) {
        return nullptr;
    }
    ImageTarget target(source, image);
    if (OpenCopySource(source) && AcceptMounted(source) && OpenImage(target, source) &&
        AcceptOld(target, image)) {
        auto job = std::make_shared<CopyJob>(target.TakeJob());
        job->Retries = retries;
        return job;
    }
    ResetEngineState();
    return nullptr;
}

std::shared_ptr<CopyJob> PrepareClone(const std::string& source, const std::string& target) {
    CloneTarget disk(target);
    if (!Pass(CheckCopyPlaces(source, target), source) || !Pass(disk.Look(), source) || !CloseOldMedium()) {
        return nullptr;
    }
    if (OpenForClone(source, disk)) {
        return std::make_shared<CopyJob>(MakeCloneJob(source, target));
    }
    ResetEngineState();
    return nullptr;
}

} // namespace thntfs
