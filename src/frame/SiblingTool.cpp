#include "frame/SiblingTool.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QProcess>
#include <QWidget>

namespace thntfs {

namespace {

constexpr const char* kUpdateProgram = "thupdate";
constexpr const char* kSiblingProgram = "SpoorHound";

constexpr std::uint32_t kTellsName = 10;
constexpr std::uint32_t kCallsBack = 20;

QString ProgramBeside(const char* name) {
    return QCoreApplication::applicationDirPath() + QLatin1Char('/') + QLatin1String(name);
}

QString FailureText(const char* name, const QString& why) {
    if (!QFileInfo::exists(ProgramBeside(name))) {
        return QCoreApplication::translate("SiblingTool", "%1 isn't installed beside this program.")
            .arg(QLatin1String(name));
    }
    return QCoreApplication::translate("SiblingTool", "%1 can't be started: %2")
        .arg(QLatin1String(name), why);
}

} // namespace

QString StartUpdate() {
    QProcess process;
    process.setProgram(ProgramBeside(kUpdateProgram));
    return process.startDetached() ? QString() : FailureText(kUpdateProgram, process.errorString());
}

SiblingTool::SiblingTool(QWidget& frame)
    : frame_(frame)
    , socket_([this](const SiblingRecord& record) { TakeRecord(record); }) {}

SiblingTool::~SiblingTool() {
    socket_.Close();
    SiblingSocket::TellToClose(SiblingClassName);
}

// Nobody owns the process, since its destructor would kill a program that may run longer than this one.
QString SiblingTool::Start() {
    const QString fault = socket_.Listen(QLatin1String(FrameClassName));
    if (!fault.isEmpty()) {
        return FailureText(kSiblingProgram, fault);
    }
    auto* process = new QProcess;
    process->setProcessChannelMode(QProcess::ForwardedChannels);
    process->setInputChannelMode(QProcess::ForwardedInputChannel);
    process->start(ProgramBeside(kSiblingProgram), {QLatin1String(FrameClassName)});
    if (!process->waitForStarted()) {
        process->deleteLater();
        return FailureText(kSiblingProgram, process->errorString());
    }
    QObject::connect(process, &QProcess::finished, process, &QObject::deleteLater);
    QObject::connect(process, &QProcess::finished, &context_, [this, process] { TakeEnd(process); });
    latest_ = process;
    frameIsAway_ = true;
    frame_.hide();
    return {};
}

void SiblingTool::TakeRecord(const SiblingRecord& record) {
    if (record.Number == kTellsName) {
        SiblingClassName = record.Text;
    } else if (record.Number == kCallsBack) {
        BringFrameBack();
    }
}

void SiblingTool::TakeEnd(const QProcess* process) {
    if (frameIsAway_ && process == latest_) {
        BringFrameBack();
    }
}

void SiblingTool::BringFrameBack() {
    frameIsAway_ = false;
    frame_.showMaximized();
    frame_.raise();
    frame_.activateWindow();
}

} // namespace thntfs
