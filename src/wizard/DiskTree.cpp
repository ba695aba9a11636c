#include "wizard/DiskTree.h"

#include "shell/Icons.h"
#include "wizard/WizardSheet.h"

namespace thntfs {

CDiskTree::CDiskTree(QWidget* parent, const std::vector<DiskInfo>& disks,
                     bool (*looksUsb)(const DiskInfo& disk))
    : QTreeWidget(parent) {
    setAccessibleName(QStringLiteral("Disks"));
    setHeaderHidden(true);
    auto* root = new QTreeWidgetItem(this, {QStringLiteral("My Computer")});
    root->setIcon(0, LoadIcon("computer"));
    for (const DiskInfo& disk : disks) {
        auto* item = new QTreeWidgetItem(root, {QString::fromStdString(disk.Name)});
        item->setIcon(0, LoadIcon(looksUsb(disk) ? "disk-usb" : "disk"));
        item->setToolTip(0, QString::fromStdString(disk.Model + ", " + disk.Size));
    }
    root->setExpanded(true);
    SelectRoot();
}

std::uint8_t CDiskTree::ChosenDisk() const {
    QTreeWidgetItem* root = topLevelItem(0);
    const int position = currentItem() == nullptr ? -1 : root->indexOfChild(currentItem());
    return position < 0 ? kNoDisk : static_cast<std::uint8_t>(position);
}

void CDiskTree::SelectRoot() { setCurrentItem(topLevelItem(0)); }

QSize CDiskTree::sizeHint() const { return {220, 160}; }

} // namespace thntfs
