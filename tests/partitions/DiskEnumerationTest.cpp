#include "partitions/DiskEnumeration.h"

#include "platform/files/WorkFolder.h"
#include "platform/media/posix/SysfsDisks.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>

namespace thntfs::test {

namespace fs = std::filesystem;

namespace {

/// A machine's disks as the kernel and the device manager tell them, in a folder of the test's own.
class DiskEnumerationTest : public ::testing::Test {
protected:
    DiskEnumerationTest() { EXPECT_EQ(folder_.Create(), kErrorNone); }

    /// `road` is the device's place in the tree of busses; `files` are those of its folder.
    void AddDisk(const std::string& name, const std::string& road,
                 const std::vector<std::pair<std::string, std::string>>& files) {
        const fs::path device = fs::path(folder_.Path()) / "sys" / "devices" / road / "block" / name;
        const fs::path block = fs::path(folder_.Path()) / "sys" / "block";
        fs::create_directories(device);
        fs::create_directories(block);
        fs::create_symlink(device, block / name);
        for (const auto& [file, text] : files) {
            fs::create_directories((device / file).parent_path());
            std::ofstream(device / file) << text << "\n";
        }
    }

    void AddUdev(const std::string& device, const std::string& text) {
        fs::create_directories(Udev());
        std::ofstream(Udev() + "/b" + device) << text;
    }

    [[nodiscard]] std::string Udev() const { return folder_.Path() + "/udev"; }
    [[nodiscard]] std::vector<DiskProperties> List() const {
        return ListDisksIn(folder_.Path() + "/sys", Udev());
    }

    /// All eleven fields.
    static std::vector<std::string> Fields(const DiskInfo& i) {
        return {i.Name, i.MediaType, i.InterfaceType, i.TotalSectors, i.TotalCylinders, i.TotalHeads,
                i.Size, i.Serial,    i.Revision,      i.Model,        i.BytesPerSector};
    }

    static DiskInfo Describe(const DiskProperties& disk, std::uint64_t sizeBytes = 0) {
        return DescribeDisk(disk, sizeBytes).value_or(DiskInfo{});
    }

