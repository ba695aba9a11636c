#include "partitions/DiskEnumeration.h"

#include "platform/files/WorkFolder.h"
#include "platform/media/posix/SysfsDisks.h"
#include "support/LoopDevice.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>

namespace thntfs::test {

namespace fs = std::filesystem;

namespace {

/// A machine's disks as the kernel and the device manager tell them, in a folder of the test's own.
class DiskEnumerationTest : public ::testing::Test {
protected:
    DiskEnumerationTest() { EXPECT_EQ(folder_.Create(), kErrorNone); }

    /// `road` is the device's place in the tree of busses; `files` are those of its folder, "name=text" with
    /// ';' between.
    void AddDisk(const std::string& name, const std::string& road, const std::string& files) {
        const fs::path device = fs::path(folder_.Path()) / "sys" / "devices" / road / "block" / name;
        const fs::path block = fs::path(folder_.Path()) / "sys" / "block";
        fs::create_directories(device);
        fs::create_directories(block);
        fs::create_symlink(device, block / name);
        std::istringstream lines("queue/logical_block_size=512;" + files);
        for (std::string line; std::getline(lines, line, ';');) {
            const fs::path file = device / line.substr(0, line.find('='));
            fs::create_directories(file.parent_path());
            std::ofstream(file) << line.substr(line.find('=') + 1) << "\n";
        }
    }

    [[nodiscard]] std::vector<DiskProperties> List() const {
        return ListDisksIn(folder_.Path() + "/sys", folder_.Path() + "/udev");
    }

    /// All eleven fields.
    static std::vector<std::string> Fields(const DiskInfo& i) {
        return {i.Name, i.MediaType, i.InterfaceType, i.TotalSectors, i.TotalCylinders, i.TotalHeads,
                i.Size, i.Serial,    i.Revision,      i.Model,        i.BytesPerSector};
    }

    static DiskInfo Describe(const DiskProperties& disk, std::uint64_t sizeBytes = 0) {
        return DescribeDisk(disk, sizeBytes).value_or(DiskInfo{});
    }

