#include "frame/StartUp.h"

#include "dialogs/SplashWnd.h"
#include "dialogs/TipOfTheDay.h"
#include "dialogs/VistaMsgDlg.h"
#include "frame/MainFrame.h"
#include "shell/Settings.h"
#include "shell/WindowMessages.h"

#include <QApplication>

namespace thntfs {

namespace {

bool WizardWanted() { return OpenSettings().value(QStringLiteral("Wizard/StartUp"), 0).toInt() != 0; }

} // namespace

void StartUp::Begin(const QString& file) {
    if (file.isEmpty()) {
        splash_ = new CSplashWnd(frame_, [this] {
            if (QApplication::activeModalWidget() == nullptr) { // the user may have been quicker
                ShowNotice();
                ShowTipAndWizard();
            }
        });
        return;
    }
    QTimer::singleShot(0, &frame_, [this, file] {
        ShowNotice();
        frame_.OpenFile(file);
    });
}

void StartUp::GiveWay() {
    if (splash_ != nullptr) {
        splash_->Cancel();
    }
}

void StartUp::ShowNotice() {
    CVistaMsgDlg notice(&frame_);
    if (notice.IsWanted()) {
        notice.exec();
    }
}

// The tip is posted and so comes over the wizard.
void StartUp::ShowTipAndWizard() {
    if (TipsWantedAtStart()) {
        WM_SHOW_TIPS.Post(&frame_);
    }
    if (WizardWanted()) {
        frame_.RunWizard();
    }
}

} // namespace thntfs
