#include "engine/SectorReader.h"
#include "platform/system/Text.h"
#include "scaninfo/ScanInfoFixture.h"
#include "support/FailingFileStore.h"

namespace thntfs::test {

namespace {

namespace fs = std::filesystem;

constexpr const char* kInvalidTree = "Not a valid Partition scan information.";
constexpr const char* kSaved = "Partition scan information saved successfully.";
constexpr const char* kTreeOpened = "Partition scan information opened successfully.";

std::string FailedOpen(ErrorCode code) {
    return "Failed to open Partition scan information. Errorcode =" + std::to_string(code);
}
std::string FailedSave(ErrorCode code) {
    return "Failed to save Partition scan information. Errorcode =" + std::to_string(code);
}

class TreeInfoFileTest : public ScanInfoFixture {
protected:
    /// Puts the engine into the state that the hand-laid file describes, field by field.
    void FillEngine() {
        Engine.SourceDisk.Description = WideText(laid_.Description);
        Engine.SourceDisk.BytesPerSector = 512;
        Engine.SourceDisk.TotalSectors = laid_.TotalSectors;
        for (const LaidCandidate& laid : laid_.Candidates) {
            PartitionCandidate candidate = CandidateOf(VolumeGeometry{});
            candidate.StartSector = laid.StartSector;
            candidate.TotalSectors = laid.TotalSectors;
            candidate.MftSector = laid.StartSector + 32;
            candidate.VolumeSerial = 0x1122334455667788;
            candidate.EvidenceFlags = 5;
            Engine.SourceDisk.Partitions.push_back(candidate);
        }
        LoadVolumeParams(CandidateOf(VolumeGeometry{}));
        Engine.VolumeParams.VolumeSerial = 0x1122334455667788;
        Engine.VolumeParams.MftRecordCount = 256;
        Engine.VolumeParams.TurboScanRun = 1;
        for (const LaidExtent& laid : laid_.Extents) {
            MftExtent extent;
            extent.Clusters = laid.Clusters;
            extent.StartCluster = laid.StartCluster;
            Engine.VolumeParams.MftExtents.push_back(extent);
        }
        WriteFileBytes(Engine.CatalogueFolder + kTreeFileName, laid_.Tree);
        WriteFileBytes(Engine.CatalogueFolder + kEntryFileName, laid_.Entries);
        WriteFileBytes(Engine.CatalogueFolder + kNameFileName, laid_.Names);
        ASSERT_EQ(OpenCatalogue(), 1);
        ClaimCatalogue();
    }

