#include "wizard/PageTexts.h"

#include "partitions/DiskEnumeration.h"

#include <QCoreApplication>

namespace thntfs {

const char* const kMainPageText = QT_TRANSLATE_NOOP("PageTexts", "HDRPlease Select Appropriate Option\n"
                                                                 "\n"
                                                                 "* Select \"Recover your data\" to\n"
                                                                 "recover data from your NTFS\n"
                                                                 "drives.\n"
                                                                 "\n"
                                                                 "* Select \"Recover data from disk\n"
                                                                 "image\" when you already have\n"
                                                                 "created  a disk image using\n"
                                                                 "option \"Create disk image\".\n"
                                                                 "\n"
                                                                 "* Select this option \"Create disk\n"
                                                                 "image\" to create image of a\n"
                                                                 "disk to a file.");

const std::array<const char*, 4> kTaskTexts = {
    QT_TRANSLATE_NOOP("PageTexts", "HDRRecover your data from disk\n"
                                   "\n"
                                   "* This option helps you to recover \n"
                                   "your lost data from attached \n"
                                   "NTFS drives.\n"
                                   "\n"
                                   "* This option further helps you \n"
                                   "locate specific partition which \n"
                                   "needs to be searched for \n"
                                   "recovering lost data.\n"
                                   "\n"
                                   "* Using this option you can \n"
                                   "directly recover data from \n"
                                   "selected NTFS partition \n"
                                   "and can save the recovered \n"
                                   "data to any other hard drive."),

    QT_TRANSLATE_NOOP("PageTexts", "HDRRecover data from disk image\n"
                                   "\n"
                                   "* This option helps you to recover\n"
                                   "your lost data from an image\n"
                                   "file created from NTFS drive.\n"
                                   "\n"
                                   "* Select the path where you have\n"
                                   "stored image file and then\n"
                                   "software would process the\n"
                                   "image file the sameway it \n"
                                   "processes any NTFS hard drive.\n"
                                   "\n"
                                   "* Using image file you would be\n"
                                   "able to recover data from \n"
                                   "selected NTFS partition and \n"
                                   "can save the recovered data to \n"
                                   "any other hard drive."),

    QT_TRANSLATE_NOOP("PageTexts", "HDRClone Disk\n"
                                   "\n"
                                   "* This option helps you to clone \n"
                                   " your faulty drive to another \n"
                                   "healthy drive.\n"
                                   "\n"
                                   "* Cloning a faulty drive helps to \n"
                                   "recover data in much faster\n"
                                   " manner. The cloned drive being \n"
                                   "a healthy drive would be much\n"
                                   "faster to access.\n"
                                   "\n"
                                   "* Before cloning make sure that\n"
                                   "size of the destination drive\n"
                                   "should be equal or greater \n"
                                   "then source drive."),

    QT_TRANSLATE_NOOP("PageTexts", "HDRCreate disk Image\n"
                                   "\n"
                                   "* This option helps you to clone \n"
                                   "your faulty drive to image file.\n"
                                   "\n"
                                   "* If we do not have a spare drive\n"
                                   "but have enough free space \n"
                                   "then to create an image file is \n"
                                   "a better option.\n"
                                   "\n"
                                   "* Before creating disk image \n"
                                   "make sure you have enough\n"
                                   "free space to store image file.")};

const char* const kDiskPageSteps = QT_TRANSLATE_NOOP("PageTexts", "HDRSteps to proceed.\n"
                                                                  " \n"
                                                                  "Select the NTFS drive from which\n"
                                                                  "data has to be recovered, and then\n"
                                                                  "select the disk processing mode\n"
                                                                  "to locate partition.\n"
                                                                  " \n"
                                                                  "Processing Options:\n"
                                                                  "\n"
                                                                  "* \"Display Default Partition(s) \"\n"
                                                                  "this option helps to select\n"
                                                                  "partition immediately when\n"
                                                                  "partition table is intact.\n"
                                                                  "\n"
                                                                  "* \"Search for lost Partition(s)\" this\n"
                                                                  "option should be used when partition\n"
                                                                  "table has been damaged or to search\n"
                                                                  "any lost partition.\n");

const char* const kImagePageText = QT_TRANSLATE_NOOP("PageTexts", "HDRInformation\n"
                                                                  "\n"
                                                                  "* Select the image file from which\n"
                                                                  "data has to be recovered, and\n"
                                                                  "then select the disk processing\n"
                                                                  "mode to locate  \"partition\".\n"
                                                                  "\n"
                                                                  "* Processing Options:\n"
                                                                  " \n"
                                                                  "\"Display default partition(s)\"\n"
                                                                  "this option helps to select\n"
                                                                  "partition immediately when\n"
                                                                  "partition table is intact.\n"
                                                                  "\n"
                                                                  "* \"Search for lost partition(s)\"\n"
                                                                  "this option should be used\n"
                                                                  "when partition table is damaged\n"
                                                                  "or to search any lost partition.\n");

const char* const kClonePageSteps = QT_TRANSLATE_NOOP("PageTexts", "HDRSteps to proceed.\n"
                                                                   " \n"
                                                                   "* Select source drive, the drive\n"
                                                                   "which has to be cloned\n"
                                                                   "\n"
                                                                   "* Select the destination drive.\n"
                                                                   "\n"
                                                                   "* Make sure that size of the\n"
                                                                   "destination drive should be equal or\n"
                                                                   "greater then source drive.");

const char* const kImagingPageSteps =
    QT_TRANSLATE_NOOP("PageTexts", "HDRSteps to proceed.\n"
                                   "\n"
                                   "* Select source drive, the drive whose\n"
                                   "image file has to be created.\n"
                                   "\n"
                                   "* Before creating disk image make\n"
                                   "sure you have enough free space to\n"
                                   "store image file.");

namespace {

constexpr int kDiskHeaderHeight = 20;

struct DiskProperty {
    const char* Title;
    std::string DiskInfo::*Value;
};

constexpr DiskProperty kSizeProperty = {QT_TRANSLATE_NOOP("PageTexts", "Size: "), &DiskInfo::Size};

constexpr std::array<DiskProperty, 9> kDiskProperties = {
    {{QT_TRANSLATE_NOOP("PageTexts", "Name: "), &DiskInfo::Model},
     kSizeProperty,
     {QT_TRANSLATE_NOOP("PageTexts", "Serial Number: "), &DiskInfo::Serial},
     {QT_TRANSLATE_NOOP("PageTexts", "Interface Type: "), &DiskInfo::InterfaceType},
     {QT_TRANSLATE_NOOP("PageTexts", "Media Type: "), &DiskInfo::MediaType},
     {QT_TRANSLATE_NOOP("PageTexts", "Firmware: "), &DiskInfo::Revision},
     {QT_TRANSLATE_NOOP("PageTexts", "Total Cylinders: "), &DiskInfo::TotalCylinders},
     {QT_TRANSLATE_NOOP("PageTexts", "Total Heads: "), &DiskInfo::TotalHeads},
     {QT_TRANSLATE_NOOP("PageTexts", "Total Sectors: "), &DiskInfo::TotalSectors}}};

InfoRow HeaderRow(const QString& title, const DiskInfo& disk) {
    return {QStringLiteral("HDR") + QCoreApplication::translate("PageTexts", "Information") + title +
                QString::fromStdString(disk.Name),
            false};
}

InfoRow PropertyRow(const DiskProperty& property, const DiskInfo& disk) {
    return {QCoreApplication::translate("PageTexts", property.Title) +
                QString::fromStdString(disk.*property.Value),
            true};
}

} // namespace

void ShowDisk(CInfoListBox& list, const DiskInfo* disk, const char* steps) {
    if (disk == nullptr) {
        list.ShowRows(RowsOf(steps));
        return;
    }
    InfoRows rows = {HeaderRow(QStringLiteral(": "), *disk)};
    for (const DiskProperty& property : kDiskProperties) {
        rows.push_back(PropertyRow(property, *disk));
    }
    list.ShowRows(rows, kDiskHeaderHeight);
}

void ShowCloneDisk(CInfoListBox& list, const QString& title, const DiskInfo* disk) {
    if (disk == nullptr) {
        list.ShowRows(RowsOf(kClonePageSteps));
        return;
    }
    InfoRows rows = {HeaderRow(title, *disk), {}};
    for (const DiskProperty& property : kDiskProperties) {
        if (property.Value != kSizeProperty.Value) {
            rows.push_back(PropertyRow(property, *disk));
        }
    }
    list.ShowRows(rows, kDiskHeaderHeight);
}

} // namespace thntfs
