#pragma once

#include <QString>
#include <QWidget>

namespace thntfs {

class CWizardSheet;

// The pages by their places in the sheet.
inline constexpr int kMainPage = 0;
inline constexpr int kDriveSelectionPage = 1;
inline constexpr int kImageSelectionPage = 2;
inline constexpr int kCloneDiskPage = 3;
inline constexpr int kImageDiskPage = 4;
inline constexpr int kPartitionListPage = 5;
/// In the place of a page: no change.
inline constexpr int kStay = -1;

/// A page of the wizard's sheet.
class CWizardPage : public QWidget {
public:
    /// A heading may have two lines. `helpTopic` is the name of a page of the help.
    CWizardPage(CWizardSheet& sheet, const char* heading, const char* helpTopic);

    [[nodiscard]] QString Heading() const;
    [[nodiscard]] virtual QString HelpTopic() const;
    /// Caption of the question whether to close the wizard.
    [[nodiscard]] virtual QString CloseCaption() const;

    /// The page is about to show.
    virtual void OnSetActive() = 0;

    /// The page that Back leads to.
    [[nodiscard]] virtual int OnWizardBack() const;
    /// Does the page's work and gives the page to go to, or kStay.
    virtual int OnWizardNext();
    /// Does the page's work; true ends the sheet.
    virtual bool OnWizardFinish();

protected:
    [[nodiscard]] CWizardSheet& Sheet() const { return sheet_; }

private:
    CWizardSheet& sheet_;
    const char* heading_;
    const char* helpTopic_;
};

} // namespace thntfs
