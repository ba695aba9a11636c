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
    /// `looksUsb` tells which disks get the icon of a USB disk.
    CDiskTree(QWidget* parent, const std::vector<DiskInfo>& disks, bool (*looksUsb)(const DiskInfo& disk));

    /// Position of the selected disk, kNoDisk for none.
    [[nodiscard]] std::uint8_t ChosenDisk() const;
    /// Chooses no disk.
    void SelectRoot();

    [[nodiscard]] QSize sizeHint() const override;
};

} // namespace thntfs
