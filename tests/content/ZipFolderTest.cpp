#include "content/ZipFolder.h"

#include "SaveFixture.h"
#include "content/ZipArchive.h"
#include "platform/files/File.h"

#include <set>

namespace thntfs::test {

namespace {

namespace fs = std::filesystem;

class ZipFolderTest : public SaveFixture {
protected:
    void AddFiles() {
        Volume.AddFolder({.Number = 40, .Name = u"Übersee", .Times = EqualTimes(kTime)});
        Volume.AddFolder(
            {.Number = 41, .Parent = 40, .Name = u"leer", .Times = EqualTimes(kTime - 10000000000000000)});
        Volume.PlaceRecord(Volume.NewRecord(42)
                               .AddStandardInformation(EqualTimes(kTime))
                               .AddFileName(NameIn(40, u"日本.txt"))
                               .AddFileName(NameIn(41, u"again.txt"))
                               .AddData(BytesOf("two names"))
                               .AddData(BytesOf("a stream"), u"note"));
        Volume.AddFile({.Number = 43,
                        .Parent = 40,
                        .Name = u"zeros",
                        .Content = ByteVector(1500000),
                        .InClusters = true});
        ByteVector noise(400000);
        std::uint32_t state = 1;
        for (std::uint8_t& byte : noise) {
            byte = static_cast<std::uint8_t>((state = state * 1664525 + 1013904223) >> 24U);
        }
        Volume.AddFile({.Number = 44, .Parent = 40, .Name = u"noise", .Content = noise, .InClusters = true});
        Volume.AddFile({.Number = 45, .Name = u"empty"});
        Volume.AddFile({.Number = 46, .Name = u"empty", .Live = false});
        const std::uint64_t start = Volume.AllocateClusters(2);
        Volume.PutClusters(start, PatternBytes(2 * 4096));
        Volume.PlaceRecord(Record(47, 5, u"holes")
                               .AddData({.Runs = {{3, std::nullopt},
                                                  {1, start},
                                                  {900, std::nullopt},
                                                  {1, start + 1},
                                                  {5, std::nullopt}},
                                         .Flags = 0x8000}));
        Scan();
    }
    SaveTotals SaveZip(const SaveOptions& options = {}) {
        fs::remove(Zip);
        SetFileStore(&Store);
        std::unique_ptr<TargetFolder> target;
        const ErrorCode opened = OpenZipFolder(Zip, target);
        EXPECT_TRUE(opened == kErrorNone || Store.Plan().Failures != 0);
        const SaveTotals totals = opened == kErrorNone ? SaveAllTo(std::move(target), options) : SaveTotals();
        SetFileStore(nullptr);
        return totals;
    }
    void ExpectNoPart() const {
        for (const auto& entry : fs::directory_iterator(Engine.CatalogueFolder)) {
            EXPECT_NE(entry.path().extension(), ".part");
        }
    }

