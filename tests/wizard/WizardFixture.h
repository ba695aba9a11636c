#pragma once

#include "shell/MessageTarget.h"
#include "support/RunProgram.h"
#include "support/desktop/BoxAnswers.h"
#include "support/desktop/Widgets.h"
#include "wizard/WizardSheet.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace thntfs::test {

/// Three disks that no machine has: an IDE disk "sdx", a USB disk "sdy" and an NVMe disk at
/// /dev/no-such-disk.
std::vector<DiskInfo> MadeUpDisks();

/// An unpacked image by its name.
QString VolumePath(const char* name);

/// A sheet over made-up disks and its user. The test itself stands for the main frame.
class WizardTest : public testing::Test, public MessageTarget {
protected:
    WizardTest();
    ~WizardTest() override;

    std::intptr_t OnMessage(std::uint32_t message, std::uintptr_t wParam, std::uintptr_t lParam) override;

    /// Makes a new sheet.
    void MakeSheet(std::vector<DiskInfo> disks = MadeUpDisks());

    /// A step at the sheet itself.
    void AtSheet(std::function<void()> act);
    /// Runs the sheet through its steps; all must have been done at its end.
    int Run();
    /// The same with a last step, behind which the sheet is closed if it still stands.
    int RunWith(std::function<void()> act);

    /// Caption and text of each box that came up.
    [[nodiscard]] Texts Boxes() const;

    // Within a step.
    void Press(const char* text) { test::Press(*Sheet, text); }
    /// What Back, Next and Finish offer: a name is enabled, one in brackets isn't, and one left out is
    /// hidden.
    [[nodiscard]] std::string Buttons() const;
    [[nodiscard]] std::string Heading() const { return Sheet->ActivePage().Heading().toStdString(); }
    /// All texts of the active page's labels, and of its explaining list, where "* " stands for a bullet.
    [[nodiscard]] Texts Labels() const;
    [[nodiscard]] Texts Info() const;
    /// Heights that the list gives its first two rows, "20 18".
    [[nodiscard]] std::string InfoHeights() const;
    /// Names of the disks in the first tree that have a USB disk's icon, with blanks between.
    [[nodiscard]] std::string UsbDisks() const;
    /// Chooses a disk of a tree of the active page, -1 for the root.
    void ChooseDisk(int position, int tree = 0);
    template <typename Widget>
    Widget& OnPage() const {
        return *Sheet->ActivePage().findChild<Widget*>();
    }
    /// From the main page through the image page, with the file typed into the file dialog.
    void GoToImagePage(const QString& path);

    Texts Arrived; ///< at the frame, in order: "clear views", and "STATUS first | second" of a log line
    bool KeepsOldScan = false; ///< what the frame says when it is to give up a scan
    BoxAnswers Answers;
    ScratchFolder Scratch;
    std::unique_ptr<CWizardSheet> Sheet;
};

} // namespace thntfs::test
