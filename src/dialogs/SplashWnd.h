#pragma once

#include <QTimer>
#include <QWidget>
#include <functional>

namespace thntfs {

/// The program's picture in the middle of the screen, for some seconds or until the first key or click
/// anywhere in the program, which does nothing else. It belongs to its owner and deletes itself.
class CSplashWnd : public QWidget {
public:
    /// Shows at once. `gone` is called from the event loop when it has closed by itself or by the user.
    CSplashWnd(QWidget& owner, std::function<void()> gone);

    /// Closes at once; `gone` isn't called any more.
    void Cancel();

    bool eventFilter(QObject* watched, QEvent* event) override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    QWidget& owner_;
    std::function<void()> gone_;
    QTimer timer_;
};

} // namespace thntfs
