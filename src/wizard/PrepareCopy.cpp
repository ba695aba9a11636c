#include "wizard/PrepareCopy.h"

#include "disktools/CloneTarget.h"
#include "disktools/CopySums.h"
#include "disktools/ImageTarget.h"
#include "engine/EngineState.h"
#include "partitions/DiskContents.h"
#include "partitions/OpenSource.h"
#include "platform/media/Medium.h"
#include "platform/system/SizeText.h"
#include "shell/Boxes.h"
#include "shell/WaitCursor.h"
#include "wizard/SourceSteps.h"

#include <QCoreApplication>
#include <QStringList>
#include <vector>

namespace thntfs {

namespace {

constexpr std::size_t kMostLines = 16; // of what will be lost

QString Shown(const std::string& text) { return QString::fromStdString(text); }

void Refuse(const QString& text) {
    ShowBox(text, QCoreApplication::translate("PrepareCopy", "Warning"), BoxIcon::Warning);
}

bool Pass(const CopyVerdict& verdict, const std::string& source, const QString& advice = {}) {
    if (!verdict.Allowed()) {
        Refuse(Shown(CopyRefusalText(verdict, source)) + advice);
    }
    return verdict.Allowed();
}

bool AskUser(const QString& text, BoxAnswer preset) {
    return AskYesNo(text, QCoreApplication::translate("PrepareCopy", "Confirm"), preset);
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
    QStringList lines;
    for (const std::string& line : OpenFailureLines(path, code)) {
        lines += Shown(line);
    }
    Refuse(code == kErrorAccessDenied ? WayToTheRight(path) : lines.join(QLatin1Char('\n')));
    return false;
}

bool AcceptMounted(const std::string& source) {
    const std::string remark = MountedRemark(source);
    return remark.empty() ||
           AskUser(
               QCoreApplication::translate("PrepareCopy", "%1\n\nDo you want to go on?").arg(Shown(remark)),
               BoxAnswer::Yes);
}

bool OpenImage(ImageTarget& target, const std::string& source) {
    CopyVerdict verdict;
    {
        const WaitCursor slow; // what was copied is compared with the disk
        verdict = target.Open(true, false);
    }
    return Pass(verdict, source,
                target.IsOld()
                    ? QCoreApplication::translate(
                          "PrepareCopy",
                          "\n\nWhat is there is never written over. Choose another path for a new image.")
                    : QString());
}

void AddRemark(const std::string& remark, QString& text) {
    if (!remark.empty()) {
        text += QStringLiteral("\n\n") + Shown(remark);
    }
}

QString StateText(const CopySums& sums) {
    QString text = QCoreApplication::translate("PrepareCopy", "%1 of %2 are in it")
                       .arg(sums.Copied())
                       .arg(Shown(CountText(sums.Total, "sector", "sectors")));
    if (sums.Bad != 0) {
        text += QCoreApplication::translate("PrepareCopy", ", %1 could not be read").arg(sums.Bad);
    }
    return text + (sums.Unread == 0
                       ? QStringLiteral(".")
                       : QCoreApplication::translate("PrepareCopy", ", %1 have not been tried yet.")
                             .arg(sums.Unread));
}

bool AcceptOld(const ImageTarget& target, const std::string& image) {
    if (!target.IsOld()) {
        return true;
    }
    QString text = QCoreApplication::translate("PrepareCopy", "%1 is an image of this disk:\n%2")
                       .arg(Shown(image), StateText(SumsOf(target.Map())));
    AddRemark(target.OriginRemark(), text);
    return AskUser(text + QCoreApplication::translate("PrepareCopy", "\n\nDo you want to continue it?"),
                   BoxAnswer::Yes);
}

QString CloneLossText(const CloneTarget& target, const std::vector<std::string>& contents) {
    QString text =
        QCoreApplication::translate("PrepareCopy", "Cloning to %1 (%2) destroys all that is on it:\n")
            .arg(Shown(target.Path()), Shown(ByteText(target.SizeBytes())));
    for (std::size_t i = 0; i < contents.size() && i < kMostLines; ++i) {
        text += QStringLiteral("\n    ") + Shown(contents[i]);
    }
    if (contents.size() > kMostLines) {
        text +=
            QCoreApplication::translate("PrepareCopy", "\n    and %1 more").arg(contents.size() - kMostLines);
    }
    return text;
}

bool AcceptLoss(const CloneTarget& target, const std::string& source,
                const std::vector<std::string>& contents) {
    QString text = CloneLossText(target, contents);
    AddRemark(target.SectorRemark(), text);
    return AskUser(text + QCoreApplication::translate("PrepareCopy", "\n\nDo you want to clone %1 to %2?")
                              .arg(Shown(source), Shown(target.Path())),
                   BoxAnswer::No);
}

bool OpenForClone(const std::string& source, CloneTarget& target) {
    std::vector<std::string> contents;
    {
        const WaitCursor slow;
        contents = DiskContents(target.Path(), target.OpenContents());
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
