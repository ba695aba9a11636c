#include "shell/DlgWait.h"

#include "shell/DesktopState.h"

#include <QFont>
#include <QPainter>

namespace thntfs {

namespace {

constexpr int kPatienceMilliseconds = 200;
constexpr int kTextHeight = 14;
constexpr QSize kWindowSize{300, 70};

QFont WaitFont() {
    QFont font;
    font.setFamilies({QStringLiteral("Verdana"), QStringLiteral("DejaVu Sans"), font.family()});
    font.setPixelSize(kTextHeight);
    return font;
}

} // namespace

CDlgWait::CDlgWait(QWidget* owner)
    : QWidget(owner, Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowStaysOnTopHint) {
    setWindowTitle(tr("Please wait..."));
    setAttribute(Qt::WA_ShowWithoutActivating);
    setFont(WaitFont());
    setFixedSize(kWindowSize);
    if (owner != nullptr) {
        move(owner->window()->frameGeometry().center() - rect().center());
    }
    Desktop.WaitDialog = this;
    time_.Begin();
    since_.start();
}

CDlgWait::~CDlgWait() { Desktop.WaitDialog = nullptr; }

// No events are run here, as a fill must not meet what another message or the user would do to the list. So
// the window system's word that the window is on the screen doesn't arrive either, without which nothing is
// painted: it is taken as given, and as that may be too early, the window is painted again from time to time.
void CDlgWait::Waiting(std::size_t done, std::size_t total) {
    if (total != 0) {
        time_.Look(static_cast<double>(done), static_cast<double>(total));
    }
    if (since_.elapsed() < kPatienceMilliseconds) {
        return;
    }
    since_.start();
    show();
    setAttribute(Qt::WA_Mapped);
    repaint();
}

void CDlgWait::paintEvent(QPaintEvent* /*event*/) {
    const QString time = time_.Text();
    QPainter painter(this);
    painter.drawText(rect(), Qt::AlignCenter,
                     tr("Please wait, refreshing list...") +
                         (time.isEmpty() ? time : QLatin1Char('\n') + time));
}

} // namespace thntfs
