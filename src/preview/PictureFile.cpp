#include "preview/PictureFile.h"

#include "preview/PictureStream.h"

#include <QFile>
#include <QImageReader>
#include <QSet>
#include <array>
#include <new>
#include <utility>

namespace thntfs {

namespace {

// The library unpacks a compressed drawing whole before it looks at it, at up to a thousand times the size.
constexpr qint64 kMaxPackedDrawing = qint64{256} << 10;
constexpr const char* kPackedMark = "\x1F\x8B";

// Suffixes in use that the library doesn't tell by itself, and what it calls the format.
constexpr std::array<std::pair<const char*, const char*>, 4> kFurtherSuffixes{{
    {"jpe", "jpeg"},
    {"jfif", "jpeg"},
    {"tif", "tiff"},
    {"dib", "bmp"},
}};

QString SuffixOf(std::u16string_view name) {
    const std::size_t dot = name.find(u'.');
    const std::u16string_view suffix = dot == std::u16string_view::npos ? name : name.substr(dot + 1);
    return QString::fromUtf16(suffix.data(), static_cast<qsizetype>(suffix.size())).toLower();
}

QSet<QString> KnownSuffixes() {
    QSet<QString> suffixes;
    const QList<QByteArray> formats = QImageReader::supportedImageFormats();
    for (const QByteArray& format : formats) {
        suffixes.insert(QString::fromLatin1(format).toLower());
    }
    for (const auto& [suffix, format] : kFurtherSuffixes) {
        if (suffixes.contains(QLatin1String(format))) {
            suffixes.insert(QLatin1String(suffix));
        }
    }
    return suffixes;
}

bool IsTooLarge(const QSize& size) {
    return !size.isEmpty() && qint64{size.width()} * size.height() > kMaxPicturePixels;
}

bool IsPackedDrawing(QFile& file) { return file.size() > kMaxPackedDrawing && file.peek(2) == kPackedMark; }

} // namespace

bool IsImageName(std::u16string_view name) {
    static const QSet<QString> known = KnownSuffixes();
    return known.contains(SuffixOf(name));
}

QString PictureCopyName(std::u16string_view name) {
    return QStringLiteral("picture.") + (IsImageName(name) ? SuffixOf(name) : QStringLiteral("dat"));
}

QImage LoadPicture(QFile& file) try {
    QImageReader::setAllocationLimit(kMaxPictureMegabytes);
    if (IsPackedDrawing(file)) {
        return {};
    }
    QImageReader reader(&file);
    reader.setAutoTransform(true);
    if (IsTooLarge(reader.size())) {
        return {};
    }
    QImage picture = reader.read();
    return IsTooLarge(picture.size()) ? QImage() : picture;
} catch (const std::bad_alloc&) {
    return {};
}

} // namespace thntfs
