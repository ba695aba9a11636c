// The desktop program.

#include "catalogue/Catalogue.h"
#include "engine/EngineState.h"
#include "frame/MainFrame.h"
#include "frame/MountCall.h"
#include "platform/files/InstanceLock.h"
#include "platform/system/Interrupt.h"
#include "platform/system/Libraries.h"
#include "preview/PictureDecoder.h"
#include "shell/Boxes.h"
#include "shell/DesktopHost.h"
#include "shell/ReadablePalette.h"
#include "shell/Translations.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QCoreApplication>
#include <QLocale>
#include <QPalette>
#include <iostream>
#include <string_view>

namespace {

using namespace thntfs;

// The file to open, empty for none.
QString ReadCommandLine(const QApplication& application) {
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QCoreApplication::translate("Main", "Gets files back from damaged NTFS volumes."));
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addPositionalArgument(
        QCoreApplication::translate("Main", "file"),
        QCoreApplication::translate("Main", "An image, or saved scan information, to open."),
        QCoreApplication::translate("Main", "[FILE]"));
    parser.process(application);
    if (parser.positionalArguments().size() > 1) {
        parser.showHelp(2);
    }
    return parser.positionalArguments().value(0);
}

// Told before anything else, since it needs no screen.
bool IsVersionCall(int argc, const char* const* argv) {
    return argc == 2 && (std::string_view(argv[1]) == "--version" || std::string_view(argv[1]) == "-v");
}

// False where the program runs already, or can't tell.
bool TakeInstance(InstanceLock& lock) {
    const ErrorCode code = lock.Take("GlobalMutexTH-WIN");
    if (code == kErrorNone) {
        return true;
    }
    ShowBox(code == kErrorAlreadyExists
                ? QCoreApplication::translate("Main", "Tarnholt Volume salvage is already running.\n"
                                                      "Please close the running instance first.")
                : QCoreApplication::translate("Main", "Failed to load Tarnholt Volume Salvage (NTFS)"),
            QCoreApplication::translate("Main", "Error"), BoxIcon::Stop);
    return false;
}

int RunProgram(QApplication& application, const QString& file) {
    OnInterrupt(Engine.ScanRunFlag);
    PrepareBoxes();
    SetHost(&TheDesktopHost());
    QApplication::setQuitOnLastWindowClosed(false); // the frame ends the program, and may be hidden
    CMainFrame frame;
    frame.showMaximized();
    frame.Begin(file);
    const int status = application.exec();
    CloseCatalogue();
    SetHost(nullptr);
    return status;
}

} // namespace

int main(int argc, char** argv) {
    if (IsDecoderCall(argc, argv)) {
        RunDecoder(argv);
    }
    if (IsVersionCall(argc, argv)) {
        std::cout << VersionText({{"Qt", QT_VERSION_STR}}) << '\n';
        return 0;
    }
    if (IsMountCall(argc, argv)) {
        RunMountCall(argc, argv);
    }
    QApplication application(argc, argv);
    QApplication::setPalette(ReadablePalette(QApplication::palette()));
    LoadTranslations(application, QLocale::system());
    QApplication::setDesktopFileName(QStringLiteral("net.tarnholt.th_ntfs"));
    QApplication::setApplicationVersion(QString::fromStdString(ProductVersion()));
    const QString file = ReadCommandLine(application);
    InstanceLock lock;
    return TakeInstance(lock) ? RunProgram(application, file) : 1;
}
