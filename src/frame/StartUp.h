#pragma once

#include <QPointer>

namespace thntfs {

class CMainFrame;
class CSplashWnd;

/// What stands between the main window's first showing and the user's first command: the splash, and when it
/// has gone the notice, the tip of the day and the wizard, as the settings want them.
class StartUp {
public:
    explicit StartUp(CMainFrame& frame)
        : frame_(frame) {}

    /// Begins, once the window shows. With a file of the command line there is no splash, and the file is
    /// opened in place of tip and wizard.
    void Begin(const QString& file);

    /// The user has opened a file: a splash that still stands goes, and nothing comes behind it.
    void GiveWay();

private:
    void ShowNotice();
    void ShowTipAndWizard();

    CMainFrame& frame_;
    QPointer<CSplashWnd> splash_; ///< belongs to the frame
};

} // namespace thntfs