    void ExpectFailedLoad(ConstBytes bytes, const std::string& text) {
        const ScanInfoResult result = LoadTree(bytes);
        EXPECT_FALSE(result.Done);
        EXPECT_EQ(result.Text, text);
        ExpectTreeLoadLog(text, kLogFailed);
        ExpectReset();
        EXPECT_EQ(Engine.EntryFile, nullptr);
    }
};

TEST_F(TreeInfoFileTest, SaveWritesTheBytesOfTheTables) {
    for (const std::size_t candidates : {0U, 1U, 3U}) {
        for (const std::size_t extents : {0U, 1U, 2U}) {
            SCOPED_TRACE(std::to_string(candidates) + " candidates, " + std::to_string(extents) + " extents");
            ResetEngineState();
            laid_.Candidates = {{128, 16383, 8}, {70000, 5, 8}, {0x123456789A, 0xFFFFFFFFFF, 8}};
            laid_.Candidates.resize(candidates);
            laid_.Extents = {{64, 4}, {0x89ABCDEF, 0x123456789ABCDEF0}};
            laid_.Extents.resize(extents);
            FillEngine();
            EXPECT_TRUE(SaveTreeInfo(At("saved.tht")).Done);
            EXPECT_EQ(ReadFileBytes(At("saved.tht")), LayTreeInfo(laid_));
        }
    }
    // Saving leaves the engine as it was.
    EXPECT_EQ(Engine.SourceDisk.Partitions.size(), 3U);
    EXPECT_EQ(Paths(), (std::vector<std::string>{"", "/folder", "/folder/file.txt"}));
}

TEST_F(TreeInfoFileTest, NameOfTheTargetAndTheLog) {
    struct NameCase {
        const char* Given;
        const char* Target;
    };
    FillEngine();
    for (const NameCase& name : {NameCase{"a.tht", "a.tht"},
                                 {"b", "b.tht"},
                                 {"c.THT", "c.THT.tht"},
                                 {"d.tht.bak", "d.tht.bak.tht"},
                                 {"tht", "tht.tht"},
                                 {".tht", ".tht"}}) {
        EXPECT_TRUE(SaveTreeInfo(At(name.Given)).Done);
        EXPECT_TRUE(fs::exists(At(name.Target)));
        ExpectLog({std::string("Saving Scan Info File : ") + name.Given, "To Location : " + scratch_.Path(),
                   "", kLogInProgress},
                  {kSaved, At(name.Target), "", kLogDone});
    }
    EXPECT_EQ(Names().size(), 7U); // with the image
}

TEST_F(TreeInfoFileTest, LoadPutsBackWhatTheBytesSay) {
    laid_.Candidates = {{128, 16383, 8}, {0x123456789A, 77, 16}};
    laid_.Extents = {{64, 4}, {7, 0x123456789ABCDEF0}, {0, 0}};
    EXPECT_TRUE(LoadTree(LayTreeInfo(laid_)).Done);
    ExpectTreeLoadLog(kTreeOpened, kLogDone);

    const DiskRecord& disk = Engine.SourceDisk;
    EXPECT_EQ(NarrowText(disk.Description), ImagePath());
    EXPECT_EQ(disk.BytesPerSector, 512);
    EXPECT_EQ(disk.TotalSectors, 64U);
    ASSERT_EQ(disk.Partitions.size(), 2U);
    const PartitionCandidate& second = disk.Partitions.back();
    EXPECT_EQ(second.StartSector, 0x123456789AU);
    EXPECT_EQ(second.TotalSectors, 77U);
    EXPECT_EQ(second.MftMirrCluster, 1024U);
    EXPECT_EQ(second.ClusterBytes, 8192U);
    EXPECT_EQ(second.EvidenceFlags, 5);
    const VolumeParams& volume = Engine.VolumeParams;
    EXPECT_EQ(volume.StartSector, 128U);
    EXPECT_EQ(volume.MftSector, 160U);
    EXPECT_EQ(volume.VolumeSerial, 0x1122334455667788U);
    EXPECT_EQ(volume.MftRecordCount, 256U);
    EXPECT_EQ(volume.TurboScanRun, 1);
    using Runs = std::vector<std::pair<std::uint32_t, std::uint64_t>>;
    EXPECT_EQ(RunsIn(volume.MftExtents), (Runs{{64, 4}, {7, 0x123456789ABCDEF0}, {0, 0}}));

    // The medium has been opened anew, and the catalogue's files are those of the file.
    ByteVector sector(512);
    EXPECT_EQ(ReadSectors(sector, 9).Code, kErrorNone);
    EXPECT_EQ(sector, ByteVector(512, 10));
    EXPECT_EQ(Stored(kTreeFileName), laid_.Tree);
    EXPECT_EQ(Stored(kEntryFileName), laid_.Entries);
    EXPECT_EQ(Stored(kNameFileName), laid_.Names);
    EXPECT_EQ(Paths(), (std::vector<std::string>{"", "/folder", "/folder/file.txt"}));
    EXPECT_EQ(Engine.Folders, nullptr);
}

TEST_F(TreeInfoFileTest, OnlyZeroAndNotZeroCountInLinks) {
    laid_.Candidates = {{1, 1, 8}, {2, 2, 8}};
    laid_.Extents = {{1, 1}, {2, 2}};
    ByteVector bytes = LayTreeInfo(laid_);
    Lay(bytes, 4 + 512, 4, 0xDEADBEEF);         // the handle
    Lay(bytes, 4 + 534, 4, 0x00410000);         // FirstPartition
    Lay(bytes, 4 + 538, 4, 0);                  // LastPartition
    Lay(bytes, 546 + 72, 4, 0x80000000);        // Next of the first candidate
    Lay(bytes, 546 + 2 * 76 + 48, 4, 0xFF00);   // MftExtents
    Lay(bytes, 620 + 2 * 76 + 12, 4, 0x000100); // link of the first extent
    EXPECT_TRUE(LoadTree(bytes).Done);
    EXPECT_EQ(Engine.SourceDisk.Partitions.size(), 2U);
    EXPECT_EQ(Engine.VolumeParams.MftExtents.size(), 2U);
}

TEST_F(TreeInfoFileTest, AnyNameLoadsAndRelativePathsToo) {
    WriteFileBytes(At("any name"), LayTreeInfo(laid_));
    EXPECT_TRUE(LoadTreeInfo(At("any name")).Done);
    const fs::path before = fs::current_path();
    fs::current_path(scratch_.Path());
    EXPECT_TRUE(LoadTreeInfo("any name").Done);
    fs::current_path(before);
    ExpectTreeLoadLog(kTreeOpened, kLogDone, "any name");
}

TEST_F(TreeInfoFileTest, FailedLoadsLeaveTheEngineReset) {
    const ByteVector good = LayTreeInfo(laid_);
    FillEngine();
    EXPECT_EQ(LoadTreeInfo(At("missing.tht")).Code, kErrorFileNotFound);
    ExpectTreeLoadLog(FailedOpen(2), kLogFailed, "missing.tht");
    ExpectReset();
    EXPECT_EQ(Engine.EntryFile, nullptr);

    fs::create_directory(At("folder.tht"));
    EXPECT_EQ(LoadTreeInfo(At("folder.tht")).Text, FailedOpen(kErrorDirectory));
    ExpectFailedLoad(LayPartitionInfo(laid_), kInvalidTree);
    ExpectFailedLoad(BytesOf("text, and nothing of a scan"), kInvalidTree);
    ExpectFailedLoad({}, kInvalidTree);
    const std::size_t separators[] = {620 + 76 + 16, 620 + 76 + 16 + 12 + laid_.Tree.size(),
                                      620 + 76 + 16 + 24 + laid_.Tree.size() + laid_.Entries.size()};
    for (const std::size_t separator : separators) {
        ByteVector bytes = good;
        ASSERT_EQ(bytes.at(separator), 1);
        bytes.at(separator) = 2;
        ExpectFailedLoad(bytes, kInvalidTree);
    }
}

TEST_F(TreeInfoFileTest, MediumThatIsGone) {
    for (const char* gone : {"/nowhere/disk.img", "", "/"}) {
        laid_.Description = gone;
        const ErrorCode code = *gone == '/' && gone[1] == '\0' ? kErrorDirectory : kErrorFileNotFound;
        ExpectFailedLoad(LayTreeInfo(laid_), FailedOpen(code));
        EXPECT_EQ(LoadTree(LayTreeInfo(laid_)).Medium, gone);
    }
    EXPECT_TRUE(Stored(kTreeFileName).empty()); // nothing is written before the medium is there
}

TEST_F(TreeInfoFileTest, ChangedMediumLoads) {
    laid_.TotalSectors = 1000; // it was larger once
    EXPECT_TRUE(LoadTree(LayTreeInfo(laid_)).Done);
    EXPECT_EQ(Engine.SourceDisk.TotalSectors, 1000U);
    ByteVector sector(512, 0xEE);
    EXPECT_EQ(ReadSectors(sector, 999).Code, kErrorNone);
    EXPECT_EQ(sector, ByteVector(512, 0xEE));
}

TEST_F(TreeInfoFileTest, SaveThatCannotCreateItsFile) {
    FillEngine();
    fs::create_directory(At("taken.tht"));
    struct SaveCase {
        std::string Path;
        ErrorCode Code;
    };
    for (const SaveCase& save : {SaveCase{At("no/such/folder/a.tht"), kErrorFileNotFound},
                                 {At("taken.tht"), kErrorDirectory},
                                 {At(std::string(300, 'n')), kErrorFilenameTooLong}}) {
        EXPECT_EQ(SaveTreeInfo(save.Path).Text, FailedSave(save.Code));
        EXPECT_EQ(Reports.Log.back().Status, kLogFailed);
        EXPECT_EQ(Engine.SourceDisk.Partitions.size(), 1U);
        EXPECT_NE(Engine.EntryFile, nullptr);
    }
    LoadVolumeParams(CandidateOf(VolumeGeometry{})); // the catalogue isn't this one's
    EXPECT_FALSE(SaveTreeInfo(At("foreign.tht")).Done);
    ClaimCatalogue();
    fs::resize_file(Engine.CatalogueFolder + kNameFileName, kMaxCatalogueFileBytes + 1); // would not load
    EXPECT_EQ(SaveTreeInfo(At("large.tht")).Text, FailedSave(kErrorFileTooLarge));
    EXPECT_EQ(Names(), (std::set<std::string>{"disk.img", "taken.tht"}));
}

TEST_F(TreeInfoFileTest, AnOlderFileOutlivesEveryFailedSave) {
    FillEngine();
    const ByteVector older = BytesOf("an older result");
    WriteFileBytes(At("saved.tht"), older);
    fs::permissions(At("saved.tht"), fs::perms::owner_read | fs::perms::owner_write);
    FailingFileStore store;
    SetFileStore(&store);
    std::uint64_t call = 0;
    do {
        store.FailAt(++call);
        const ScanInfoResult result = SaveTreeInfo(At("saved.tht"));
        if (!result.Done) {
            EXPECT_EQ(result.Text, FailedSave(kErrorDiskFull)) << call;
            EXPECT_EQ(ReadFileBytes(At("saved.tht")), older) << call;
        }
        EXPECT_EQ(Names(), (std::set<std::string>{"disk.img", "saved.tht"})) << call;
    } while (store.Plan().Failures != 0 && call < 100);
    SetFileStore(nullptr);
    EXPECT_GT(call, 10U);
    EXPECT_EQ(ReadFileBytes(At("saved.tht")), LayTreeInfo(laid_));
    EXPECT_EQ(fs::status(At("saved.tht")).permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

TEST_F(TreeInfoFileTest, ALinkKeepsItsPlace) {
    FillEngine();
    fs::create_directory(At("elsewhere"));
    fs::create_symlink(At("elsewhere/real.tht"), At("link.tht"));
    EXPECT_TRUE(SaveTreeInfo(At("link.tht")).Done);
    EXPECT_TRUE(fs::is_symlink(At("link.tht")));
    EXPECT_EQ(ReadFileBytes(At("elsewhere/real.tht")), LayTreeInfo(laid_));
}

TEST_F(TreeInfoFileTest, LoadThatFailsAtAnyCallIsTold) {
    WriteFileBytes(At("laid.tht"), LayTreeInfo(laid_));
    FailingFileStore store;
    SetFileStore(&store);
    std::set<std::string> texts;
    std::uint64_t call = 0;
    do {
        store.FailAt(++call, kErrorIoDevice);
        const ScanInfoResult result = LoadTreeInfo(At("laid.tht"));
        texts.insert(result.Text);
        if (!result.Done) {
            ExpectReset();
            EXPECT_EQ(Engine.EntryFile, nullptr);
        }
    } while (store.Plan().Failures != 0 && call < 100);
    SetFileStore(nullptr);
    EXPECT_GT(call, 10U);
    EXPECT_EQ(texts, (std::set<std::string>{FailedOpen(kErrorIoDevice), "Supporting Files couldn't be opened",
                                            kTreeOpened}));
}

} // namespace

} // namespace thntfs::test
