#include "preview/ImageViewWindow.h"

#include "preview/PictureLoader.h"
#include "shell/Icons.h"
#include "shell/WindowTitle.h"

#include <QCloseEvent>
#include <QKeyEvent>
#include <QPainter>
#include <utility>

namespace thntfs {

namespace {

constexpr int kNoticeHeight = 14;
constexpr QSize kImageWindowSize{640, 480};

QFont NoticeFont() {
    QFont font;
    font.setFamilies({QStringLiteral("Batang"), font.family()});
    font.setPixelSize(kNoticeHeight);
    font.setWeight(QFont::Black);
    font.setUnderline(true);
    font.setStyleStrategy(QFont::PreferAntialias);
    return font;
}

} // namespace

CImageViewWindow::CImageViewWindow(const QString& name, std::function<void()> closed)
    : QWidget(nullptr, Qt::Window)
    , closed_(std::move(closed)) {
    setObjectName(QStringLiteral("ImageView"));
    setWindowTitle(LiteralTitle(name));
    setWindowIcon(LoadIcon("app"));
    setAccessibleName(name);
    setAttribute(Qt::WA_OpaquePaintEvent);
    resize(kImageWindowSize);
    SetNotice(tr("Please Wait. Loading Image file..."));
}

CImageViewWindow::~CImageViewWindow() = default;

void CImageViewWindow::Load(std::unique_ptr<WorkFolder> folder, const QString& path) {
    folder_ = std::move(folder);
    setCursor(Qt::WaitCursor);
    loader_ = std::make_unique<PictureLoader>([this](const QImage& picture) { TakePicture(picture); });
    loader_->Start(path);
}

void CImageViewWindow::TakePicture(const QImage& picture) {
    picture_ = picture;
    folder_.reset();
    unsetCursor();
    if (picture_.isNull()) {
        ShowFailure();
    } else {
        SetNotice({});
    }
}

void CImageViewWindow::ShowFailure() { SetNotice(tr("Drawing Failed...")); }

void CImageViewWindow::SetNotice(const QString& notice) {
    notice_ = notice;
    setAccessibleDescription(notice);
    update();
}

void CImageViewWindow::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    if (picture_.isNull()) {
        PaintNotice(painter);
    } else {
        PaintPicture(painter);
    }
}

void CImageViewWindow::PaintNotice(QPainter& painter) const {
    painter.fillRect(rect(), palette().base());
    painter.setPen(palette().color(QPalette::Disabled, QPalette::Text));
    painter.setFont(NoticeFont());
    painter.drawText(rect(), int{Qt::AlignCenter} | int{Qt::TextSingleLine}, notice_);
}

// Over the window's colour, as a picture may be transparent.
void CImageViewWindow::PaintPicture(QPainter& painter) {
    const QSize pixels = size() * devicePixelRatioF();
    if (stretched_.size() != pixels) {
        stretched_ =
            QPixmap::fromImage(picture_.scaled(pixels, Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
        stretched_.setDevicePixelRatio(devicePixelRatioF());
    }
    painter.fillRect(rect(), palette().base());
    painter.drawPixmap(rect(), stretched_);
}

void CImageViewWindow::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) {
        close();
    } else {
        QWidget::keyPressEvent(event);
    }
}

void CImageViewWindow::closeEvent(QCloseEvent* event) {
    event->accept();
    loader_.reset();
    folder_.reset();
    if (const auto closed = std::exchange(closed_, nullptr)) {
        closed();
    }
}

} // namespace thntfs
