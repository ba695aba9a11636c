#include "preview/PictureDecoder.h"

#include "platform/system/Confinement.h"
#include "preview/PictureFile.h"
#include "preview/PictureStream.h"

#include <QFile>
#include <QGuiApplication>
#include <QImage>
#include <cstdlib>
#include <string_view>

namespace thntfs {

namespace {

// Room for a picture, its turned copy, and the libraries.
constexpr ProcessBounds kDecoderBounds{.CpuSeconds = 20, .MemoryBytes = std::uint64_t{2} << 30U};

constexpr int kInput = 0;
constexpr int kOutput = 1;

// Drawings with text need fonts, and fonts such an application. It has no screen, and none of the plug-ins
// that the user's desktop brings for windows.
void ChooseNoScreen() {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qunsetenv("QT_QPA_PLATFORMTHEME");
    qunsetenv("QT_IM_MODULE");
}

bool WritePicture(QImage picture, QFile& output) {
    if (picture.isNull()) {
        return false;
    }
    const bool hasAlpha = picture.hasAlphaChannel();
    picture.convertTo(hasAlpha ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32);
    const PictureHeader header{.Width = picture.width(), .Height = picture.height(), .HasAlpha = hasAlpha};
    const auto* pixels = reinterpret_cast<const char*>(picture.constBits());
    return !picture.isNull() &&
           output.write(reinterpret_cast<const char*>(&header), sizeof header) == sizeof header &&
           output.write(pixels, picture.sizeInBytes()) == picture.sizeInBytes();
}

bool DecodeStream(const char* name) {
    QFile input(QString::fromUtf8(name));
    QFile output;
    return input.open(kInput, QIODevice::ReadOnly) &&
           output.open(kOutput, QIODevice::WriteOnly | QIODevice::Unbuffered) &&
           WritePicture(LoadPicture(input), output);
}

} // namespace

bool IsDecoderCall(int argc, char** argv) { return argc == 3 && std::string_view(argv[1]) == kDecoderWord; }

// What a plug-in would do at the end of the process is of no use any more, and takes time.
void RunDecoder(char** argv) {
    if (!ConfineProcess(kDecoderBounds)) {
        std::_Exit(1);
    }
    ChooseNoScreen();
    int words = 1;
    const QGuiApplication application(words, argv);
    std::_Exit(DecodeStream(argv[2]) ? 0 : 1);
}

} // namespace thntfs
