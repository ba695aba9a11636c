#pragma once

#include "engine/Host.h"
#include "shell/MessageTarget.h"
#include "support/RunProgram.h"
#include "support/desktop/BoxAnswers.h"
#include "support/desktop/ModalSteps.h"
#include "support/desktop/Widgets.h"
#include "wizard/WizardSheet.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace thntfs::test {

/// Stands for the main frame: keeps what reaches it, in order, as "clear views" and "STATUS first | second".
class RecordingFrame : public MessageTarget {
public:
    std::intptr_t OnMessage(std::uint32_t message, std::uintptr_t wParam, std::uintptr_t lParam) override;

    Texts Arrived;
};

/// Three disks that no machine has.
std::vector<DiskInfo> MadeUpDisks();

/// The text and the caption of each box.
Texts BoxTexts(const BoxAnswers& answers);

/// An unpacked image by its name.
QString VolumePath(const char* name);

/// A sheet over made-up disks, its user and its frame.
class WizardTest : public testing::Test {
protected:
    WizardTest();
    ~WizardTest() override;

    /// Makes a new sheet.
    void MakeSheet(std::vector<DiskInfo> disks = MadeUpDisks());

    /// A step at the sheet itself.
    void AtSheet(std::function<void()> act);
    /// Runs the sheet through its steps; all must have been done at its end.
    int Run();

    // Within a step.
    void Press(const char* text) { test::Press(*Sheet, text); }
    void Close() { Sheet->done(0); }
    /// What Back, Next and Finish offer: a name is enabled, one in brackets isn't, and one left out is
    /// hidden.
    [[nodiscard]] std::string Buttons() const;
    [[nodiscard]] std::string Heading() const;
    /// Chooses a disk of the active page's tree, -1 for the root.
    void ChooseDisk(int position);
    template <typename Widget>
    Widget& OnPage() const {
        return *Sheet->ActivePage().findChild<Widget*>();
    }
    /// From the main page through the image page, with the file typed into the file dialog.
    void GoToImagePage(const QString& path);

    RecordingFrame Frame;
    BoxAnswers Answers;
    ModalSteps Steps;
    ScratchFolder Scratch;
    std::unique_ptr<CWizardSheet> Sheet;
};

} // namespace thntfs::test
