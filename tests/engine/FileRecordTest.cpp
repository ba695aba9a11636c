#include "engine/FileRecord.h"

#include "support/EngineFixture.h"

namespace thntfs::test {

namespace {

const VolumeGeometry kGeometry;

// Standard information at 56 (96 bytes long), file name at 152 (96 long), data at 248 (32 long), end marker
// at 280, 288 bytes used in the newer form; all of it 8 bytes earlier in the older one.
RecordBuilder GoodRecord(RecordForm form = RecordForm::Newer) {
    RecordBuilder record(kGeometry, 30, form);
    record.AddStandardInformation().AddFileName(NameIn(5, u"abc")).AddData(BytesOf("12345678"));
    return record;
}

int Check(ByteVector record, std::uint32_t recordBytes = 1024, std::uint16_t sectorBytes = 512) {
    return CheckFileRecord(record, recordBytes, sectorBytes);
}

struct PokeCase {
    const char* Name;
    std::size_t Offset;
    std::size_t Width;
    std::uint32_t Value;
    int Expected;
};

class FileRecordTest : public EngineFixture {
protected:
    FileRecordTest() { Engine.SourceDisk.BytesPerSector = 512; }

    static void CheckPoked(const RecordBuilder& good, const std::vector<PokeCase>& cases) {
        for (const PokeCase& poke : cases) {
            RecordBuilder record = good;
            EXPECT_EQ(Check(record.Poke(poke.Offset, poke.Width, poke.Value).Finish()), poke.Expected)
                << poke.Name;
        }
    }
};

} // namespace

TEST_F(FileRecordTest, OneWrongFieldIsEnough) {
    const std::vector<PokeCase> cases = {
        {"as it is", 8, 4, 0, 1},
        {"magic", 0, 4, 0x44414142, 0},
        {"array at 40", 4, 2, 40, 0},
        {"array a word short", 6, 2, 2, 0},
        {"array a word long", 6, 2, 4, 0},
        {"first attribute 8 on", 20, 2, 64, 0},
        {"first attribute 4 on", 20, 2, 60, 0},
        {"used above allocated", 24, 4, 1032, 0},
        {"all used", 24, 4, 1024, 1},
        {"used not a multiple of 8", 24, 4, 300, 0},
        {"used up to the first attribute", 24, 4, 48, 0},
        {"allocated too small", 28, 4, 512, 0},
        {"allocated too big", 28, 4, 4096, 0},
        {"not in use", 22, 2, 0, 1},
    };
    CheckPoked(GoodRecord(RecordForm::Newer), cases);
    CheckPoked(GoodRecord(RecordForm::Older), cases);
    CheckPoked(GoodRecord(RecordForm::Newer), {{"first attribute too late", 4, 2, 42, 0}});
    CheckPoked(GoodRecord(RecordForm::Older), {{"first attribute too early", 4, 2, 48, 0}});
    const std::vector<PokeCase> ofAttributes = {
        {"type 0", 152, 4, 0, 0},
        {"type 0x100", 152, 4, 0x100, 1},
        {"type 0x110", 152, 4, 0x110, 0},
        {"length 0", 156, 4, 0, 0},
        {"length odd", 156, 4, 108, 0},
        {"length to the used end", 156, 4, 136, 1},
        {"length beyond the used end", 156, 4, 0xFFFFFFF8, 1},
        {"first one's length beyond the used end", 60, 4, 512, 0},
        {"standard information in clusters", 64, 1, 1, 0},
        {"file name in clusters", 160, 1, 1, 1}, // its word at 32 is 0
        {"form 2", 160, 1, 2, 0},
        {"value ends with the attribute", 168, 4, 96 - 24, 1},
        {"value ends behind the attribute", 168, 4, 96 - 23, 0},
        {"value length wraps", 168, 4, 0xFFFFFFF0, 0},
        {"end first", 56, 4, 0xFFFFFFFF, 0},
    };
    CheckPoked(GoodRecord(), ofAttributes);
    RecordBuilder inClusters =
        RecordBuilder(kGeometry, 30).AddStandardInformation().AddData({.Runs = {{4, 100}}});
    for (const std::uint64_t runs : {72U, 73U}) {
        inClusters.Poke(inClusters.LastAttributeOffset() + 32, 2, runs);
        EXPECT_EQ(Check(inClusters.Finish()), runs == 72) << "the list must start within its attribute";
    }
    EXPECT_EQ(Check(GoodRecord().OmitEndMarker().Finish()), 1);
    EXPECT_EQ(Check(RecordBuilder(kGeometry, 1).AddStandardInformation().OmitEndMarker().Finish()), 0);
    EXPECT_EQ(Check(RecordBuilder(kGeometry, 1).AddStandardInformation().Finish()), 1);
    EXPECT_EQ(Check(RecordBuilder(kGeometry, 1).Finish()), 0) << "nothing but the end marker";
}

TEST_F(FileRecordTest, SizesOfRecordAndSector) {
    struct Case {
        std::uint32_t RecordBytes;
        std::uint32_t SectorBytes;
        RecordForm Form;
        std::uint16_t First;
        int Expected;
    };
    const Case cases[] = {
        {1024, 1024, RecordForm::Newer, 56, 1}, {1024, 1024, RecordForm::Older, 48, 1},
        {4096, 512, RecordForm::Newer, 72, 1},  {4096, 512, RecordForm::Older, 64, 1},
        {4096, 4096, RecordForm::Newer, 56, 1}, {4096, 1024, RecordForm::Newer, 64, 1},
        {1536, 512, RecordForm::Newer, 56, 1}, // an array of 8 bytes to the letter
        {1536, 512, RecordForm::Older, 48, 0}, // and in the older form no place that is a multiple of 8
        {1536, 512, RecordForm::Older, 50, 0},
    };
    for (const Case& test : cases) {
        SCOPED_TRACE(testing::Message()
                     << test.RecordBytes << " / " << test.SectorBytes << " " << test.First);
        const VolumeGeometry geometry = {.SectorBytes = test.SectorBytes, .RecordBytes = test.RecordBytes};
        RecordBuilder record(geometry, 30, test.Form);
        record.AddStandardInformation().AddData(BytesOf("x"));
        record.Poke16(20, test.First);
        EXPECT_EQ(Check(record.Finish(), test.RecordBytes, static_cast<std::uint16_t>(test.SectorBytes)),
                  test.Expected);
    }
    EXPECT_EQ(Check(GoodRecord().Finish(), 4096), 0);
    EXPECT_EQ(Check(GoodRecord().Finish(), 1024, 1024), 1) << "protected every 512 bytes, as drivers do it";
    EXPECT_EQ(Check(GoodRecord().Finish(), 1024, 256), 0) << "but never in steps larger than a sector";
    EXPECT_EQ(Check(GoodRecord().Finish(), 1024, 0), 0);
}

TEST_F(FileRecordTest, ProtectionIsUndoneWithinTheUsedBytes) {
    RecordBuilder small = GoodRecord();
    RecordBuilder large = GoodRecord().AddData(PatternBytes(400), u"stream");
    ByteVector fixedUp = large.Finish();
    ASSERT_EQ(CheckFileRecord(fixedUp, 1024, 512), 1);
    const ByteVector raw = large.RawBytes();
    EXPECT_TRUE(std::equal(raw.begin() + 56, raw.begin() + 1022, fixedUp.begin() + 56));

    for (const std::size_t sectorEnd : {510U, 1022U}) {
        ByteVector torn = large.Finish();
        torn[sectorEnd] ^= 1U;
        EXPECT_EQ(Check(torn), sectorEnd == 1022) << sectorEnd;
        torn = small.Finish();
        torn[sectorEnd] ^= 1U;
        EXPECT_EQ(Check(torn), 1) << "sectors that end behind the used bytes aren't tested";
    }
    ByteVector full = GoodRecord().Poke32(24, 1024).Finish();
    full[1023] ^= 0x80U;
    EXPECT_EQ(Check(full), 0);

    ByteVector untouched = small.Finish();
    const ByteVector before = untouched;
    ASSERT_EQ(CheckFileRecord(untouched, 1024, 512), 1);
    EXPECT_EQ(untouched, before) << "nor repaired";
}

TEST_F(FileRecordTest, IndexBlocks) {
    Engine.VolumeParams.SectorsPerIndexBlock = 8;
    const PokeCase cases[] = {
        {"as it is", 16, 4, 3, 1},
        {"magic", 0, 4, 0x454C4946, 0},
        {"array at 44", 4, 2, 44, 0},
        {"no array", 6, 2, 0, 0},
        {"first entry", 24, 4, 44, 0},
        {"used above allocated", 28, 4, 4080, 0},
        {"used as allocated", 28, 4, 4072, 1},
        {"used odd", 28, 4, 84, 0},
        {"allocated odd", 32, 4, 4076, 0},
    };
    for (const PokeCase& poke : cases) {
        IndexBlockBuilder block(kGeometry);
        block.Add({.Reference = 40, .Key = NameIn(5, u"a")});
        ByteVector bytes = block.Poke(poke.Offset, poke.Width, poke.Value).Finish();
        EXPECT_EQ(CheckIndexBlock(bytes, 512), poke.Expected) << poke.Name;
    }
    // The last word of a sector is tested where the sector ends within the used bytes + 24.
    for (const std::uint32_t used : {480U, 488U}) {
        ByteVector torn = IndexBlockBuilder(kGeometry).Poke(28, 4, used).Finish();
        torn[510] ^= 1U;
        EXPECT_EQ(CheckIndexBlock(torn, 512), used == 480);
    }
    Engine.VolumeParams.SectorsPerIndexBlock = 4;
    ByteVector larger = IndexBlockBuilder(kGeometry).Finish();
    EXPECT_EQ(CheckIndexBlock(larger, 512), 0);
}

TEST_F(FileRecordTest, TheTableAndItsMirror) {
    const auto named = [](const std::vector<std::u16string>& list, RecordForm form = RecordForm::Newer) {
        RecordBuilder record(kGeometry, 0, form);
        record.AddStandardInformation();
        for (const std::u16string& name : list) {
            record.AddFileName(NameIn(5, name));
        }
        return record.AddData({.Runs = {{4, 64}}});
    };
    struct Case {
        const char* Name;
        RecordBuilder Record;
        int Mft;
        int Mirr;
    };
    FileTimes late = EqualTimes();
    late.Accessed += 1;
    RecordBuilder behindBitmap(kGeometry, 0);
    behindBitmap.AddStandardInformation()
        .AddResident(kBitmap, ByteVector(8))
        .AddFileName(NameIn(5, u"$MFTMirr"));
    RecordBuilder behindUsed = named({u"x", u"$MFT"});
    behindUsed.Poke32(24, static_cast<std::uint32_t>(behindUsed.AttributeOffset(2)))
        .Poke32(behindUsed.AttributeOffset(1), 0x40);
    const Case cases[] = {
        {"$MFT", named({u"$MFT"}), 1, 0},
        {"$MFTMirr", named({u"$MFTMirr"}), 0, 1},
        {"case", named({u"$Mft"}), 0, 0},
        {"longer", named({u"$MFT1"}), 0, 0},
        {"wrong name first", named({u"x", u"$MFT"}), 0, 0},
        {"wrong name afterwards", named({u"$MFT", u"xxxxxxxxxxxxx"}), 1, 0},
        {"no name", named({}), 0, 0},
        {"old form", named({u"$MFT"}, RecordForm::Older), 1, 0},
        {"unequal times behind the name", named({u"$MFT"}).AddStandardInformation(late), 1, 0},
        {"name behind a bitmap", behindBitmap, 0, 1},
        {"name right behind the used bytes", behindUsed, 1, 0},
    };
    for (const Case& test : cases) {
        SCOPED_TRACE(test.Name);
        ByteVector record = test.Record.Finish();
        EXPECT_EQ(IsMftRecord(record, 1024), test.Mft);
        record = test.Record.Finish();
        EXPECT_EQ(IsMftMirrRecord(record, 1024), test.Mirr);
    }
    for (std::size_t stamp = 0; stamp < 4; ++stamp) {
        RecordBuilder record = named({u"$MFT"});
        ByteVector bytes = record.Poke8(record.AttributeOffset(0) + 24 + 8 * stamp + 7, 0x55).Finish();
        EXPECT_EQ(IsMftRecord(bytes, 1024), 0) << stamp;
    }
    Engine.SourceDisk.BytesPerSector = 256;
    ByteVector record = named({u"$MFT"}).Finish();
    EXPECT_EQ(IsMftRecord(record, 1024), 0) << "the medium's sector size counts";
}

TEST_F(FileRecordTest, FindsAnAttributeList) {
    const auto with = [](std::uint32_t type) {
        return RecordBuilder(kGeometry, 1).AddStandardInformation().AddResident(type, ByteVector(8));
    };
    EXPECT_TRUE(HasAttributeList(with(kAttributeList).RawBytes()));
    EXPECT_FALSE(HasAttributeList(with(0x18).AddResident(kAttributeList, {}).RawBytes()));
    EXPECT_FALSE(HasAttributeList(with(kFileName).AddResident(kAttributeList, {}).RawBytes()))
        << "a list behind a name is not reached";
}

} // namespace thntfs::test