    WorkFolder folder_;
};

using Texts = std::vector<std::string>;

} // namespace

TEST_F(DiskEnumerationTest, FieldsOfDisksOfAllKinds) {
    EXPECT_TRUE(List().empty());
    using namespace std::string_literals;
    AddDisk("sda", "pci0000:00/ata1/host0/target0:0:0/0:0:0:0",
            "dev=8:0;size=976773168;removable=0;device/vendor=ATA     ;device/model=WDC WD5000AAKX-0;"
            "device/rev=1H15;device/vpd_pg80=\0\x80\0A     WD-WCC2E123456;"
            "sda10/partition=10;sda10/size=3;sda2/partition=2;sda2/size=1;power/control=on"s);
    AddDisk("sdb", "pci0000:00/usb1/1-2/host6/target6:0:0/6:0:0:0",
            "dev=8:16;size=30031872;removable=1;device/vendor=SanDisk;device/model=Cruzer Blade;"
            "device/rev=1.00");
    fs::create_directory(folder_.Path() + "/udev");
    std::ofstream(folder_.Path() + "/udev/b8:16")
        << "S:disk/by-id/usb-x\nE:ID_MODEL_ENC=Cruzer\\x20Blade\\x20\\x20\nE:ID_SERIAL_SHORT=4C5300011\n"
           "E:ID_REVISION=1.27\nE:broken\n";
    AddDisk("sdc", "usb1/x", "size=0");
    AddDisk("nvme0n1", "pci0000:00/nvme/nvme0",
            "dev=259:0;size=250069680;queue/logical_block_size=4096;device/model=Samsung SSD 980 PRO;"
            "device/serial=S5GX  ;device/firmware_rev=5B2QGXA7");
    AddDisk("vda", "pci0000:00/virtio1", "dev=254:0;size=2097152;device/vendor=0x1af4;serial=root");
    const std::vector<DiskProperties> disks = List();
    ASSERT_EQ(disks.size(), 5U);
    EXPECT_EQ(Fields(Describe(disks[0])),
              (Texts{"sda", "Fixed hard disk media", "IDE", "976773168", "60801", "255", "465.76 GB",
                     "WD-WCC2E123456", "1H15", "WDC WD5000AAKX-0", "512"}));
    EXPECT_EQ(Fields(Describe(disks[1])),
              (Texts{"sdb", "Removable media", "USB", "30031872", "1869", "255", "14.32 GB", "4C5300011",
                     "1.27", "USB mobile disk ", "512"}));
    ASSERT_EQ(disks[0].Parts.size(), 2U);
    EXPECT_EQ(disks[0].Parts[0].Path, "/dev/sda2");
    EXPECT_EQ(disks[0].Parts[1].Path, "/dev/sda10");
    EXPECT_EQ(disks[0].Parts[1].SizeBytes, 1536U);
    EXPECT_EQ(disks[1].Model, "Cruzer Blade");
    EXPECT_FALSE(DescribeDisk(disks[2], 0)) << "a drive without a medium";
    EXPECT_EQ(Fields(Describe(disks[3])),
              (Texts{"nvme0n1", "Fixed hard disk media", "NVMe", "31258710", "1945", "255", "119.24 GB",
                     "S5GX", "5B2QGXA7", "Samsung SSD 980 PRO", "4096"}));
    EXPECT_EQ(Fields(Describe(disks[4])), (Texts{"vda", "Fixed hard disk media", "VirtIO", "2097152", "130",
                                                 "255", "1.00 GB", "root", "", "Virtual disk", "512"}));
}

TEST_F(DiskEnumerationTest, DisksAloneAndInTheOrderOfPeople) {
    for (const char* name :
         {"sdaa", "sdz", "sda", "nvme1n1", "nvme10n1", "nvme0c0n1", "mmcblk0", "mmcblk0boot0", "dm-0",
          "zram0", "ram0", "sr0", "md127", "vda", "hda", "loop0", "loop7"}) {
        AddDisk(name, "virtual", "size=8");
    }
    AddDisk("loop11", "virtual", "size=8;loop/backing_file=/a b.img");
    AddDisk("nvme2n1", "virtual", "size=8;hidden=1");
    AddDisk("md0", "virtual", "size=0");
    Texts paths;
    for (const DiskProperties& disk : List()) {
        paths.push_back(disk.Path);
    }
    EXPECT_EQ(paths, (Texts{"/dev/hda", "/dev/sda", "/dev/sdz", "/dev/sdaa", "/dev/nvme1n1", "/dev/nvme10n1",
                            "/dev/vda", "/dev/mmcblk0", "/dev/md127", "/dev/loop11"}));
    EXPECT_EQ(List().back().Model + " " + List().back().Media, "/a b.img Disk image");
}

TEST_F(DiskEnumerationTest, FieldsAreMadeFitToShow) {
    DiskProperties disk;
    disk.BytesPerSector = 512;
    disk.SizeBytes = 1U << 20U;
    EXPECT_EQ(Describe(disk, 1U << 21U).TotalSectors, "4096") << "as the opened device tells";
    EXPECT_EQ(Describe(disk, (1U << 30U) - 1).Size, "1.00 GB");
    disk.Path = "/dev/cciss/c0d0";
    disk.Media = "Fixed\thard disk\tmedia";
    disk.Revision = "__A_1___";
    disk.Model = "bad \xFF byte";
    EXPECT_EQ(Fields(Describe(disk)), (Texts{"cciss/c0d0", "Fixed hard disk media", "", "2048", "0", "0",
                                             "1.00 MB", "N/A", "A_1", "bad \xEF\xBF\xBD byte", "512"}));
}

// "WD-WCAV12345678" as a disk has it, 20 bytes with blanks in front, in words whose two bytes are swapped.
TEST_F(DiskEnumerationTest, OnlyASerialNumberInHexadecimalWordsIsDecoded) {
    DiskProperties disk;
    disk.BytesPerSector = 512;
    for (const auto& [serial, shown] :
         {std::pair{"2020202057202d44435756413231343336353837", " WDWCAV12345678"},
          {"2020", "2020"},
          {"20202020205744574356413132343336353837zz", "20202020205744574356413132343336353837zz"}}) {
        disk.Serial = serial;
        EXPECT_EQ(Describe(disk).Serial, shown);
    }
    const std::pair<const char*, const char*> cases[] = {
        {"31413141", " A1A1"}, // swapped in the group
        {"31414", " A1"},      // a half pair stands for 0x40, which is dropped
        {"61316131", " 11"},   // 0x61 is no capital
        {"20&._20", " "},      // all trimmed
        {"zz4z", " C3"},       // letters behind f count on: z is 35, which is cut to 0x30 and 3
    };
    for (const auto& [text, serial] : cases) {
        EXPECT_EQ(DecodeDiskSerial(text), serial) << text;
    }
}

TEST_F(DiskEnumerationTest, ADeviceIsFoundByItsOwnNameBeforeOneOfTheSameMedium) {
    EXPECT_EQ(Fields(DiskOfDevice("/dev/none")),
              (Texts{"/dev/none", "", "", "", "", "", "", "N/A", "", "", ""}));
    std::ofstream(folder_.Path() + "/image") << std::string(4096, 'x');
    const auto one = LoopDevice::Attach(folder_.Path() + "/image");
    const auto other = LoopDevice::Attach(folder_.Path() + "/image");
    if (one == nullptr || other == nullptr) {
        GTEST_SKIP() << "loop devices are not to be had here";
    }
    for (const auto* device : {&one, &other}) {
        const DiskInfo disk = DiskOfDevice((*device)->Path());
        EXPECT_EQ("/dev/" + disk.Name, (*device)->Path());
        EXPECT_EQ(disk.TotalSectors + " " + disk.Path, "8 " + (*device)->Path());
    }
}

} // namespace thntfs::test
