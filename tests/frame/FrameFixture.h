#pragma once

#include "catalogue/Catalogue.h"
#include "engine/EngineState.h"
#include "frame/CommandIds.h"
#include "frame/MainFrame.h"
#include "support/BuildPaths.h"
#include "support/FaultyMedium.h"
#include "support/RunProgram.h"
#include "support/desktop/BoxAnswers.h"

#include <atomic>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace thntfs::test {

/// The description that a job's lines of the log carry, between its separators.
inline const std::string kRule = " | -----------------------------------";

/// The real main window, without a screen, and a user who answers what it asks.
class FrameFixture : public ::testing::Test {
protected:
    FrameFixture();
    ~FrameFixture() override;

    /// Path of one of the packed volumes.
    static std::string Volume(const std::string& name) { return VolumeFolder() + "/" + name; }

    /// Has the terminal program scan a medium and save the result; gives the path of the file.
    std::string SavedScanOf(const std::string& medium);

    /// Loads a saved scan as the user does, by the menu and the file dialog.
    void LoadByMenu(const std::string& path);

    /// Puts Plan between the engine and the medium that is open.
    void WatchMedium();

    /// Has the user ask for a stop when the worker comes to its n-th read of a watched medium; the worker
    /// goes on with that read once the question is up.
    void AskForStopAtRead(std::uint64_t read);

    /// Presses a key in the window, once that is active and idle.
    void PressKey(Qt::Key key, Qt::KeyboardModifiers modifiers = {});

    /// Clicks through menus: the titles from the menu bar on, without "&" and keys.
    void ChooseInMenu(const std::vector<QString>& titles);

    /// Runs the event loop until no job runs.
    [[nodiscard]] bool WaitForIdle() const;

    /// The log's rows as "name | description | status".
    [[nodiscard]] std::vector<std::string> LogRows() const;

    /// The tree as one text: a line a folder, two blanks a level.
    [[nodiscard]] std::string TreeText() const;

    /// First column of the list from the top.
    [[nodiscard]] std::vector<std::string> ListNames() const;

    [[nodiscard]] std::string Pane(std::size_t number) const {
        return Frame->Panes[number]->text().toStdString();
    }

    ScratchFolder Folder;
    BoxAnswers Answers;
    std::shared_ptr<FaultPlan> Plan = std::make_shared<FaultPlan>();
    std::unique_ptr<CMainFrame> Frame;

private:
    std::atomic<bool> pressing_{false};
    std::atomic<bool> answered_{false}; ///< the stop question
};

} // namespace thntfs::test
