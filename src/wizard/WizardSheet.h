#pragma once

#include "engine/Host.h"
#include "partitions/DiskEnumeration.h"
#include "wizard/WizardPage.h"

#include <QDialog>
#include <array>
#include <cstdint>
#include <memory>
#include <vector>

class QCheckBox;
class QPushButton;
class QStackedWidget;

namespace thntfs {

class CWizardHeader;
class CwizardImageSelection;

/// What the sheet's run gives when the user has pressed Finish.
inline constexpr int kWizardFinished = 12325;

// Values of WizardTask.
inline constexpr std::uint8_t kTaskRecoverDisk = 0;
inline constexpr std::uint8_t kTaskRecoverImage = 1;
inline constexpr std::uint8_t kTaskClone = 2;
inline constexpr std::uint8_t kTaskImage = 3;
inline constexpr std::uint8_t kNoTask = 0xFF;

/// A position in Disks that means none.
inline constexpr std::uint8_t kNoDisk = 255;

// Wizard buttons, to be added up. Either of the last two puts Finish in the place of Next.
inline constexpr unsigned kButtonBack = 1;
inline constexpr unsigned kButtonNext = 2;
inline constexpr unsigned kButtonFinish = 4;
inline constexpr unsigned kButtonDisabledFinish = 8;

/// The wizard: a modal sheet of six pages that leads to a job. The medium that a page has opened stays open
/// behind its end, however it ends. RunAtStartup is read from the settings and written back by the
/// destructor.
class CWizardSheet : public QDialog {
public:
    /// `logicalDriveNumber` is the frame's, written by a click in the list of partitions. `disks` is what the
    /// disk pages offer.
    CWizardSheet(QWidget* owner, std::uint8_t& logicalDriveNumber,
                 std::vector<DiskInfo> disks = EnumerateDisks());
    ~CWizardSheet() override;

    /// To be called before Run: the sheet opens on the list of partitions and offers nothing else.
    /// `processingMode` tells how the candidates of SourceDisk came about.
    void OpenOnPartitionList(std::uint8_t processingMode);
    /// To be called before Run: the sheet opens on the image page with this file chosen.
    void OpenOnImage(const QString& path);

    /// Tells by a box of each disk that can't be opened, and shows the sheet until it ends. Gives
    /// kWizardFinished or, cancelled, another number.
    int Run();

    /// Asks before it closes; done() closes unasked.
    void reject() override;

    // For the pages.
    void SetWizardButtons(unsigned buttons);
    /// As if Finish were clicked.
    void PressFinish();
    [[nodiscard]] CWizardPage& ActivePage() const;

    std::uint8_t WizardTask = kNoTask;
    std::uint8_t ProcessingMode = 0;        ///< 0 partition table, 1 search
    std::vector<DiskInfo> Disks;            ///< at most 255
    std::uint8_t SourceDiskIndex = kNoDisk; ///< of the clone and the image page
    std::uint8_t TargetDiskIndex = kNoDisk; ///< of the clone page
    QString ImageDestination;               ///< path of the image file to make
    std::uint32_t PagesFresh = 1;           ///< 1: the disk page is to start afresh
    std::uint32_t RunAtStartup = 0;
    std::uint32_t ListPageOnly = 0;
    std::uint8_t& LogicalDriveNumber;
    /// Names the chosen partition once the sheet has finished; whoever has run the sheet may take it.
    std::unique_ptr<ProcessLogEntry> WizardLogEntry = std::make_unique<ProcessLogEntry>();

private:
    void MakePages();
    void LayOut();
    QPushButton* AddButton(const QString& text);
    void ShowPage(int page);
    void OnNext();
    void OnFinish();

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
};

} // namespace thntfs
