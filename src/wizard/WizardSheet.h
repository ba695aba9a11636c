#pragma once

#include "diskservice/DiskWatch.h"
#include "wizard/WizardPage.h"
#include "wizard/WizardState.h"

#include <QCoreApplication>
#include <QDialog>
#include <QTimer>
#include <cstdint>
#include <functional>
#include <vector>

class QCheckBox;
class QPushButton;
class QStackedWidget;

namespace thntfs {

class CWizardHeader;
class CwizardImageSelection;

/// What the sheet's run gives when the user has pressed Finish.
inline constexpr int kWizardFinished = 12325;

/// Gives the disks that the disk pages offer.
using DiskLister = std::function<std::vector<DiskInfo>()>;

/// The wizard: a modal sheet of six pages that leads to a job. The medium that a page has opened stays open
/// behind its end, however it ends. RunAtStartup is read from the settings and written back by the
/// destructor. Its disks follow what the disk service tells of those that come and go, and F5.
class CWizardSheet : public QDialog, private WizardPageOwner {
    Q_DECLARE_TR_FUNCTIONS(CWizardSheet)

public:
    /// `logicalDriveNumber` is what LogicalDriveNumber begins with.
    CWizardSheet(QWidget* owner, std::uint8_t logicalDriveNumber, DiskLister disks = EnumerateDisks);
    ~CWizardSheet() override;

    /// To be called before Run: the sheet opens on the list of partitions and offers nothing else.
    /// `processingMode` tells how the candidates of SourceDisk came about.
    void OpenOnPartitionList(std::uint8_t processingMode);
    /// To be called before Run: the sheet opens on the image page with this file chosen.
    void OpenOnImage(const QString& path);

    /// To be called before Run: the sheet opens on the page of clones.
    void OpenOnClone();

    /// Tells by a box of each disk that can't be opened, and shows the sheet until it ends. Gives
    /// kWizardFinished or, cancelled, another number.
    int Run();

    /// Asks before it closes; done() closes unasked.
    void reject() override;

    [[nodiscard]] const WizardState& State() const { return state_; }
    [[nodiscard]] CWizardPage& ActivePage() const;

private:
    void SetWizardButtons(unsigned buttons) override;
    void PressFinish() override;
    void MakePages();
    void LayOut();
    QPushButton* AddButton(const QString& text);
    void ShowPage(int page);
    void OnNext();
    void OnFinish();
    bool TakeDisks();
    void FollowDisks();

    WizardState state_;
    CWizardHeader* header_;
    QStackedWidget* stack_;
    CwizardImageSelection* imagePage_ = nullptr;
    QCheckBox* runAtStartup_;
    QPushButton* back_;
    QPushButton* next_;
    QPushButton* finish_;
    QPushButton* cancel_;
    QPushButton* help_;
    int firstPage_ = kMainPage;
    DiskLister lister_;
    bool atWork_ = false; ///< in what Next or Finish does, which may ask and wait
    QTimer followLater_;
    DiskWatch watch_;
};

} // namespace thntfs
