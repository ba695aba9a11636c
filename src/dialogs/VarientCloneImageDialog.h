#pragma once

#include "dialogs/CopyHost.h"
#include "platform/system/RemainingTime.h"
#include "shell/JobThread.h"
#include "shell/MessageTarget.h"
#include "shell/WindowMessages.h"

#include <QCoreApplication>
#include <QDialog>
#include <memory>
#include <optional>

class QLabel;
class QProgressBar;
class QPushButton;

namespace thntfs {

class CCopyAnimation;

/// Runs a clone or an image on a worker and shows how it comes along, beside a main window that goes on
/// painting. It has no parent. When the end of the copy has been told it deletes itself, and then
/// Desktop.CopyDialog is null; the user can close it by the stop question alone.
class CVarientCloneImageDialog : public QDialog, public MessageTarget {
    Q_DECLARE_TR_FUNCTIONS(CVarientCloneImageDialog)

public:
    CVarientCloneImageDialog();
    ~CVarientCloneImageDialog() override;

    std::intptr_t OnMessage(std::uint32_t message, std::uintptr_t wParam, std::uintptr_t lParam) override;

    /// Asks whether to stop.
    void reject() override { AskToStop(); }

private:
    void LayOut();
    void Start(CopyWork work, CopyJob& job);
    void SetTexts();
    void StartThread();
    void ShowProgress(std::uint64_t done, std::uint64_t total);
    void ShowPercent(std::uint32_t percent);
    void ShowFigures(const CopyFigures& figures);
    void ShowRate(const CopyFigures& figures);
    void AskToStop();
    void End(CopyEvent event);
    [[nodiscard]] bool IsImaging() const { return imagingMode_ == CopyWork::Image; }
    [[nodiscard]] QString WorkText() const;

    CCopyAnimation* animation_;
    QLabel* heading_;
    QLabel* percentText_;
    QLabel* sectorLine_;
    QProgressBar* bar_;
    QLabel* rate_;
    QLabel* account_;
    QPushButton* stop_;

    CopyWork imagingMode_ = CopyWork::Clone;
    RemainingTime remaining_;
    std::uint32_t lastPercent_ = 0;
    std::int64_t lastPosition_ = -1;
    bool asking_ = false;               ///< the stop question stands
    bool over_ = false;                 ///< the end has been told
    std::optional<CopyEvent> finished_; ///< the worker has told its end, while the question stood
    std::unique_ptr<CopyJob> job_;
    std::unique_ptr<CopyHost> host_;
    std::unique_ptr<JobThread> copyThread_;
};

} // namespace thntfs
