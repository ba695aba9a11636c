#pragma once

#include "platform/files/WorkFolder.h"

#include <QCoreApplication>
#include <QPixmap>
#include <QWidget>
#include <functional>
#include <memory>

namespace thntfs {

class PictureLoader;

/// Shows a picture stretched over the whole window, and while there is none says why.
class CImageViewWindow : public QWidget {
    Q_DECLARE_TR_FUNCTIONS(CImageViewWindow)

public:
    /// `closed` is called once, when the window has been closed; it may see to it that the window goes.
    CImageViewWindow(const QString& name, std::function<void()> closed);

    /// Begins to load a picture. The folder is that of the file alone, and goes once the picture has been
    /// loaded.
    void Load(std::unique_ptr<WorkFolder> folder, const QString& path);

    ~CImageViewWindow() override;

    /// Says that there is no picture to be had.
    void ShowFailure();

    [[nodiscard]] const QString& Notice() const { return notice_; } ///< empty once a picture shows

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    void TakePicture(const QImage& picture);
    void SetNotice(const QString& notice);
    void PaintNotice(QPainter& painter) const;
    void PaintPicture(QPainter& painter);

    std::function<void()> closed_;
    std::unique_ptr<WorkFolder> folder_;
    std::unique_ptr<PictureLoader> loader_;
    QString notice_;
    QImage picture_;
    QPixmap stretched_; ///< the picture in the window's size
};

} // namespace thntfs
