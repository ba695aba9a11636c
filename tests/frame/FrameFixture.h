#pragma once

#include "engine/EngineState.h"
#include "frame/MainFrame.h"
#include "scaninfo/ProcessLog.h"
#include "support/BuildPaths.h"
#include "support/FaultyMedium.h"
#include "support/RunProgram.h"
#include "support/desktop/BoxAnswers.h"

#include <QAction>
#include <QTreeView>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace thntfs::test {

/// The description that a job's lines of the log carry, between its separators.
inline const std::string kRule = " | -----------------------------------";

/// The log's lines of a Basic Scan that has run to its end.
inline const std::vector<std::string> kBasicScanLines{
    "Processing Internal File System Structure..." + kRule + " | 0",
    "Completed processing Internal File System Structure" + kRule + " | 2",
    "Populating Directory Structure..." + kRule + " | 0",
    "Completed Populating Directory Structure" + kRule + " | 2",
};

// Menu lines, as ChooseInMenu takes them.
inline constexpr const char* kLoadTree = "File/Open Saved Scan Info/Load Tree Info";
inline constexpr const char* kSaveTree = "Tools/Save Scan Information/Save Tree Info";
inline constexpr const char* kSavePartitions = "Tools/Save Scan Information/Save Partition Info";

/// The real main window, without a screen, and a user who answers what it asks.
class FrameFixture : public ::testing::Test {
protected:
    FrameFixture();
    ~FrameFixture() override;

    /// Path of one of the packed volumes.
    static std::string Volume(const std::string& name) { return VolumeFolder() + "/" + name; }

    /// Has the terminal program scan a medium and save the result; gives the path of the file, always the
    /// same.
    std::string SavedScanOf(const std::string& medium, std::vector<std::string> options = {});

    /// Loads a saved scan as the user does, by the menu and the file dialog.
    void LoadByMenu(const std::string& path);

    /// Puts Plan between the engine and the medium that is open.
    void WatchMedium();

    /// Has the user do something while the worker is at its n-th read of a watched medium.
    void AtRead(std::uint64_t read, const std::function<void()>& act);

    /// Presses a key in the window, once that is active and idle.
    void PressKey(Qt::Key key, Qt::KeyboardModifiers modifiers = {});

    /// Drops a file on the window; false where it wouldn't take it.
    bool Drop(const std::string& path);

    /// Clicks through menus: the titles from the menu bar on, without "&" and keys, with "/" between.
    void ChooseInMenu(const char* path);

    /// Runs the event loop until no job runs.
    bool WaitForIdle();

    /// A command by the title of its menu line.
    [[nodiscard]] QAction& Command(const char* title) const;
    [[nodiscard]] bool IsOffered(const char* title) const;
    /// Titles of all commands that can't be chosen now; that of Save Checked is empty.
    [[nodiscard]] std::set<std::string> Greyed() const;

    template <typename Widget>
    [[nodiscard]] Widget& Find(const char* name) const {
        return dynamic_cast<Widget&>(*Frame->findChild<QWidget*>(QLatin1String(name)));
    }
    [[nodiscard]] QTreeView& Tree() const { return Find<QTreeView>("TreeView"); }
    /// The list in its view of columns.
    [[nodiscard]] QTreeView& Details() const { return *Find<QWidget>("ListView").findChild<QTreeView*>(); }
    [[nodiscard]] bool TreeIsEmpty() const { return Tree().model()->rowCount() == 0; }
    [[nodiscard]] const ProcessLog& Log() const;

    /// The log's rows as "name | description | status".
    [[nodiscard]] std::vector<std::string> LogRows() const;

    /// The tree as one text: a line a folder, two blanks a level.
    [[nodiscard]] std::string TreeText() const;

    /// Text of a pane of the status bar.
    [[nodiscard]] std::string Pane(int number) const;

    ScratchFolder Folder;
    BoxAnswers Answers;
    std::shared_ptr<FaultPlan> Plan = std::make_shared<FaultPlan>();
    std::unique_ptr<CMainFrame> Frame;
};

} // namespace thntfs::test
