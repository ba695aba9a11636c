#pragma once

#include <QCoreApplication>
#include <QTreeWidget>
#include <cstdint>
#include <vector>

namespace thntfs {

struct DiskInfo;

/// The disks of this machine under "My Computer". Each row carries its disk's position in the list.
class CDiskTree : public QTreeWidget {
    Q_DECLARE_TR_FUNCTIONS(CDiskTree)

public:
    /// `disks` stays the caller's. `looksUsb` tells which get the icon of a USB disk.
    CDiskTree(QWidget* parent, const std::vector<DiskInfo>& disks, bool (*looksUsb)(const DiskInfo& disk));

    /// Position of the selected disk, kNoDisk for none.
    [[nodiscard]] std::uint8_t ChosenDisk() const;
    /// Chooses no disk.
    void SelectRoot();
    /// Shows the disks anew, after they have changed. The chosen one stays chosen if it is among them; nobody
    /// is told.
    void Refill();

    [[nodiscard]] QSize sizeHint() const override;

private:
    void AddDisks();

    const std::vector<DiskInfo>& disks_;
    bool (*looksUsb_)(const DiskInfo& disk);
};

} // namespace thntfs