    static DiskProperties Sized(std::uint64_t bytes) {
        DiskProperties disk;
        disk.BytesPerSector = 512;
        disk.SizeBytes = bytes;
        return disk;
    }

private:
    WorkFolder folder_;
};

using Texts = std::vector<std::string>;

} // namespace

TEST_F(DiskEnumerationTest, FieldsOfDisksOfAllKinds) {
    AddDisk("sda", "pci0000:00/ata1/host0/target0:0:0/0:0:0:0",
            {{"dev", "8:0"},
             {"size", "976773168"},
             {"removable", "0"},
             {"queue/logical_block_size", "512"},
             {"device/vendor", "ATA     "},
             {"device/model", "WDC WD5000AAKX-0"},
             {"device/rev", "1H15"},
             {"device/vpd_pg80", std::string("\0\x80\0\x14     WD-WCC2E123456", 24)}});
    AddDisk("sdb", "pci0000:00/usb1/1-2/host6/target6:0:0/6:0:0:0",
            {{"dev", "8:16"},
             {"size", "30031872"},
             {"removable", "1"},
             {"queue/logical_block_size", "512"},
             {"device/vendor", "SanDisk"},
             {"device/model", "Cruzer Blade"},
             {"device/rev", "1.00"}});
    AddUdev("8:16",
            "S:disk/by-id/usb-x\nE:ID_MODEL_ENC=Cruzer\\x20Blade\\x20\\x20\nE:ID_SERIAL_SHORT=4C5300011\n"
            "E:ID_REVISION=1.27\nE:broken\n");
    AddDisk("nvme0n1", "pci0000:00/nvme/nvme0",
            {{"dev", "259:0"},
             {"size", "250069680"},
             {"queue/logical_block_size", "4096"},
             {"device/model", "Samsung SSD 980 PRO"},
             {"device/serial", "S5GX  "},
             {"device/firmware_rev", "5B2QGXA7"}});
    AddDisk("vda", "pci0000:00/virtio1",
            {{"dev", "254:0"},
             {"size", "2097152"},
             {"queue/logical_block_size", "512"},
             {"device/vendor", "0x1af4"},
             {"serial", "root"}});
    const std::vector<DiskProperties> disks = List();
    ASSERT_EQ(disks.size(), 4U);
    EXPECT_EQ(Fields(Describe(disks[0])),
              (Texts{"sda", "Fixed hard disk media", "IDE", "976773168", "60801", "255", "465.76 GB",
                     "WD-WCC2E123456", "1H15", "WDC WD5000AAKX-0", "512"}));
    EXPECT_EQ(Fields(Describe(disks[1])),
              (Texts{"sdb", "Removable media", "USB", "30031872", "1869", "255", "14.32 GB", "4C5300011",
                     "1.27", "USB mobile disk ", "512"}));
    EXPECT_EQ(disks[1].Model, "Cruzer Blade");
    EXPECT_EQ(Fields(Describe(disks[2])),
              (Texts{"nvme0n1", "Fixed hard disk media", "NVMe", "31258710", "1945", "255", "119.24 GB",
                     "S5GX", "5B2QGXA7", "Samsung SSD 980 PRO", "4096"}));
    EXPECT_EQ(Fields(Describe(disks[3])), (Texts{"vda", "Fixed hard disk media", "VirtIO", "2097152", "130",
                                                 "255", "1.00 GB", "root", "", "Virtual disk", "512"}));
}

TEST_F(DiskEnumerationTest, DisksAloneAndInTheOrderOfPeople) {
    const std::vector<std::pair<std::string, std::string>> files = {{"size", "8"},
                                                                    {"queue/logical_block_size", "512"}};
    for (const char* name :
         {"sdaa", "sdz", "sda", "nvme1n1", "nvme10n1", "nvme0c0n1", "mmcblk0", "mmcblk0boot0", "dm-0",
          "zram0", "ram0", "sr0", "md127", "vda", "hda", "loop0", "loop7"}) {
        AddDisk(name, "virtual", files);
    }
    AddDisk("loop11", "virtual",
            {{"size", "8"}, {"queue/logical_block_size", "512"}, {"loop/backing_file", "/a b.img"}});
    AddDisk("nvme2n1", "virtual", {{"size", "8"}, {"hidden", "1"}});
    AddDisk("md0", "virtual", {{"size", "0"}});
    Texts paths;
    for (const DiskProperties& disk : List()) {
        paths.push_back(disk.Path);
    }
    EXPECT_EQ(paths, (Texts{"/dev/hda", "/dev/sda", "/dev/sdz", "/dev/sdaa", "/dev/nvme1n1", "/dev/nvme10n1",
                            "/dev/vda", "/dev/mmcblk0", "/dev/md127", "/dev/loop11"}));
    EXPECT_EQ(List().back().Model, "/a b.img");
    EXPECT_EQ(List().back().Media, "Disk image");
}

TEST_F(DiskEnumerationTest, PartitionsInTheirOrder) {
    AddDisk("sda", "virtual",
            {{"size", "999"},
             {"queue/logical_block_size", "512"},
             {"sda10/partition", "10"},
             {"sda10/size", "3"},
             {"sda2/partition", "2"},
             {"sda2/size", "1"},
             {"power/control", "on"}});
    ASSERT_EQ(List().size(), 1U);
    const std::vector<DiskPart> parts = List()[0].Parts;
    ASSERT_EQ(parts.size(), 2U);
    EXPECT_EQ(parts[0].Path, "/dev/sda2");
    EXPECT_EQ(parts[1].Path, "/dev/sda10");
    EXPECT_EQ(parts[1].SizeBytes, 1536U);
}

TEST_F(DiskEnumerationTest, NoDisksAndNoSystemGiveAnEmptyList) {
    EXPECT_TRUE(List().empty());
    EXPECT_TRUE(ListDisksIn("/none", "/none").empty());
}

TEST_F(DiskEnumerationTest, ADriveWithoutAMediumIsLeftOut) {
    AddDisk("sdc", "usb1/x",
            {{"size", "0"}, {"queue/logical_block_size", "512"}, {"device/model", "Reader"}});
    ASSERT_EQ(List().size(), 1U);
    EXPECT_FALSE(DescribeDisk(List()[0], 0));
}

TEST_F(DiskEnumerationTest, SizesForPeople) {
    const std::pair<std::uint64_t, const char*> cases[] = {
        {500ULL << 20U, "500.00 MB"},
        {1ULL << 30U, "1.00 GB"},
        {(1ULL << 30U) - 1, "1.00 GB"},
        {1023ULL << 20U, "1023.00 MB"},
        {1, "0.00 MB"},
        {500107862016, "465.76 GB"},
        {8ULL << 40U, "8192.00 GB"},
        {123456789012345, "114978.09 GB"},
    };
    for (const auto& [bytes, text] : cases) {
        EXPECT_EQ(Describe(Sized(bytes)).Size, text) << bytes;
    }
}

TEST_F(DiskEnumerationTest, WhatTheOpenedDeviceTellsGoesBeforeTheListedFigures) {
    const DiskProperties disk = Sized(1U << 20U);
    EXPECT_EQ(Describe(disk, 1U << 21U).TotalSectors, "4096");
    EXPECT_EQ(Describe(disk, 1U << 21U).Size, "2.00 MB");
    EXPECT_EQ(Describe(disk, 0).TotalSectors, "2048");
    EXPECT_EQ(Describe(disk, 0).Size, "1.00 MB");
}

TEST_F(DiskEnumerationTest, TextsAreMadeFitToShow) {
    DiskProperties disk = Sized(512);
    disk.Path = "/dev/cciss/c0d0";
    disk.Media = "Fixed\thard disk\tmedia";
    disk.Revision = "__A_1___";
    disk.Model = "bad \xFF byte";
    const DiskInfo info = Describe(disk);
    EXPECT_EQ(info.Name, "cciss/c0d0");
    EXPECT_EQ(info.MediaType, "Fixed hard disk media");
    EXPECT_EQ(info.Revision, "A_1");
    EXPECT_EQ(info.Model, "bad \xEF\xBF\xBD byte");
    EXPECT_EQ(info.Serial, "N/A");
}

// "WD-WCAV12345678" as a disk has it, 20 bytes with blanks in front, in words whose two bytes are swapped.
TEST_F(DiskEnumerationTest, OnlyASerialNumberInHexadecimalWordsIsDecoded) {
    DiskProperties disk = Sized(512);
    disk.Serial = "2020202057202d44435756413231343336353837";
    EXPECT_EQ(Describe(disk).Serial, " WDWCAV12345678");
    for (const char* readable : {"2020", "WD-WCC2E123456", "20202020205744574356413132343336353837zz"}) {
        disk.Serial = readable;
        EXPECT_EQ(Describe(disk).Serial, readable);
    }
}

TEST_F(DiskEnumerationTest, DecodesSerialsStepByStep) {
    const std::pair<const char*, const char*> cases[] = {
        {"", " "},
        {"3141", " A1"}, // swapped in the group
        {"31413141", " A1A1"},
        {"31414", " A1"},    // a half pair stands for 0x40, which is dropped
        {"61316131", " 11"}, // 0x61 is no capital
        {"20&._20", " "},    // all trimmed
        {"zz4A", " J3"},     // letters behind f count on: z is 35, 35 * 16 is cut to 0x30
    };
    for (const auto& [text, serial] : cases) {
        EXPECT_EQ(DecodeDiskSerial(text), serial) << text;
    }
}

} // namespace thntfs::test
