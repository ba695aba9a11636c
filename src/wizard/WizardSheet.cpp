#include "wizard/WizardSheet.h"

#include "dialogs/HelpViewer.h"
#include "diskservice/DiskService.h"
#include "shell/Boxes.h"
#include "shell/DesktopState.h"
#include "shell/Icons.h"
#include "shell/Settings.h"
#include "wizard/WizardCloneDiskPage.h"
#include "wizard/WizardDriveSelectionPage.h"
#include "wizard/WizardHeader.h"
#include "wizard/WizardImageDiskPage.h"
#include "wizard/WizardImageSelection.h"
#include "wizard/WizardMainPage.h"
#include "wizard/WizardPartitionListPage.h"

#include <QApplication>
#include <QCheckBox>
#include <QCoreApplication>
#include <QFrame>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QShortcut>
#include <QStackedWidget>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

namespace thntfs {

namespace {

const QString kStartUpKey = QStringLiteral("Wizard/StartUp");
constexpr std::size_t kMaxDisks = kNoDisk; // positions are bytes, and this one means none
constexpr int kSheetMargin = 10;
constexpr int kFollowMilliseconds = 300;

/// A disk that this user may not open is no news where the disk service can be asked for it.
bool IsToBeAskedFor(const DiskInfo& disk) {
    return disk.OpenError == kErrorAccessDenied && DiskServiceStands();
}

// The system's figures stand in the list all the same. A loop device is no disk that could be broken.
void TellUnreadable(const DiskInfo& disk) {
    if (disk.InterfaceType == "Loop" || IsToBeAskedFor(disk)) {
        return;
    }
    if (disk.OpenError != kErrorNone) {
        ShowBox(QCoreApplication::translate("WizardSheet", "Disk Opening Error #%1").arg(disk.OpenError),
                QCoreApplication::translate("WizardSheet", "Information"), BoxIcon::Information);
    } else if (disk.AccessError != kErrorNone) {
        ShowBox(QCoreApplication::translate("WizardSheet", "Error accessing device %1").arg(disk.AccessError),
                QCoreApplication::translate("WizardSheet", "Error"), BoxIcon::Stop);
    }
}

} // namespace

CWizardSheet::CWizardSheet(QWidget* owner, std::uint8_t logicalDriveNumber, DiskLister disks)
    : QDialog(owner)
    , lister_(std::move(disks))
    , watch_([this] { FollowDisks(); }) {
    TakeDisks();
    state_.LogicalDriveNumber = logicalDriveNumber;
    state_.RunAtStartup = OpenSettings().value(kStartUpKey, 0).toInt() != 0;
    setWindowTitle(tr("Tarnholt Volume Salvage (NTFS) Wizard"));
    setWindowIcon(LoadIcon("wizard"));
    header_ = new CWizardHeader(this);
    stack_ = new QStackedWidget(this);
    runAtStartup_ = new QCheckBox(tr("&Run wizard on startup"), this);
    runAtStartup_->setChecked(state_.RunAtStartup);
    back_ = AddButton(tr("< &Back"));
    next_ = AddButton(tr("&Next >"));
    finish_ = AddButton(tr("&Finish"));
    cancel_ = AddButton(tr("Cancel"));
    help_ = AddButton(tr("Help"));
    help_->setShortcut(QKeySequence::HelpContents);
    LayOut();
    MakePages();
    followLater_.setSingleShot(true);
    followLater_.setInterval(kFollowMilliseconds);
    connect(&followLater_, &QTimer::timeout, this, [this] { FollowDisks(); });
    connect(new QShortcut(QKeySequence(Qt::Key_F5), this), &QShortcut::activated, this,
            [this] { FollowDisks(); });
    connect(runAtStartup_, &QCheckBox::toggled, this,
            [this](bool checked) { state_.RunAtStartup = checked; });
    connect(back_, &QPushButton::clicked, this, [this] { ShowPage(ActivePage().OnWizardBack()); });
    connect(next_, &QPushButton::clicked, this, [this] { OnNext(); });
    connect(finish_, &QPushButton::clicked, this, [this] { OnFinish(); });
    connect(cancel_, &QPushButton::clicked, this, [this] { reject(); });
    connect(help_, &QPushButton::clicked, this, [this] { ShowHelp(ActivePage().HelpTopic()); });
}

CWizardSheet::~CWizardSheet() { OpenSettings().setValue(kStartUpKey, state_.RunAtStartup ? 1 : 0); }

// In the order of the pages' numbers.
void CWizardSheet::MakePages() {
    imagePage_ = new CwizardImageSelection(state_, *this);
    stack_->addWidget(new CWizardMainPage(state_, *this));
    stack_->addWidget(new CWizardDriveSelectionPage(state_, *this));
    stack_->addWidget(imagePage_);
    stack_->addWidget(new CWizardCloneDiskPage(state_, *this));
    stack_->addWidget(new CWizardImageDiskPage(state_, *this));
    stack_->addWidget(new CWizardPartitionListPage(state_, *this));
}

QPushButton* CWizardSheet::AddButton(const QString& text) {
    auto* button = new QPushButton(text, this);
    button->setAutoDefault(true); // Enter presses the one that has the focus, and the default one otherwise
    return button;
}

void CWizardSheet::LayOut() {
    auto* line = new QFrame(this);
    line->setFrameStyle(QFrame::HLine | QFrame::Sunken);
    auto* buttons = new QHBoxLayout;
    buttons->setContentsMargins(kSheetMargin, 0, kSheetMargin, kSheetMargin);
    buttons->addWidget(runAtStartup_);
    buttons->addStretch();
    for (QPushButton* button : {back_, next_, finish_, cancel_, help_}) {
        buttons->addWidget(button);
    }
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(header_);
    layout->addWidget(stack_, 1);
    layout->addWidget(line);
    layout->addLayout(buttons);
}

void CWizardSheet::OpenOnPartitionList(std::uint8_t processingMode) {
    state_.ProcessingMode = processingMode;
    state_.ListPageOnly = true;
    firstPage_ = kPartitionListPage;
}

void CWizardSheet::OpenOnImage(const QString& path) {
    state_.WizardTask = kTaskRecoverImage;
    Desktop.StructuresMissing = false; // as the main page, which is passed over, does
    imagePage_->ChooseImage(path);
    firstPage_ = kImageSelectionPage;
}

void CWizardSheet::OpenOnClone() {
    state_.WizardTask = kTaskClone;
    firstPage_ = kCloneDiskPage;
}

// Who opens an image from outside has not asked for disks.
int CWizardSheet::Run() {
    if (firstPage_ != kImageSelectionPage) {
        std::for_each(state_.Disks.begin(), state_.Disks.end(), TellUnreadable);
    }
    ShowPage(firstPage_);
    return exec();
}

CWizardPage& CWizardSheet::ActivePage() const { return *static_cast<CWizardPage*>(stack_->currentWidget()); }

void CWizardSheet::ShowPage(int page) {
    stack_->setCurrentIndex(page);
    header_->SetHeading(ActivePage().Heading());
    ActivePage().OnSetActive();
    ActivePage().setFocus();
}

void CWizardSheet::SetWizardButtons(unsigned buttons) {
    const bool finishing = (buttons & (kButtonFinish | kButtonDisabledFinish)) != 0;
    back_->setEnabled((buttons & kButtonBack) != 0);
    next_->setEnabled((buttons & kButtonNext) != 0);
    next_->setHidden(finishing);
    finish_->setEnabled((buttons & kButtonFinish) != 0);
    finish_->setHidden(!finishing);
    (finishing ? finish_ : next_)->setDefault(true);
}

/// True where they are others than before.
bool CWizardSheet::TakeDisks() {
    std::vector<DiskInfo> disks = lister_();
    disks.resize(std::min(disks.size(), kMaxDisks));
    const bool changed = disks != state_.Disks;
    state_.Disks = std::move(disks);
    return changed;
}

// Not under the hands of a user who has a box or a menu open, nor of a page that works on one of the disks.
void CWizardSheet::FollowDisks() {
    if (atWork_ || QApplication::activeModalWidget() != this ||
        QApplication::activePopupWidget() != nullptr) {
        followLater_.start();
        return;
    }
    if (!TakeDisks()) {
        return;
    }
    for (int page = 0; page < stack_->count(); ++page) {
        static_cast<CWizardPage*>(stack_->widget(page))->OnDisksChanged();
    }
}

void CWizardSheet::OnNext() {
    const QScopedValueRollback working(atWork_, true);
    const int page = ActivePage().OnWizardNext();
    if (page != kStay) {
        ShowPage(page);
    }
}

void CWizardSheet::OnFinish() {
    const QScopedValueRollback working(atWork_, true);
    if (ActivePage().OnWizardFinish()) {
        done(kWizardFinished);
    }
}

void CWizardSheet::PressFinish() { finish_->click(); }

void CWizardSheet::reject() {
    if (AskYesNo(tr("Do you want to close wizard?"), ActivePage().CloseCaption())) {
        QDialog::reject();
    }
}

} // namespace thntfs