    static constexpr std::uint64_t kTime = 132223104001234567;
    std::string Zip = Engine.CatalogueFolder + "/saved.zip";
};

TEST_F(ZipFolderTest, HoldsWhatASaveToAFolderHolds) {
    AddFiles();
    const SaveOptions options{.Streams = true};
    const SaveTotals loose = SaveLoose(options);
    const SaveTotals zipped = SaveZip(options);
    const ZipItems items = ReadZip(Zip);
    EXPECT_EQ(PathsIn(items), PathsIn(Saved()));
    EXPECT_TRUE(items == Saved());
    EXPECT_EQ(items.size(), 10U);
    EXPECT_LT(fs::file_size(Zip), 450000U) << "zeros take hardly any room, noise its own";
    EXPECT_EQ(zipped.Files, loose.Files);
    EXPECT_EQ(zipped.Links, 1U);
    EXPECT_EQ(zipped.Bytes, loose.Bytes);
    ExpectNoPart();
}

// Either it is there, and holds what nobody was told to have failed, whole; or there is none.
TEST_F(ZipFolderTest, WhereTheTargetFailsTheRestIsWhole) {
    AddFiles();
    (void)SaveLoose();
    const ZipItems all = Saved();
    const auto expectRest = [&](const SaveTotals& totals) {
        ExpectNoPart();
        if (!fs::exists(Zip)) {
            EXPECT_EQ(totals.Files + totals.Folders, 0U);
            return;
        }
        std::uint64_t files = 0;
        for (const auto& [path, item] : ReadZip(Zip)) {
            files += path.ends_with('/') ? 0 : 1;
            EXPECT_TRUE(item == all.at(path)) << path;
        }
        EXPECT_EQ(files, totals.Files + totals.Links);
        EXPECT_EQ(totals.Failed, Listener.FailedPaths.size());
    };
    std::set<std::uint64_t> counts;
    for (std::uint64_t call = 1; counts.empty() || Store.Plan().Failures != 0; ++call) {
        for (const bool failOn : {false, true}) {
            SCOPED_TRACE(call);
            ASSERT_LT(call, 1000U);
            Store.FailAt(call, kErrorDiskFull, failOn);
            Listener.FailedPaths.clear();
            const SaveTotals totals = SaveZip();
            expectRest(totals);
            counts.insert(totals.Files);
        }
    }
    EXPECT_GT(counts.size(), 4U) << "more and more of it";
    for (std::uint64_t room = 200; room < 450000; room += room / 2) {
        Store.FailAt(0);
        Store.Plan().RoomInFile = room;
        Listener.FailedPaths.clear();
        expectRest(SaveZip());
    }
    Store.FailAt(0);
    for (int stopAt = 1; stopAt < 4; ++stopAt) {
        int calls = 0;
        Reports.OnProgress = [&] { Engine.ScanRunFlag = ++calls < stopAt ? 1 : 0; };
        Listener.FailedPaths.clear();
        const SaveTotals totals = SaveZip();
        EXPECT_TRUE(totals.Stopped);
        expectRest(totals);
    }
}

TEST_F(ZipFolderTest, NothingThatExistsIsWrittenOver) {
    AddFiles();
    WriteFileBytes(Zip, BytesOf("mine"));
    std::unique_ptr<TargetFolder> target;
    EXPECT_EQ(OpenZipFolder(Zip, target), kErrorFileExists);
    EXPECT_NE(OpenZipFolder(Target + "/none/a.zip", target), kErrorNone);
    fs::remove(Zip);
    ASSERT_EQ(OpenZipFolder(Zip, target), kErrorNone);
    WriteFileBytes(Zip, BytesOf("mine"));
    EXPECT_EQ(SaveAllTo(std::move(target)).Failed, 0U);
    EXPECT_EQ(ReadFileBytes(Zip), BytesOf("mine"));
    EXPECT_EQ(ReadZip(Engine.CatalogueFolder + "/saved (2).zip").size(), 9U);
    fs::remove(Zip);
    ASSERT_EQ(OpenZipFolder(Zip, target), kErrorNone);
    EXPECT_EQ(target->Sync(), kErrorNone);
    target.reset();
    EXPECT_FALSE(fs::exists(Zip)) << "nothing went into it";
    ExpectNoPart();
}

TEST_F(ZipFolderTest, AHoleBeyondAllMeasureFails) {
    std::unique_ptr<TargetFolder> target;
    std::unique_ptr<File> file;
    ASSERT_EQ(OpenZipFolder(Zip, target), kErrorNone);
    ASSERT_EQ(target->CreateFile("huge", file), kErrorNone);
    EXPECT_EQ(target->CreateFile("huge", file), kErrorFileExists);
    std::unique_ptr<TargetFolder> folder;
    EXPECT_EQ(target->MakeSubfolder("huge", folder), kErrorFileExists);
    ASSERT_EQ(target->CreateFile("huger", file), kErrorNone);
    EXPECT_EQ(file->WriteAt(std::uint64_t{1} << 41U, BytesOf("x")), kErrorFileTooLarge);
}

// More entries than 16 bits count; two are dropped, one of them the last.
TEST_F(ZipFolderTest, DroppedEntriesAreNotInTheDirectory) {
    constexpr std::uint64_t kEntries = 65600;
    std::unique_ptr<File> file;
    ASSERT_EQ(Files().Open(Zip, FileMode::CreateNew, file), kErrorNone);
    std::uint64_t room = ~std::uint64_t{0};
    ZipArchive archive(*file, [&room] { return room; });
    for (std::uint64_t i = 0; i <= kEntries; ++i) {
        ASSERT_EQ(archive.Begin({.Path = std::to_string(i), .Stored = true, .Size = 5}), kErrorNone);
        ASSERT_EQ(archive.Add(BytesOf("bytes")), kErrorNone);
        if (i == 3) {
            archive.Drop();
            continue;
        }
        room = i < kEntries ? room : 8 << 20U; // the directory needs more than 7 MiB
        ASSERT_EQ(archive.End(), i < kEntries ? kErrorNone : kErrorDiskFull);
    }
    archive.Drop();
    EXPECT_EQ(archive.Begin({.Path = "late"}), kErrorDiskFull);
    ASSERT_EQ(archive.Finish(), kErrorNone);
    const ZipItems items = ReadZip(Zip);
    EXPECT_EQ(items.size(), kEntries - 1);
    EXPECT_TRUE(!items.contains("3") && items.contains("4") && !items.contains("65600"));
    EXPECT_EQ(items.at("4").Bytes + items.at("65599").Bytes, "bytesbytes");
}

} // namespace

} // namespace thntfs::test
