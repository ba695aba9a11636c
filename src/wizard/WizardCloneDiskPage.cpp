#include "wizard/WizardCloneDiskPage.h"

#include "wizard/CopyNotBuilt.h"
#include "wizard/DiskTree.h"
#include "wizard/PageTexts.h"
#include "wizard/WizardSheet.h"

#include <QGridLayout>
#include <QLabel>

namespace thntfs {

namespace {

bool LooksUsb(const DiskInfo& disk) { return disk.InterfaceType == "USB"; }

QLabel* TreeTitle(const QString& text, QWidget* tree) {
    auto* label = new QLabel(text, tree->parentWidget());
    label->setBuddy(tree);
    return label;
}

QLabel* NameLabel(QWidget* parent) {
    auto* label = new QLabel(parent);
    QFont bold = label->font();
    bold.setBold(true);
    label->setFont(bold);
    label->setTextFormat(Qt::PlainText);
    return label;
}

} // namespace

CWizardCloneDiskPage::CWizardCloneDiskPage(CWizardSheet& sheet)
    : CWizardPage(sheet, "Select Source and Destination Disk(s)", "ntfsclonewindow.htm")
    , source_{"Source Disk :", "Source Disk # ", new CDiskTree(this, sheet.Disks, LooksUsb), NameLabel(this)}
    , target_{"Destination Disk :", "Destination Disk # ", new CDiskTree(this, sheet.Disks, LooksUsb),
              NameLabel(this)}
    , info_(new CInfoListBox(this, kInfoTextColour, kInfoBulletSize)) {
    LayOut();
    setFocusProxy(source_.Tree);
    connect(source_.Tree, &QTreeWidget::currentItemChanged, this, [this] { OnSourceChanged(); });
    connect(target_.Tree, &QTreeWidget::currentItemChanged, this, [this] { OnTargetChanged(); });
}

void CWizardCloneDiskPage::LayOut() {
    auto* layout = new QGridLayout(this);
    layout->addWidget(TreeTitle(QStringLiteral("S&ource Disk(s) :"), source_.Tree), 0, 0);
    layout->addWidget(source_.Tree, 1, 0);
    layout->addWidget(source_.Name, 2, 0);
    layout->addWidget(TreeTitle(QStringLiteral("Destination Disk(s)"), target_.Tree), 3, 0);
    layout->addWidget(target_.Tree, 4, 0);
    layout->addWidget(target_.Name, 5, 0);
    layout->addWidget(info_, 0, 1, 6, 1);
    layout->setColumnStretch(0, 1);
}

void CWizardCloneDiskPage::OnSetActive() {
    source_.Tree->SelectRoot();
    target_.Tree->SelectRoot();
    OnSourceChanged();
    OnTargetChanged();
}

void CWizardCloneDiskPage::OnSourceChanged() {
    Sheet().SourceDiskIndex = source_.Tree->ChosenDisk();
    ShowCloneDetails(Sheet().SourceDiskIndex, source_);
    target_.Tree->setEnabled(Sheet().SourceDiskIndex != kNoDisk);
    UpdateButtons();
}

void CWizardCloneDiskPage::OnTargetChanged() {
    Sheet().TargetDiskIndex = target_.Tree->ChosenDisk();
    ShowCloneDetails(Sheet().TargetDiskIndex, target_);
    UpdateButtons();
}

void CWizardCloneDiskPage::UpdateButtons() {
    const bool complete = Sheet().SourceDiskIndex != kNoDisk && Sheet().TargetDiskIndex != kNoDisk;
    Sheet().SetWizardButtons(kButtonBack | (complete ? kButtonFinish : kButtonDisabledFinish));
}

void CWizardCloneDiskPage::ShowCloneDetails(std::uint8_t index, const Side& side) {
    const bool chosen = index != kNoDisk;
    QString name = QString::fromLatin1(side.NameTitle);
    if (chosen) {
        const DiskInfo& disk = Sheet().Disks.at(index);
        name += QString::fromStdString(disk.Name);
        info_->ShowRows(CloneDiskRows(QString::fromLatin1(side.ListTitle), disk), kDiskHeaderHeight,
                        kInfoRowHeight);
    } else {
        info_->ShowRows(RowsOf(kClonePageSteps), kInfoRowHeight, kInfoRowHeight);
    }
    side.Name->setText(name);
    side.Name->setEnabled(chosen);
}

QString CWizardCloneDiskPage::PathOf(std::uint8_t index) const {
    return QStringLiteral("/dev/") + QString::fromStdString(Sheet().Disks.at(index).Name);
}

bool CWizardCloneDiskPage::OnWizardFinish() {
    TellCopyNotBuilt(
        QStringLiteral("Cloning a disk"),
        {QStringLiteral("clone"), PathOf(Sheet().SourceDiskIndex), PathOf(Sheet().TargetDiskIndex)});
    return false;
}

} // namespace thntfs
