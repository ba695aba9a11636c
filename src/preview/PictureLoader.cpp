#include "preview/PictureLoader.h"

#include "preview/PictureDecoder.h"
#include "preview/PictureStream.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <algorithm>
#include <utility>

namespace thntfs {

namespace {

// Null where no picture that may be shown has such a header.
QImage PictureFor(const PictureHeader& header) {
    const bool sound = header.Mark == kPictureMark && header.Width > 0 && header.Height > 0 &&
                       qint64{header.Width} * header.Height <= kMaxPicturePixels;
    if (!sound) {
        return {};
    }
    const auto format = header.HasAlpha != 0 ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32;
    return {header.Width, header.Height, format};
}

} // namespace

PictureLoader::PictureLoader(std::function<void(const QImage& picture)> loaded)
    : loaded_(std::move(loaded)) {
    limit_.setSingleShot(true);
    QObject::connect(&limit_, &QTimer::timeout, [this] { End({}); });
    QObject::connect(&process_, &QProcess::readyReadStandardOutput, [this] { TakeOutput(); });
    QObject::connect(&process_, &QProcess::finished, [this] { TakeEnd(); });
    QObject::connect(&process_, &QProcess::errorOccurred, [this] { End({}); });
}

PictureLoader::~PictureLoader() {
    loaded_ = nullptr;
    End({});
    process_.waitForFinished();
}

void PictureLoader::Start(const QString& path, const DecoderRules& rules) {
    process_.setStandardInputFile(path);
    process_.setStandardErrorFile(QProcess::nullDevice());
    limit_.start(rules.Limit);
    process_.start(rules.Program.isEmpty() ? QCoreApplication::applicationFilePath() : rules.Program,
                   {QLatin1String(kDecoderWord), QFileInfo(path).fileName()}, QIODevice::ReadOnly);
}

void PictureLoader::TakeOutput() {
    if (picture_.isNull() && !TakeHeader()) {
        return;
    }
    auto* place = reinterpret_cast<char*>(picture_.bits()) + taken_;
    taken_ += std::max(qint64{0}, process_.read(place, picture_.sizeInBytes() - taken_));
    if (process_.bytesAvailable() > 0) {
        End({});
    }
}

bool PictureLoader::TakeHeader() {
    PictureHeader header;
    if (process_.bytesAvailable() < qint64{sizeof header}) {
        return false;
    }
    process_.read(reinterpret_cast<char*>(&header), sizeof header);
    picture_ = PictureFor(header);
    if (picture_.isNull()) {
        End({});
    }
    return !picture_.isNull();
}

void PictureLoader::TakeEnd() {
    const bool whole = process_.exitStatus() == QProcess::NormalExit && process_.exitCode() == 0 &&
                       taken_ == picture_.sizeInBytes();
    End(whole ? picture_ : QImage());
}

void PictureLoader::End(const QImage& picture) {
    limit_.stop();
    process_.disconnect();
    process_.kill();
    if (const auto loaded = std::exchange(loaded_, nullptr)) {
        loaded(picture);
    }
}

} // namespace thntfs
