#pragma once

#include <QImage>
#include <QProcess>
#include <QTimer>
#include <chrono>
#include <functional>

namespace thntfs {

/// Who decodes a picture, and how long that may take.
struct DecoderRules {
    QString Program{}; ///< called with the decoder's words; empty for this program itself
    std::chrono::milliseconds Limit{10000};
};

/// Has a picture decoded by another process, so that one that was made to crash, hang or fill a decoder does
/// no harm here. What comes back isn't trusted either.
class PictureLoader {
public:
    /// `loaded` is called once: with the picture, or null where there is none to be had. It may be called
    /// before Start returns, and not once the loader is gone, which it may not bring about.
    explicit PictureLoader(std::function<void(const QImage& picture)> loaded);

    /// Ends the other process.
    ~PictureLoader();
    PictureLoader(const PictureLoader&) = delete;
    PictureLoader& operator=(const PictureLoader&) = delete;

    /// Begins to load a file; to be called once. The event loop does the rest.
    void Start(const QString& path, const DecoderRules& rules = {});

private:
    void TakeOutput();
    bool TakeHeader();
    void TakeEnd();
    void End(const QImage& picture);

    std::function<void(const QImage& picture)> loaded_;
    QProcess process_;
    QTimer limit_;
    QImage picture_; ///< of the size that the header tells; null before
    qint64 taken_ = 0;
};

} // namespace thntfs
