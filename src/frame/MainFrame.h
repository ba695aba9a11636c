#pragma once

#include "engine/Host.h"
#include "frame/CommandRules.h"
#include "platform/files/WorkFolder.h"
#include "shell/JobThread.h"
#include "shell/ProcessLogList.h"
#include "shell/ProgressBar.h"
#include "shell/WindowMessages.h"
#include "views/THNTFSListView.h"
#include "views/THNTFSTreeView.h"

#include <QAction>
#include <QActionGroup>
#include <QDockWidget>
#include <QLabel>
#include <QMainWindow>
#include <QSplitter>
#include <QTimer>
#include <QToolBar>
#include <array>
#include <atomic>
#include <cstdint>
#include <map>
#include <memory>
#include <vector>

class QDragEnterEvent;
class QDropEvent;

namespace thntfs {

class CWizardSheet;

/// The program's one top-level window. It owns the layout, the commands and the job that runs, and handles
/// all that workers, views and wizard report. One exists at a time.
class CMainFrame : public QMainWindow, public MessageTarget {
public:
    CMainFrame();
    ~CMainFrame() override;

    std::intptr_t OnMessage(std::uint32_t message, std::uintptr_t wParam, std::uintptr_t lParam) override;

    /// Runs a command as its menu line does, whether or not its rule enables it; what starts work looks for
    /// itself whether it may.
    void RunCommand(std::uint32_t command);

    /// Takes what the engine has opened as the volume in work and scans it: empties the views and starts the
    /// worker.
    void BeginBasicScan();

    /// Runs the wizard; with a path, from the page of image files on.
    void RunWizard(const QString& imagePath = {});

    /// Opens a file as if it had been dropped: saved scan information is loaded, anything else goes to the
    /// wizard as an image.
    void OpenFile(const QString& file);

    /// Loads a scan's result, or a search's, from a file, as the commands do once the file has been chosen.
    void LoadTreeInfoFrom(const QString& path);
    void LoadPartitionInfoFrom(const QString& path);

    /// Brings the enabled commands, the marks of the view menu and the cursor up to what holds now. Done
    /// whenever the event loop has nothing else to do.
    void UpdateCommands();

    /// What the enable rules look at.
    [[nodiscard]] FrameState State() const;

    /// The action of a command, null for one that has none.
    [[nodiscard]] QAction* ActionOf(std::uint32_t command) const;

    // The views, which live as long as the frame.
    CTHNTFSTreeView* TreeView = nullptr;
    CTHNTFSListView* ListView = nullptr;
    CProcessLogList* LogList = nullptr;

    /// The three panes of the status bar.
    static constexpr std::size_t kPanes = 3;
    std::array<QLabel*, kPanes> Panes{};

    // The job.
    std::unique_ptr<ProcessLogEntry> CurrentEntry; ///< of the wizard run that started the job
    JobThread* WorkerThread = nullptr;             ///< the running scan's, null when none runs
    std::unique_ptr<CProgressBar> ProgressBar;     ///< over pane 0, null when none
    std::uint8_t LogicalDriveNumber = 4;           ///< of the volume in work, for log lines
    std::uint32_t JobBusy = 0;                     ///< 1 from the choice of a job to the end of its handling
    std::uint32_t ScanInfoDirty = 0;               ///< 1 while a scan's result is in no file
    std::uint32_t NoScanYet = 1;                   ///< 1 until the first Basic Scan or load
    std::atomic<std::uint32_t> BasicScanDone{0};   ///< 1 once a Basic Scan has ended
    std::uint32_t FoundEntry = kNoEntry;           ///< that Find has picked out
    std::uint32_t ViewMode = 60003;                ///< command of the list's style
    std::uint8_t ThemeIndex = 1;                   ///< theme command less the first one

    static constexpr std::uint32_t kNoEntry = 0xFFFFFFFF;

protected:
    bool event(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    // Making the window.
    void CreateViews();
    void CreateActions();
    void CreateMenus();
    void CreateToolbar();
    void OfferToolbarSizes(const QPoint& at);
    void CreateStatusBar();
    void CreateLogPane();
    void RestoreSettings();
    void SaveSettings() const;

    // Commands.
    bool RunViewCommand(std::uint32_t command);
    bool RunHelpCommand(std::uint32_t command);
    void OpenFoundDrive();
    void ShowAbout();
    void TellNotBuilt(const QString& what);
    void SetViewMode(std::uint32_t command);
    void SetTheme(std::uint32_t command);
    void SetToolbarSize(int pixels);
    void ClearFindMark();

    // Jobs.
    bool MayStartWork();
    void StartWorker(void (*work)(CMainFrame&));
    void StartBasicScan();
    void StartTurboScan();
    void StopProcess();
    void FinishJob(FinishedJob kind);
    void EndFailedJob();
    void ReturnToIdle();
    void ShowJobProgress();
    void CreateProgressBar(const QString& caption);
    void LogCopyEvent(CopyWork work, CopyEvent event);
    void ClearViews();
    void UpdateTotals(Totals what);
    void RunSheet(CWizardSheet& sheet);
    void TakeWizardResult(const CWizardSheet& sheet);

    // Scan information and the log's file.
    void LoadTreeInfoByDialog();
    bool SaveTreeInfoByDialog();
    void LoadPartitionInfoByDialog();
    void SavePartitionInfoByDialog();
    void SaveLogByDialog();

    // The end.
    bool MayClose();
    bool GiveUpScan();
    bool AskAboutScan();
    void WatchForEnd();
    void EndIfAsked();

    std::map<std::uint32_t, QAction*> actions_;
    QSplitter* splitter_ = nullptr;
    QToolBar* toolbar_ = nullptr;
    QDockWidget* logPane_ = nullptr;
    QString notice_; ///< what pane 0 says in place of the idle text for a while
    QTimer noticeTimer_;
    QTimer endTimer_;
    bool ending_ = false;      ///< the program has been told to end
    bool scanUnsaved_ = false; ///< what the views show was scanned here and is in no file
    WorkFolder catalogueFolder_;
    std::unique_ptr<JobThread> worker_;
};

} // namespace thntfs
