#include "dialogs/SplashWnd.h"

#include "dialogs/ProgramPicture.h"

#include <QApplication>
#include <QCloseEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScreen>
#include <utility>

namespace thntfs {

namespace {

constexpr int kSplashMilliseconds = 6000;

bool IsPress(const QEvent& event) {
    switch (event.type()) {
    case QEvent::KeyPress:
        return true;
    case QEvent::MouseButtonPress:
    case QEvent::NonClientAreaMouseButtonPress: {
        const auto button = static_cast<const QMouseEvent&>(event).button();
        return button == Qt::LeftButton || button == Qt::RightButton || button == Qt::MiddleButton;
    }
    default:
        return false;
    }
}

} // namespace

CSplashWnd::CSplashWnd(QWidget& owner, std::function<void()> gone)
    : QWidget(&owner, Qt::SplashScreen | Qt::FramelessWindowHint | Qt::WindowDoesNotAcceptFocus)
    , owner_(owner)
    , gone_(std::move(gone)) {
    setObjectName(QStringLiteral("Splash"));
    setAttribute(Qt::WA_DeleteOnClose);
    setAttribute(Qt::WA_ShowWithoutActivating);
    setFixedSize(kProgramPictureSize);
    move(owner.screen()->availableGeometry().center() - rect().center());
    qApp->installEventFilter(this);
    timer_.setSingleShot(true);
    connect(&timer_, &QTimer::timeout, this, [this] { close(); });
    timer_.start(kSplashMilliseconds);
    show();
}

void CSplashWnd::Cancel() {
    gone_ = nullptr;
    close();
}

bool CSplashWnd::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::ShortcutOverride) {
        event->accept(); // the key comes as a press then, and not as a command's shortcut
        return true;
    }
    if (!IsPress(*event)) {
        return QWidget::eventFilter(watched, event);
    }
    close();
    return true;
}

void CSplashWnd::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    PaintProgramPicture(painter);
}

void CSplashWnd::closeEvent(QCloseEvent* event) {
    qApp->removeEventFilter(this);
    timer_.stop();
    owner_.update();
    if (gone_) {
        QTimer::singleShot(0, &owner_, std::exchange(gone_, nullptr));
    }
    event->accept();
}

} // namespace thntfs
