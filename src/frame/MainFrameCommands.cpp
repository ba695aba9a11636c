// What the commands of the main window do, and when they may.

#include "catalogue/CatalogueReader.h"
#include "dialogs/AboutBox.h"
#include "dialogs/HelpViewer.h"
#include "dialogs/TipOfTheDay.h"
#include "engine/EngineState.h"
#include "frame/CommandIds.h"
#include "frame/MainFrame.h"
#include "frame/Themes.h"
#include "shell/DesktopHost.h"
#include "shell/DesktopState.h"
#include "shell/ProcessLogList.h"
#include "views/FilterBar.h"
#include "views/ListPane.h"
#include "views/THNTFSListView.h"
#include "views/THNTFSTreeView.h"

#include <QApplication>
#include <QDockWidget>
#include <QSplitter>

namespace thntfs {

void CMainFrame::RunCommand(std::uint32_t command) {
    if (RunViewCommand(command) || RunHelpCommand(command) || RunListCommand(command) ||
        RunRecentCommand(command)) {
        UpdateCommands();
        return;
    }
    switch (command) {
    case kCmdWizard:
        RunWizard();
        break;
    case kCmdCloneDisk:
        RunCloneWizard();
        break;
    case kCmdOpenFoundDrive:
        OpenFoundDrive();
        break;
    case kCmdLoadPartitionInfo:
        LoadPartitionInfoByDialog();
        break;
    case kCmdLoadTreeInfo:
        LoadTreeInfoByDialog();
        break;
    case kCmdSavePartitionInfo:
        if (job_.MayStartWork()) {
            scanInfo_.SavePartitions();
        }
        break;
    case kCmdSaveTreeInfo:
        SaveTree();
        break;
    case kCmdOpenAsFolder:
        if (job_.MayStartWork()) {
            folder_.Open();
        }
        break;
    case kCmdExit:
        close();
        break;
    case kCmdFind:
        SearchFrom(kTopEntryId);
        break;
    case kCmdFindNext:
        if (job_.MayStartWork()) {
            find_.SearchFolder();
        }
        break;
    case kCmdStop:
        job_.Stop();
        break;
    case kCmdTurboScan:
        if (job_.MayStartWork() && MayOverwriteScan()) {
            StartTurboScan();
        }
        break;
    case kCmdSaveAll:
        SaveEntries({kTopEntryId});
        break;
    case kCmdSaveChecked:
        SaveEntries(treeView_->CheckedEntries());
        break;
    case kCmdListNameless:
        scans_.SetListsNameless(!scans_.ListsNameless());
        break;
    case kCmdParentFolder:
        if (Desktop.WaitDialog == nullptr) {
            treeView_->GoToParent();
        }
        break;
    case kCmdClearLog:
        logList_->Clear();
        break;
    case kCmdSaveLog:
        SaveLog(*this, logList_->Log());
        break;
    case kCmdEscape:
        find_.End();
        break;
    case kCmdHound:
    case kCmdUpdate:
        StartProgram(command);
        break;
    default:
        break;
    }
    UpdateCommands();
}

bool CMainFrame::RunViewCommand(std::uint32_t command) {
    if (command >= kCmdLargeIcons && command <= kCmdDetails) {
        SetViewMode(command);
    } else if (command >= kCmdThemeOffice2000 && command <= kCmdThemeNative) {
        themeIndex_ = static_cast<std::uint8_t>(command - kCmdThemeOffice2000);
        UseTheme(themeIndex_);
    } else if (command >= kCmdToolbar16 && command <= kCmdToolbar48) {
        commands_.SetToolbarPixelsBy(command);
    } else if (command == kCmdViewToolbar) {
        commands_.ToggleToolbar();
    } else if (command == kCmdViewStatusBar) {
        commands_.ToggleStatusBar();
    } else if (command == kCmdSizesInBytes || command == kCmdSizesInUnits) {
        listView_->SetSizesInUnits(command == kCmdSizesInUnits);
    } else {
        return false;
    }
    return true;
}

bool CMainFrame::RunListCommand(std::uint32_t command) {
    switch (command) {
    case kCmdCopyNames:
        listView_->CopyNames();
        return true;
    case kCmdCopyPaths:
        listView_->CopyPaths();
        return true;
    case kCmdSaveList:
        lists_.Begin(*listView_, *treeView_);
        return true;
    case kCmdFilter:
        listPane_->Filter().TakeFocus();
        return true;
    case kCmdPathLine:
        listPane_->Path().TakeFocus();
        return true;
    default:
        return false;
    }
}

bool CMainFrame::RunRecentCommand(std::uint32_t command) {
    if (command == kCmdClearRecent) {
        recent_.Clear();
        return true;
    }
    if (command < kCmdRecent || command >= kCmdRecent + kRecentCommands) {
        return false;
    }
    OpenRecent(recent_.Paths().value(command - kCmdRecent));
    return true;
}

bool CMainFrame::RunHelpCommand(std::uint32_t command) {
    switch (command) {
    case kCmdHelpContents:
        ShowHelp(QStringLiteral("contents.htm"));
        return true;
    case kCmdTips:
        WM_SHOW_TIPS.Send(this);
        return true;
    case kCmdFeatures:
        ShowHelp(QStringLiteral("features.htm"));
        return true;
    case kCmdContact:
        ShowHelp(QStringLiteral("contact.htm"));
        return true;
    case kCmdFaq:
        ShowHelp(QStringLiteral("faq.htm"));
        return true;
    case kCmdAbout:
        ShowAboutBox(this);
        return true;
    default:
        return false;
    }
}

void CMainFrame::UpdateCommands() {
    commands_.ShowRecent(recent_.Paths());
    commands_.Update(State(), viewMode_);
    listView_->UpdateEmptyText();
    const Qt::CursorShape shape = Engine.ScanRunFlag != 0 ? Qt::WaitCursor : Qt::ArrowCursor;
    if (splitter_->cursor().shape() != shape) {
        splitter_->setCursor(shape);
        logPane_->setCursor(shape);
    }
}

FrameState CMainFrame::State() const {
    FrameState state;
    state.ScanRunning = Engine.ScanRunFlag != 0;
    state.JobBusy = job_.JobBusy();
    state.HasTree = !treeView_->IsEmpty();
    state.HasMarks = treeView_->HasMarks();
    // A search changes the list of candidates on its own thread, to its very end, and a copy empties it
    // there.
    state.HasPartitions = !TheDesktopHost().IsSearching() && Desktop.CopyDialog == nullptr &&
                          !Engine.SourceDisk.Partitions.empty();
    state.HasLog = !logList_->IsEmpty();
    state.HasFound = find_.HasFound();
    state.HasCopyDialog = Desktop.CopyDialog != nullptr;
    state.CurrentHasParent = treeView_->CurrentHasParent();
    state.StructuresMissing = Desktop.StructuresMissing;
    state.BasicScanDone = scans_.BasicScanDone();
    state.TurboScanUsed = Desktop.TurboScanUsed;
    state.ListsNameless = scans_.ListsNameless();
    state.HasRows = !listView_->IsEmpty();
    state.HasSelection = listView_->HasSelection();
    state.HasPath = listView_->ShowsHits() || listView_->ShownFolder().has_value();
    state.SizesInUnits = listView_->SizesInUnits();
    return state;
}

void CMainFrame::SetViewMode(std::uint32_t command) {
    viewMode_ = command >= kCmdLargeIcons && command <= kCmdDetails ? command : kCmdDetails;
    listView_->SetViewMode(viewMode_);
}

void CMainFrame::ShowTip() {
    QWidget* modal = QApplication::activeModalWidget();
    ShowTipOfTheDay(modal == nullptr ? this : modal);
}

void CMainFrame::StartProgram(std::uint32_t command) {
    if (Desktop.WaitDialog == nullptr) {
        const QString fault = command == kCmdHound ? sibling_.Start() : StartUpdate();
        if (!fault.isEmpty()) {
            panes_.ShowNotice(fault);
        }
    }
}

void CMainFrame::SearchFrom(std::uint32_t entryId) {
    if (job_.MayStartWork()) {
        find_.Ask(this, entryId);
    }
}

} // namespace thntfs
