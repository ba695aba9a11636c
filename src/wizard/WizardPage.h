#pragma once

#include <QCoreApplication>
#include <QString>
#include <QWidget>

namespace thntfs {

struct WizardState;

// The pages by their places in the sheet.
inline constexpr int kMainPage = 0;
inline constexpr int kDriveSelectionPage = 1;
inline constexpr int kImageSelectionPage = 2;
inline constexpr int kCloneDiskPage = 3;
inline constexpr int kImageDiskPage = 4;
inline constexpr int kPartitionListPage = 5;
/// In the place of a page: no change.
inline constexpr int kStay = -1;

// Wizard buttons, to be added up. Either of the last two puts Finish in the place of Next.
inline constexpr unsigned kButtonBack = 1;
inline constexpr unsigned kButtonNext = 2;
inline constexpr unsigned kButtonFinish = 4;
inline constexpr unsigned kButtonDisabledFinish = 8;

/// What a page asks of the sheet in which it stands.
class WizardPageOwner {
public:
    virtual void SetWizardButtons(unsigned buttons) = 0;
    /// As if Finish were clicked.
    virtual void PressFinish() = 0;

protected:
    ~WizardPageOwner() = default;
};

/// A page of the wizard's sheet.
class CWizardPage : public QWidget {
    Q_DECLARE_TR_FUNCTIONS(CWizardPage)

public:
    /// State and owner outlive the page. A heading may have two lines. `helpTopic` is the name of a page of
    /// the help.
    CWizardPage(WizardState& state, WizardPageOwner& owner, QString heading, const char* helpTopic);

    [[nodiscard]] QString Heading() const;
    [[nodiscard]] virtual QString HelpTopic() const;
    /// Caption of the question whether to close the wizard.
    [[nodiscard]] virtual QString CloseCaption() const;

    /// The page is about to show.
    virtual void OnSetActive() = 0;

    /// The disks of the state are others than before.
    virtual void OnDisksChanged();

    /// The page that Back leads to.
    [[nodiscard]] virtual int OnWizardBack() const;
    /// Does the page's work and gives the page to go to, or kStay.
    virtual int OnWizardNext();
    /// Does the page's work; true ends the sheet.
    virtual bool OnWizardFinish();

protected:
    [[nodiscard]] WizardState& State() const { return state_; }
    [[nodiscard]] WizardPageOwner& Owner() const { return owner_; }

    /// Back, where there is a way back, and Next, or Finish in its place, which is grey unless it is offered.
    void OfferNext(bool offered);
    void OfferFinish(bool offered);

private:
    WizardState& state_;
    WizardPageOwner& owner_;
    QString heading_;
    const char* helpTopic_;
};

} // namespace thntfs
