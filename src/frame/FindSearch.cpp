#include "frame/FindSearch.h"

#include "catalogue/CatalogueReader.h"
#include "dialogs/THNTFSFindFile.h"
#include "engine/EngineState.h"
#include "shell/Boxes.h"
#include "shell/EscapeWatch.h"
#include "shell/WindowMessages.h"
#include "views/FolderListing.h"
#include "views/THNTFSListView.h"
#include "views/THNTFSTreeView.h"

#include <utility>

namespace thntfs {

namespace {

FindCriteria CriteriaOf(const FindState& state) {
    FindCriteria criteria;
    criteria.Pattern = state.FindPattern;
    criteria.MatchCase = state.FindMatchCase;
    if (state.FindSizeOn) {
        (state.FindSizeMode == 0 ? criteria.MinSize : criteria.MaxSize) = state.FindSizeLimit;
    }
    if (state.FindDateOn) {
        (state.FindDateMode == 0 ? criteria.Accessed : criteria.Created) =
            DosDateRange{state.FindDateFrom, state.FindDateTo};
    }
    return criteria;
}

// Limits are taken over for a filter that is on.
FindState ChoiceOf(const CTHNTFSFindFile& dialog, FindState state) {
    state.FindPattern = dialog.Pattern;
    state.FindMatchCase = dialog.MatchCase;
    state.FindSizeOn = dialog.SizeOn;
    if (dialog.SizeOn) {
        state.FindSizeLimit = dialog.SizeValue;
        state.FindSizeMode = dialog.SizeMode;
    }
    state.FindDateOn = dialog.DateOn;
    if (dialog.DateOn) {
        state.FindDateFrom = dialog.DateFrom;
        state.FindDateTo = dialog.DateTo;
        state.FindDateMode = dialog.DateMode;
    }
    return state;
}

} // namespace

FindSearch::FindSearch(CTHNTFSTreeView& tree, CTHNTFSListView& list)
    : tree_(tree)
    , list_(list) {}

void FindSearch::Ask(QWidget* owner, std::uint32_t startId) {
    CTHNTFSFindFile dialog(owner);
    if (dialog.exec() != QDialog::Accepted || LoadEntry(startId) == nullptr) {
        return;
    }
    FindState state = ChoiceOf(dialog, state_);
    state.FindStart = startId;
    Begin(state, dialog.AllInOneList);
}

void FindSearch::Begin(const FindState& state, bool allInOneList) {
    state_ = state;
    state_.FoundEntry = 0;
    walk_.reset();
    if (allInOneList) {
        ShowAllHits();
    } else {
        SearchFolder();
    }
}

int FindSearch::SearchFolder() {
    try {
        return ShowNext();
    } catch (const CUserException&) { // its box has been seen
        End();
        return 0;
    }
}

int FindSearch::ShowNext() {
    std::optional<FindHit> hit;
    {
        EscapeWatch watch;
        if (walk_ == nullptr) {
            walk_ = std::make_unique<FindWalk>(CriteriaOf(state_), state_.FindStart);
        }
        hit = walk_->Next([&watch] { return watch.MayGoOn(); });
    }
    if (hit) {
        ShowHit(*hit);
    } else if (walk_->Ended()) {
        TellNothingFound();
    }
    return hit ? 1 : 0;
}

// A list that is as its fill has left it need not be filled anew: a line of searches often stays in a folder
// for long.
void FindSearch::ShowHit(const FindHit& hit) {
    if (list_.IsAsFilled(hit.Folder)) {
        list_.GoToTop();
    } else {
        WM_LIST_SHOW_FOLDER.Send(&list_, hit.Folder);
    }
    WM_TREE_SELECT_FOLDER.Send(&tree_, hit.Folder);
    SetFoundEntry(hit.Entry);
}

void FindSearch::ShowAllHits() try {
    FileRows rows;
    {
        EscapeWatch watch;
        FindWalk walk(CriteriaOf(state_), state_.FindStart);
        while (const auto hit = walk.Next([&watch] { return watch.MayGoOn(); })) {
            AppendRow(walk.Item(), hit->Entry, rows);
            rows.Rows.back().FolderId = hit->Folder;
        }
    }
    if (rows.Rows.empty()) {
        TellNothingFound();
        return;
    }
    End();
    list_.ShowHits(std::move(rows), tr("Results of %1").arg(QString::fromStdString(state_.FindPattern)));
} catch (const CUserException&) { // its box has been seen
    End();
}

void FindSearch::TellNothingFound() {
    SetFoundEntry(FindState().FoundEntry);
    walk_.reset();
    ShowBox(tr("Search Item not found."), tr("Information"), BoxIcon::Information);
}

void FindSearch::End() {
    walk_.reset();
    if (HasFound()) {
        SetFoundEntry(FindState().FoundEntry);
    }
    if (list_.ShowsHits()) {
        WM_LIST_SHOW_FOLDER.Send(&list_, tree_.CurrentEntry());
    }
}

void FindSearch::Forget() {
    walk_.reset();
    state_.FindPattern.clear();
    SetFoundEntry(FindState().FoundEntry);
}

void FindSearch::SetFoundEntry(std::uint32_t entryId) {
    state_.FoundEntry = entryId;
    list_.SetFoundEntry(entryId);
}

} // namespace thntfs
