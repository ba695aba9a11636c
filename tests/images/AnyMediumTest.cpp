#include "images/AnyMedium.h"

#include "platform/system/Libraries.h"
#include "support/BuildPaths.h"
#include "support/LoopDevice.h"
#include "support/RunProgram.h"

#include <cstring>
#include <fstream>
#include <gtest/gtest.h>
#include <random>

namespace thntfs::test {

namespace {

constexpr std::size_t kMegabyte = std::size_t{1} << 20U;
constexpr std::size_t kDiskBytes = 6 * kMegabyte;

bool HasProgram(const std::string& name) { return !OutputOf("command -v " + name).empty(); }

bool HasLibraries(const std::set<std::string>& names) {
    const std::vector<Library> all = CoreLibraries();
    return std::none_of(all.begin(), all.end(), [&](const Library& library) {
        return library.Version.empty() && names.count(library.Name) != 0;
    });
}

/// What an image that could be opened gives, read in odd pieces; "" where it can't be, with the reason.
struct WholeImage {
    std::string Bytes;
    std::string Why;
    std::vector<std::string> Further;
    std::uint32_t SectorBytes = 0;
};

WholeImage ReadImage(const std::string& path) {
    const MediumResult result = OpenAnyMedium(path);
    WholeImage whole;
    whole.Why =
        result.Error == kErrorNone || !result.Why.empty() ? result.Why : SystemErrorText(result.Error);
    if (result.Handle == nullptr) {
        EXPECT_FALSE(whole.Why.empty());
        return whole;
    }
    whole.Further = result.Handle->FurtherFiles();
    whole.SectorBytes = result.Handle->ImageSectorBytes();
    const std::size_t size = result.Handle->SizeBytes();
    constexpr std::size_t kPiece = 200001;
    whole.Bytes.assign(size + kPiece, '?');
    for (std::size_t at = 0; at < size; at += kPiece) {
        const Bytes piece(reinterpret_cast<std::uint8_t*>(whole.Bytes.data()) + at, kPiece);
        if (const ErrorCode code = result.Handle->ReadAt(at, piece); code != kErrorNone) {
            whole.Why = std::to_string(code);
        }
    }
    EXPECT_EQ(whole.Bytes.find_first_not_of('?', size), std::string::npos) << "written behind the end";
    whole.Bytes.resize(size);
    return whole;
}

class AnyMediumTest : public testing::Test {
protected:
    /// Noise, but for a hole in it.
    AnyMediumTest() {
        std::mt19937 random(7);
        for (std::size_t i = 0; i < disk_.size(); ++i) {
            disk_[i] = i / kMegabyte == 2 ? '\0' : static_cast<char>(random());
        }
        Write("raw", disk_);
    }

    void Write(const std::string& name, std::string_view bytes) const {
        std::ofstream(folder_ / name, std::ios::binary).write(bytes.data(), std::ssize(bytes));
    }

    void Change(const std::string& name, std::uint64_t offset, std::string_view bytes) const {
        std::fstream file(folder_ / name, std::ios::binary | std::ios::in | std::ios::out);
        file.seekp(static_cast<std::streamoff>(offset)).write(bytes.data(), std::ssize(bytes));
    }

    /// Runs a shell's commands in the folder.
    void Run(const std::string& command) const {
        EXPECT_EQ(OutputOf("cd " + folder_.Path() + " && { " + command + "; } >log 2>&1 || cat log"), "")
            << command;
    }

    /// It reads as the disk, whatever a format adds behind it.
    void ExpectDisk(const std::string& name, const std::string& wanted) const {
        const WholeImage whole = ReadImage(folder_ / name);
        EXPECT_EQ(whole.Why, "") << name;
        EXPECT_GE(whole.Bytes.size(), wanted.size()) << name;
        EXPECT_TRUE(whole.Bytes.compare(0, wanted.size(), wanted) == 0) << name;
        EXPECT_EQ(whole.Bytes.find_first_not_of('\0', wanted.size()), std::string::npos) << name;
    }

