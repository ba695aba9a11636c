#pragma once

#include <QObject>
#include <QTimer>
#include <functional>

namespace thntfs {

/// Tells when disks may have come or gone, or a card reader has got another card, as long as the disk service
/// says so. Without one it tells nothing.
class DiskWatch : public QObject {
    Q_OBJECT

public:
    /// `tell` is called once for what comes in a burst, on the thread of the watch.
    explicit DiskWatch(const std::function<void()>& tell);

private:
    Q_SLOT void NoteChange();
    void Listen(const QString& path, const char* interface, const char* signal);

    QTimer burst_;
};

} // namespace thntfs
