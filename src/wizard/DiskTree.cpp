#include "wizard/DiskTree.h"

#include "shell/Icons.h"
#include "wizard/WizardState.h"

#include <QSignalBlocker>

namespace thntfs {

namespace {

constexpr int kPositionRole = Qt::UserRole;

} // namespace

CDiskTree::CDiskTree(QWidget* parent, const std::vector<DiskInfo>& disks,
                     bool (*looksUsb)(const DiskInfo& disk))
    : QTreeWidget(parent)
    , disks_(disks)
    , looksUsb_(looksUsb) {
    setAccessibleName(tr("Disks"));
    setHeaderHidden(true);
    auto* root = new QTreeWidgetItem(this, {tr("My Computer")});
    root->setIcon(0, LoadIcon("computer"));
    root->setData(0, kPositionRole, kNoDisk);
    AddDisks();
    SelectRoot();
}

void CDiskTree::AddDisks() {
    QTreeWidgetItem* root = topLevelItem(0);
    for (std::size_t position = 0; position < disks_.size(); ++position) {
        const DiskInfo& disk = disks_[position];
        auto* item = new QTreeWidgetItem(root, {QString::fromStdString(disk.Name)});
        item->setIcon(0, LoadIcon(looksUsb_(disk) ? "disk-usb" : "disk"));
        item->setData(0, kPositionRole, static_cast<unsigned>(position));
        item->setToolTip(0, QString::fromStdString(disk.Model + ", " + disk.Size));
    }
    root->setExpanded(true);
}

void CDiskTree::Refill() {
    const QSignalBlocker nobodyTold(this);
    const QString chosen = ChosenDisk() == kNoDisk ? QString() : currentItem()->text(0);
    QTreeWidgetItem* root = topLevelItem(0);
    SelectRoot();
    qDeleteAll(root->takeChildren());
    AddDisks();
    for (int row = 0; row < root->childCount(); ++row) {
        if (root->child(row)->text(0) == chosen) {
            setCurrentItem(root->child(row));
        }
    }
}

std::uint8_t CDiskTree::ChosenDisk() const {
    const QTreeWidgetItem* row = currentItem();
    return row == nullptr ? kNoDisk : static_cast<std::uint8_t>(row->data(0, kPositionRole).toUInt());
}

void CDiskTree::SelectRoot() { setCurrentItem(topLevelItem(0)); }

QSize CDiskTree::sizeHint() const { return {220, 160}; }

} // namespace thntfs
