#include "engine/SectorReader.h"
#include "platform/system/Text.h"
#include "scaninfo/ScanInfoFixture.h"
#include "support/FailingFileStore.h"

#include <sys/stat.h>

namespace thntfs::test {

namespace {

constexpr const char* kTreeOpened = "Partition scan information opened successfully.";

std::string Failed(const char* what, ErrorCode code) {
    return std::string("Failed to ") + what +
           " Partition scan information. Errorcode =" + std::to_string(code);
}

class TreeInfoFileTest : public ScanInfoFixture {
protected:
    void LoadGood() { ASSERT_TRUE(LoadTree(LayTreeInfo(laid_)).Done); }

    /// Does the work again and again, each time with another call of the files failing, until none is left.
    static void LetEachCallFail(ErrorCode code, const std::function<void()>& work) {
        FailingFileStore store;
        SetFileStore(&store);
        std::uint64_t call = 0;
        do {
            SCOPED_TRACE(++call);
            store.FailAt(call, code);
            work();
        } while (store.Plan().Failures != 0 && call < 100);
        EXPECT_GT(call, 10U);
        EXPECT_LT(call, 100U);
    }
};

TEST_F(TreeInfoFileTest, LoadPutsBackWhatTheBytesSayAndSaveWritesThemAgain) {
    laid_.Names.resize(2500000, 'n'); // more than is copied at a time
    for (const std::size_t count : {0U, 1U, 2U}) {
        SCOPED_TRACE(count);
        laid_.VolumeStart = 0x123456789A + count;
        laid_.Candidates = {{128, 16383, 8}, {0x123456789A, 0xFFFFFFFFFF, 8}};
        laid_.Candidates.resize(count);
        laid_.Extents = {{64, 4}, {0x89ABCDEF, 0x123456789ABCDEF0}};
        laid_.Extents.resize(count);
        LoadGood();
        ExpectLoadLog("laid.tht", kTreeOpened, "2");
        EXPECT_EQ(NarrowText(Engine.SourceDisk.Description), ImagePath());
        EXPECT_EQ(Engine.SourceDisk.Partitions.size(), count);
        EXPECT_EQ(Engine.VolumeParams.StartSector, laid_.VolumeStart);
        EXPECT_EQ(Engine.VolumeParams.MftSector, laid_.VolumeStart + 32);
        EXPECT_EQ(Engine.VolumeParams.MftExtents.size(), count);
        EXPECT_EQ(Engine.Folders, nullptr);
        ByteVector sector(512);
        EXPECT_EQ(ReadSectors(sector, 9).Code, kErrorNone);
        EXPECT_EQ(sector, ByteVector(512, 10)) << "the medium has been opened anew";

        EXPECT_TRUE(SaveTreeInfo(At("saved")).Done);
        EXPECT_EQ(ReadFileBytes(At("saved.tht")), LayTreeInfo(laid_));
        ExpectSaveLog("saved", "Partition scan information saved successfully.", ".tht");
        EXPECT_EQ(Engine.SourceDisk.Partitions.size(), count) << "saving leaves the engine as it was";
        EXPECT_EQ(Paths(), kPaths);
    }
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

TEST_F(TreeInfoFileTest, AnyNameLoadsByARelativePathAndAChangedMediumToo) {
    laid_.TotalSectors = 1000; // it was larger once
    WriteFileBytes(At("any name"), LayTreeInfo(laid_));
    const fs::path before = fs::current_path();
    fs::current_path(scratch_.Path());
    EXPECT_TRUE(LoadTreeInfo("any name").Done);
    fs::current_path(before);
    ExpectLoadLog("any name", kTreeOpened, "2");
    EXPECT_EQ(Engine.SourceDisk.TotalSectors, 1000U);
    ByteVector sector(512, 0xEE);
    EXPECT_EQ(ReadSectors(sector, 999).Code, kErrorNone);
    EXPECT_EQ(sector, ByteVector(512, 0xEE));
}

TEST_F(TreeInfoFileTest, FailedLoadsLeaveTheEngineReset) {
    const ByteVector good = LayTreeInfo(laid_);
    LoadGood();
    EXPECT_EQ(LoadTreeInfo(At("missing.tht")).Code, kErrorFileNotFound);
    ExpectLoadLog("missing.tht", Failed("open", 2), "1");
    ExpectReset();

    fs::create_directory(At("folder.tht"));
    EXPECT_EQ(LoadTreeInfo(At("folder.tht")).Text, Failed("open", kErrorDirectory));
    ASSERT_EQ(::mkfifo(At("pipe.tht").c_str(), 0600), 0);
    EXPECT_EQ(LoadTreeInfo(At("pipe.tht")).Code, kErrorInvalidParameter) << "nobody writes to it";
    ExpectFailedLoad(LayPartitionInfo(laid_));
    const std::size_t separators[] = {620 + 76 + 16, 620 + 76 + 16 + 12 + laid_.Tree.size(),
                                      620 + 76 + 16 + 24 + laid_.Tree.size() + laid_.Entries.size()};
    for (const std::size_t separator : separators) {
        ByteVector bytes = good;
        ASSERT_EQ(bytes.at(separator), 1);
        bytes.at(separator) = 2;
        ExpectFailedLoad(bytes);
    }
    WriteFileBytes(Engine.CatalogueFolder + kTreeFileName, {});
    for (const auto& [gone, code] : {std::pair{"/nowhere/disk.img", kErrorFileNotFound},
                                     {"", kErrorFileNotFound},
                                     {"/", kErrorDirectory}}) {
        laid_.Description = gone;
        ExpectFailedLoad(LayTreeInfo(laid_), Failed("open", code));
        EXPECT_EQ(LoadTree(LayTreeInfo(laid_)).Medium, gone);
    }
    EXPECT_TRUE(Stored(kTreeFileName).empty()) << "nothing is written before the medium is there";
}

TEST_F(TreeInfoFileTest, TheUserMayRefuseAnotherMedium) {
    LoadGood();
    bool isShown = false;
    const auto show = [&isShown] { isShown = true; };
    EXPECT_FALSE(LoadTreeInfo(At("laid.tht"), show, [](const MediumMatch&) { return false; }).Done);
    ExpectLoadLog("laid.tht", "The medium isn't as it was when it was scanned.", "1");
    ExpectReset();
    EXPECT_FALSE(isShown);
    EXPECT_TRUE(LoadTreeInfo(At("laid.tht"), show, [](const MediumMatch&) { return true; }).Done);
    EXPECT_TRUE(isShown);
}

TEST_F(TreeInfoFileTest, SaveThatCannotCreateItsFile) {
    LoadGood();
    fs::create_directory(At("taken.tht"));
    for (const auto& [path, code] : {std::pair{At("no/such/folder/a.tht"), kErrorFileNotFound},
                                     {At("taken.tht"), kErrorDirectory},
                                     {At(std::string(300, 'n')), kErrorFilenameTooLong}}) {
        EXPECT_EQ(SaveTreeInfo(path).Text, Failed("save", code));
        EXPECT_EQ(Reports.Log.back().Status, kLogFailed);
        EXPECT_EQ(Engine.SourceDisk.Partitions.size(), 1U);
        EXPECT_NE(Engine.EntryFile, nullptr);
    }
    LoadVolumeParams(Engine.SourceDisk.Partitions.front()); // the catalogue isn't this one's
    EXPECT_FALSE(SaveTreeInfo(At("foreign.tht")).Done);
    ClaimCatalogue();
    fs::resize_file(Engine.CatalogueFolder + kNameFileName, kMaxCatalogueFileBytes + 1); // would not load
    EXPECT_EQ(SaveTreeInfo(At("large.tht")).Text, Failed("save", kErrorFileTooLarge));
    EXPECT_EQ(Names(), (std::set<std::string>{"disk.img", "laid.tht", "taken.tht"}));
}

TEST_F(TreeInfoFileTest, AnOlderFileOutlivesEveryFailedSave) {
    LoadGood();
    const ByteVector older = BytesOf("an older result");
    WriteFileBytes(At("saved.tht"), older);
    LetEachCallFail(kErrorDiskFull, [&] {
        const ScanInfoResult result = SaveTreeInfo(At("saved.tht"));
        if (!result.Done) {
            EXPECT_EQ(result.Text, Failed("save", kErrorDiskFull));
        }
        EXPECT_EQ(ReadFileBytes(At("saved.tht")), result.Done ? LayTreeInfo(laid_) : older);
        EXPECT_EQ(Names(), (std::set<std::string>{"disk.img", "laid.tht", "saved.tht"}));
    });
}

TEST_F(TreeInfoFileTest, LoadThatFailsAtAnyCallIsTold) {
    WriteFileBytes(At("laid.tht"), LayTreeInfo(laid_));
    std::set<std::string> texts;
    LetEachCallFail(kErrorIoDevice, [&] {
        const ScanInfoResult result = LoadTreeInfo(At("laid.tht"));
        texts.insert(result.Text);
        if (!result.Done) {
            ExpectReset();
        }
    });
    EXPECT_EQ(texts, (std::set<std::string>{Failed("open", kErrorIoDevice),
                                            "Supporting Files couldn't be opened", kTreeOpened}));
}

} // namespace

} // namespace thntfs::test