    void ExpectRefused(const std::string& name, const std::string& word) const {
        const MediumResult result = OpenAnyMedium(folder_ / name);
        EXPECT_EQ(result.Handle, nullptr) << name;
        EXPECT_EQ(result.Error, kErrorImage) << name;
        EXPECT_NE(result.Why.find(word), std::string::npos) << name << ": " << result.Why;
    }

    static void ExpectFewFilesOpen() {
        const fs::directory_iterator open("/proc/self/fd");
        EXPECT_LT(std::distance(begin(open), end(open)), 90);
    }

    /// What the tools that made an image make of it.
    [[nodiscard]] std::string Converted(const std::string& name) const {
        Run("qemu-img convert -O raw " + name + " converted");
        return ReadWholeFile(folder_ / "converted");
    }

    ScratchFolder folder_;
    std::string disk_ = std::string(kDiskBytes, '\0');
};

class QemuImageTest : public AnyMediumTest {
protected:
    void SetUp() override {
        if (!HasProgram("qemu-img") || !HasProgram("qemu-io") ||
            !HasLibraries({"libvhdi", "libvmdk", "libqcow"})) {
            GTEST_SKIP() << "qemu-utils or a library isn't installed";
        }
    }

    /// Makes two VHDs into one that holds what differs from the other.
    void MakeDifferences(const std::string& child, const std::string& parent,
                         const std::string& named) const {
        const std::string uuid = ReadWholeFile(folder_ / parent).substr(68, 16);
        std::string bytes = ReadWholeFile(folder_ / child);
        const auto putSum = [&](std::size_t start, std::size_t length, std::size_t place) {
            std::uint32_t sum = 0;
            bytes.replace(start + place, 4, 4, '\0');
            for (std::size_t i = start; i < start + length; ++i) {
                sum += static_cast<std::uint8_t>(bytes[i]);
            }
            for (std::size_t i = 0; i < 4; ++i) {
                bytes[start + place + i] = static_cast<char>(~sum >> (24 - 8 * i));
            }
        };
        bytes.replace(512 + 40, 16, uuid);
        for (std::size_t i = 0; i < named.size(); ++i) {
            bytes[512 + 64 + 2 * i + 1] = named[i];
        }
        putSum(512, 1024, 36);
        for (const std::size_t footer : {std::size_t{0}, bytes.size() - 512}) {
            bytes[footer + 63] = 4;
            putSum(footer, 512, 64);
        }
        Write(child, bytes);
    }
};

} // namespace

TEST_F(AnyMediumTest, PiecesOfARawImageAreOneDisk) {
    const auto part = [&](std::size_t from, std::size_t count) {
        return std::string_view(disk_).substr(from, count);
    };
    Write("a.001", part(0, 3000000));
    ExpectDisk("a.001", disk_.substr(0, 3000000));
    EXPECT_EQ(FilesOfMedium(folder_ / "a.001"), std::vector{folder_ / "a.001"}) << "one piece is a raw image";
    Write("a.003", part(6000000, kDiskBytes));
    ExpectRefused("a.001", "a.002 is missing");
    Write("a.002", part(3000000, 2999999));
    ExpectRefused("a.001", "a.002 has 2999999 bytes");
    Write("a.002", part(3000000, 3000001));
    ExpectRefused("a.001", "one of them is cut off");
    Write("a.002", part(3000000, 3000000));
    ExpectDisk("a.001", disk_);
    EXPECT_EQ(FilesOfMedium(folder_ / "a.001").size(), 3U);
    ExpectDisk("a.003", disk_.substr(6000000));
    EXPECT_EQ(FilesOfMedium(folder_ / "a.003").size(), 1U);
    fs::rename(folder_ / "a.003", folder_ / "b");
    fs::create_directory(folder_ / "a.003");
    ExpectRefused("a.001", "a.003");
    fs::remove(folder_ / "a.003");
    fs::create_symlink("/dev/zero", folder_ / "a.003");
    ExpectRefused("a.001", "is no file");

    for (unsigned i = 0; i < 100; ++i) {
        Write("many." + std::string(i < 10 ? "00" : "0") + std::to_string(i), part(i * 60000, 60000));
    }
    const std::string begun = disk_.substr(0, 6000000);
    ExpectDisk("many.000", begun);
    ExpectRefused("many.001", "many.000");
    const MediumResult many = OpenAnyMedium(folder_ / "many.000");
    std::vector<std::uint8_t> sectors(120);
    for (std::size_t i = 1; i <= 100; ++i) {
        ASSERT_EQ(many.Handle->ReadAt(i * 60000 - 60, sectors), kErrorNone);
    }
    ExpectFewFilesOpen();
    Write("many.002", "shorter now");
    EXPECT_EQ(many.Handle->ReadAt(120000, sectors), kErrorNotReady);
    EXPECT_EQ(many.Handle->ReadAt(59940, sectors), kErrorNone);
    EXPECT_EQ(std::string(sectors.begin(), sectors.end()), disk_.substr(59940, 120));
}

TEST_F(AnyMediumTest, WhatOnlyLooksLikeAnImageStaysRaw) {
    const char* const tails[] = {"vhdxfile", "conectix", "QFI\xfb", "KDMV", "# Disk DescriptorFile"};
    for (const char* const word : tails) {
        std::string raw = disk_;
        raw.replace(512, strlen(word), word);
        raw.replace(raw.size() - 512, strlen(word), word);
        Write("raw", raw);
        ExpectDisk("raw", raw);
    }
    const std::map<std::string, std::vector<std::string>> words = {
        {"libvhdi", {"vhdxfile", "conectix"}},
        {"libqcow", {"QFI\xfb"}},
        {"libvmdk", {"KDMV", "COWD", "# Disk DescriptorFile\n"}},
        {"libewf", {"EVF\x09\x0d\x0a\xff", "EVF2\x0d\x0a\x81"}}};
    for (const auto& [library, begins] : words) {
        for (const std::string& word : begins) {
            for (const std::string& rest : {std::string(), std::string(3000, '\xEE')}) {
                Write("cut", word + '\0' + rest);
                ExpectRefused("cut", HasLibraries({library}) ? "" : library);
            }
        }
    }
    EXPECT_EQ(OpenAnyMedium(folder_.Path()).Error, kErrorDirectory);
    EXPECT_EQ(OpenAnyMedium(folder_ / "none").Error, kErrorFileNotFound);
    Write("empty", "");
    ExpectDisk("empty", "");
    if (const auto device = LoopDevice::Attach(folder_ / "cut")) {
        EXPECT_EQ(OpenAnyMedium(device->Path()).Error, kErrorNone) << "a disk is a disk";
    }
}

TEST_F(QemuImageTest, EveryFormatGivesTheDisk) {
    for (const char* const form :
         {"qcow2", "qcow2 -o compat=0.10", "qcow2 -c", "qcow2 -o cluster_size=512",
          "qcow2 -o preallocation=metadata", "vpc", "vpc -o subformat=fixed", "vhdx",
          "vhdx -o subformat=fixed", "vhdx -o block_state_zero=off", "vmdk -o subformat=monolithicSparse",
          "vmdk -o subformat=monolithicFlat", "vmdk -o subformat=streamOptimized",
          "vmdk -o subformat=twoGbMaxExtentSparse", "vmdk -o subformat=twoGbMaxExtentFlat"}) {
        SCOPED_TRACE(form);
        Run(std::string("qemu-img convert raw image -O ") + form);
        ExpectDisk("image", disk_);
    }
    EXPECT_EQ(FilesOfMedium(folder_ / "image"), (std::vector{folder_ / "image", folder_ / "image-f001"}))
        << "a text without a dot in its name";
    Run("qemu-img convert raw fixed -O vpc -o subformat=fixed,force_size=on");
    EXPECT_EQ(ReadImage(folder_ / "fixed").Bytes.size(), kDiskBytes) << "without the footer";
    Run("split -b 4M -d -a 3 fixed fixed. && (cat fixed fixed) >twice && (cat raw; qemu-img create -q -f vpc "
        "e 1M; "
        "tail -c 512 e) >behind");
    ExpectDisk("fixed.000", disk_);
    EXPECT_EQ(FilesOfMedium(folder_ / "fixed.000").size(), 2U);
    EXPECT_EQ(ReadImage(folder_ / "twice").Bytes.size(), 2 * kDiskBytes + 1024)
        << "the footer of a smaller one";
    EXPECT_EQ(ReadImage(folder_ / "behind").Bytes.size(), kDiskBytes + 512) << "a footer of another file";
    Change("fixed", kDiskBytes + 100, "x");
    EXPECT_EQ(ReadImage(folder_ / "fixed").Bytes.size(), kDiskBytes + 512) << "its sum is wrong";
    Run("qemu-img convert raw q -O qcow2");
    Change("q", 79, "\3");
    ExpectDisk("q", disk_);
    Run("qemu-img convert raw image -O vmdk && mv image moved && qemu-img convert raw f -O vmdk -o "
        "subformat=monolithicFlat && sed -i 's/FLAT/VMFS/;s/monolithicFlat/vmfs/' f");
    ExpectDisk("moved", disk_);
    ExpectDisk("f", disk_);
    Run("qemu-img convert raw image.vhdx -O vhdx");
    EXPECT_EQ(ReadImage(folder_ / "image.vhdx").SectorBytes, 512U);
}

TEST_F(AnyMediumTest, AVmdkInMorePiecesThanFilesCanBeOpen) {
    if (!HasLibraries({"libvmdk"})) {
        GTEST_SKIP() << "libvmdk isn't installed";
    }
    std::string text = "# Disk DescriptorFile\nversion=1\nCID=fffffffe\nparentCID=ffffffff\n"
                       "createType=\"twoGbMaxExtentFlat\"\n\n# Extent description\n";
    for (unsigned i = 0; i < 96; ++i) {
        Write("piece" + std::to_string(i), std::string_view(disk_).substr(i * 65536, 65536));
        text += "RW 128 FLAT \"piece" + std::to_string(i) + "\" 0\n";
    }
    Write("text", text + "\n# The Disk Data Base\n#DDB\n\nddb.adapterType = \"ide\"\n");
    ExpectDisk("text", disk_);
    const MediumResult opened = OpenAnyMedium(folder_ / "text");
    ASSERT_NE(opened.Handle, nullptr);
    std::vector<std::uint8_t> all(kDiskBytes);
    ASSERT_EQ(opened.Handle->ReadAt(0, all), kErrorNone);
    ExpectFewFilesOpen();
    Write("piece0", "shorter now");
    EXPECT_EQ(opened.Handle->ReadAt(0, all), kErrorNotReady);
    Run("sed -i 's/\"piece1\" 0/\"piece1\" 1/' text");
    ExpectRefused("text", "in the middle of a file");
}

TEST_F(QemuImageTest, ZerosThatTablesTellOf) {
    Run("qemu-img convert raw q -O qcow2 && qemu-io -c 'write -z 1M 300k' -c 'discard 4M 64k' q");
    ExpectDisk("q", Converted("q"));
    Run("qemu-img convert raw v -O vmdk -o zeroed_grain=on && qemu-io -c 'write -z 1M 320k' v");
    ExpectDisk("v", Converted("v"));
    Run("qemu-img create -f vmdk -b v -F vmdk -o zeroed_grain=on w && qemu-io -c 'write -z 3M 128k' w");
    ExpectDisk("w", Converted("w"));
    Run("qemu-img convert raw x -O vmdk");
    Change("x", 24, "\1");
    ExpectRefused("x", "damaged");
    Run("truncate -s -1024 v");
    EXPECT_EQ(ReadImage(folder_ / "v").Why, "23") << "what is cut off isn't zeros";
    const std::pair<std::uint64_t, char> hostile[] = {{17, '\1'}, {22, '\1'}, {45, '\0'}, {61, '\1'}};
    for (const auto& [field, byte] : hostile) {
        Run("cp v x");
        Change("x", field, {&byte, 1});
        ExpectRefused("x", "damaged");
    }
}

TEST_F(QemuImageTest, AnImageIsReadWithWhatItBuildsOn) {
    Run("mkdir sub && qemu-img create -f qcow2 -b ../raw -F raw sub/low 8M && qemu-img create -f qcow2 -b "
        "sub/low "
        "-F qcow2 top && qemu-io -c 'write -P 7 1M 100k' sub/low && qemu-io -c 'write -z 1M 64k' -c 'write "
        "-P 9 5M 1k' "
        "top");
    ExpectDisk("top", Converted("top"));
    EXPECT_EQ(FilesOfMedium(folder_ / "top"),
              (std::vector{folder_ / "top", folder_ / "raw", folder_ / "sub/low"}));
    Run("qemu-img convert raw base -O vmdk && qemu-img create -f vmdk -b base -F vmdk delta && qemu-io -c "
        "'write -P 7 "
        "1M 100k' delta");
    ExpectDisk("delta", Converted("delta"));
    Run("qemu-io -c 'write -P 8 0 1k' base");
    ExpectRefused("delta", "has changed since");
    Run("ln -sf delta base");
    ExpectRefused("delta", "in a circle");
    fs::remove(folder_ / "raw");
    ExpectRefused("top", "/raw, can't be opened");
    Run("mkfifo raw");
    ExpectRefused("top", "is no file");
    Run("rm raw && ln -s top raw");
    ExpectRefused("top", "in a circle");
    Run("qemu-img rebase -u -b nbd://there/x -F raw top");
    ExpectRefused("top", "is no file");
    Run("qemu-img create -f vmdk -o subformat=monolithicFlat evil 1M && sed -i 's|evil-f.*\"|/dev/zero\"|' "
        "evil");
    ExpectRefused("evil", "is no file");
}

TEST_F(QemuImageTest, DifferencesOfAVhd) {
    Run("qemu-img convert raw parent -O vpc -o force_size=on && qemu-img create -f vpc -o force_size=on "
        "child 6M && "
        "qemu-io -f vpc -c 'write -P 5 2M 100k' child");
    Run("cp child young");
    MakeDifferences("young", "child", ".\\child");
    MakeDifferences("child", "parent", "D:\\disks\\parent");
    const WholeImage whole = ReadImage(folder_ / "child");
    EXPECT_EQ(whole.Why, "");
    EXPECT_EQ(whole.Further, std::vector{folder_ / "parent"});
    EXPECT_TRUE(whole.Bytes.compare(0, 2 * kMegabyte, disk_, 0, 2 * kMegabyte) == 0);
    EXPECT_TRUE(whole.Bytes.compare(2 * kMegabyte, 102400, std::string(102400, '\5')) == 0);
    EXPECT_TRUE(whole.Bytes.compare(4 * kMegabyte, 2 * kMegabyte, disk_, 4 * kMegabyte, 2 * kMegabyte) == 0);
    EXPECT_EQ(ReadImage(folder_ / "young").Further, (std::vector{folder_ / "parent", folder_ / "child"}));
    Run("cp parent other && qemu-img convert raw parent -O vpc -o force_size=on");
    ExpectRefused("child", "another one");
    Run("ln -sf child parent");
    ExpectRefused("child", "in a circle");
    Run("ln -sf raw parent");
    ExpectRefused("child", "is no VHD");
    fs::remove(folder_ / "parent");
    ExpectRefused("child", "parent, can't be opened");
}

TEST_F(QemuImageTest, BlocksOfAVhdInImpossiblePlaces) {
    constexpr std::size_t kBlock = 2 * kMegabyte;
    constexpr std::size_t kTable = 1536;
    Run("qemu-img convert raw whole -O vpc -o force_size=on && cp whole v && qemu-img convert raw x -O vhdx");
    const std::string vhd = ReadWholeFile(folder_ / "whole");
    const auto expect = [&](std::string_view second, const std::vector<ErrorCode>& wanted) {
        Change("v", kTable + 4, second);
        const MediumResult opened = OpenAnyMedium(folder_ / "v");
        ASSERT_NE(opened.Handle, nullptr);
        std::vector<std::uint8_t> across(1024);
        EXPECT_EQ(opened.Handle->ReadAt(kBlock - 512, across), std::max(wanted[0], wanted[1]));
        std::vector<std::uint8_t> got(kBlock);
        for (std::size_t i = 0; i < wanted.size(); ++i) {
            EXPECT_EQ(opened.Handle->ReadAt(i * kBlock, got), wanted[i]) << i;
            EXPECT_TRUE(
                wanted[i] != kErrorNone ||
                std::equal(got.begin(), got.end(), disk_.begin() + i * kBlock,
                           [](std::uint8_t byte, char c) { return byte == static_cast<std::uint8_t>(c); }));
        }
    };
    expect(vhd.substr(kTable + 4, 4), {0, 0, 0});
    expect(vhd.substr(kTable, 4), {kErrorCrc, kErrorCrc, 0});
    expect({"\0\0\0\2", 4}, {kErrorCrc, kErrorCrc, 0});
    expect(vhd.substr(kTable + 8, 4), {0, kErrorCrc, kErrorCrc});
    expect({"\1\0\0\0", 4}, {0, kErrorCrc, 0});
    Change("v", 512 + 28, "\x7f");
    ExpectRefused("v", "damaged");
    const auto changeSize = [&](std::size_t place, char now, char rest) { // the sum stays as it was
        for (const std::size_t footer : {std::size_t{0}, vhd.size() - 512}) {
            Change("whole", footer + place, {&now, 1});
            Change("whole", footer + 100, {&rest, 1});
        }
    };
    changeSize(45, '\x40', '\x20');
    ExpectDisk("whole", disk_); // it was smaller when it was made
    changeSize(45, '\x60', '\0');
    changeSize(53, '\0', '\x60');
    ExpectRefused("whole", "damaged");

    // A header that says it is the newer one, with a log, and an entry in that log.
    const std::string guid(16, 'g');
    std::string header(4096, '\0');
    header.replace(0, 8, "head\x1b\xcf\x90\xa7");
    header.replace(8, 8, "\xff\xff\xff\xff\xff\xff\xff\x7f");
    header.replace(48, 16, guid)
        .replace(66, 7, std::string_view("\1\0\0\0\x10\0\0", 7))
        .replace(74, 1, "\x10");
    Change("x", 0x20000, header);
    Change("x", 0x100000, std::string(0x100000, '\0'));
    Change("x", 0x1FF000 + 32, guid);
    ExpectDisk("x", disk_);
    Change("x", 0x1FF000, "loge");
    ExpectRefused("x", "its log");
    Change("x", 0x20000 + 100, "?");
    ExpectDisk("x", disk_);
}

TEST_F(QemuImageTest, WhatCantBeReadIsRefused) {
    Run("qemu-img create -f qcow2 --object secret,id=s,data=abc -o "
        "encrypt.format=luks,encrypt.key-secret=s,encrypt.iter-time=10 "
        "q 1M");
    ExpectRefused("q", "encrypted");
    Run("qemu-img create -f qcow2 -o data_file=d q 1M");
    ExpectRefused("q", "in another file");
    Run("qemu-img convert raw q -O qcow2 -c -o compression_type=zstd");
    ExpectRefused("q", "features");
    for (const char* const end : {"4M", "-100"}) {
        Run(std::string("qemu-img convert raw q -O qcow2 && truncate -s ") + end + " q");
        EXPECT_EQ(ReadImage(folder_ / "q").Why, "23") << "what is cut off isn't zeros";
    }
    Change("q", 39, std::string_view("\0", 1));
    ExpectRefused("q", "damaged");
    Change("q", 7, "\1");
    ExpectRefused("q", "damaged");
    Run("qemu-img convert raw q -O qcow2 -o cluster_size=512");
    const auto end = fs::file_size(folder_ / "q") - 512;
    Change("q", 45,
           std::string{static_cast<char>(end >> 16U), static_cast<char>(end >> 8U), static_cast<char>(end)});
    ExpectRefused("q", "damaged"); // the first table goes over the end
    Run("qemu-img convert raw v -O vmdk -o subformat=twoGbMaxExtentSparse");
    ExpectRefused("v-s001", "VMDK");
    fs::remove(folder_ / "v-s001");
    ExpectRefused("v", "v-s001, can't be opened");
    Run("qemu-img convert raw x -O vhdx && truncate -s 100K x");
    ExpectRefused("x", "VHDX");
}

TEST_F(AnyMediumTest, EvidenceFiles) {
    if (!HasProgram("ewfacquire") || !HasLibraries({"libewf"})) {
        GTEST_SKIP() << "ewf-tools or libewf isn't installed";
    }
    Run("cp raw disk.raw && ewfacquire -u -q -f encase6 -c none -S 2097152 -t e disk.raw && ewfacquire -u -q "
        "-f smart "
        "-c best -t s disk.raw && ewfacquire -u -q -f encase6 -P 4096 -t k disk.raw");
    ExpectDisk("s.s01", disk_);
    EXPECT_EQ(ReadImage(folder_ / "k.E01").SectorBytes, 4096U);
    EXPECT_EQ(FilesOfMedium(folder_ / "e.E01").size(), 4U);
    ExpectDisk("e.E01", disk_);
    Change("e.E01", 500000, "wrong");
    Change("e.E02", 500000, std::string(33000, 'x'));
    Change("e.E03", 500000, "wrong");
    for (const bool backwards : {false, true}) {
        const MediumResult result = OpenAnyMedium(folder_ / "e.E01");
        ASSERT_NE(result.Handle, nullptr);
        std::vector<std::uint8_t> sector(512);
        std::size_t bad = 0;
        for (std::size_t at = 0; at < 2 * kDiskBytes; at += sector.size()) {
            const std::size_t place = at % kDiskBytes;
            const ErrorCode code =
                result.Handle->ReadAt(backwards ? kDiskBytes - sector.size() - place : place, sector);
            bad += code == kErrorCrc ? 1U : 0U;
        }
        EXPECT_EQ(bad, 2U * 4U * 64U) << "four chunks, two side by side, each time that they are read";
    }
    if (const auto disk = LoopDevice::Attach(folder_ / "raw")) {
        Run("FAULT_UNDER=" + disk->Path() + " FAULT_CALLS=read FAULT_BAD='1048576 512' LD_PRELOAD=" +
            FaultyCallsPath() + " ewfacquire -u -q -f encase6 -t a " + disk->Path());
        EXPECT_EQ(ReadImage(folder_ / "a.E01").Why, "23") << "it couldn't be read when the image was made";
    }
    for (const char* const gone : {"e.E04", "e.E02"}) {
        fs::remove(folder_ / gone);
        ExpectRefused("e.E01", "segments");
    }
}

} // namespace thntfs::test
