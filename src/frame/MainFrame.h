#pragma once

#include "frame/CataloguePlace.h"
#include "frame/CommandIds.h"
#include "frame/CommandSet.h"
#include "frame/FindSearch.h"
#include "frame/FolderMount.h"
#include "frame/JobControl.h"
#include "frame/ListJob.h"
#include "frame/RecentFiles.h"
#include "frame/SaveJob.h"
#include "frame/ScanInfoFiles.h"
#include "frame/ScanJob.h"
#include "frame/SiblingTool.h"
#include "frame/StartUp.h"
#include "frame/StatusPanes.h"
#include "frame/Themes.h"
#include "preview/Previews.h"
#include "shell/Boxes.h"
#include "shell/MessageTarget.h"

#include <QCoreApplication>
#include <QMainWindow>
#include <QTimer>
#include <cstdint>
#include <vector>

class QDockWidget;
class QDragEnterEvent;
class QDropEvent;
class QSplitter;

namespace thntfs {

class CListPane;
class CProcessLogList;
class CTHNTFSListView;
class CTHNTFSTreeView;
class CWizardSheet;
struct WizardState;

/// The program's one top-level window: its layout, the way from commands and messages to the parts that
/// handle them, and its end. One exists at a time.
class CMainFrame : public QMainWindow, public MessageTarget {
    Q_DECLARE_TR_FUNCTIONS(CMainFrame)

public:
    CMainFrame();
    ~CMainFrame() override;

    std::intptr_t OnMessage(std::uint32_t message, std::uintptr_t wParam, std::uintptr_t lParam) override;

    /// The first steps, once the window shows; the file is one of the command line, or empty.
    void Begin(const QString& file) { startUp_.Begin(file); }

    /// Takes what the engine has opened as the volume in work and scans it: empties the views and starts the
    /// worker.
    void BeginBasicScan();

    /// Runs the wizard; with a path, from the page of image files on.
    void RunWizard(const QString& imagePath = {});

    /// Opens a file as if it had been dropped: saved scan information is loaded, anything else goes to the
    /// wizard as an image.
    void OpenFile(const QString& file);

protected:
    bool event(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    // Layout.
    void LayOutViews();
    void LayOutLog();
    void RestoreSettings();
    void SaveSettings() const;

    // Commands.
    void RunCommand(std::uint32_t command);
    bool RunViewCommand(std::uint32_t command);
    bool RunListCommand(std::uint32_t command);
    bool RunRecentCommand(std::uint32_t command);
    bool RunHelpCommand(std::uint32_t command);
    void UpdateCommands();
    [[nodiscard]] FrameState State() const;
    void SetViewMode(std::uint32_t command);
    void StartProgram(std::uint32_t command);
    void ShowTip();
    void SearchFrom(std::uint32_t entryId);

    // Volumes, scans, and files of scans.
    void OpenFoundDrive();
    void RunCloneWizard();
    void RunSheet(CWizardSheet& sheet);
    void BeginCopy(const WizardState& chosen);
    static void PassCopyPosition(std::uint32_t done, std::uint32_t total);
    void StartBasicScan();
    void StartTurboScan();
    void SaveEntries(std::vector<std::uint32_t> entryIds);
    void FinishJob(FinishedJob kind);
    void TakeTotals(Totals what);
    void ClearViews();
    void OpenRecent(const QString& file);
    void LoadTreeInfoByDialog();
    void LoadPartitionInfoByDialog();
    void LoadTreeInfoFrom(const QString& path);
    void LoadPartitionInfoFrom(const QString& path);
    bool SaveTree();

    // The end.
    bool MayClose();
    bool GiveUpScan();
    bool AskToSave(const QString& question, BoxButtons buttons);
    bool AskAboutScan();
    bool MayOverwriteScan();
    void WatchForEnd();
    void EndIfAsked();

    // Widgets, which the window owns.
    QSplitter* splitter_;
    CTHNTFSTreeView* treeView_;
    CListPane* listPane_;
    CTHNTFSListView* listView_; ///< in the pane
    CProcessLogList* logList_;
    QDockWidget* logPane_;

    // Parts.
    CommandSet commands_;
    StatusPanes panes_;
    FindSearch find_;
    RecentFiles recent_;
    ScanInfoFiles scanInfo_;
    CataloguePlace cataloguePlace_;
    JobControl job_;
    Previews previews_;
    ScanJob scans_;
    SaveJob saves_;
    ListJob lists_;
    FolderMount folder_;
    StartUp startUp_{*this};
    SiblingTool sibling_{*this};

    std::uint8_t logicalDriveNumber_ = 4; ///< of the volume in work, for log lines
    std::uint32_t viewMode_ = kCmdDetails;
    std::uint8_t themeIndex_ = kStartTheme;
    QTimer endTimer_;
    bool ending_ = false; ///< the program has been told to end
};

} // namespace thntfs
