#include "partitions/ReadVolumes.h"

#include "partitions/VolumeList.h"
#include "partitions/WhyNoVolumes.h"
#include "support/EngineFixture.h"

#include <zlib.h>

namespace thntfs::test {

namespace {

constexpr std::uint64_t kBasicLow = 0x4433B9E5EBD0A0A2; // basic data
constexpr std::uint64_t kBasicHigh = 0xC79926B7B668C087;

/// A GUID partition table to be laid out, in sectors of UnitBytes.
struct GptSpec {
    struct Entry {
        std::uint64_t First, Last;
        std::uint64_t TypeLow = kBasicLow;
    };
    std::vector<Entry> Entries;
    std::uint32_t UnitBytes = 512;
    std::uint32_t EntryBytes = 128;
    std::uint32_t Count = 128;
};

std::uint32_t Crc(ConstBytes bytes) {
    return static_cast<std::uint32_t>(crc32(0, bytes.data(), static_cast<uInt>(bytes.size())));
}

// A disk of 2 MiB and one sector.
class ReadVolumesTest : public EngineFixture {
protected:
    ReadVolumesTest() { OpenDisk(Image); }

    void Put(std::uint64_t offset, const ByteVector& bytes) {
        std::copy(bytes.begin(), bytes.end(), Image->begin() + static_cast<std::ptrdiff_t>(offset));
    }

    void PutHeader(const GptSpec& spec, std::uint64_t own, std::uint64_t other, std::uint64_t arrayAt) {
        ByteVector array(std::size_t{spec.EntryBytes} * spec.Count);
        for (std::size_t i = 0; i < spec.Entries.size(); ++i) {
            PutNumber(array, i * spec.EntryBytes, spec.Entries[i].TypeLow);
            PutNumber(array, i * spec.EntryBytes + 8, kBasicHigh);
            PutNumber(array, i * spec.EntryBytes + 32, spec.Entries[i].First);
            PutNumber(array, i * spec.EntryBytes + 40, spec.Entries[i].Last);
        }
        Put(arrayAt * spec.UnitBytes, array);
        ByteVector header(96);
        Put(header, "EFI PART");
        PutNumber<std::uint32_t>(header, 12, 92);
        PutNumber(header, 24, own);
        PutNumber(header, 32, other);
        PutNumber(header, 72, arrayAt);
        PutNumber(header, 80, spec.Count);
        PutNumber(header, 84, spec.EntryBytes);
        PutNumber(header, 88, Crc(array));
        PutNumber(header, 16, Crc(ConstBytes(header).first(92)));
        Put(own * spec.UnitBytes, header);
    }
    static void Put(ByteVector& to, std::string_view text) {
        std::copy(text.begin(), text.end(), to.begin());
    }

    void PutFirst(const GptSpec& spec) { PutHeader(spec, 1, 4096 * 512 / spec.UnitBytes, 2); }
    void PutBackup(const GptSpec& spec) {
        const std::uint64_t own = 4096 * 512 / spec.UnitBytes;
        PutHeader(spec, own, 1, own - 32);
    }
    void PutBoot(std::uint64_t sector, std::uint32_t sectorBytes = 512) {
        BootSectorFields fields = BootFieldsOf({});
        fields.SectorBytes = static_cast<std::uint16_t>(sectorBytes);
        fields.SectorsPerCluster = static_cast<std::uint8_t>(4096 / sectorBytes);
        fields.TotalSectors = 99 * 512 / sectorBytes;
        Put(sector * 512, EncodeBootSector(fields));
    }

    /// "number start+sectors source", with a state for those that can't be taken and "!" for verified ones.
    static std::string Listed() {
        ReadVolumes();
        std::string text;
        for (const ListedVolume& volume : ListVolumes()) {
            const auto* found = volume.Candidate;
            text +=
                std::to_string(volume.Number) + " " +
                std::to_string(found != nullptr ? found->StartSector : volume.Entry.StartSector) + "+" +
                std::to_string(found != nullptr ? found->TotalSectors : volume.Entry.TotalSectors) + " " +
                SourceText(volume.Source) +
                (found == nullptr ? std::string(" ") + "ubrle"[static_cast<std::size_t>(volume.Entry.State)]
                                  : "") +
                (volume.Facts.Verified ? "!" : "") + "\n";
        }
        return text;
    }
    void Wipe(std::uint64_t sector, std::size_t count = 1) { Put(sector * 512, ByteVector(count * 512)); }

