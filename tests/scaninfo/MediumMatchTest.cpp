#include "scaninfo/MediumMatch.h"

#include "scaninfo/ScanInfoFixture.h"

namespace thntfs::test {

namespace {

/// A volume of a hundred files that has been scanned, and changes from then on.
class MediumMatchTest : public ScanInfoFixture {
protected:
    MediumMatchTest() {
        NameFiles(100, u"as scanned ");
        OpenVolume(Volume);
        Engine.VolumeParams.VolumeSerial = Volume.Geometry().Serial;
        Scan();
    }

    void NameFiles(std::uint32_t count, const std::u16string& name) {
        for (std::uint32_t i = 0; i < count; ++i) {
            Volume.AddFile({.Number = 40 + i, .Name = name + static_cast<char16_t>(0x4E00 + i)});
        }
    }

    VolumeBuilder Volume;
};

TEST_F(MediumMatchTest, RecordsTellAVolumeInUseFromAnotherOne) {
    MediumMatch match = MatchMedium();
    EXPECT_TRUE(match.IsWhole());
    EXPECT_EQ(match.Boot, BootMatch::Same);
    EXPECT_GT(match.Records, 60U);
    NameFiles(5, u"reused ");
    match = MatchMedium();
    EXPECT_FALSE(match.NeedsConsent()) << match.Different;
    EXPECT_NE(MediumMatchText(match), "");
    NameFiles(30, u"reused ");
    EXPECT_TRUE(MatchMedium().NeedsConsent());
}

TEST_F(MediumMatchTest, TheBootSectorCountsWhereTheScanKnewIt) {
    for (const auto field :
         {&BootSectorFields::Serial, &BootSectorFields::MftCluster, &BootSectorFields::MirrorCluster}) {
        BootSectorFields fields = BootFieldsOf(Volume.Geometry());
        fields.*field += 1;
        Volume.PutSectors(128, EncodeBootSector(fields));
        EXPECT_EQ(MatchMedium().Boot, BootMatch::Other);
    }
    Volume.PutSectors(128, ByteVector(512));
    EXPECT_TRUE(MatchMedium().NeedsConsent());
    Engine.VolumeParams.VolumeSerial = 0;
    EXPECT_TRUE(MatchMedium().IsWhole());
}

TEST_F(MediumMatchTest, WhatCannotBeReadIsNoDifference) {
    Volume.PlaceRecord(Volume.NewRecord(40).AddStandardInformation().AddAttributeList(
        std::vector<ListEntry>{{kFileName, 200}})); // its name is elsewhere
    EXPECT_EQ(MatchMedium().Different, 0U);
    EXPECT_EQ(MatchMedium().Unknown, 1U);
    Plan->Rules = {{0, 1U << 20U}};
    Plan->Log.clear();
    const MediumMatch match = MatchMedium();
    EXPECT_FALSE(match.NeedsConsent());
    EXPECT_EQ(match.Unknown, match.Records);
    EXPECT_LT(Plan->Log.size(), 10U) << "a dying disk takes its time for each";

    NameFiles(5, u"reused ");
    Plan->Rules = {{Volume.RecordSector(50), 1U << 20U}};
    EXPECT_TRUE(MatchMedium().NeedsConsent()) << "of what can be read, all differs";
}

} // namespace

} // namespace thntfs::test
