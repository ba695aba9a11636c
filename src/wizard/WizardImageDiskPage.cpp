#include "wizard/WizardImageDiskPage.h"

#include "dialogs/FileDialogs.h"
#include "wizard/CopyNotBuilt.h"
#include "wizard/DiskTree.h"
#include "wizard/ElidedLabel.h"
#include "wizard/ImageFileName.h"
#include "wizard/PageTexts.h"
#include "wizard/WizardSheet.h"

#include <QGridLayout>
#include <QPushButton>

namespace thntfs {

namespace {

const QString kExtension = QStringLiteral(".th2");

bool LooksUsb(const DiskInfo& disk) { return disk.InterfaceType != "IDE"; }

} // namespace

CWizardImageDiskPage::CWizardImageDiskPage(CWizardSheet& sheet)
    : CWizardPage(sheet, "Step 1: Select source drive\nStep 2: Select destination path",
                  "ntfsdiskimaging2.htm")
    , tree_(new CDiskTree(this, sheet.Disks, LooksUsb))
    , pick_(new QPushButton(QStringLiteral("Select &destination path"), this))
    , info_(new CInfoListBox(this, kInfoTextColour, kInfoBulletSize))
    , pathText_(new CElidedLabel(QStringLiteral("File Path :"), this)) {
    LayOut();
    setFocusProxy(tree_);
    connect(tree_, &QTreeWidget::currentItemChanged, this, [this] { ShowImageDetails(tree_->ChosenDisk()); });
    connect(pick_, &QPushButton::clicked, this, [this] { PickDestination(); });
}

void CWizardImageDiskPage::LayOut() {
    auto* layout = new QGridLayout(this);
    layout->addWidget(tree_, 0, 0);
    layout->addWidget(pick_, 1, 0, Qt::AlignLeft);
    layout->addWidget(info_, 0, 1, 2, 1);
    layout->addWidget(pathText_, 2, 0, 1, 2);
    layout->setColumnStretch(0, 1);
    layout->setRowStretch(0, 1);
}

void CWizardImageDiskPage::OnSetActive() {
    Sheet().ImageDestination.clear();
    pathText_->setText(QStringLiteral("File Path :"));
    pathText_->setToolTip({});
    pathText_->setEnabled(false);
    tree_->SelectRoot();
    ShowImageDetails(kNoDisk);
}

void CWizardImageDiskPage::ShowImageDetails(std::uint8_t index) {
    const bool chosen = index != kNoDisk;
    Sheet().SourceDiskIndex = index;
    if (chosen) {
        info_->ShowRows(DiskRows(QStringLiteral(": "), Sheet().Disks.at(index)), kDiskHeaderHeight,
                        kInfoRowHeight);
    } else {
        info_->ShowRows(RowsOf(kImagingPageSteps), kInfoRowHeight, kInfoRowHeight);
    }
    pick_->setEnabled(chosen);
    UpdateButtons();
}

void CWizardImageDiskPage::UpdateButtons() {
    const bool complete = Sheet().SourceDiskIndex != kNoDisk && !Sheet().ImageDestination.isEmpty();
    Sheet().SetWizardButtons(kButtonBack | (complete ? kButtonFinish : kButtonDisabledFinish));
}

void CWizardImageDiskPage::PickDestination() {
    const QString path =
        ChooseFileToSave(this, QStringLiteral("Select destination path"), ImageFileName(QDate::currentDate()),
                         QStringLiteral("Tarnholt Volume Salvage (NTFS) Image File (*.th2)"), kExtension);
    if (path.isEmpty()) {
        return;
    }
    Sheet().ImageDestination = path.endsWith(kExtension) ? path : path + kExtension;
    pathText_->setText(QStringLiteral("Destination path :") + Sheet().ImageDestination);
    pathText_->setToolTip(Sheet().ImageDestination);
    pathText_->setEnabled(true);
    UpdateButtons();
    setFocus(); // Enter finishes, and doesn't ask for the path again
}

bool CWizardImageDiskPage::OnWizardFinish() {
    const QString name = QString::fromStdString(Sheet().Disks.at(Sheet().SourceDiskIndex).Name);
    TellCopyNotBuilt(QStringLiteral("Creating a disk image"),
                     {QStringLiteral("image"), QStringLiteral("/dev/") + name, Sheet().ImageDestination});
    return false;
}

} // namespace thntfs