    std::shared_ptr<ByteVector> Image = std::make_shared<ByteVector>(4097 * 512);
    const GptSpec Three = {{{100, 199}, {300, 350, 1}, {400, 499}, {0, 0, 0}, {900, 999}, {999999, 9999999}}};
};

TEST_F(ReadVolumesTest, WhyThereIsNone) {
    const auto expect = [](const char* part) {
        ReadVolumes();
        EXPECT_NE(WhyNoVolumes().find(part), std::string::npos) << WhyNoVolumes();
    };
    expect("nothing but zeros");
    (*Image)[0] = 1;
    expect("lacks the mark");
    Put(0, EncodePartitionTable({}));
    expect("table is empty");
    Put(0, EncodePartitionTable({{0, 0, 0}, {0x83, 1, 99}}));
    expect("lacks its first entry");
    Put(0, EncodePartitionTable({{0x83, 1, 99}}));
    (*Image)[446] = 0x80; // the one to start from
    PutNumber<std::uint16_t>(*Image, 11, 512);
    expect("is of the type for NTFS");
    (*Image)[446 + 48] = 0x47;
    expect("another file system begins");
    Put(0, EncodePartitionTable({}));
    PutNumber<std::uint16_t>(*Image, 11, 1024);
    expect("another file system begins");
    Put(0, EncodePartitionTable({{0x07, 9, 99}}));
    expect("no NTFS boot sector stands");
    Plan->Rules = {{.FirstSector = 9}};
    expect("its boot sector can't be read");
    Plan->Rules = {{.FirstSector = 0}};
    expect("sector of the partition table can't be read");
    Plan->Rules = {};
    Put(0, EncodePartitionTable({{0xEE, 1, 4096}}));
    expect("This was a GPT disk, but");
    PutBackup({{{100, 199, 1}}});
    expect("None of the partitions in the GUID");
    PutFirst({});
    expect("disk (GPT) is empty");
    (*Image)[511] = 0;
    expect("This was a GPT disk before");
    Put(0, EncodePartitionTable({{0x83, 1, 99}}));
    expect("This was a GPT disk before");
}

TEST_F(ReadVolumesTest, EitherGuidTableGivesTheVolumes) {
    const std::string first = "1 100+100 GPT\n2 400+100 GPT\n3 900+100 GPT b\n";
    const std::string backup = "1 100+100 backup GPT\n2 400+100 backup GPT\n3 900+100 backup GPT b\n";
    PutFirst(Three);
    PutBackup(Three);
    PutBoot(100);
    PutBoot(400);
    EXPECT_EQ(Listed(), first);
    Wipe(4096);
    EXPECT_EQ(Listed(), first);
    PutBackup(Three);
    for (const std::uint64_t at : {std::uint64_t{512 + 60}, std::uint64_t{1024 + 127}}) { // header, array
        (*Image)[at] ^= 1;
        EXPECT_EQ(Listed(), backup) << at;
        (*Image)[at] ^= 1;
    }
    (*Image)[1024 + 127] ^= 1; // what follows finds the backup by the first header alone
    Image->resize(Image->size() + (1U << 20U));
    OpenDisk(Image);
    EXPECT_EQ(Listed(), backup);
    (*Image)[(4096 - 32) * 512 + 127] ^= 1;
    EXPECT_EQ(Listed(), "1 100+100 GPT\n2 400+100 GPT\n") << "what isn't sound counts where a volume is";
    Wipe(1);
    EXPECT_EQ(Listed(), "1 100+100 GPT\n2 400+100 GPT\n") << "the entries stand in their usual place";
    Put(0, EncodePartitionTable({{0xEE, 1, 4096}}));
    PutBackup(Three);
    EXPECT_EQ(Listed(), backup) << "the protective partition leads to it";
    Plan->Rules = {{.FirstSector = 900}, {.FirstSector = 4096 - 32}}; // a sector of the array
    EXPECT_EQ(Listed(), "1 100+100 GPT\n2 400+100 GPT\n");
    Plan->Rules = {{.FirstSector = 900}};
    EXPECT_TRUE(Listed().ends_with("3 900+100 backup GPT r\n"));
}

TEST_F(ReadVolumesTest, TablesOfOtherMeasures) {
    GptSpec large = Three;
    large.EntryBytes = 256;
    large.Count = 10;
    PutFirst(large);
    PutBoot(400);
    EXPECT_EQ(Listed(), "1 100+100 GPT b\n2 400+100 GPT\n3 900+100 GPT b\n");
    for (const auto& [bytes, count] : std::vector<std::pair<std::uint32_t, std::uint32_t>>{
             {0, 10}, {120, 10}, {1U << 31U, 2}, {128, 0xFFFFFFFF}, {0x1000, 0x100000}}) {
        PutFirst(large);
        PutNumber(*Image, 512 + 80, count);
        PutNumber(*Image, 512 + 84, bytes);
        EXPECT_EQ(Listed().find('b'), std::string::npos) << bytes << " " << count;
    }
    Wipe(1, 100);
    GptSpec sectors4k;
    sectors4k.UnitBytes = 4096;
    sectors4k.Entries = {{40, 59}, {60, 79}};
    PutFirst(sectors4k);
    PutBoot(320, 4096);
    PutBoot(480); // counts by 512 bytes all the same
    EXPECT_EQ(Listed(), "1 320+160 GPT\n2 480+160 GPT\n");
    EXPECT_EQ(Engine.SourceDisk.Partitions.front().SectorsPerCluster, 8U);
    EXPECT_EQ(Engine.SourceDisk.Partitions.front().BytesPerSector, 512U);
    EXPECT_EQ(Engine.SourceDisk.Partitions.front().MftSector, 320U + 4 * 8);
    PutBackup(sectors4k);
    Wipe(8);
    EXPECT_EQ(Listed(), "1 320+160 backup GPT\n2 480+160 backup GPT\n");
    Wipe(1, 100);
    Wipe(4096);
    PutBoot(0, 4096);
    EXPECT_EQ(Listed(), "1 0+96 whole medium\n");
}

TEST_F(ReadVolumesTest, BothKindsOfTablesAreListedAndNoVolumeTwice) {
    Put(0, EncodePartitionTable({{0x07, 400, 80}, {0x07, 600, 80}, {0x07, 700, 80}}));
    PutFirst(Three);
    GptSpec other = Three;
    other.Entries = {{100, 199}, {700, 799}, {1000, 1099}, {1200, 1299}};
    PutBackup(other);
    for (const std::uint64_t sector : {100, 400, 700, 1000}) {
        PutBoot(sector);
    }
    EXPECT_EQ(Listed(), "1 400+80 MBR\n2 600+80 MBR b\n3 700+80 MBR\n4 100+100 GPT\n5 900+100 GPT b\n"
                        "6 1000+100 backup GPT\n");
}

TEST_F(ReadVolumesTest, AVolumeThatFillsTheMediumOrHasItsBootSectorAtTheEndAlone) {
    VolumeGeometry geometry;
    geometry.StartSector = 0;
    VolumeBuilder bare(geometry);
    OpenDisk(bare.SharedImage());
    EXPECT_EQ(Listed(), "1 0+16383 whole medium!\n");
    PutNumber<std::uint8_t>(bare.Image(), 450, 7); // code that looks like an entry
    PutNumber<std::uint8_t>(bare.Image(), 454, 5);
    EXPECT_EQ(Listed(), "1 0+16383 whole medium!\n");
    bare.PutSectors(0, ByteVector(512));
    EXPECT_EQ(Listed(), "") << "the copy isn't in the last sectors";
    bare.Image().resize(std::size_t{16384 + 15} * 512);
    OpenDisk(bare.SharedImage());
    EXPECT_EQ(Listed(), "1 0+16383 whole medium!\n");

    VolumeBuilder inTable;
    inTable.Image().resize(std::size_t{128 + 16384} * 512);
    OpenDisk(inTable.SharedImage());
    EXPECT_EQ(Listed(), "1 128+16384 MBR!\n") << "the copy in the last sector isn't that of the whole disk";
    inTable.PutSectors(128, ByteVector(512));
    EXPECT_EQ(Listed(), "1 128+16384 MBR b\n2 128+16384 MBR!\n");
    PutNumber<std::uint16_t>(inTable.Image(), 128 * 512 + 510, 0xAA55);
    EXPECT_EQ(Listed(), "1 128+16384 MBR b\n2 128+16384 MBR!\n");
    inTable.PutClusters(4, ByteVector(4096));
    inTable.PutClusters(1024, ByteVector(4096));
    EXPECT_EQ(Listed(), "1 128+16384 MBR b\n") << "another file system is there now";
    inTable.PutSectors(128, ByteVector(512));
    EXPECT_EQ(Listed(), "1 128+16384 MBR b\n2 128+16384 MBR\n") << "all that is left of the volume";
}

TEST_F(ReadVolumesTest, EncryptedVolumesAreTold) {
    const auto sign = [this](std::uint64_t sector, std::string_view text, std::uint64_t low,
                             std::uint64_t high) {
        std::copy(text.begin(), text.end(), Image->begin() + static_cast<std::ptrdiff_t>(sector * 512 + 3));
        PutNumber(*Image, sector * 512 + 424, low);
        PutNumber(*Image, sector * 512 + 432, high);
    };
    Put(0, EncodePartitionTable({{0x07, 100, 50}, {0x07, 200, 50}, {0x07, 300, 50}}));
    sign(100, "-FVE-FS-", 0, 0);
    sign(200, "MSWIN4.1", 0x4AD82E294967D63B, 0x01D0E339A3F69983);
    sign(300, "MSWIN4.1", 1, 1);
    EXPECT_EQ(Listed(), "1 100+50 MBR e\n2 200+50 MBR e\n3 300+50 MBR b\n");
    sign(0, "-FVE-FS-", 0, 0);
    EXPECT_EQ(Listed(), "1 0+4097 whole medium e\n");
}

} // namespace

} // namespace thntfs::test
